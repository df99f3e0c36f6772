// The switches and the beauty levels.
#include "service/HomeService.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"
#include "service/UsageEvents.h"

void HomeService::SetCameraSwitch(std::int32_t on) {
    SettingsStore::Write(SettingNames::kCameraSwitch, on);
    PostDialogValue(on == 1 ? 1 : 0);
    ReportUsage(UsageEvents::kCameraSwitch, on == 1 ? "open camera" : "close camera");
    SendSignal();
}

void HomeService::SetCorrectSight(std::int32_t on) {
    SettingsStore::Write(SettingNames::kEyeCorrection, on);
    ReportUsage(UsageEvents::kCorrectSight, on == 1 ? "open correct sight" : "close correct sight");
    SendSignal();
}

void HomeService::SetFocusPerson(std::int32_t on) {
    SettingsStore::Write(SettingNames::kPersonTrack, on);
    ReportUsage(UsageEvents::kFocusPerson, on == 1 ? "open focus person" : "close focus person");
    SendSignal();
}

void HomeService::SetBeautyPerson(std::int32_t on) {
    SetBeautyValue(SettingNames::kBeautyPerson, on);
}

void HomeService::SetBeautySmooth(std::int32_t level) {
    SetBeautyValue(SettingNames::kBeautySmooth, level);
}

void HomeService::SetBeautyWhite(std::int32_t level) {
    SetBeautyValue(SettingNames::kBeautyWhite, level);
}

void HomeService::SetBeautyEye(std::int32_t level) {
    SetBeautyValue(SettingNames::kBeautyEye, level);
}

void HomeService::SetBeautyThin(std::int32_t level) {
    SetBeautyValue(SettingNames::kBeautyThin, level);
}

void HomeService::SetBeautyValue(const wchar_t* name, std::int32_t value) {
    SettingsStore::Write(name, value);
    StartBeautyReport();
}
