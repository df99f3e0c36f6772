#include <windows.h>

#include <optional>
#include <string>

#include "diagnostics/Sections.h"
#include "service/CustomImageGroup.h"
#include "service/EffectTable.h"
#include "service/FeatureTables.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"
#include "suite/common/Utf8.h"
#include "suite/registry/Registry.h"

namespace diagnostics {

namespace {

std::optional<int> Number(const wchar_t* name) {
    int value = 0;
    return SettingsStore::Read(name, value) ? std::optional(value) : std::nullopt;
}

std::string Shown(const std::optional<int>& value) {
    return value ? std::to_string(*value) : "not there";
}

void AddNumber(Report& report, const wchar_t* name) {
    report.Note(suite::ToUtf8(name) + " " + Shown(Number(name)));
}

bool IsThere(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// What can be said of a path without its words.
std::string Described(const std::wstring& path) {
    if (path.empty()) {
        return "empty";
    }
    const std::size_t dot = path.find_last_of(L".\\/");
    const bool hasExtension = dot != std::wstring::npos && path[dot] == L'.';
    return "a file " + (hasExtension ? suite::ToUtf8(path.substr(dot)) : std::string("without extension")) +
           (IsThere(path) ? ", is there" : ", is gone");
}

void AddDriver(Report& report) {
    report.Section("Driver and algorithm");
    const std::optional<int> driver = Number(SettingNames::kFilterDriverInstall);
    const std::string shown = "filter_driver_install is " + Shown(driver);
    if (driver == 1) {
        report.Fine(shown + ": the driver of the camera effects is installed");
    } else {
        report.Wrong(shown + ": the driver of the camera effects is not installed, Pixora only shows a message",
                     "Install the driver; its installation writes the value 1.");
    }
    const std::optional<int> algorithm = Number(SettingNames::kInitAlgorithm);
    if (algorithm == 0) {
        report.Wrong("init_algorithm is 0: the algorithm of the effects has failed, Pixora only shows a message",
                     "Restart the camera service; its own log says why the algorithm does not start.");
    } else {
        report.Fine("init_algorithm is " + Shown(algorithm) + ": no failure of the algorithm is known");
    }
}

void AddOwnBackgrounds(Report& report) {
    std::wstring path;
    std::wstring group;
    SettingsStore::Read(SettingNames::kBackgroundImagePath, path);
    SettingsStore::Read(SettingNames::kCustomImageGroup, group);
    report.Note("lumi_camera_background_image_path: " + Described(path));
    if (Number(SettingNames::kBackgroundReplacement) == FeatureTables::kCustomIndex && !IsThere(path)) {
        report.Wrong("the own background in use is gone", "Choose another one in Pixora.");
    }
    const auto records = CustomImageGroup::Parse(group);
    int gone = 0;
    for (const auto& record : records) {
        gone += IsThere(record.thumbPath) ? 0 : 1;
    }
    report.Note("own backgrounds: " + std::to_string(records.size()) +
                ", of them without picture: " + std::to_string(gone));
}

}  // namespace

void AddSettings(Report& report) {
    AddDriver(report);
    report.Section("Settings of this user");
    if (!DE::Registry(HKEY_CURRENT_USER).KeyExists(SettingNames::kKeyPath)) {
        report.Note("there are none yet; the first start of Pixora writes them");
        return;
    }
    for (const service::Effect& effect : service::kEffects) {
        AddNumber(report, effect.value);
        if (effect.id == service::EffectId::kCamera) {
            AddNumber(report, SettingNames::kBackgroundReplacement);
        }
    }
    for (const service::BeautyLevel& level : service::kBeautyLevels) {
        AddNumber(report, level.value);
    }
    AddNumber(report, SettingNames::kSupportHardSwitch);
    AddOwnBackgrounds(report);
}

}  // namespace diagnostics
