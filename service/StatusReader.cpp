#include "service/StatusReader.h"

#include "service/BeautyLevels.h"
#include "service/FeatureTables.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"

namespace service {

using GlobalUtils::FeatureStatus;

GlobalUtils::FeatureStatusTuple StatusReader::Read() {
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
        const std::scoped_lock lock(mutex_);
        FeatureTables::AddIndexControls(indexToBtn_);
        background.btnName = indexToBtn_[value];
    }
    SettingsStore::Read(SettingNames::kBackgroundImagePath, background.path);
    if (background.btnName == FeatureTables::kCustomControl) {
        background.btnName.clear();
        SettingsStore::Read(SettingNames::kSelectedButtonName, background.btnName);
    }
    return status;
}

bool StatusReader::HasRead() const {
    const std::scoped_lock lock(mutex_);
    return !indexToBtn_.empty();
}

}  // namespace service
