#pragma once
// What the settings are after each of the user's actions, kept by the tests beside the program. Pure logic.
#include <array>
#include <map>
#include <string>

namespace e2e {

struct BackgroundEntry {
    const wchar_t* control;
    int index;  // as the settings key has it
};

// In the gallery's order; the first shows no background.
inline constexpr std::array<BackgroundEntry, 14> kBackgroundEntries = {{
    {L"none_background_btn", 0},
    {L"img_one_background_btn", 1},
    {L"img_two_background_btn", 2},
    {L"img_three_background_btn", 3},
    {L"img_four_background_btn", 6},
    {L"img_five_background_btn", 7},
    {L"img_six_background_btn", 8},
    {L"img_seven_background_btn", 9},
    {L"img_eight_background_btn", 10},
    {L"img_nine_background_btn", 11},
    {L"img_ten_background_btn", 12},
    {L"img_eleven_background_btn", 13},
    {L"img_animation_background_btn", 14},
    {L"virtual_background_btn", 4},
}};

struct SwitchRow {
    const wchar_t* control;
    const wchar_t* value;
};
inline constexpr std::array<SwitchRow, 4> kSwitches = {{
    {L"open_camera_btn", L"lumi_camera_switch"},
    {L"focus_person_btn", L"lumi_camera_person_track"},
    {L"correct_sight_btn", L"lumi_camera_eye_correction"},
    {L"beauty_person_btn", L"lumi_camera_beauty_person"},
}};

inline constexpr std::array<SwitchRow, 4> kSliders = {{
    {L"slider_smooth", L"lumi_camera_beauty_smooth"},
    {L"slider_white", L"lumi_camera_beauty_white"},
    {L"slider_eye", L"lumi_camera_beauty_eye"},
    {L"slider_face", L"lumi_camera_beauty_thin"},
}};

class SettingsModel {
  public:
    static constexpr const wchar_t* kBackground = L"lumi_camera_background_replacement";
    static constexpr const wchar_t* kPreBackground = L"pre_background_replacement";

    int Get(const std::wstring& value) const { return values_.at(value); }
    void Set(const std::wstring& value, int number) { values_[value] = number; }
    const std::map<std::wstring, int>& All() const { return values_; }

    void PressSwitch(const SwitchRow& row);
    void PickBackground(const BackgroundEntry& entry);

  private:
    std::map<std::wstring, int> values_ = {
        {L"lumi_camera_switch", 1},
        {L"lumi_camera_person_track", 0},
        {L"lumi_camera_eye_correction", 0},
        {L"lumi_camera_beauty_person", 0},
        {kBackground, 0},
        {kPreBackground, 0},
        {L"lumi_camera_beauty_smooth", 5},
        {L"lumi_camera_beauty_white", 5},
        {L"lumi_camera_beauty_eye", 5},
        {L"lumi_camera_beauty_thin", 5},
    };
};

}  // namespace e2e
