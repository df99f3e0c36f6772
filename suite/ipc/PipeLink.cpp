#include "suite/ipc/PipeLink.h"

#include <process.h>

#include <algorithm>
#include <exception>
#include <limits>
#include <optional>
#include <utility>

#include "suite/common/UserSid.h"
#include "suite/ipc/SentMessageWait.h"
#include "suite/ipc/ServerIdentity.h"
#include "suite/logger/QxLogger.h"

namespace suite {

namespace {

constexpr std::size_t kCodeSlot = 2;
constexpr std::size_t kWriteSize = 16384;  // of small frames that travel together
constexpr RetrySchedule::TimeMs kNever = std::numeric_limits<RetrySchedule::TimeMs>::max();

RetrySchedule::TimeMs Now() {
    return GetTickCount64();
}

DWORD TimeoutUntil(RetrySchedule::TimeMs deadline) {
    if (deadline == kNever) {
        return INFINITE;
    }
    const RetrySchedule::TimeMs now = Now();
    return deadline > now ? static_cast<DWORD>(deadline - now) : 0;
}

bool IsSignalled(HANDLE event) {
    return WaitForSingleObject(event, 0) == WAIT_OBJECT_0;
}

}  // namespace

PipeLink::PipeLink(std::int32_t clientId, bool autoReconnect, std::wstring pipeName, CallbackTable& callbacks)
    : clientId_(clientId), autoReconnect_(autoReconnect), pipeName_(std::move(pipeName)), callbacks_(callbacks) {}

bool PipeLink::Start() {
    wake_ = Handle(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    if (!wake_) {
        return false;
    }
    if (OpenPipe() == Opening::kAbsent) {
        schedule_.TryFailed(Now());
    }
    thread_ = Handle(reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, &ThreadEntry, this, 0, nullptr)));
    return static_cast<bool>(thread_);
}

void PipeLink::Stop() {
    {
        const std::scoped_lock lock(mutex_);
        stopping_ = true;
    }
    SetEvent(wake_.Get());
    WaitServingSentMessages(thread_.Get());
}

bool PipeLink::Post(const TagIPCMessageItem& item) {
    std::optional<std::vector<std::uint8_t>> frame = PipeFrame::EncodeMessage(item);
    if (!frame) {
        return false;
    }
    const std::scoped_lock lock(mutex_);
    if (stopping_ || (!connected_ && !(schedule_.MayTryForMessage(Now()) && OpenPipe() == Opening::kOpened))) {
        return false;
    }
    const bool queued = queue_.Push(std::move(*frame));
    SetEvent(wake_.Get());
    return queued;
}

unsigned __stdcall PipeLink::ThreadEntry(void* link) {
    auto* self = static_cast<PipeLink*>(link);
    try {
        self->Run();
    } catch (const std::exception& error) {
        LogLine(LogLevel::kError, L"IPCMessageClient::ThreadEntry", L"the pipe thread ended: ", error.what());
    }
    const std::scoped_lock lock(self->mutex_);
    self->stopping_ = true;  // nothing is queued that nobody would write
    return 0;
}

void PipeLink::Run() {
    while (Handle pipe = WaitForPipe()) {
        Serve(std::move(pipe));
    }
}

// REQUIRES: mutex_ is held or no other thread knows the link yet; not connected.
PipeLink::Opening PipeLink::OpenPipe() {
    Handle pipe(CreateFileW(pipeName_.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                            FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr));
    if (!pipe) {
        const DWORD error = GetLastError();
        // No server, or one whose instances are all taken, is no failure of this program.
        if (error != ERROR_FILE_NOT_FOUND && error != ERROR_PIPE_BUSY && !openFailureTold_) {
            openFailureTold_ = true;
            LogLine(LogLevel::kError, L"IPCMessageClient::OpenPipe", L"the pipe cannot be opened, error code: ", error);
        }
        return Opening::kAbsent;
    }
    openFailureTold_ = false;
    schedule_.Connected(Now());
    if (!BelievesServer(pipe.Get())) {
        schedule_.Ended(Now(), RetrySchedule::Ending::kMisbehaved);
        return Opening::kStranger;
    }
    strangerTold_ = false;
    opened_ = std::move(pipe);
    connected_ = true;
    return Opening::kOpened;
}

// REQUIRES: as OpenPipe.
bool PipeLink::BelievesServer(HANDLE pipe) {
    const PipeServerIdentity server = IdentityOfServer(pipe);
    if (IsTrustedServer(server, OwnUserSid())) {
        return true;
    }
    if (!std::exchange(strangerTold_, true)) {
        LogLine(LogLevel::kError, L"IPCMessageClient::BelievesServer",
                L"the pipe's server may be anybody's, it is not listened to; owner and user: ", server.pipeOwner, L", ",
                server.processUser);
    }
    return false;
}

// Nothing when the link is to end.
Handle PipeLink::WaitForPipe() {
    for (;;) {
        TimeMs nextTry = kNever;
        {
            const std::scoped_lock lock(mutex_);
            // A pipe that was opened before the stop is still served, for what was queued with it.
            if (!opened_ && !stopping_ && autoReconnect_) {
                if (Now() >= schedule_.NextTry() && OpenPipe() == Opening::kAbsent) {
                    schedule_.TryFailed(Now());
                }
                nextTry = schedule_.NextTry();
            }
            if (opened_ || stopping_) {
                return std::move(opened_);
            }
        }
        WaitForSingleObject(wake_.Get(), TimeoutUntil(nextTry));
    }
}

