#include "pages/PreviewWindow.h"

#include <windowsx.h>

#include <dbt.h>

#include <exception>
#include <utility>

#include "preview/Preview.h"
#include "suite/logger/QxLogger.h"

namespace {

constexpr DWORD kStyle = 0x90880000;  // popup, visible, border, system menu
constexpr UINT_PTR kTickTimer = 1;
constexpr UINT kTickMs = 1000;

// In 96-DPI units. The region's origin repeats the window's offset: together they leave the preview area visible.
constexpr int kOffsetDip = 40;
constexpr int kWidthDip = 598;
constexpr int kHeightDip = 354;
constexpr RECT kRegionDip = {40, 40, 558, 315};
constexpr int kCornerPx = 32;

// The kind of device that cameras are announced as.
constexpr GUID kCaptureDevices = {0x65e8773d, 0x8f56, 0x11d0, {0xa3, 0xb9, 0x00, 0xa0, 0xc9, 0x22, 0x31, 0x96}};

// Set while the window is destroyed on purpose: its WM_DESTROY must not end the program then.
bool g_restarting = false;

int Scale(int dip, int dpi) {
    return dip * dpi / USER_DEFAULT_SCREEN_DPI;
}

bool IsLeftButtonHeld() {
    return GetAsyncKeyState(GetSystemMetrics(SM_SWAPBUTTON) ? VK_RBUTTON : VK_LBUTTON) < 0;
}

}  // namespace

PreviewWindow::PreviewWindow(Events events) : events_(std::move(events)) {}

PreviewWindow::~PreviewWindow() {
    Destroy();
}

bool PreviewWindow::Create(HWND owner, HINSTANCE instance) {
    if (window_)
        return true;
    window_ = CreateWindowExW(0, L"STATIC", L"", kStyle, 0, 0, 0, 0, owner, nullptr, instance, nullptr);
    if (!window_)
        return false;
    owner_ = owner;
    shown_ = false;
    SetWindowLongPtrW(window_, GWL_EXSTYLE, GetWindowLongPtrW(window_, GWL_EXSTYLE) | WS_EX_LAYERED);
    SetLayeredWindowAttributes(window_, 0, 0, LWA_ALPHA);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure));
    AskForRemovals();
    return true;
}

void PreviewWindow::SetName(const std::wstring& name) const {
    SetWindowTextW(window_, name.c_str());
}

void PreviewWindow::AskForRemovals() {
    DEV_BROADCAST_DEVICEINTERFACE_W filter = {};
    filter.dbcc_size = sizeof filter;
    filter.dbcc_devicetype = DBT_DEVTYP_DEVICEINTERFACE;
    filter.dbcc_classguid = kCaptureDevices;
    removals_ = RegisterDeviceNotificationW(window_, &filter, DEVICE_NOTIFY_WINDOW_HANDLE);
}

void PreviewWindow::Destroy() {
    if (!window_)
        return;
    g_restarting = true;
    DestroyWindow(window_);
    g_restarting = false;
}

void PreviewWindow::Place(int dpi, bool areaShown) {
    if (!window_)
        return;
    const bool visible = shown_ && areaShown && IsWindowVisible(owner_) && !IsIconic(owner_);
    POINT origin = {Scale(kOffsetDip, dpi), Scale(kOffsetDip, dpi)};
    ClientToScreen(owner_, &origin);
    RECT before = {};
    GetWindowRect(window_, &before);
    const SIZE size = {Scale(kWidthDip, dpi), Scale(kHeightDip, dpi)};
    // The client area of a minimised window is nowhere, but no graphics device is made for a window without a size.
    const UINT keep = IsIconic(owner_) ? SWP_NOMOVE : 0;
    SetWindowPos(window_, nullptr, origin.x, origin.y, size.cx, size.cy,
                 SWP_NOZORDER | SWP_NOOWNERZORDER | SWP_NOACTIVATE | keep);
    if (before.right - before.left != size.cx || before.bottom - before.top != size.cy) {
        // The window takes the region over. The first time it is visible, and transparent: not every system cuts a
        // window that is hidden, nor one for which a graphics device has been made.
        SetWindowRgn(
            window_,
            CreateRoundRectRgn(Scale(kRegionDip.left, dpi), Scale(kRegionDip.top, dpi), Scale(kRegionDip.right, dpi),
                               Scale(kRegionDip.bottom, dpi), kCornerPx, kCornerPx),
            TRUE);
    }
    if (visible) {
        Raise();
    } else {
        ShowWindow(window_, SW_HIDE);
    }
}

