#include "tools/service/PipeServer.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "suite/ipc/PipeStream.h"

namespace {

constexpr std::size_t kMaxClients = 30;  // two events each, of the 64 that one wait takes
constexpr DWORD kBufferSize = 64 * 1024;
constexpr std::chrono::milliseconds kDrainTime{250};

std::vector<std::uint8_t> Garbage() {
    std::vector<std::uint8_t> bytes(64);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(i * 37 + 11);
    }
    return bytes;
}

std::vector<std::uint8_t> HalfFrame() {
    TagIPCMessageItem item;
    item.slot[6] = 2;
    item.data = "1";
    std::vector<std::uint8_t> bytes = *PipeFrame::EncodeMessage(item);
    bytes.resize(bytes.size() / 2);
    return bytes;
}

// A second stand-in is refused by this name, since not every system heeds FILE_FLAG_FIRST_PIPE_INSTANCE.
suite::Handle ClaimName(const std::wstring& pipeName) {
    std::wstring name = L"PixoraService-" + pipeName;
    std::replace(name.begin(), name.end(), L'\\', L'/');
    suite::Handle mutex(CreateMutexW(nullptr, FALSE, name.c_str()));
    if (GetLastError() == ERROR_ALREADY_EXISTS) {
        mutex.Reset();
        SetLastError(ERROR_ALREADY_EXISTS);
    }
    return mutex;
}

bool IsSignalled(HANDLE event) {
    return WaitForSingleObject(event, 0) == WAIT_OBJECT_0;
}

}  // namespace

struct PipeServer::Client {
    Client(suite::Handle pipe, int clientNumber) : stream(std::move(pipe)), number(clientNumber) {}

    suite::PipeStream stream;
    const int number;
    PipeFrame::Decoder decoder;
    std::deque<std::vector<std::uint8_t>> output;
    bool saidHello = false;
    bool dropped = false;
    int messages = 0;
};

PipeServer::~PipeServer() {
    Stop();
}

bool PipeServer::Start(const std::wstring& pipeName, const Behaviour& behaviour) {
    pipeName_ = pipeName;
    behaviour_ = behaviour;
    single_ = ClaimName(pipeName);
    listening_ = single_ ? CreateInstance(true) : suite::Handle();
    if (!listening_) {
        const DWORD error = GetLastError();
        single_.Reset();
        SetLastError(error);
        return false;
    }
    wake_ = suite::Handle(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    accepted_ = suite::Handle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    {
        const std::lock_guard lock(mutex_);
        running_ = true;
        ended_ = false;
        connected_ = 0;
        orders_.clear();
        events_.clear();
    }
    thread_ = std::thread(&PipeServer::Run, this);
    return true;
}

void PipeServer::Stop() {
    if (thread_.joinable()) {
        RequestStop();
        thread_.join();
        single_.Reset();
    }
}

void PipeServer::RequestStop() {
    const std::lock_guard lock(mutex_);
    running_ = false;
    SetEvent(wake_.Get());
}

std::optional<ServerEvent> PipeServer::WaitForEvent(std::chrono::milliseconds atMost) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, atMost, [this] { return !events_.empty() || ended_; });
    return TakeEvent();
}

// REQUIRES: mutex_ is held.
std::optional<ServerEvent> PipeServer::TakeEvent() {
    if (events_.empty()) {
        return std::nullopt;
    }
    ServerEvent event = std::move(events_.front());
    events_.pop_front();
    return event;
}

std::optional<ServerEvent> PipeServer::WaitForEvent() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !events_.empty() || ended_; });
    return TakeEvent();
}

std::optional<ServerEvent> PipeServer::WaitFor(ServerEvent::Kind kind, std::chrono::milliseconds atMost) {
    const auto deadline = std::chrono::steady_clock::now() + atMost;
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        auto event = WaitForEvent(std::max(left, std::chrono::milliseconds(0)));
        if (!event || event->kind == kind) {
            return event;
        }
    }
}

int PipeServer::Send(const TagIPCMessageItem& item) {
    auto bytes = PipeFrame::EncodeMessage(item);
    return bytes ? SendBytes(std::move(*bytes)) : 0;
}

int PipeServer::SendBytes(std::vector<std::uint8_t> bytes) {
    return GiveOrder({Order::Kind::kSend, std::move(bytes)});
}

void PipeServer::DisconnectClients() {
    GiveOrder({Order::Kind::kDisconnect, {}});
}

int PipeServer::GiveOrder(Order order) {
    const std::lock_guard lock(mutex_);
    if (!running_) {
        return 0;
    }
    orders_.push_back(std::move(order));
    SetEvent(wake_.Get());
    return connected_;
}

suite::Handle PipeServer::CreateInstance(bool first) const {
    // Byte mode; the first instance fails when another server has the name.
    return suite::Handle(CreateNamedPipeW(
        pipeName_.c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | (first ? FILE_FLAG_FIRST_PIPE_INSTANCE : 0),
        PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS, PIPE_UNLIMITED_INSTANCES,
        kBufferSize, kBufferSize, 0, nullptr));
}

// Makes accepted_ tell when the next client has come.
void PipeServer::Listen() {
    if (!listening_) {
        listening_ = CreateInstance(false);
    }
    while (listening_) {
        accept_ = {};
        accept_.hEvent = accepted_.Get();
        ConnectNamedPipe(listening_.Get(), &accept_);
        const DWORD error = GetLastError();
        if (error == ERROR_IO_PENDING) {
            return;
        }
        if (error == ERROR_PIPE_CONNECTED) {
            SetEvent(accepted_.Get());
            return;
        }
        // A client came and went before this instance listened.
        listening_ = CreateInstance(false);
    }
}

