#pragma once
// The home page's switches and beauty sliders: their states, a click on one, which effects exclude each other.
//
// The model stores and tells; this class shows what the model says, and each of its snapshots wins over the last click.
// Thread: UI thread.
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>

#include "service/GlobalUtils.h"

class HomeService;
class PageBase;

namespace DuiLib {
class CControlUI;
}

namespace service {
struct Effect;
}

class EffectSwitches {
  public:
    using States = std::unordered_map<std::wstring, GlobalUtils::FeatureStatus>;
    using Levels = std::unordered_map<std::wstring, std::int32_t>;

    // Borrowed: the page, which holds the controls and owns this object, and the process's model, null where there is
    // none: then nothing is clicked and no slider moves.
    EffectSwitches(const PageBase& page, HomeService* model) : page_(page), model_(model) {}
    EffectSwitches(const EffectSwitches&) = delete;
    EffectSwitches& operator=(const EffectSwitches&) = delete;

    // Takes the place of all states, and shows them. False for none at all: nothing is shown then.
    bool ShowStates(const States& states);
    // Takes the place of all levels, and shows them.
    void ShowLevels(const Levels& levels);

    // Whether a control of that name is a switch, which it is once a snapshot has named it.
    bool IsSwitch(const std::wstring& name) const { return states_.contains(name); }
    // REQUIRES: a model, and the sender is a switch.
    void Click(DuiLib::CControlUI& sender);
    // REQUIRES: a model. The slider of that kind has moved.
    void OnBeautyKind(GlobalUtils::BeautyKind kind);

  private:
    // Blocks the UI thread for a moment where an effect has turned on that excludes another.
    void SwitchExclusion(std::int32_t state, const service::Effect& effect);
    void RedrawSwitch(DuiLib::CControlUI* control, std::int32_t state);

    const PageBase& page_;
    HomeService* const model_;
    std::map<std::wstring, std::int32_t> states_;
    std::map<std::wstring, std::int32_t> levels_;
};
