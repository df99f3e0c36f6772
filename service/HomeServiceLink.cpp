// The link to the camera service.
#include <exception>

#include "service/HomeService.h"
#include "service/KindNotifier.h"
#include "service/ServiceMessages.h"
#include "suite/logger/QxLogger.h"

using GlobalUtils::MessageBoxKind;

void HomeService::InitIPCMessageClient() {
    try {
        ipcClient_ =
            std::make_unique<IPCMessageClient>(ServiceMessages::kOwnClientId, true, false, ServiceMessages::kPipeName);
    } catch (const std::exception&) {
        LogLine(4, L"HomeService::InitIPCMessageClient", L"init ipcclient is error");
        return;
    }
    try {
        postClient_ = std::make_unique<DataMessageSender>(ServiceMessages::kCameraServiceId, ipcClient_.get());
    } catch (const std::exception&) {
        LogLine(4, L"HomeService::InitIPCMessageClient", L"init postclient is error");
        return;
    }
    const auto handler = [this](TagIPCMessageItem& item) { ServiceMessageHandler(item); };
    ipcClient_->RegisterMessageCallback(ServiceMessages::kSettingsChangedCode, handler);
    ipcClient_->RegisterMessageCallback(ServiceMessages::kNotificationCode, handler);
}

void HomeService::SendSignal() {
    if (ipcClient_ && !ipcClient_->PostIPCMessage(ServiceMessages::ChangePing())) {
        LogLine(4, L"HomeService::SendSignal", L"ipcclient send message:", ServiceMessages::kSignalText, L" error");
    }
}

void HomeService::PostDialogValue(std::int32_t value) {
    if (postClient_) {
        postClient_->PostSwitchState(value);
    }
}

void HomeService::ServiceMessageHandler(const TagIPCMessageItem& item) {
    switch (item.slot[ServiceMessages::kMessageCode]) {
        case ServiceMessages::kSettingsChangedCode:
            NotifyStatus();
            break;
        case ServiceMessages::kNotificationCode:
            if (item.slot[ServiceMessages::kSubCode] == ServiceMessages::kResetSubCode) {
                serviceResetObserver_.Call();
            }
            break;
        case ServiceMessages::kBackgroundGoneCode:
            // Not registered; here for a client that delivers every code.
            KindNotifier<MessageBoxKind>::GetInstance().Publish(GlobalUtils::kMessageBoxChannel,
                                                                MessageBoxKind::kBackgroundGone);
            break;
        default:
            break;
    }
}