void PipeServer::StopListening() {
    if (listening_) {
        DWORD unused = 0;
        if (CancelIoEx(listening_.Get(), &accept_)) {
            GetOverlappedResult(listening_.Get(), &accept_, &unused, TRUE);
        }
        listening_.Reset();
    }
}

void PipeServer::Run() {
    Clients clients;
    Listen();
    while (Running()) {
        ServeOnce(clients, INFINITE);
    }
    StopListening();
    Obey(clients);
    const auto deadline = std::chrono::steady_clock::now() + kDrainTime;
    const auto hasOutput = [](const auto& client) { return client->stream.Writing() || !client->output.empty(); };
    while (std::any_of(clients.begin(), clients.end(), hasOutput) && std::chrono::steady_clock::now() < deadline) {
        ServeOnce(clients, static_cast<DWORD>(kDrainTime.count()));
    }
    for (const auto& client : clients) {
        Report({ServerEvent::Kind::kDisconnected, client->number, {}, {}}, -1);
    }
    clients.clear();
    {
        const std::lock_guard lock(mutex_);
        ended_ = true;
    }
    changed_.notify_all();
}

bool PipeServer::Running() {
    const std::lock_guard lock(mutex_);
    return running_;
}

void PipeServer::ServeOnce(Clients& clients, DWORD timeoutMs) {
    std::array<HANDLE, MAXIMUM_WAIT_OBJECTS> events{};
    DWORD count = 0;
    events[count++] = wake_.Get();
    if (listening_) {
        events[count++] = accepted_.Get();
    }
    for (const auto& client : clients) {
        events[count++] = client->stream.ReadEvent();
        events[count++] = client->stream.WriteEvent();
    }
    WaitForMultipleObjects(count, events.data(), FALSE, timeoutMs);

    if (listening_ && IsSignalled(accepted_.Get())) {
        Accept(clients);
    }
    Obey(clients);
    std::erase_if(clients, [this](const std::unique_ptr<Client>& client) {
        if (Serve(*client)) {
            return false;
        }
        Report({ServerEvent::Kind::kDisconnected, client->number, {}, {}}, -1);
        return true;
    });
    if (!listening_ && clients.size() < kMaxClients && Running()) {
        Listen();
    }
}

void PipeServer::Obey(Clients& clients) {
    std::deque<Order> orders;
    {
        const std::lock_guard lock(mutex_);
        orders.swap(orders_);
    }
    for (const Order& order : orders) {
        for (const auto& client : clients) {
            if (order.kind == Order::Kind::kSend) {
                client->output.push_back(order.bytes);
            } else {
                client->dropped = true;
            }
        }
    }
}

void PipeServer::Accept(Clients& clients) {
    ResetEvent(accepted_.Get());
    auto client = std::make_unique<Client>(std::move(listening_), nextClient_++);
    // At once: until there is a next instance, others find the pipe busy.
    if (clients.size() + 1 < kMaxClients) {
        Listen();
    }
    if (behaviour_.garbage) {
        client->output.push_back(Garbage());
    }
    if (behaviour_.halfFrame) {
        client->output.push_back(HalfFrame());
    }
    Report({ServerEvent::Kind::kConnected, client->number, {}, {}}, +1);
    clients.push_back(std::move(client));
}

// False: the client is gone or is to be dropped.
bool PipeServer::Serve(Client& client) {
    suite::PipeStream& stream = client.stream;
    if (client.dropped || !stream.Valid()) {
        return false;
    }
    if (IsSignalled(stream.WriteEvent()) && !stream.FinishWrite()) {
        return false;
    }
    if (!stream.Writing() && !client.output.empty()) {
        std::vector<std::uint8_t> bytes = std::move(client.output.front());
        client.output.pop_front();
        if (!stream.StartWrite(std::move(bytes))) {
            return false;
        }
    }
    if (behaviour_.neverRead) {
        return true;
    }
    if (IsSignalled(stream.ReadEvent()) && !Read(client)) {
        return false;
    }
    return stream.Reading() || stream.StartRead();
}

bool PipeServer::Read(Client& client) {
    const auto bytes = client.stream.FinishRead();
    if (!bytes) {
        return false;
    }
    client.decoder.Feed(*bytes);
    while (auto frame = client.decoder.Next()) {
        if (!Understand(client, std::move(*frame))) {
            return false;
        }
    }
    if (client.decoder.refusal() != PipeFrame::Refusal::kNone) {
        Report({ServerEvent::Kind::kRefused, client.number, {}, PipeFrame::RefusalText(client.decoder.refusal())});
        return false;
    }
    return true;
}

bool PipeServer::Understand(Client& client, PipeFrame::Frame frame) {
    const bool isHello = frame.kind == PipeFrame::Kind::kHello;
    if (isHello == client.saidHello) {
        Report({ServerEvent::Kind::kRefused, client.number, std::move(frame),
                isHello ? L"a second hello" : L"a message before the hello"});
        return false;
    }
    if (isHello) {
        client.saidHello = true;
        Report({ServerEvent::Kind::kHello, client.number, std::move(frame), {}});
        return true;
    }
    ++client.messages;
    Report({ServerEvent::Kind::kMessage, client.number, std::move(frame), {}});
    return client.messages != behaviour_.dropAfter;
}

void PipeServer::Report(ServerEvent event, int connectedChange) {
    {
        const std::lock_guard lock(mutex_);
        connected_ += connectedChange;
        events_.push_back(std::move(event));
    }
    changed_.notify_all();
}
