// Focus and keyboard navigation of InputRouter.
#include "DuiLib/ContainerUI.h"
#include "window/InputRouter.h"

namespace DuiLib {

void InputRouter::SetFocus(CControlUI* control, bool byKeyboard) {
    if (control) {
        manager_.UpdateLayout();
        if (!IsInTree(control) || !control->CanHaveFocus()) {
            return;
        }
    }
    const RetiredControls::Scope scope(retired_);
    if (byKeyboard) {
        ShowFocusRing(true);
    }
    if (control == focus_) {
        return;
    }
    CControlUI* const former = focus_;
    focus_ = control;
    tabOrigin_ = control;
    if (!windowInactive_) {
        Send(former, MakeEvent(EventType::kKillFocus));
        if (!control || focus_ != control) {
            return;  // nobody, or the handler gave the focus to another
        }
        Send(control, MakeEvent(EventType::kSetFocus));
        if (focus_ != control) {
            return;
        }
        manager_.NotifyAccessible(control, EVENT_OBJECT_FOCUS);
    }
    if (focusRing_ && control && control->GetParent()) {
        control->GetParent()->EnsureVisible(*control);
    }
}

void InputRouter::ReadSettings() {
    BOOL always = FALSE;
    if (SystemParametersInfoW(SPI_GETKEYBOARDCUES, 0, &always, 0) && cuesAlways_ != (always != FALSE)) {
        cuesAlways_ = always != FALSE;
        if (focus_) {
            focus_->Invalidate();
        }
    }
}

void InputRouter::ShowFocusRing(bool show) {
    if (show != focusRing_) {
        focusRing_ = show;
        if (focus_) {
            focus_->Invalidate();
        }
    }
}

bool InputRouter::SetNextTabControl(bool forward) {
    manager_.UpdateLayout();
    CControlUI* const root = manager_.GetRoot();
    if (!root) {
        return false;
    }
    const RetiredControls::Scope scope(retired_);
    if (IsUsable(focus_) && focus_->MoveFocusWithin(forward)) {
        ShowFocusRing(true);
        return true;
    }
    // All stops in layout order, and where the walk begins among them: after (backwards: before) the origin, which
    // itself may be no stop any more.
    std::vector<CControlUI*> stops;
    std::size_t before = 0;  // stops that lie before the origin
    std::size_t after = 0;   // index of the first stop behind it
    root->Visit([&](CControlUI& control) {
        const bool isOrigin = &control == tabOrigin_;
        if (isOrigin) {
            before = stops.size();
        }
        if (control.IsTabStop() && IsUsable(&control)) {
            stops.push_back(&control);
        }
        if (isOrigin) {
            after = stops.size();
        }
        return true;
    });
    if (stops.empty()) {
        return false;
    }
    CControlUI* const next = forward ? stops[after % stops.size()] : stops[(before + stops.size() - 1) % stops.size()];
    if (next == focus_) {
        // The only stop: it begins anew, which counts for a text with several links.
        ShowFocusRing(true);
        TEventUI event = MakeEvent(EventType::kSetFocus);
        event.shift = !forward;
        Send(next, event);
        return true;
    }
    SetFocus(next, true);
    return true;
}

bool InputRouter::OnKeyDown(WORD key, bool repeat) {
    const RetiredControls::Scope scope(retired_);
    // A key may come before the first paint, and only what has been arranged counts as shown.
    manager_.UpdateLayout();
    switch (key) {
        case VK_TAB:
            return GetKeyState(VK_CONTROL) >= 0 && SetNextTabControl(GetKeyState(VK_SHIFT) >= 0);
        case VK_RETURN:
            return OnReturn(repeat);
        case VK_ESCAPE:
            if (!repeat && OnEscape()) {
                return true;
            }
            break;
        case VK_LEFT:
        case VK_RIGHT:
        case VK_UP:
        case VK_DOWN:
            if (IsUsable(focus_)) {
                ShowFocusRing(true);
            }
            break;
        default:
            break;
    }
    if (!IsUsable(focus_)) {
        return false;
    }
    TEventUI event = MakeEvent(EventType::kKeyDown);
    event.key = key;
    event.repeat = repeat;
    Send(focus_, event);
    return true;
}

bool InputRouter::OnKeyUp(WORD key) {
    if (!IsUsable(focus_)) {
        return false;
    }
    TEventUI event = MakeEvent(EventType::kKeyUp);
    event.key = key;
    Send(focus_, event);
    return true;
}

// The focused control where Enter does something there, else the default button.
bool InputRouter::OnReturn(bool repeat) {
    const bool usable = IsUsable(focus_);
    if (!usable || focus_->GetAccessibleInfo().defaultAction.empty()) {
        CControlUI* const button = manager_.FindControl(manager_.GetWindowSpec().defaultButton);
        if (IsUsable(button)) {
            if (!repeat) {
                button->DoDefaultAction();
            }
            return true;
        }
    }
    if (!usable) {
        return false;
    }
    TEventUI event = MakeEvent(EventType::kKeyDown);
    event.key = VK_RETURN;
    event.repeat = repeat;
    Send(focus_, event);
    return true;
}

bool InputRouter::OnEscape() {
    if (capture_) {
        CancelCapture();
        return true;
    }
    const WindowSpec& spec = manager_.GetWindowSpec();
    CControlUI* const button = manager_.FindControl(spec.cancelButton);
    if (IsUsable(button)) {
        button->DoDefaultAction();
        return true;
    }
    if (spec.closeOnEscape) {
        PostMessageW(manager_.GetPaintWindow(), WM_CLOSE, 0, 0);
        return true;
    }
    return false;
}

void InputRouter::OnWindowFocus(bool has) {
    if (has == !windowInactive_) {
        return;
    }
    windowInactive_ = !has;
    if (focus_) {
        CControlUI* const control = focus_;
        Send(control, MakeEvent(has ? EventType::kSetFocus : EventType::kKillFocus));
        if (has && focus_ == control) {
            manager_.NotifyAccessible(control, EVENT_OBJECT_FOCUS);
        }
    }
}

}  // namespace DuiLib
