#include "service/HomeService.h"

#include <utility>

#include "service/FeatureTables.h"
#include "service/KindNotifier.h"
#include "service/SettingsStore.h"
#include "suite/logger/QxLogger.h"

namespace {

void ReportBeautyAndStopExceptions() {
    try {
        HomeService::ReportBeauty();
    } catch (const std::exception& error) {
        LogLine(4, L"HomeService::ReportBeauty", L"report failed: ", error.what());
    }
}

}  // namespace

HomeService* HomeService::GetInstance() {
    static HomeService instance;
    return &instance;
}

HomeService::HomeService() : beautyReports_(ReportBeautyAndStopExceptions) {
    // Made before this object is complete, so it is destroyed after it: the pipe client's thread may publish until the
    // destructor has ended it.
    KindNotifier<GlobalUtils::MessageBoxKind>::GetInstance();

    btnToFeature_ = FeatureTables::ControlToFeature();
    featureToBtn_ = FeatureTables::Inverted(btnToFeature_);
    SettingsStore::CreateDefaultsOnFirstRun();
    InitIPCMessageClient();
}

HomeService::~HomeService() {
    postClient_.reset();
    if (ipcClient_) {
        ipcClient_->UnRegisterMessageCallbackAll();
        ipcClient_.reset();
    }
}

void HomeService::SetStatusObserver(StatusObserver observer) {
    statusObserver_.Set(std::move(observer));
}

void HomeService::SetServiceResetObserver(ServiceResetObserver observer) {
    serviceResetObserver_.Set(std::move(observer));
}

void HomeService::SetMessageCallback(MessageKindCallback callback) {
    messageKind_.Set(std::move(callback));
}

void HomeService::SetAddCustomItem(AddCustomItemCallback callback) {
    addCustomItem_.Set(std::move(callback));
}

void HomeService::SetRemoveCustomItem(RemoveCustomItemCallback callback) {
    removeCustomItem_.Set(std::move(callback));
}

void HomeService::NotifyStatus() {
    if (statusObserver_.IsSet()) {
        statusObserver_.Call(GetFeatureStatus());
    }
}
