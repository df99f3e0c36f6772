// What the registry says now: the snapshot, and single values.
#include "service/BeautyLevels.h"
#include "service/FeatureTables.h"
#include "service/HomeService.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"

using GlobalUtils::FeatureStatus;

GlobalUtils::FeatureStatusTuple HomeService::GetFeatureStatus() {
    GlobalUtils::FeatureStatusTuple status;
    auto& [switches, levels, background] = status;

    // One variable for all: what is missing keeps the value read before it.
    int value = 0;
    SettingsStore::Read(SettingNames::kCameraSwitch, value);
    switches[L"open_camera_btn"] = static_cast<FeatureStatus>(value);
    SettingsStore::Read(SettingNames::kBeautyPerson, value);
    switches[L"beauty_person_btn"] = static_cast<FeatureStatus>(value);
    SettingsStore::Read(SettingNames::kEyeCorrection, value);
    switches[L"correct_sight_btn"] = static_cast<FeatureStatus>(value);
    SettingsStore::Read(SettingNames::kPersonTrack, value);
    switches[L"focus_person_btn"] = static_cast<FeatureStatus>(value);
    SettingsStore::Read(SettingNames::kBackgroundReplacement, value);

    const BeautyLevels beauty = ReadBeautyLevels();
    levels[L"slider_smooth"] = beauty.smooth;
    levels[L"slider_white"] = beauty.white;
    levels[L"slider_eye"] = beauty.eye;
    levels[L"slider_face"] = beauty.thin;

    {
        const std::scoped_lock lock(indexToBtnMutex_);
        FeatureTables::AddIndexControls(indexToBtn_);
        background.btnName = indexToBtn_[value];
    }
    background.path = GetBackgroundImagePath();
    if (background.btnName == FeatureTables::kCustomControl) {
        background.btnName.clear();
        SettingsStore::Read(SettingNames::kSelectedButtonName, background.btnName);
    }
    return status;
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
