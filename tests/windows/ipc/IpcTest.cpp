#include "tests/windows/ipc/IpcTest.h"

#include <algorithm>
#include <iterator>

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
    return ServiceMessages::ChangePing();
}

TagIPCMessageItem Message(std::int32_t code) {
    TagIPCMessageItem item;
    item.slot[2] = code;
    return item;
}

void IpcTest::SetUp() {
    static int count = 0;
    pipeName_ =
        L"\\\\.\\Pipe\\PixoraIpcTest-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++count);
}
