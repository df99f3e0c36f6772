#include "suite/ipc/CallbackTable.h"

#include <exception>
#include <utility>

#include "suite/ipc/SentMessageWait.h"
#include "suite/logger/QxLogger.h"

namespace suite {

CallbackTable::CallbackTable() : idle_(CreateEventW(nullptr, TRUE, TRUE, nullptr)) {}

void CallbackTable::Register(std::int32_t code, Callback callback) {
    std::shared_ptr<Callback> added;
    if (callback) {
        added = std::make_shared<Callback>(std::move(callback));
    }
    // What the replaced callback captured is destroyed outside the lock: its destructors may call back in.
    const std::scoped_lock lock(mutex_);
    std::swap(callbacks_[code], added);
}

void CallbackTable::Clear() {
    std::map<std::int32_t, std::shared_ptr<Callback>> removed;
    {
        const std::scoped_lock lock(mutex_);
        removed.swap(callbacks_);
        if (runningThread_ == 0 || runningThread_ == GetCurrentThreadId()) {
            return;
        }
    }
    WaitServingSentMessages(idle_.Get());
}

void CallbackTable::Deliver(std::int32_t code, TagIPCMessageItem& item) {
    std::shared_ptr<Callback> callback = Begin(code);
    if (!callback) {
        return;
    }
    try {
        (*callback)(item);
    } catch (const std::exception& error) {
        LogLine(LogLevel::kError, L"IPCMessageClient::Deliver", L"a message callback threw: ", error.what());
    } catch (...) {
        LogLine(LogLevel::kError, L"IPCMessageClient::Deliver", L"a message callback threw");
    }
    // What it captured must not live on after Clear returned.
    callback.reset();
    End();
}

std::shared_ptr<CallbackTable::Callback> CallbackTable::Begin(std::int32_t code) {
    const std::scoped_lock lock(mutex_);
    const auto found = callbacks_.find(code);
    if (found == callbacks_.end() || !found->second) {
        return nullptr;
    }
    runningThread_ = GetCurrentThreadId();
    ResetEvent(idle_.Get());
    return found->second;
}

void CallbackTable::End() {
    const std::scoped_lock lock(mutex_);
    runningThread_ = 0;
    SetEvent(idle_.Get());
}

}  // namespace suite
