// The home page's switches and beauty sliders.
#include <windows.h>

#include <utility>

#include "DuiLib/ButtonUI.h"
#include "DuiLib/ContainerUI.h"
#include "DuiLib/ProgressUI.h"
#include "pages/HomePage.h"
#include "service/HomeService.h"
#include "suite/logger/QxLogger.h"

namespace {

constexpr wchar_t kCameraSwitch[] = L"open_camera_btn";
constexpr wchar_t kFocusPerson[] = L"focus_person_btn";
constexpr wchar_t kCorrectSight[] = L"correct_sight_btn";
constexpr wchar_t kBeautyPerson[] = L"beauty_person_btn";

// Blocks the UI thread on purpose: the model's first write and message go out before the second.
constexpr DWORD kExclusionWaitMs = 100;

constexpr int kSwitchRowHeight = 64;
constexpr int kSlidersHeight = 230;

}  // namespace

void HomePage::ClickSwitch(DuiLib::CControlUI* sender, std::int32_t stored) {
    const std::wstring name = sender->GetName();
    LogLine(3, L"HomePage::OnClick", L"Click Set Camera State btnName:", name);
    const std::int32_t state = stored == 1 ? 0 : 1;
    if (name == kCameraSwitch)
        model_->SetCameraSwitch(state);
    if (name == kFocusPerson)
        model_->SetFocusPerson(state);
    if (name == kCorrectSight)
        model_->SetCorrectSight(state);
    if (name == kBeautyPerson)
        model_->SetBeautyPerson(state);
    if (name != kCameraSwitch)
        SwitchExclusion(state, name);
    switchStates_[name] = state;
    RedrawSwitch(sender, state);
    // The panel that opens is below the window's edge on most screens: bring it into sight.
    DuiLib::CControlUI* panel = name == kBeautyPerson ? Find(L"beauty_layout") : nullptr;
    if (state == 1 && panel && panel->GetParent())
        panel->GetParent()->EnsureVisible(*panel);
}

void HomePage::SwitchExclusion(std::int32_t state, const std::wstring& name) {
    if (state != 1)
        return;
    Sleep(kExclusionWaitMs);
    if (name == kFocusPerson)
        model_->SelectBackground(L"none_background_btn");
    if (name == kBeautyPerson)
        model_->SetCorrectSight(0);
    if (name == kCorrectSight)
        model_->SetBeautyPerson(0);
}

void HomePage::RedrawSwitch(DuiLib::CControlUI* control, std::int32_t state) {
    auto* button = dynamic_cast<DuiLib::CButtonUI*>(control);
    if (!button)
        return;
    const bool on = state == 1;
    button->SetNormalImage(switchImages_[on ? 0 : 3]);
    button->SetHotImage(switchImages_[on ? 1 : 4]);
    button->SetChecked(on);
    if (button->GetName() != kBeautyPerson)
        return;
    if (DuiLib::CControlUI* sliders = Find(L"beauty_sliders"))
        sliders->SetMaxHeight(on ? kSlidersHeight : 0);
    if (DuiLib::CControlUI* panel = Find(L"beauty_layout")) {
        panel->SetFixedHeight(on ? kSwitchRowHeight + kSlidersHeight : kSwitchRowHeight);
    }
}

void HomePage::OnBeautyKind(GlobalUtils::BeautyKind kind) {
    using GlobalUtils::BeautyKind;
    static const std::map<BeautyKind, std::pair<const wchar_t*, void (HomeService::*)(std::int32_t)>> rows = {
        {BeautyKind::kSmooth, {L"slider_smooth", &HomeService::SetBeautySmooth}},
        {BeautyKind::kWhite, {L"slider_white", &HomeService::SetBeautyWhite}},
        {BeautyKind::kEye, {L"slider_eye", &HomeService::SetBeautyEye}},
        {BeautyKind::kFace, {L"slider_face", &HomeService::SetBeautyThin}}};
    const auto row = rows.find(kind);
    if (row == rows.end())
        return;
    const auto& [sliderName, setLevel] = row->second;
    if (const auto* slider = FindAs<DuiLib::CProgressUI>(sliderName))
        (model_->*setLevel)(slider->GetValue());
}
