#include "pages/EffectSwitches.h"

#include <windows.h>

#include "DuiLib/ButtonUI.h"
#include "DuiLib/ContainerUI.h"
#include "DuiLib/SliderUI.h"
#include "pages/PageBase.h"
#include "pages/SwitchImages.h"
#include "service/EffectTable.h"
#include "service/HomeService.h"
#include "suite/logger/QxLogger.h"

namespace {

// Blocks the UI thread on purpose: the model's first write and message go out before the second.
constexpr DWORD kExclusionWaitMs = 100;

constexpr int kSwitchRowHeight = 64;
constexpr int kSlidersHeight = 230;

bool IsBeauty(const std::wstring& name) {
    return name == service::EffectOf(service::EffectId::kBeautyPerson).control;
}

}  // namespace

bool EffectSwitches::ShowStates(const States& states) {
    states_.clear();
    for (const auto& [name, status] : states) {
        states_[name] = static_cast<std::int32_t>(status);
    }
    for (const auto& [name, state] : states_) {
        RedrawSwitch(page_.Find(name), state);
    }
    return !states_.empty();
}

void EffectSwitches::ShowLevels(const Levels& levels) {
    levels_.clear();
    levels_.insert(levels.begin(), levels.end());
    for (const auto& [name, level] : levels_) {
        if (auto* slider = page_.FindAs<DuiLib::CSliderUI>(name)) {
            slider->SetValue(level);
        }
    }
}

void EffectSwitches::Click(DuiLib::CControlUI& sender) {
    const std::wstring name = sender.GetName();
    LogLine(LogLevel::kInfo, L"HomePage::OnClick", L"Click Set Camera State btnName:", name);
    const std::int32_t state = states_[name] == 1 ? 0 : 1;
    if (const service::Effect* effect = service::EffectOfControl(name)) {
        model_->SetEffect(effect->id, state);
        SwitchExclusion(state, *effect);
    }
    states_[name] = state;
    RedrawSwitch(&sender, state);
    // The panel that opens is below the window's edge on most screens: bring it into sight.
    DuiLib::CControlUI* panel = IsBeauty(name) ? page_.Find(L"beauty_layout") : nullptr;
    if (state == 1 && panel && panel->GetParent()) {
        panel->GetParent()->EnsureVisible(*panel);
    }
}

void EffectSwitches::SwitchExclusion(std::int32_t state, const service::Effect& effect) {
    if (state != 1 || effect.excludes.empty()) {
        return;
    }
    Sleep(kExclusionWaitMs);
    if (const service::Effect* other = service::EffectOfControl(effect.excludes)) {
        model_->SetEffect(other->id, 0);
    } else {
        model_->SelectBackground(std::wstring(effect.excludes));
    }
}

void EffectSwitches::RedrawSwitch(DuiLib::CControlUI* control, std::int32_t state) {
    auto* button = dynamic_cast<DuiLib::CButtonUI*>(control);
    if (!button) {
        return;
    }
    const bool on = state == 1;
    button->SetNormalImage(SwitchImageOf(on ? SwitchImage::kOn : SwitchImage::kOff));
    button->SetHotImage(SwitchImageOf(on ? SwitchImage::kOnHover : SwitchImage::kOffHover));
    button->SetChecked(on);
    if (!IsBeauty(button->GetName())) {
        return;
    }
    if (DuiLib::CControlUI* sliders = page_.Find(L"beauty_sliders")) {
        sliders->SetMaxHeight(on ? kSlidersHeight : 0);
    }
    if (DuiLib::CControlUI* panel = page_.Find(L"beauty_layout")) {
        panel->SetFixedHeight(on ? kSwitchRowHeight + kSlidersHeight : kSwitchRowHeight);
    }
}

void EffectSwitches::OnBeautyKind(GlobalUtils::BeautyKind kind) {
    const service::BeautyLevel* level = service::BeautyLevelOf(kind);
    if (!level) {
        return;
    }
    if (const auto* slider = page_.FindAs<DuiLib::CProgressUI>(std::wstring(level->control))) {
        model_->SetBeautyLevel(kind, slider->GetValue());
    }
}
