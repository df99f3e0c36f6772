#include "service/link/ServiceLink.h"

#include <exception>
#include <utility>

#include "service/link/ServiceMessages.h"
#include "suite/logger/QxLogger.h"

namespace service {

ServiceLink::ServiceLink(Callbacks callbacks) : callbacks_(std::move(callbacks)) {}

ServiceLink::~ServiceLink() {
    sender_.reset();
    if (client_) {
        client_->UnRegisterMessageCallbackAll();
        client_.reset();
    }
}

void ServiceLink::Connect() {
    constexpr wchar_t kFunction[] = L"HomeService::InitIPCMessageClient";
    try {
        client_ =
            std::make_unique<IPCMessageClient>(ServiceMessages::kOwnClientId, true, false, ServiceMessages::kPipeName);
    } catch (const std::exception&) {
        LogLine(LogLevel::kError, kFunction, L"init ipcclient is error");
        return;
    }
    try {
        sender_ = std::make_unique<DataMessageSender>(ServiceMessages::kCameraServiceId, client_.get());
    } catch (const std::exception&) {
        LogLine(LogLevel::kError, kFunction, L"init postclient is error");
        return;
    }
    const auto handler = [this](TagIPCMessageItem& item) { HandleMessage(item); };
    client_->RegisterMessageCallback(ServiceMessages::kSettingsChangedCode, handler);
    client_->RegisterMessageCallback(ServiceMessages::kNotificationCode, handler);
}

void ServiceLink::SendPing() const {
    if (client_ && !client_->PostIPCMessage(ServiceMessages::ChangePing())) {
        LogLine(LogLevel::kError, L"HomeService::SendSignal", L"ipcclient send message:", ServiceMessages::kSignalText,
                L" error");
    }
}

void ServiceLink::SendSwitchState(std::int32_t value) const {
    if (sender_) {
        sender_->PostSwitchState(value);
    }
}

void ServiceLink::HandleMessage(const TagIPCMessageItem& item) const {
    switch (item.slot[ServiceMessages::kMessageCode]) {
        case ServiceMessages::kSettingsChangedCode:
            callbacks_.settingsChanged();
            break;
        case ServiceMessages::kNotificationCode:
            if (item.slot[ServiceMessages::kSubCode] == ServiceMessages::kResetSubCode) {
                callbacks_.reset();
            }
            break;
        case ServiceMessages::kBackgroundGoneCode:
            // Kept though Connect does not register it: only a client that delivers every code gets here. A code that
            // is added beside it is heard once it is registered too.
            callbacks_.backgroundGone();
            break;
        default:
            break;
    }
}

}  // namespace service
