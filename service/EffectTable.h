#pragma once
// The effects: one row for each switch, one for each beauty level. Setters, snapshots, clicks, exclusion, first-run
// values, usage events and diagnostics go by these rows.
//
// Why: control, value, event and texts of an effect belong together; a new effect is one more row, and
// tests/house/effects.py tells where else it has to be shown. The order of the rows is that of the first-run values.
// Threads: constant data, any thread.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "service/GlobalUtils.h"

namespace service {

enum class EffectId { kCamera, kCorrectSight, kFocusPerson, kBeautyPerson };

// Who is told of a change, once it is in the registry.
enum class Telling {
    kPing,                // a usage event, then the camera service
    kSwitchStateAndPing,  // the switch-state receiver first
    kBeautyReport,        // a beauty event; kept: the camera service finds the change in the registry
};

struct Effect {
    EffectId id;
    std::wstring_view control;
    std::wstring_view feature;
    const wchar_t* value;   // in the settings key: 1 is on, anything else off
    std::int32_t firstRun;  // what the first run writes
    std::size_t readPlace;  // in a snapshot: a value that is missing is that of the effect read before
    Telling telling;
    const char* event;  // number and texts of the usage event; null and empty for beauty, which has its own
    const char* onText;
    const char* offText;
    // The control that is turned off when this effect turns on: another effect's, or that of no background. Empty:
    // none.
    std::wstring_view excludes;
};

inline constexpr std::wstring_view kNoBackgroundControl = L"none_background_btn";

// clang-format off
inline constexpr std::array<Effect, 4> kEffects{{
    {EffectId::kCamera, L"open_camera_btn", L"open_camera", L"lumi_camera_switch", 1, 0,
     Telling::kSwitchStateAndPing, "631770001", "open camera", "close camera", L""},
    {EffectId::kCorrectSight, L"correct_sight_btn", L"correct_sight", L"lumi_camera_eye_correction", 0, 2,
     Telling::kPing, "631770004", "open correct sight", "close correct sight", L"beauty_person_btn"},
    {EffectId::kFocusPerson, L"focus_person_btn", L"focus_person", L"lumi_camera_person_track", 0, 3,
     Telling::kPing, "631770003", "open focus person", "close focus person", kNoBackgroundControl},
    {EffectId::kBeautyPerson, L"beauty_person_btn", L"beauty_person", L"lumi_camera_beauty_person", 0, 1,
     Telling::kBeautyReport, nullptr, "", "", L"correct_sight_btn"},
}};
// clang-format on

// One slider of the beauty effect.
struct BeautyLevel {
    GlobalUtils::BeautyKind kind;
    std::wstring_view control;
    const wchar_t* value;   // in the settings key
    const char* reportKey;  // in the beauty event
};

// In the order of snapshot and event: a level that is missing is that of the row before, the first the default.
inline constexpr std::array<BeautyLevel, 4> kBeautyLevels{{
    {GlobalUtils::BeautyKind::kSmooth, L"slider_smooth", L"lumi_camera_beauty_smooth", "SMOOTH"},
    {GlobalUtils::BeautyKind::kWhite, L"slider_white", L"lumi_camera_beauty_white", "WHITE"},
    {GlobalUtils::BeautyKind::kEye, L"slider_eye", L"lumi_camera_beauty_eye", "EYE"},
    // Kept: the slider says face where everything else says thin.
    {GlobalUtils::BeautyKind::kFace, L"slider_face", L"lumi_camera_beauty_thin", "THIN"},
}};

inline constexpr std::int32_t kDefaultBeautyLevel = 5;

// REQUIRES: the table has a row of that number, which it has.
constexpr const Effect& EffectOf(EffectId id) {
    return kEffects[static_cast<std::size_t>(id)];
}
// Null for a control that is no effect's switch.
const Effect* EffectOfControl(std::wstring_view control);
// Null for a kind that no slider has.
const BeautyLevel* BeautyLevelOf(GlobalUtils::BeautyKind kind);
const BeautyLevel* BeautyLevelOfControl(std::wstring_view control);

// The rows in the order in which a snapshot reads them.
constexpr std::array<EffectId, kEffects.size()> ReadOrder() {
    std::array<EffectId, kEffects.size()> order{};
    for (const Effect& effect : kEffects) {
        order.at(effect.readPlace) = effect.id;
    }
    return order;
}

}  // namespace service
