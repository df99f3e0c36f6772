// Pointer input: hover, buttons, wheel, capture. Focus and keys are in InputRouterKeys.cpp.
#include "window/InputRouter.h"

#include <windowsx.h>

#include <algorithm>

#include "DuiLib/ContainerUI.h"
#include "DuiLib/UICulture.h"
#include "text/FontTable.h"

namespace DuiLib {
namespace {

constexpr int kToolTipWidthDip = 360;
// What GetMessageExtraInfo holds for mouse messages that the system makes from a finger or a pen; its low byte varies.
constexpr LPARAM kPenOrTouch = 0xFF515700;
constexpr LPARAM kPenOrTouchMask = 0xFFFFFF00;

// What a finger's pan is reported for: up and down; sideways it drags, as a mouse does.
void AskForPans(HWND window) {
    GESTURECONFIG config{GID_PAN,
                         GC_PAN | GC_PAN_WITH_SINGLE_FINGER_VERTICALLY | GC_PAN_WITH_GUTTER | GC_PAN_WITH_INERTIA,
                         GC_PAN_WITH_SINGLE_FINGER_HORIZONTALLY};
    SetGestureConfig(window, 0, 1, &config, sizeof(config));
}

Point PointOf(LPARAM lParam) {
    return {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
}

Point CursorIn(HWND window) {
    POINT p{};
    GetCursorPos(&p);
    ScreenToClient(window, &p);
    return {static_cast<int>(p.x), static_cast<int>(p.y)};
}

std::vector<CControlUI*> PathTo(CControlUI* control) {
    std::vector<CControlUI*> path;
    for (; control; control = control->GetParent()) {
        path.push_back(control);
    }
    std::reverse(path.begin(), path.end());
    return path;
}

bool IsWithin(const CControlUI* control, const CControlUI* ancestor) {
    for (; control; control = control->GetParent()) {
        if (control == ancestor) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool InputRouter::OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    const HWND window = manager_.GetPaintWindow();
    result = 0;
    switch (message) {
        case WM_MOUSEMOVE:
            OnMouseMove(PointOf(lParam));
            toolTip_.Relay(window, message, wParam, lParam);
            return true;
        case WM_MOUSELEAVE:
            OnMouseLeave();
            return true;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            toolTip_.Relay(window, WM_LBUTTONDOWN, wParam, lParam);
            OnButtonDown(PointOf(lParam), message == WM_LBUTTONDBLCLK);
            return true;
        case WM_LBUTTONUP: {
            const bool lifted = (GetMessageExtraInfo() & kPenOrTouchMask) == kPenOrTouch;
            toolTip_.Relay(window, message, wParam, lParam);
            OnButtonUp(PointOf(lParam));
            if (lifted) {
                OnMouseLeave();  // a finger that is lifted is nowhere
            }
            return true;
        }
        case WM_GESTURENOTIFY:
            AskForPans(window);
            return false;
        case WM_GESTURE:
            return OnGesture(lParam);
        case WM_MOUSEWHEEL:
        case WM_MOUSEHWHEEL:
            return OnMouseWheel(message, wParam, lParam);
        case WM_SETCURSOR:
            if (!OnSetCursor(lParam)) {
                return false;
            }
            result = TRUE;
            return true;
        case WM_CAPTURECHANGED:
            if (!releasingSystemCapture_ && reinterpret_cast<HWND>(lParam) != window) {
                CancelCapture();
            }
            return true;
        case WM_CANCELMODE:
            CancelCapture();
            return false;
        case WM_ENABLE:
            if (wParam == FALSE) {
                CancelCapture();
                OnMouseLeave();
            }
            return false;
        case WM_KEYDOWN:
            return OnKeyDown(static_cast<WORD>(wParam), (HIWORD(lParam) & KF_REPEAT) != 0);
        case WM_KEYUP:
            return OnKeyUp(static_cast<WORD>(wParam));
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            OnWindowFocus(message == WM_SETFOCUS);
            return false;
        default:
            return false;
    }
}

void InputRouter::OnWindowGone() {
    toolTip_.Forget();
    capture_ = nullptr;
    hotPath_.clear();
    ++hoverRound_;
    mouseInside_ = false;
    windowInactive_ = false;
    panTarget_ = nullptr;
}

void InputRouter::OnTreeChanged() {
    const RetiredControls::Scope scope(retired_);
    if (capture_ && !IsUsable(capture_)) {
        CancelCapture();
    }
    if (focus_ && !focus_->IsShown()) {
        CControlUI* const origin = focus_;
        SetFocus(nullptr, false);
        if (IsInTree(origin)) {
            tabOrigin_ = origin;
        }
    }
    if (mouseInside_) {
        HoverAt(mousePx_);
    }
}

void InputRouter::Forget(const CControlUI* control) {
    if (IsWithin(focus_, control)) {
        focus_ = nullptr;
    }
    if (IsWithin(tabOrigin_, control)) {
        tabOrigin_ = nullptr;
    }
    if (IsWithin(capture_, control)) {
        ReleaseCapture();
    }
    if (IsWithin(panTarget_, control)) {
        panTarget_ = nullptr;
    }
    const auto gone = std::find(hotPath_.begin(), hotPath_.end(), control);
    if (gone != hotPath_.end()) {
        hotPath_.erase(gone, hotPath_.end());
        toolTip_.Clear();
    }
}

void InputRouter::Send(CControlUI* control, const TEventUI& event) {
    if (IsInTree(control)) {
        const RetiredControls::Scope scope(retired_);
        control->DoEvent(event);
    }
}

TEventUI InputRouter::MakeEvent(EventType type) const {
    TEventUI event{};
    event.type = type;
    event.mousePx = mousePx_;
    event.control = GetKeyState(VK_CONTROL) < 0;
    event.shift = GetKeyState(VK_SHIFT) < 0;
    return event;
}

bool InputRouter::IsUsable(const CControlUI* control) const {
    return IsInTree(control) && control->IsShown() && control->IsEnabledInTree();
}

CControlUI* InputRouter::HitTest(Point px) const {
    return manager_.FindControl(POINT{px.x, px.y});
}

void InputRouter::HoverAt(Point px) {
    CControlUI* control = HitTest(px);
    if (capture_ && !IsWithin(control, capture_)) {
        control = nullptr;
    }
    Hover(control);
}

void InputRouter::Hover(CControlUI* control) {
    if (control == GetHot()) {
        return;
    }
    const RetiredControls::Scope scope(retired_);
    const unsigned round = ++hoverRound_;
    const std::vector<CControlUI*> path = PathTo(control);
    const auto common = static_cast<std::size_t>(
        std::mismatch(hotPath_.begin(), hotPath_.end(), path.begin(), path.end()).first - hotPath_.begin());
    while (hotPath_.size() > common) {
        CControlUI* const left = hotPath_.back();
        hotPath_.pop_back();
        Send(left, MakeEvent(EventType::kMouseLeave));
        if (round != hoverRound_) {
            return;
        }
    }
    for (std::size_t i = common; i < path.size(); ++i) {
        CControlUI* const parent = i == 0 ? nullptr : path[i - 1];
        if (hotPath_.size() != i || !IsInTree(path[i]) || path[i]->GetParent() != parent) {
            break;  // removed by a handler
        }
        hotPath_.push_back(path[i]);
        Send(path[i], MakeEvent(EventType::kMouseEnter));
        if (round != hoverRound_) {
            return;
        }
    }
    UpdateToolTip();
}

void InputRouter::UpdateToolTip() {
    if (!capture_) {
        for (auto it = hotPath_.rbegin(); it != hotPath_.rend(); ++it) {
            const CControlUI& control = **it;
            if (!control.GetToolTip().empty()) {
                toolTip_.Set(manager_.GetPaintWindow(), control.GetPos(), control.GetToolTip(),
                             manager_.GetFont(kToolTipFont), UICulture::GetInstance()->IsRightToLeft(),
                             DipToPx(kToolTipWidthDip, manager_.GetDPI()));
                return;
            }
        }
    }
    toolTip_.Clear();
}

void InputRouter::TrackLeave() {
    // Asked for already, until the message has come. The question costs nothing; the request looks for the pointer.
    const HWND window = manager_.GetPaintWindow();
    TRACKMOUSEEVENT track{sizeof(track), TME_QUERY, nullptr, 0};
    if (TrackMouseEvent(&track) && (track.dwFlags & TME_LEAVE) != 0 && track.hwndTrack == window) {
        return;
    }
    track = {sizeof(track), TME_LEAVE, window, 0};
    TrackMouseEvent(&track);
}

void InputRouter::OnMouseMove(Point px) {
    const RetiredControls::Scope scope(retired_);
    mousePx_ = px;
    mouseInside_ = true;
    TrackLeave();
    HoverAt(px);
    Send(capture_ ? capture_ : GetHot(), MakeEvent(EventType::kMouseMove));
}

void InputRouter::OnMouseLeave() {
    mouseInside_ = false;
    if (!capture_) {
        Hover(nullptr);
    }
}

void InputRouter::OnButtonDown(Point px, bool doubleClick) {
    const RetiredControls::Scope scope(retired_);
    mousePx_ = px;
    mouseInside_ = true;
    CancelCapture();  // a release that never came
    HoverAt(px);
    ShowFocusRing(false);
    CControlUI* const hit = GetHot();
    if (!IsUsable(hit)) {
        return;
    }
    for (CControlUI* c = hit; c; c = c->GetParent()) {
        if (c->CanHaveFocus()) {
            SetFocus(c, false);
            break;
        }
    }
    if (IsUsable(hit)) {
        TEventUI event = MakeEvent(EventType::kButtonDown);
        event.doubleClick = doubleClick;
        Send(hit, event);
    }
}

void InputRouter::OnButtonUp(Point px) {
    const RetiredControls::Scope scope(retired_);
    mousePx_ = px;
    ReleaseSystemCapture();
    HoverAt(px);
    CControlUI* const captured = capture_;
    if (captured && !IsUsable(captured)) {
        CancelCapture();
    } else if (captured) {
        Send(captured, MakeEvent(EventType::kButtonUp));
        if (capture_ == captured) {
            ReleaseCapture();
        }
    } else if (IsUsable(GetHot())) {
        Send(GetHot(), MakeEvent(EventType::kButtonUp));
    }
    // Without the capture the pointer may be over another control than before.
    if (manager_.GetPaintWindow() && mouseInside_) {
        HoverAt(mousePx_);
    }
}

bool InputRouter::OnMouseWheel(UINT message, WPARAM wParam, LPARAM lParam) {
    POINT p{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    ScreenToClient(manager_.GetPaintWindow(), &p);
    const RetiredControls::Scope scope(retired_);
    // Over a control that is disabled the list around it scrolls all the same. Sideways only lists go.
    const bool sideways = message == WM_MOUSEHWHEEL;
    CControlUI* target = manager_.FindControl(p);
    while (target && (!IsUsable(target) || (sideways && !dynamic_cast<CContainerUI*>(target)))) {
        target = target->GetParent();
    }
    if (!target) {
        return false;
    }
    TEventUI event = MakeEvent(EventType::kMouseWheel);
    event.mousePx = {static_cast<int>(p.x), static_cast<int>(p.y)};
    event.wheelDelta = GET_WHEEL_DELTA_WPARAM(wParam);
    if (sideways) {
        // To the right counts up, as downwards counts down: a wheel's own way sideways is the other one.
        event.wheelDelta = -event.wheelDelta;
        event.shift = true;
    }
    Send(target, event);
    return true;
}

bool InputRouter::OnGesture(LPARAM lParam) {
    const auto handle = reinterpret_cast<HGESTUREINFO>(lParam);
    GESTUREINFO gesture{};
    gesture.cbSize = sizeof(gesture);
    // All others, their begin and their end among them, are the system's.
    if (!GetGestureInfo(handle, &gesture) || gesture.dwID != GID_PAN) {
        return false;
    }
    const Point at{gesture.ptsLocation.x, gesture.ptsLocation.y};
    if ((gesture.dwFlags & GF_BEGIN) != 0) {
        CancelCapture();  // the press that it began with is none
        POINT client{at.x, at.y};
        ScreenToClient(manager_.GetPaintWindow(), &client);
        panTarget_ = manager_.FindControl(client);
    } else {
        PanBy({panPx_.x - at.x, panPx_.y - at.y});
    }
    panPx_ = at;
    CloseGestureInfoHandle(handle);
    return true;
}

void InputRouter::PanBy(Point px) {
    const RetiredControls::Scope scope(retired_);
    for (CControlUI* control = panTarget_; control; control = control->GetParent()) {
        auto* const container = dynamic_cast<CContainerUI*>(control);
        if (!container) {
            continue;
        }
        const Point before = container->GetScrollPos();
        container->SetScrollPos({before.x + px.x, before.y + px.y});
        if (container->GetScrollPos() != before) {
            return;
        }
    }
}

bool InputRouter::OnSetCursor(LPARAM lParam) {
    if (LOWORD(lParam) != HTCLIENT) {
        return false;
    }
    TEventUI event = MakeEvent(EventType::kSetCursor);
    event.mousePx = CursorIn(manager_.GetPaintWindow());
    CControlUI* const target = capture_ ? capture_ : HitTest(event.mousePx);
    if (IsUsable(target)) {
        Send(target, event);
    } else {
        ::SetCursor(LoadCursorW(nullptr, IDC_ARROW));
    }
    return true;
}

void InputRouter::SetCapture(CControlUI* control) {
    if (!IsInTree(control) || control == capture_) {
        return;
    }
    CancelCapture();
    capture_ = control;
    toolTip_.Clear();
    if (manager_.GetPaintWindow()) {
        ::SetCapture(manager_.GetPaintWindow());
    }
}

void InputRouter::ReleaseCapture() {
    capture_ = nullptr;
    ReleaseSystemCapture();
}

void InputRouter::CancelCapture() {
    CControlUI* const captured = capture_;
    if (captured) {
        ReleaseCapture();
        Send(captured, MakeEvent(EventType::kCaptureLost));
    }
}

void InputRouter::ReleaseSystemCapture() {
    const HWND window = manager_.GetPaintWindow();
    if (window && ::GetCapture() == window) {
        releasingSystemCapture_ = true;
        ::ReleaseCapture();
        releasingSystemCapture_ = false;
    }
}

}  // namespace DuiLib
