#include "service/HomeService.h"

#include <utility>

#include "service/CustomFileChoice.h"
#include "service/FeatureTables.h"
#include "service/FileUtil.h"
#include "service/KindNotifier.h"
#include "service/SettingNames.h"
#include "service/SettingsRound.h"
#include "service/SettingsStore.h"
#include "service/UsageEvents.h"
#include "service/UserIdentity.h"
#include "suite/logger/QxLogger.h"

using GlobalUtils::BeautyKind;
using service::CustomFileChoice;
using service::EffectId;

HomeService* HomeService::GetInstance() {
    static HomeService instance;
    return &instance;
}

HomeService::HomeService()
    : beautyReports_(&HomeService::ReportBeauty),
      link_({.settingsChanged = [this] { NotifyStatus(); },
             .reset = [this] { serviceResetObserver_.Call(); },
             .backgroundGone = [] { PublishMessage(GlobalUtils::MessageBoxKind::kBackgroundGone); }}) {
    // Made before this object is complete, so it is destroyed after it: the pipe client's thread may publish until the
    // destructor has ended it.
    KindNotifier<GlobalUtils::MessageBoxKind>::GetInstance();

    btnToFeature_ = FeatureTables::ControlToFeature();
    featureToBtn_ = FeatureTables::Inverted(btnToFeature_);
    SettingsStore::CreateDefaultsOnFirstRun();
    InitIPCMessageClient();
}

// --- callbacks

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
    ownBackgrounds_.SetAddToGallery(std::move(callback));
}

void HomeService::SetRemoveCustomItem(RemoveCustomItemCallback callback) {
    ownBackgrounds_.SetRemoveFromGallery(std::move(callback));
}

// --- what the registry says

GlobalUtils::FeatureStatusTuple HomeService::GetFeatureStatus() {
    return statusReader_.Read();
}

void HomeService::NotifyStatus() {
    if (statusObserver_.IsSet()) {
        statusObserver_.Call(GetFeatureStatus());
    }
}

std::wstring HomeService::GetBackgroundImagePath() const {
    std::wstring path;
    SettingsStore::Read(SettingNames::kBackgroundImagePath, path);
    return path;
}

std::int32_t HomeService::IsSupportHardSwitch() const {
    int supported = 0;
    SettingsStore::Read(SettingNames::kSupportHardSwitch, supported);
    return supported;
}

bool HomeService::WatchSettingsOnce(const std::function<void()>& callback) {
    return service::WatchSettingsRound(callback);
}

// --- switches and beauty levels

void HomeService::SetEffect(EffectId id, std::int32_t on) {
    const service::Effect& effect = service::EffectOf(id);
    SettingsStore::Write(effect.value, on);
    if (effect.telling == service::Telling::kBeautyReport) {
        StartBeautyReport();
        return;
    }
    if (effect.telling == service::Telling::kSwitchStateAndPing) {
        PostDialogValue(on == 1 ? 1 : 0);
    }
    ReportUsage(effect.event, on == 1 ? effect.onText : effect.offText);
    SendSignal();
}

void HomeService::SetCameraSwitch(std::int32_t on) {
    SetEffect(EffectId::kCamera, on);
}

void HomeService::SetCorrectSight(std::int32_t on) {
    SetEffect(EffectId::kCorrectSight, on);
}

void HomeService::SetFocusPerson(std::int32_t on) {
    SetEffect(EffectId::kFocusPerson, on);
}

void HomeService::SetBeautyPerson(std::int32_t on) {
    SetEffect(EffectId::kBeautyPerson, on);
}

void HomeService::SetBeautyLevel(BeautyKind kind, std::int32_t level) {
    if (const service::BeautyLevel* row = service::BeautyLevelOf(kind)) {
        SettingsStore::Write(row->value, level);
        StartBeautyReport();
    }
}

void HomeService::SetBeautySmooth(std::int32_t level) {
    SetBeautyLevel(BeautyKind::kSmooth, level);
}

