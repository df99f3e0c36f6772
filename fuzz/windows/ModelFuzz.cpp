// The settings model over a registry key that holds anything: values of every type and length under the names that it
// reads, and other names. A registry and folders of its own; no camera service.
#include <windows.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "fuzz/support/Input.h"
#include "fuzz/support/Require.h"
#include "service/CustomImageGroup.h"
#include "service/EffectTable.h"
#include "service/FeatureTables.h"
#include "service/HomeService.h"
#include "service/SettingNames.h"
#include "service/pictures/CustomItemNames.h"

namespace CustomItemNames = pictures::CustomItemNames;

using namespace SettingNames;

namespace {

// Of the settings, and one of somebody else.
std::vector<std::wstring> MakeNames() {
    std::vector<std::wstring> names{kBackgroundReplacement, kPreBackgroundReplacement, kBackgroundImagePath,
                                    kCustomImageGroup,      kSelectedButtonName,       kSyncCustom,
                                    kInitAlgorithm,         kSupportHardSwitch,        L"of somebody else"};
    for (const service::Effect& effect : service::kEffects) {
        names.emplace_back(effect.value);
    }
    for (const service::BeautyLevel& level : service::kBeautyLevels) {
        names.emplace_back(level.value);
    }
    return names;
}
const std::vector<std::wstring> kNames = MakeNames();

struct Value {
    DWORD type;
    std::vector<std::uint8_t> bytes;
    bool operator==(const Value&) const = default;
};
using Values = std::map<std::wstring, Value>;

// HKEY_CURRENT_USER of this process, empty at first.
void UseOwnRegistry() {
    const std::wstring name = L"SOFTWARE\\PixoraModelFuzz-" + std::to_wstring(GetCurrentProcessId());
    HKEY key = nullptr;
    REQUIRE(RegCreateKeyExW(HKEY_CURRENT_USER, name.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                            &key, nullptr) == ERROR_SUCCESS);
    REQUIRE(RegOverridePredefKey(HKEY_CURRENT_USER, key) == ERROR_SUCCESS);
    RegCloseKey(key);
}

void Write(const std::wstring& name, const Value& value) {
    HKEY key = nullptr;
    REQUIRE(RegCreateKeyExW(HKEY_CURRENT_USER, kSystemKeyPath, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                            &key, nullptr) == ERROR_SUCCESS);
    RegSetValueExW(key, name.c_str(), 0, value.type, value.bytes.data(), static_cast<DWORD>(value.bytes.size()));
    RegCloseKey(key);
}

Values AllValues() {
    Values values;
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kSystemKeyPath, 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return values;
    }
    for (DWORD i = 0;; ++i) {
        std::array<wchar_t, 256> name{};
        DWORD nameLength = name.size();
        DWORD size = 64 * 1024;
        Value value{0, std::vector<std::uint8_t>(size)};
        if (RegEnumValueW(key, i, name.data(), &nameLength, nullptr, &value.type, value.bytes.data(), &size) !=
            ERROR_SUCCESS) {
            break;
        }
        value.bytes.resize(size);
        values.emplace(name.data(), std::move(value));
    }
    RegCloseKey(key);
    return values;
}

Value TextValue(std::wstring_view text, bool terminated) {
    Value value{REG_SZ, {}};
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    value.bytes.assign(bytes, bytes + text.size() * sizeof(wchar_t));
    value.bytes.resize(value.bytes.size() + (terminated ? sizeof(wchar_t) : 0));
    return value;
}

// Mostly what may stand there, often with damage; else bytes of any type.
Value TakeValue(Input& in) {
    const auto bytes = [&in](std::size_t count) {
        const auto taken = in.Take(count);
        return std::vector<std::uint8_t>(taken.begin(), taken.end());
    };
    switch (in.Within(0, 5)) {
        case 0:
            return {REG_DWORD, bytes(4)};
        case 1: {
            Value value{REG_DWORD, std::vector<std::uint8_t>(4)};
            value.bytes[0] = static_cast<std::uint8_t>(in.Within(0, 16));
            return value;
        }
        case 2: {
            std::vector<CustomImageRecord> records(static_cast<std::size_t>(in.Within(0, 40)));
            for (CustomImageRecord& record : records) {
                record.name = std::wstring(CustomItemNames::kPrefix) + std::to_wstring(in.Within(-1, 40));
                record.index = in.Any<std::int32_t>();
                record.isVideo = static_cast<std::int32_t>(in.Within(0, 2));
                record.thumbPath = in.Flag() ? L"C:\\windows\\win.ini" : L"C:\\none\\" + record.name + L".jpg";
                record.sourcePath = in.Flag() ? L"C:\\windows\\system.ini" : L"";
            }
            Value value = TextValue(CustomImageGroup::Serialise(records), in.Flag());
            for (auto damage = in.Within(0, 3); damage > 0 && !value.bytes.empty(); --damage) {
                value.bytes[in.Any<std::uint16_t>() % value.bytes.size()] = in.Any<std::uint8_t>();
            }
            return value;
        }
        case 3:
            return TextValue(std::wstring(CustomItemNames::kPrefix) + std::to_wstring(in.Within(0, 40)), in.Flag());
        case 4:
            return {REG_SZ, bytes(in.Any<std::uint8_t>())};
        default: {
            const DWORD type = static_cast<DWORD>(in.Within(0, 12));
            return {type, bytes(in.Any<std::uint8_t>())};
        }
    }
}

