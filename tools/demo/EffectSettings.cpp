#include "tools/demo/EffectSettings.h"

#include <windows.h>

#include <algorithm>
#include <vector>

#include "service/CustomImageGroup.h"
#include "service/FeatureTables.h"
#include "service/SettingNames.h"
#include "tools/demo/PictureFile.h"

namespace {

using namespace SettingNames;

constexpr int kMostLevel = 10;
constexpr std::wstring_view kMovingScene = L"img_animation";

// Not through the program's own readers: this is the service's side.
int Number(const wchar_t* name, int missing) {
    DWORD value = 0;
    DWORD size = sizeof value;
    const LSTATUS status =
        RegGetValueW(HKEY_CURRENT_USER, kSystemKeyPath, name, RRF_RT_REG_DWORD, nullptr, &value, &size);
    return status == ERROR_SUCCESS ? static_cast<int>(value) : missing;
}

std::wstring Text(const wchar_t* name) {
    DWORD size = 0;
    if (RegGetValueW(HKEY_CURRENT_USER, kSystemKeyPath, name, RRF_RT_REG_SZ, nullptr, nullptr, &size) != ERROR_SUCCESS)
        return {};
    std::vector<wchar_t> text(size / sizeof(wchar_t) + 1);
    if (RegGetValueW(HKEY_CURRENT_USER, kSystemKeyPath, name, RRF_RT_REG_SZ, nullptr, text.data(), &size) !=
        ERROR_SUCCESS) {
        return {};
    }
    return text.data();
}

float Level(const wchar_t* name) {
    return static_cast<float>(std::clamp(Number(name, kDefaultBeautyLevel), 0, kMostLevel)) / kMostLevel;
}

std::wstring ScenesFolder() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring program = path;
    return program.substr(0, program.rfind(L'\\') + 1) + L"scenes\\";
}

// "img_one_background" is drawn in scene_img_one.png.
std::wstring SceneName(int index) {
    constexpr std::wstring_view kSuffix = L"_background";
    for (const FeatureTables::Background& background : FeatureTables::kBackgrounds) {
        if (background.index == index)
            return std::wstring(background.feature.substr(0, background.feature.size() - kSuffix.size()));
    }
    return {};
}

}  // namespace

std::wstring EffectSettings::BackgroundFile(int index) const {
    if (index == FeatureTables::kCustomIndex) {
        const std::wstring selected = Text(kSelectedButtonName);
        for (const CustomImageRecord& record : CustomImageGroup::Parse(Text(kCustomImageGroup))) {
            if (record.name == selected)
                return record.thumbPath;
        }
        return {};
    }
    const std::wstring name = index > 0 ? SceneName(index) : std::wstring();
    return name.empty() ? name : ScenesFolder() + L"scene_" + name + L".png";
}

void EffectSettings::Update() {
    const bool on = Number(kCameraSwitch, 1) == 1;
    const auto isOn = [on](const wchar_t* name) { return on && Number(name, 0) == 1; };
    scene_.framing = isOn(kPersonTrack);
    scene_.eyeContact = isOn(kEyeCorrection);
    scene_.look = {};
    if (isOn(kBeautyPerson)) {
        scene_.look = {.smooth = Level(kBeautySmooth),
                       .white = Level(kBeautyWhite),
                       .eye = Level(kBeautyEye),
                       .thin = Level(kBeautyThin)};
    }
    const int index = on ? Number(kBackgroundReplacement, 0) : 0;
    const std::wstring file = BackgroundFile(index);
    if (file == backgroundFile_)
        return;
    backgroundFile_ = file;
    scene_.background = file.empty() ? nullptr : LoadPicture(file);
    scene_.backgroundMoves =
        scene_.background && index != FeatureTables::kCustomIndex && SceneName(index) == kMovingScene;
}
