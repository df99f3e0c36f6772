#include "tests/windows/ipc/IpcTest.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

#include "suite/logger/QxLogger.h"

namespace {

std::string LogText() {
    std::ifstream file(std::filesystem::path(QxLogger::GetInstance()->FilePath()), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

void Signal::Set() {
    {
        const std::lock_guard lock(mutex_);
        set_ = true;
    }
    changed_.notify_all();
}

bool Signal::Wait() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, kDeadline, [this] { return set_; });
}

IPCMessageClient::MessageCallback Inbox::Callback() {
    return [this](TagIPCMessageItem& item) {
        Message message;
        message.thread = GetCurrentThreadId();
        message.frame.text = item.text;
        std::copy(std::begin(item.slot), std::end(item.slot), message.frame.slot.begin());
        message.frame.flag = item.flag;
        message.frame.reserved = item.reserved;
        if (item.slot[6] > 0) {
            const auto* payload = static_cast<const std::uint8_t*>(item.data);
            message.frame.payload.assign(payload, payload + item.slot[6]);
        }
        {
            const std::lock_guard lock(mutex_);
            messages_.push_back(std::move(message));
        }
        changed_.notify_all();
    };
}

bool Inbox::WaitFor(std::size_t count) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, kDeadline, [&] { return messages_.size() >= count; });
}

std::vector<Inbox::Message> Inbox::Messages() {
    const std::lock_guard lock(mutex_);
    return messages_;
}

TagIPCMessageItem Ping() {
    TagIPCMessageItem item;
    item.slot[0] = 0xCD0000;
    item.slot[2] = 0x4B273B;
    item.slot[3] = 0;
    item.slot[6] = 2;
    item.data = "1";
    return item;
}

TagIPCMessageItem Message(std::int32_t code) {
    TagIPCMessageItem item;
    item.slot[2] = code;
    return item;
}

void IpcTest::SetUpTestSuite() {
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("ipc_test-" + std::to_string(GetCurrentProcessId()));
    SetEnvironmentVariableW(L"LOCALAPPDATA", folder.c_str());
    ASSERT_TRUE(QxLogger::GetInstance()->InitProcessLogger());
}

void IpcTest::SetUp() {
    static int count = 0;
    pipeName_ =
        L"\\\\.\\Pipe\\PixoraIpcTest-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++count);
    logStart_ = LogText().size();
}

void IpcTest::TearDown() {
    for (const std::string& line : Lines()) {
        const bool expected = std::any_of(expected_.begin(), expected_.end(), [&line](const std::string& text) {
            return line.find(text) != std::string::npos;
        });
        if (line.find("[L4]") != std::string::npos && !expected) {
            ADD_FAILURE() << "unexpected in the log: " << line;
        }
    }
}

std::vector<std::string> IpcTest::Lines() const {
    std::istringstream text(LogText().substr(logStart_));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) {
        lines.push_back(line);
    }
    return lines;
}

int IpcTest::LinesWith(const std::string& text) const {
    const std::vector<std::string> lines = Lines();
    return static_cast<int>(std::count_if(
        lines.begin(), lines.end(), [&text](const std::string& line) { return line.find(text) != std::string::npos; }));
}

bool IpcTest::WaitForLine(const std::string& text) const {
    const auto deadline = std::chrono::steady_clock::now() + kDeadline;
    while (LinesWith(text) == 0) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}
