#pragma once
// The backgrounds of the gallery, one row each, and the model's maps from controls to features and numbers.
//
// Why: pages name controls, usage events and the camera service name features and numbers; this and EffectTable are the
// places that know all of them. Threads: constant data, any thread.
#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace FeatureTables {

struct Background {
    std::int32_t index;  // what the registry holds
    std::wstring_view feature;
    std::wstring_view control;
    const wchar_t* label;  // key of the text that names it
};

// Not in the gallery's order: 4 and 5 were given before the later images came. The first three pictures share a label.
inline constexpr std::array<Background, 15> kBackgrounds{{
    {0, L"none_background", L"none_background_btn", L"IDS_LUMI_CAMERA_NONE"},
    {1, L"img_one_background", L"img_one_background_btn", L"IDS_LUMI_CAMERA_MEETINGROOM"},
    {2, L"img_two_background", L"img_two_background_btn", L"IDS_LUMI_CAMERA_MEETINGROOM"},
    {3, L"img_three_background", L"img_three_background_btn", L"IDS_LUMI_CAMERA_MEETINGROOM"},
    {4, L"virtual_background", L"virtual_background_btn", L"IDS_LUMI_CAMERA_VIRTUAL"},
    {5, L"custom_background", L"custom_background_btn", L"IDS_LUMI_CAMERA_CUSTOM"},
    {6, L"img_four_background", L"img_four_background_btn", L"IDS_LUMI_CAMERA_OFFICE"},
    {7, L"img_five_background", L"img_five_background_btn", L"IDS_LUMI_CAMERA_CAFE"},
    {8, L"img_six_background", L"img_six_background_btn", L"IDS_LUMI_CAMERA_LIVINGROOM"},
    {9, L"img_seven_background", L"img_seven_background_btn", L"IDS_LUMI_CAMERA_STUDY"},
    {10, L"img_eight_background", L"img_eight_background_btn", L"IDS_LUMI_CAMERA_CITY"},
    {11, L"img_nine_background", L"img_nine_background_btn", L"IDS_LUMI_CAMERA_TECHNOLOGY"},
    {12, L"img_ten_background", L"img_ten_background_btn", L"IDS_LUMI_CAMERA_INK"},
    {13, L"img_eleven_background", L"img_eleven_background_btn", L"IDS_LUMI_CAMERA_WALLPAPER"},
    {14, L"img_animation_background", L"img_animation_background_btn", L"IDS_LUMI_CAMERA_NATURE"},
}};

inline constexpr std::wstring_view kNoBackground = L"none_background";
// The background that is the user's own: which one, another value says.
inline constexpr std::int32_t kCustomIndex = 5;
inline constexpr std::wstring_view kCustomControl = L"custom_background_btn";

using NameMap = std::map<std::wstring, std::wstring>;

// Control name to feature name, of effects and backgrounds.
NameMap ControlToFeature();
// Swaps keys and values; of several keys with one value the last wins.
NameMap Inverted(const NameMap& map);
// Insert the backgrounds; entries that are there already stay as they are.
void AddFeatureIndexes(std::map<std::wstring, std::int32_t>& featureToIndex);
void AddIndexControls(std::map<std::int32_t, std::wstring>& indexToControl);

}  // namespace FeatureTables
