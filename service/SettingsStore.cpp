#include "service/SettingsStore.h"

#include <cstddef>

#include "service/SettingNames.h"
#include "suite/common/RegistryKey.h"
#include "suite/logger/QxLogger.h"
#include "suite/registry/Registry.h"

namespace SettingsStore {

namespace {

// Of whatever type.
bool IsThere(const std::wstring& name) {
    suite::RegistryKey key;
    return RegOpenKeyExW(HKEY_CURRENT_USER, SettingNames::kSystemKeyPath, 0, KEY_QUERY_VALUE, key.Put()) ==
               ERROR_SUCCESS &&
           RegQueryValueExW(key.Get(), name.c_str(), nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

}  // namespace

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

std::array<std::int32_t, service::kBeautyLevels.size()> ReadBeautyLevels() {
    std::array<std::int32_t, service::kBeautyLevels.size()> levels{};
    int level = service::kDefaultBeautyLevel;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        Read(service::kBeautyLevels[i].value, level);
        levels[i] = level;
    }
    return levels;
}

CustomImageGroup::Contents ReadCustomImages() {
    std::wstring group;
    Read(SettingNames::kCustomImageGroup, group);
    return CustomImageGroup::Read(group);
}

bool MayWriteCustomImages() {
    const std::wstring name = SettingNames::kCustomImageGroup;
    std::wstring group;
    if (!IsThere(name) || Read(name.c_str(), group)) {
        return true;
    }
    LogLine(LogLevel::kError, L"SettingsStore::MayWriteCustomImages", name, L" is no text, it is left alone");
    return false;
}

bool WriteCustomImages(const std::vector<CustomImageRecord>& records, const std::wstring& rest) {
    if (!MayWriteCustomImages()) {
        return false;
    }
    Write(SettingNames::kCustomImageGroup, CustomImageGroup::Serialise(records) + rest);
    return true;
}

void CreateDefaultsOnFirstRun() {
    DE::Registry registry;
    registry.SetRootKey(HKEY_CURRENT_USER);
    if (registry.KeyExists(SettingNames::kKeyPath)) {
        return;
    }
    registry.CreateKey(SettingNames::kKeyPath);
    for (const service::Effect& effect : service::kEffects) {
        Write(effect.value, effect.firstRun);
        if (effect.id == service::EffectId::kCamera) {
            // Kept: the background comes second.
            Write(SettingNames::kBackgroundImagePath, std::wstring());
            Write(SettingNames::kBackgroundReplacement, 0);
        }
    }
    for (const service::BeautyLevel& level : service::kBeautyLevels) {
        Write(level.value, service::kDefaultBeautyLevel);
    }
}

}  // namespace SettingsStore
