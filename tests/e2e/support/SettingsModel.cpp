#include "tests/e2e/support/SettingsModel.h"

namespace e2e {

void SettingsModel::PressSwitch(const SwitchRow& row) {
    const std::wstring control = row.control;
    const int state = Get(row.value) == 1 ? 0 : 1;
    Set(row.value, state);
    if (state == 0)
        return;
    if (control == L"focus_person_btn") {
        Set(kBackground, 0);
        Set(kPreBackground, 0);
    } else if (control == L"correct_sight_btn") {
        Set(L"lumi_camera_beauty_person", 0);
    } else if (control == L"beauty_person_btn") {
        Set(L"lumi_camera_eye_correction", 0);
    }
}

void SettingsModel::PickBackground(const BackgroundEntry& entry) {
    Set(kBackground, entry.index);
    if (entry.index == 0)
        Set(kPreBackground, 0);
    else
        Set(L"lumi_camera_person_track", 0);
}

}  // namespace e2e