void HomeService::SetBeautyWhite(std::int32_t level) {
    SetBeautyLevel(BeautyKind::kWhite, level);
}

void HomeService::SetBeautyEye(std::int32_t level) {
    SetBeautyLevel(BeautyKind::kEye, level);
}

void HomeService::SetBeautyThin(std::int32_t level) {
    SetBeautyLevel(BeautyKind::kFace, level);
}

// --- built-in backgrounds

void HomeService::SelectBackground(const std::wstring& controlName) {
    const auto found = btnToFeature_.find(controlName);
    if (found == btnToFeature_.end()) {
        return;
    }
    if (found->second == FeatureTables::kNoBackground) {
        SettingsStore::Write(SettingNames::kPreBackgroundReplacement, 0);
    }
    ApplyBackground(found->second);
}

void HomeService::ApplyBackground(const std::wstring& featureName) {
    FeatureTables::AddFeatureIndexes(featureToIndex_);
    const auto found = featureToIndex_.find(featureName);
    const std::int32_t index = found != featureToIndex_.end() ? found->second : 0;
    SettingsStore::Write(SettingNames::kBackgroundReplacement, index);
    ReportUsage(UsageEvents::kBackground, "Background replacement:" + std::to_string(index));
    SendSignal();
}

// --- the user's own backgrounds

void HomeService::InitCustomImage() {
    ownBackgrounds_.Load(GetUserSidString());
}

bool HomeService::SyncCustomImg() {
    return ownBackgrounds_.MoveOlderLayout();
}

bool HomeService::IsCustomFull() const {
    return ownBackgrounds_.List().IsFull();
}

bool HomeService::ChooseCustomFile(HWND owner, std::wstring& path) {
    if (!CustomFileChoice(owner).Choose(path)) {
        return false;
    }
    TellChosen();
    return true;
}

bool HomeService::AcceptDroppedFile(const std::wstring& path) {
    if (!CustomFileChoice::IsAccepted(path)) {
        return false;
    }
    TellChosen();
    return true;
}

void HomeService::TellChosen() {
    // Kept: told here, before the file is added.
    ReportUsage(UsageEvents::kBackground, "Background replacement:" + std::to_string(FeatureTables::kCustomIndex));
    SendSignal();
}

bool HomeService::AddCustomBackground(const std::wstring& sourcePath) {
    return ownBackgrounds_.Add(sourcePath);
}

bool HomeService::CheckImageFile(const std::wstring& path) {
    return CustomFileChoice::CheckImageFile(path);
}

bool HomeService::CheckVideoFile(const std::wstring& path) {
    return CustomFileChoice::CheckVideoFile(path);
}

bool HomeService::SelectCustomBackground(const std::wstring& itemName) {
    return ownBackgrounds_.Select(itemName);
}

bool HomeService::DeleteCustomBackground(std::wstring itemName) {
    return ownBackgrounds_.Delete(std::move(itemName));
}

bool HomeService::CopyFileToDest(const std::wstring& source, const std::wstring& destination) {
    return FileUtil::GetInstance().CopyFileToDest(source, destination);
}

std::wstring HomeService::GetUserSidString() {
    return InteractiveUserSid();
}

// --- the camera service

void HomeService::InitIPCMessageClient() {
    link_.Connect();
}

void HomeService::SendSignal() {
    link_.SendPing();
}

void HomeService::PostDialogValue(std::int32_t value) {
    link_.SendSwitchState(value);
}

void HomeService::ServiceMessageHandler(const TagIPCMessageItem& item) {
    link_.HandleMessage(item);
}

// --- usage events

void HomeService::ReportUsage(const std::string& eventId, const std::string& text) {
    UsageEvents::Report(eventId, text);
}

void HomeService::ReportBeauty() {
    UsageEvents::ReportBeauty();
}

void HomeService::StartBeautyReport() {
    if (!beautyReports_.Start()) {
        LogLine(LogLevel::kError, L"HomeService::StartBeautyReport", L"no thread for the report");
    }
}
