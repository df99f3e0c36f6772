// How a window keeps to its screen: scale, size and place.
#include <algorithm>

#include "DuiLib/ControlUI.h"
#include "DuiLib/Theme.h"
#include "DuiLib/WindowImplBase.h"
#include "layout/LayoutArithmetic.h"
#include "window/FlagScope.h"

namespace DuiLib {
namespace {

constexpr int kLargestWidening = 150;  // percent; further growth goes into the height

// Of its work area; nothing when there is no such screen.
Size RoomOn(HMONITOR monitor) {
    MONITORINFO info{};
    info.cbSize = sizeof(info);
    if (!GetMonitorInfoW(monitor, &info)) {
        return {};
    }
    const RECT& work = info.rcWork;
    return {static_cast<int>(work.right - work.left), static_cast<int>(work.bottom - work.top)};
}

}  // namespace

bool WindowImplBase::HasOneSize() {
    return paintManager_.GetWindowSpec().sizeDip != Size{} && !IsResizable();
}

void WindowImplBase::TakeScreen() {
    screen_ = MonitorFromWindow(GetHWND(), MONITOR_DEFAULTTONEAREST);
    screenDpi_ = paintManager_.GetDPI();
    dragged_ = false;
    fitLater_ = false;
    const int dpi = DpiOnScreen();
    if (dpi != screenDpi_) {
        paintManager_.SetDPI(dpi);
    }
}

int WindowImplBase::DpiOnScreen() {
    const Size room = RoomOn(screen_);
    return HasOneSize() && room != Size{} ? FittingDpi(paintManager_.GetWindowSpec().sizeDip, room, screenDpi_)
                                          : screenDpi_;
}

Size WindowImplBase::WantedSizePx() {
    const WindowSpec& spec = paintManager_.GetWindowSpec();
    const int dpi = paintManager_.GetDPI();
    Size px{DipToPx(spec.sizeDip.cx, dpi), DipToPx(spec.sizeDip.cy, dpi)};
    const Size room = RoomOn(screen_);
    if (px == Size{} || room == Size{}) {
        return px;
    }
    const int percent = UITheme::GetInstance()->GetTextPercent();
    CControlUI* const root = paintManager_.GetRoot();
    if (spec.growWithText && percent > 100 && root) {
        px.cx = std::min(ScaleBy(px.cx, std::min(percent, kLargestWidening), 100), room.cx);
        px.cy = std::max(px.cy, root->EstimateSize({px.cx, px.cy}).cy);
    }
    px.cy = std::min(px.cy, room.cy);
    return px;
}

void WindowImplBase::FollowTextSize() {
    RECT place{};
    if (!paintManager_.GetWindowSpec().growWithText || !GetWindowRect(GetHWND(), &place)) {
        return;
    }
    // Around the same middle.
    const Size px = WantedSizePx();
    const SIZE size{px.cx, px.cy};
    MoveIntoWorkArea(screen_, (place.left + place.right - px.cx) / 2, (place.top + place.bottom - px.cy) / 2, &size);
}

bool WindowImplBase::TellScaledSize(int dpi, SIZE& px) {
    const bool grown = paintManager_.GetWindowSpec().growWithText && UITheme::GetInstance()->GetTextPercent() > 100;
    const Size room = RoomOn(MonitorFromWindow(GetHWND(), MONITOR_DEFAULTTONEAREST));
    if (!HasOneSize() || grown || room == Size{}) {
        return false;
    }
    const Size& dip = paintManager_.GetWindowSpec().sizeDip;
    const int fitting = FittingDpi(dip, room, dpi);
    px = {DipToPx(dip.cx, fitting), std::min(DipToPx(dip.cy, fitting), room.cy)};
    return true;
}

void WindowImplBase::FollowDpi(WPARAM wParam, LPARAM lParam) {
    const int told = LOWORD(wParam);
    screenDpi_ = told != 0 ? told : static_cast<int>(GetDpiForWindow(GetHWND()));
    RECT place{};
    GetWindowRect(GetHWND(), &place);
    if (const RECT* const suggested = reinterpret_cast<const RECT*>(lParam)) {
        place = *suggested;
    }
    screen_ = MonitorFromRect(&place, MONITOR_DEFAULTTONEAREST);
    if (!HasOneSize()) {
        const FlagScope scope(fitting_);
        paintManager_.OnDpiChanged(wParam, lParam);
    } else {
        Fit(place);
    }
    if (IsModal()) {
        Center2ParentWindow();
    }
    OnFitted();
}

void WindowImplBase::FollowScreen(bool intoWorkArea) {
    const HWND window = GetHWND();
    if (fitting_ || dragged_ || !screen_ || !HasOneSize()) {
        return;
    }
    fitLater_ = IsIconic(window) != FALSE;
    if (fitLater_) {
        return;  // it is nowhere
    }
    const HMONITOR screen = MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST);
    if (screen != screen_) {
        screen_ = screen;
        screenDpi_ = static_cast<int>(GetDpiForWindow(window));
    } else if (!intoWorkArea) {
        return;
    }
    RECT before{};
    GetWindowRect(window, &before);
    const int dpi = paintManager_.GetDPI();
    const Size px = WantedSizePx();
    const bool fits =
        DpiOnScreen() == dpi && before.right - before.left == px.cx && before.bottom - before.top == px.cy;
    if (fits && !intoWorkArea) {
        return;  // between two screens, where the user has put it
    }
    Fit(before);
    RECT after{};
    GetWindowRect(window, &after);
    if (!EqualRect(&before, &after) || paintManager_.GetDPI() != dpi) {
        OnFitted();
    }
}

void WindowImplBase::Fit(const RECT& place) {
    const FlagScope scope(fitting_);
    const int dpi = DpiOnScreen();
    if (dpi != paintManager_.GetDPI()) {
        paintManager_.SetDPI(dpi);
    }
    const Size px = WantedSizePx();
    const SIZE size{px.cx, px.cy};
    if (dragged_) {
        // Where the pointer holds it.
        SetWindowPos(GetHWND(), nullptr, place.left, place.top, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
    } else {
        MoveIntoWorkArea(screen_, place.left, place.top, &size);
    }
}

}  // namespace DuiLib
