#pragma once
// The fixed tables of the settings model: which control stands for which feature, and the number of each background.
//
// Why: pages name controls, usage events and the camera service name features and numbers; this is the one place that
// knows all three. Threads: constant data, any thread.
#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace FeatureTables {

struct ControlFeature {
    std::wstring_view control;
    std::wstring_view feature;
};

inline constexpr std::array<ControlFeature, 19> kControlFeatures{{
    {L"open_camera_btn", L"open_camera"},
    {L"none_background_btn", L"none_background"},
    {L"img_one_background_btn", L"img_one_background"},
    {L"img_two_background_btn", L"img_two_background"},
    {L"img_three_background_btn", L"img_three_background"},
    {L"img_four_background_btn", L"img_four_background"},
    {L"img_five_background_btn", L"img_five_background"},
    {L"img_six_background_btn", L"img_six_background"},
    {L"img_seven_background_btn", L"img_seven_background"},
    {L"img_eight_background_btn", L"img_eight_background"},
    {L"img_nine_background_btn", L"img_nine_background"},
    {L"img_ten_background_btn", L"img_ten_background"},
    {L"img_eleven_background_btn", L"img_eleven_background"},
    {L"img_animation_background_btn", L"img_animation_background"},
    {L"virtual_background_btn", L"virtual_background"},
    {L"custom_background_btn", L"custom_background"},
    {L"correct_sight_btn", L"correct_sight"},
    {L"focus_person_btn", L"focus_person"},
    {L"beauty_person_btn", L"beauty_person"},
}};

struct Background {
    std::int32_t index;  // what the registry holds
    std::wstring_view feature;
    std::wstring_view control;
};

// Not in the gallery's order: 4 and 5 were given before the later images came.
inline constexpr std::array<Background, 15> kBackgrounds{{
    {0, L"none_background", L"none_background_btn"},
    {1, L"img_one_background", L"img_one_background_btn"},
    {2, L"img_two_background", L"img_two_background_btn"},
    {3, L"img_three_background", L"img_three_background_btn"},
    {4, L"virtual_background", L"virtual_background_btn"},
    {5, L"custom_background", L"custom_background_btn"},
    {6, L"img_four_background", L"img_four_background_btn"},
    {7, L"img_five_background", L"img_five_background_btn"},
    {8, L"img_six_background", L"img_six_background_btn"},
    {9, L"img_seven_background", L"img_seven_background_btn"},
    {10, L"img_eight_background", L"img_eight_background_btn"},
    {11, L"img_nine_background", L"img_nine_background_btn"},
    {12, L"img_ten_background", L"img_ten_background_btn"},
    {13, L"img_eleven_background", L"img_eleven_background_btn"},
    {14, L"img_animation_background", L"img_animation_background_btn"},
}};

inline constexpr std::wstring_view kNoBackground = L"none_background";
// The background that is the user's own: which one, another value says.
inline constexpr std::int32_t kCustomIndex = 5;
inline constexpr std::wstring_view kCustomControl = L"custom_background_btn";

using NameMap = std::map<std::wstring, std::wstring>;

// Control name to feature name.
NameMap ControlToFeature();
// Swaps keys and values; of several keys with one value the last wins.
NameMap Inverted(const NameMap& map);
// Insert the backgrounds; entries that are there already stay as they are.
void AddFeatureIndexes(std::map<std::wstring, std::int32_t>& featureToIndex);
void AddIndexControls(std::map<std::int32_t, std::wstring>& indexToControl);

}  // namespace FeatureTables