void PipeLink::Serve(Handle pipe) {
    PipeStream stream(std::move(pipe));
    const Ending ending = stream.Valid() ? Exchange(stream) : Ending::kLost;
    {
        const std::scoped_lock lock(mutex_);
        connected_ = false;
        queue_.Clear();
        schedule_.Ended(Now(), ending == Ending::kLost || ending == Ending::kStopped
                                   ? RetrySchedule::Ending::kByServer
                                   : RetrySchedule::Ending::kMisbehaved);
        if (schedule_.Settled()) {
            told_.reset();
        }
    }
    Tell(ending, stream.LastError());
}

PipeLink::Ending PipeLink::Exchange(PipeStream& stream) {
    PipeFrame::Decoder decoder;
    TimeMs writeDeadline = Now() + kFrameDeadlineMs;
    TimeMs frameDeadline = kNever;
    TimeMs stopDeadline = kNever;
    if (!stream.StartRead()) {
        return Ending::kLost;
    }
    if (!stream.StartWrite(PipeFrame::EncodeHello(clientId_))) {
        return DeliverRest(stream, decoder);
    }
    for (;;) {
        bool stopping = false;
        if (stream.Writing()) {
            stopping = Stopping();
        } else if (std::vector<std::uint8_t> frames = TakeFrames(stopping); !frames.empty()) {
            writeDeadline = Now() + kFrameDeadlineMs;
            if (!stream.StartWrite(std::move(frames))) {
                return DeliverRest(stream, decoder);
            }
        } else if (stopping) {
            return Ending::kStopped;
        }
        if (stopping && stopDeadline == kNever) {
            stopDeadline = Now() + kDrainDeadlineMs;
        }
        const TimeMs writeUntil = stream.Writing() ? writeDeadline : kNever;
        // Nothing is delivered any more once the link is to end.
        const HANDLE events[] = {wake_.Get(), stream.WriteEvent(), stream.ReadEvent()};
        WaitForMultipleObjects(stopping ? 2 : 3, events, FALSE,
                               TimeoutUntil(std::min({writeUntil, frameDeadline, stopDeadline})));

        // A deadline counts only for what is not done: this thread may have been in a callback meanwhile.
        if (IsSignalled(stream.WriteEvent())) {
            if (!stream.FinishWrite()) {
                return DeliverRest(stream, decoder);
            }
        } else if (Now() >= writeUntil) {
            return Ending::kNotRead;
        }
        if (Now() >= stopDeadline) {
            return Ending::kStopped;
        }
        if (!stopping && IsSignalled(stream.ReadEvent())) {
            if (const std::optional<Ending> ending = DeliverInput(stream, decoder, frameDeadline)) {
                return *ending;
            }
        } else if (Now() >= frameDeadline) {
            return Ending::kHalfFrame;
        }
    }
}

// The server is gone, but what it sent before may still be in the pipe.
PipeLink::Ending PipeLink::DeliverRest(PipeStream& stream, PipeFrame::Decoder& decoder) {
    const TimeMs until = Now() + kDrainDeadlineMs;
    TimeMs frameDeadline = kNever;
    while (!Stopping() && WaitForSingleObject(stream.ReadEvent(), TimeoutUntil(until)) == WAIT_OBJECT_0) {
        if (const std::optional<Ending> ending = DeliverInput(stream, decoder, frameDeadline)) {
            return *ending;
        }
    }
    return Ending::kLost;
}

// Nothing: the connection goes on.
std::optional<PipeLink::Ending> PipeLink::DeliverInput(PipeStream& stream, PipeFrame::Decoder& decoder,
                                                       TimeMs& frameDeadline) {
    const auto bytes = stream.FinishRead();
    if (!bytes) {
        return Ending::kLost;
    }
    decoder.Feed(*bytes);
    bool delivered = false;
    while (const std::optional<PipeFrame::Frame> frame = decoder.Next()) {
        if (frame->kind != PipeFrame::Kind::kMessage) {
            refusalText_ = L"a hello from the server";
            return Ending::kRefused;
        }
        if (Stopping()) {
            return std::nullopt;
        }
        TagIPCMessageItem item = frame->Item();
        callbacks_.Deliver(item.slot[kCodeSlot], item);
        delivered = true;
    }
    if (decoder.refusal() != PipeFrame::Refusal::kNone) {
        refusalText_ = PipeFrame::RefusalText(decoder.refusal());
        return Ending::kRefused;
    }
    if (!decoder.HasPartial()) {
        frameDeadline = kNever;
    } else if (delivered || frameDeadline == kNever) {
        frameDeadline = Now() + kFrameDeadlineMs;
    }
    return stream.StartRead() ? std::nullopt : std::optional(Ending::kLost);
}

std::vector<std::uint8_t> PipeLink::TakeFrames(bool& stopping) {
    const std::scoped_lock lock(mutex_);
    stopping = stopping_;
    return queue_.Pop(kWriteSize);
}

bool PipeLink::Stopping() {
    const std::scoped_lock lock(mutex_);
    return stopping_;
}

void PipeLink::Tell(Ending ending, DWORD error) {
    const auto bit = static_cast<std::size_t>(ending);
    if (ending == Ending::kStopped || told_[bit]) {
        return;
    }
    told_[bit] = true;
    const wchar_t* function = L"IPCMessageClient::Serve";
    switch (ending) {
        case Ending::kStopped:
            break;
        case Ending::kLost:
            LogLine(LogLevel::kInfo, function, L"the pipe connection is lost, error code: ", error);
            break;
        case Ending::kNotRead:
            LogLine(LogLevel::kError, function, L"the pipe server does not read, the connection is dropped");
            break;
        case Ending::kRefused:
            LogLine(LogLevel::kError, function, L"a frame from the pipe server is refused: ", refusalText_);
            break;
        case Ending::kHalfFrame:
            LogLine(LogLevel::kError, function, L"the pipe server left a frame unfinished, the connection is dropped");
            break;
    }
}

}  // namespace suite
