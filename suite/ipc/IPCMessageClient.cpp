#include "suite/ipc/IPCMessageClient.h"

#include <exception>
#include <utility>

#include "suite/ipc/CallbackTable.h"
#include "suite/ipc/PipeLink.h"
#include "suite/logger/QxLogger.h"

class IPCMessageClient::Impl {
  public:
    Impl(std::int32_t clientId, bool autoReconnect, const std::wstring& pipeName)
        : link_(clientId, autoReconnect, pipeName, callbacks_), running_(link_.Start()) {}
    ~Impl() {
        if (running_) {
            link_.Stop();
        }
    }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    suite::CallbackTable& Callbacks() { return callbacks_; }
    bool Running() const { return running_; }
    bool Post(const TagIPCMessageItem& item) { return link_.Post(item); }

  private:
    suite::CallbackTable callbacks_;
    suite::PipeLink link_;
    const bool running_;
};

IPCMessageClient::IPCMessageClient(std::int32_t clientId, bool autoReconnect, bool /*exclusive*/,
                                   const std::wstring& pipeName) noexcept {
    try {
        impl_ = std::make_unique<Impl>(clientId, autoReconnect, pipeName);
        if (!impl_->Running()) {
            impl_.reset();
            LogLine(LogLevel::kError, L"IPCMessageClient::IPCMessageClient", L"the pipe thread cannot be started");
        }
    } catch (const std::exception& error) {
        LogLine(LogLevel::kError, L"IPCMessageClient::IPCMessageClient", L"the client cannot be made: ", error.what());
    }
}

IPCMessageClient::~IPCMessageClient() = default;

void IPCMessageClient::RegisterMessageCallback(std::int32_t messageCode, MessageCallback callback) noexcept {
    try {
        if (impl_) {
            impl_->Callbacks().Register(messageCode, std::move(callback));
        }
    } catch (const std::exception& error) {
        LogLine(LogLevel::kError, L"IPCMessageClient::RegisterMessageCallback", L"the callback cannot be kept: ",
                error.what());
    }
}

void IPCMessageClient::UnRegisterMessageCallbackAll() noexcept {
    if (impl_) {
        impl_->Callbacks().Clear();
    }
}

bool IPCMessageClient::PostIPCMessage(const TagIPCMessageItem& item) noexcept {
    try {
        return impl_ && impl_->Post(item);
    } catch (const std::exception& error) {
        LogLine(LogLevel::kError, L"IPCMessageClient::PostIPCMessage", L"the message cannot be queued: ", error.what());
        return false;
    }
}
