#include "service/SettingsStore.h"

#include "service/CustomImageGroup.h"
#include "service/SettingNames.h"
#include "suite/registry/Registry.h"

namespace SettingsStore {

bool Read(const wchar_t* name, int& value) {
    return DE::Registry::GetValue(HKEY_CURRENT_USER, SettingNames::kKeyPath, name, value, KEY_ALL_ACCESS);
}

bool Read(const wchar_t* name, std::wstring& value) {
    return DE::Registry::GetValue(HKEY_CURRENT_USER, SettingNames::kKeyPath, name, value, KEY_ALL_ACCESS);
}

void Write(const wchar_t* name, int value) {
    DE::Registry::SetValue(HKEY_CURRENT_USER, SettingNames::kKeyPath, name, value, KEY_ALL_ACCESS);
}

void Write(const wchar_t* name, const std::wstring& value) {
    DE::Registry::SetValue(HKEY_CURRENT_USER, SettingNames::kKeyPath, name, value, KEY_ALL_ACCESS);
}

std::vector<CustomImageRecord> ReadCustomImages() {
    std::wstring group;
    Read(SettingNames::kCustomImageGroup, group);
    return CustomImageGroup::Parse(group);
}

void WriteCustomImages(const std::vector<CustomImageRecord>& records) {
    Write(SettingNames::kCustomImageGroup, CustomImageGroup::Serialise(records));
}

void CreateDefaultsOnFirstRun() {
    DE::Registry registry;
    registry.SetRootKey(HKEY_CURRENT_USER);
    if (registry.KeyExists(SettingNames::kKeyPath)) {
        return;
    }
    registry.CreateKey(SettingNames::kKeyPath);
    Write(SettingNames::kCameraSwitch, 1);
    Write(SettingNames::kBackgroundImagePath, std::wstring());
    Write(SettingNames::kBackgroundReplacement, 0);
    Write(SettingNames::kEyeCorrection, 0);
    Write(SettingNames::kPersonTrack, 0);
    Write(SettingNames::kBeautyPerson, 0);
    Write(SettingNames::kBeautySmooth, SettingNames::kDefaultBeautyLevel);
    Write(SettingNames::kBeautyWhite, SettingNames::kDefaultBeautyLevel);
    Write(SettingNames::kBeautyEye, SettingNames::kDefaultBeautyLevel);
    Write(SettingNames::kBeautyThin, SettingNames::kDefaultBeautyLevel);
}

}  // namespace SettingsStore