// Not every system lifts an owned window together with its owner, or shows it where it was in the order.
void PreviewWindow::Raise() {
    constexpr UINT kFlags = SWP_NOMOVE | SWP_NOSIZE | SWP_NOOWNERZORDER | SWP_NOACTIVATE | SWP_SHOWWINDOW;
    const HWND front = GetForegroundWindow();
    // In front of everything else its place is told anew even where it seems to have it: a system may have lifted its
    // owner on the screen and not in the order.
    if (!IsWindowVisible(window_) || front == owner_ || front == window_) {
        SetWindowPos(window_, HWND_TOP, 0, 0, 0, 0, kFlags);
    } else if (!IsAboveOwner()) {
        // Right above its owner, so that what stands over that one, a message say, stays where it is.
        const HWND over = GetWindow(owner_, GW_HWNDPREV);
        const bool plain = over && !(GetWindowLongPtrW(over, GWL_EXSTYLE) & WS_EX_TOPMOST);
        SetWindowPos(window_, plain ? over : HWND_TOP, 0, 0, 0, 0, kFlags);
    }
}

bool PreviewWindow::IsAboveOwner() const {
    for (HWND each = GetWindow(owner_, GW_HWNDPREV); each; each = GetWindow(each, GW_HWNDPREV)) {
        if (each == window_)
            return true;
    }
    return false;
}

void PreviewWindow::Show(int dpi, bool areaShown) {
    if (!window_)
        return;
    shown_ = true;
    Place(dpi, areaShown);
    SetLayeredWindowAttributes(window_, 0, 255, LWA_ALPHA);
}

void PreviewWindow::Hide() {
    shown_ = false;
    if (window_)
        ShowWindow(window_, SW_HIDE);
}

void PreviewWindow::WantTicks(bool wanted) {
    if (!window_)
        return;
    if (wanted) {
        SetTimer(window_, kTickTimer, kTickMs, nullptr);
    } else {
        KillTimer(window_, kTickTimer);
    }
}

LRESULT CALLBACK PreviewWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<PreviewWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self) {
        try {
            return self->Handle(window, message, wParam, lParam);
        } catch (const std::exception& error) {
            LogLine(LogLevel::kError, L"PreviewWindow::Procedure", L"unexpected exception: ", error.what());
        }
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

LRESULT PreviewWindow::Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_DESTROY:
            SetWindowLongPtrW(window, GWLP_USERDATA, 0);
            if (events_.destroyed)
                events_.destroyed();
            UnregisterDeviceNotification(std::exchange(removals_, nullptr));
            window_ = nullptr;
            if (std::exchange(g_restarting, false))
                return 0;
            PostQuitMessage(0);
            return 0;
        case WM_PAINT:
            ValidateRect(window, nullptr);
            return 0;
        case WM_TIMER:
            if (wParam == kTickTimer && events_.tick)
                events_.tick();
            return 0;
        case Preview::kDeviceMessage:
            if (events_.deviceLost)
                events_.deviceLost();
            return 0;
        case WM_DEVICECHANGE:
            OnDeviceChange(wParam, lParam);
            return TRUE;
        case WM_MOUSEACTIVATE:
            // Keys go where they went before.
            return MA_NOACTIVATE;
        case WM_NCHITTEST: {
            const LRESULT hit = DefWindowProcW(window, message, wParam, lParam);
            return hit == HTCLIENT && IsLeftButtonHeld() ? HTCAPTION : hit;
        }
        case WM_NCLBUTTONDOWN:
            if (wParam == HTCAPTION) {
                DragOwner(lParam);
                return 0;
            }
            break;
        case WM_LBUTTONDOWN: {
            // The hit was found before the button counted as held.
            POINT point = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
            ClientToScreen(window, &point);
            DragOwner(MAKELPARAM(point.x, point.y));
            return 0;
        }
        default:
            break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

void PreviewWindow::OnDeviceChange(WPARAM wParam, LPARAM lParam) const {
    const auto* header = reinterpret_cast<const DEV_BROADCAST_HDR*>(lParam);
    if (wParam == DBT_DEVICEREMOVECOMPLETE && header && header->dbch_devicetype == DBT_DEVTYP_DEVICEINTERFACE &&
        events_.deviceRemoved)
        events_.deviceRemoved(reinterpret_cast<const DEV_BROADCAST_DEVICEINTERFACE_W*>(lParam)->dbcc_name);
}

void PreviewWindow::DragOwner(LPARAM screenPoint) const {
    // A click on any other part of the program would bring it to the front.
    const bool enabled = IsWindowEnabled(owner_) != FALSE;
    SetForegroundWindow(enabled ? owner_ : GetLastActivePopup(owner_));
    // Not while a message box stands over the main window.
    if (!enabled)
        return;
    ReleaseCapture();
    SendMessageW(owner_, WM_NCLBUTTONDOWN, HTCAPTION, screenPoint);
}
