#include "tools/demo/EffectSettings.h"

#include <windows.h>

#include <algorithm>
#include <vector>

#include "service/CustomImageGroup.h"
#include "service/EffectTable.h"
#include "service/FeatureTables.h"
#include "service/SettingNames.h"
#include "tools/demo/PictureFile.h"

namespace {

using namespace SettingNames;
using GlobalUtils::BeautyKind;
using service::EffectId;

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
    if (RegGetValueW(HKEY_CURRENT_USER, kSystemKeyPath, name, RRF_RT_REG_SZ, nullptr, nullptr, &size) !=
        ERROR_SUCCESS) {
        return {};
    }
    std::vector<wchar_t> text(size / sizeof(wchar_t) + 1);
    if (RegGetValueW(HKEY_CURRENT_USER, kSystemKeyPath, name, RRF_RT_REG_SZ, nullptr, text.data(), &size) !=
        ERROR_SUCCESS) {
        return {};
    }
    return text.data();
}

bool IsOn(service::EffectId effect, int missing) {
    return Number(service::EffectOf(effect).value, missing) == 1;
}

float Level(GlobalUtils::BeautyKind kind) {
    const wchar_t* const name = service::BeautyLevelOf(kind)->value;
    return static_cast<float>(std::clamp(Number(name, service::kDefaultBeautyLevel), 0, kMostLevel)) / kMostLevel;
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
        if (background.index == index) {
            return std::wstring(background.feature.substr(0, background.feature.size() - kSuffix.size()));
        }
    }
    return {};
}

}  // namespace

std::wstring EffectSettings::BackgroundFile(int index) const {
    if (index == FeatureTables::kCustomIndex) {
        const std::wstring selected = Text(kSelectedButtonName);
        for (const CustomImageRecord& record : CustomImageGroup::Parse(Text(kCustomImageGroup))) {
            if (record.name == selected) {
                return record.thumbPath;
            }
        }
        return {};
    }
    const std::wstring name = index > 0 ? SceneName(index) : std::wstring();
    return name.empty() ? name : ScenesFolder() + L"scene_" + name + L".png";
}

void EffectSettings::Update() {
    const bool on = IsOn(EffectId::kCamera, 1);
    scene_.framing = on && IsOn(EffectId::kFocusPerson, 0);
    scene_.eyeContact = on && IsOn(EffectId::kCorrectSight, 0);
    scene_.look = {};
    if (on && IsOn(EffectId::kBeautyPerson, 0)) {
        scene_.look = {.smooth = Level(BeautyKind::kSmooth),
                       .white = Level(BeautyKind::kWhite),
                       .eye = Level(BeautyKind::kEye),
                       .thin = Level(BeautyKind::kFace)};
    }
    const int index = on ? Number(kBackgroundReplacement, 0) : 0;
    const std::wstring file = BackgroundFile(index);
    if (file == backgroundFile_) {
        return;
    }
    backgroundFile_ = file;
    scene_.background = file.empty() ? nullptr : LoadPicture(file);
    scene_.backgroundMoves =
        scene_.background && index != FeatureTables::kCustomIndex && SceneName(index) == kMovingScene;
}