void CheckSnapshot(HomeService& model) {
    const auto [switches, levels, background] = model.GetFeatureStatus();
    REQUIRE(switches.size() == 4 && levels.size() == 4);
    if (background.btnName.empty() || background.btnName.starts_with(CustomItemNames::kPrefix)) {
        return;
    }
    for (const auto& row : FeatureTables::kBackgrounds) {
        if (background.btnName == row.control) {
            return;
        }
    }
    // Then it is what the user's own background is named, whatever that is.
    REQUIRE(AllValues().contains(kSelectedButtonName));
}

class Gallery {
  public:
    std::int32_t Add(const std::wstring& name, const wchar_t* path, bool) {
        REQUIRE(CustomItemNames::IsItemName(name) && *path != 0);
        names_.push_back(name);
        return static_cast<std::int32_t>(names_.size()) - 1;
    }
    bool Remove(std::int32_t index, const std::wstring& name) {
        REQUIRE(index >= 0 && index < static_cast<std::int32_t>(names_.size()));
        REQUIRE(names_[static_cast<std::size_t>(index)] == name);
        names_.erase(names_.begin() + index);
        return true;
    }
    const std::vector<std::wstring>& Names() const { return names_; }

  private:
    std::vector<std::wstring> names_;
};

void UseModel(Input& in) {
    Gallery gallery;
    HomeService* const model = HomeService::GetInstance();
    model->SetAddCustomItem(
        [&](const std::wstring& name, const wchar_t* path, bool video) { return gallery.Add(name, path, video); });
    model->SetRemoveCustomItem(
        [&](std::int32_t index, const std::wstring& name) { return gallery.Remove(index, name); });
    CheckSnapshot(*model);
    model->NotifyStatus();
    model->IsSupportHardSwitch();
    model->InitCustomImage();
    for (auto actions = in.Within(0, 6); actions > 0; --actions) {
        const std::wstring item = std::wstring(CustomItemNames::kPrefix) + std::to_wstring(in.Within(0, 40));
        switch (in.Within(0, 4)) {
            case 0:
                model->SelectCustomBackground(item);
                break;
            case 1:
                model->DeleteCustomBackground(item);
                break;
            case 2:
                model->SetCameraSwitch(in.Any<std::int8_t>());
                break;
            case 3:
                model->SelectBackground(
                    std::wstring(FeatureTables::kBackgrounds.at(static_cast<std::size_t>(in.Within(0, 14))).control));
                break;
            default:
                model->SetBeautyEye(in.Any<std::int32_t>());
        }
        CheckSnapshot(*model);
    }
    for (const std::wstring& name : std::vector<std::wstring>(gallery.Names())) {
        REQUIRE(model->DeleteCustomBackground(name));
    }
    REQUIRE(gallery.Names().empty());
    model->SetAddCustomItem({});
    model->SetRemoveCustomItem({});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool ready = [] {
        UseOwnRegistry();
        return true;
    }();
    static_cast<void>(ready);
    Input in(data, size);
    RegDeleteTreeW(HKEY_CURRENT_USER, kSystemKeyPath);
    for (auto count = in.Within(0, 20); count > 0; --count) {
        Write(kNames[static_cast<std::size_t>(in.Within(0, kNames.size() - 1))], TakeValue(in));
    }
    const Values before = AllValues();
    UseModel(in);
    // What is not the program's is as it was, and no file of anybody's is gone.
    const Values after = AllValues();
    const auto foreign = [](const Values& values) {
        const auto found = values.find(L"of somebody else");
        return found == values.end() ? Value{} : found->second;
    };
    REQUIRE(foreign(after) == foreign(before));
    REQUIRE(std::filesystem::exists(L"C:\\windows\\win.ini") && std::filesystem::exists(L"C:\\windows\\system.ini"));
    return 0;
}
