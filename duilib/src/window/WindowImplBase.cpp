#include "DuiLib/WindowImplBase.h"

#include <windowsx.h>

#include "DuiLib/ControlUI.h"
#include "DuiLib/DialogBuilder.h"
#include "DuiLib/Theme.h"
#include "DuiLib/UICulture.h"
#include "suite/logger/QxLogger.h"
#include "window/WindowShape.h"

namespace DuiLib {
namespace {

constexpr int kSizingBorderDip = 6;
constexpr UINT kDrawThemedCaption = 0x00AE;  // sent by the system's own frame drawing; not in the headers
constexpr UINT kDrawThemedFrame = 0x00AF;

}  // namespace

WindowImplBase::~WindowImplBase() {
    if (GetHWND()) {
        DestroyWindow(GetHWND());
    }
}

void WindowImplBase::Notify(TNotifyUI& msg) {
    if (msg.type == NotifyType::kTextSizeChanged) {
        FollowTextSize();
    }
    DispatchNotify(msg);
}

bool WindowImplBase::FilterMessage(UINT, WPARAM, LPARAM, LRESULT&) {
    return false;
}

std::unique_ptr<CControlUI> WindowImplBase::CreateControl(const std::wstring&) {
    return nullptr;
}

std::wstring WindowImplBase::QueryControlText(const std::wstring& key) {
    return UICulture::GetInstance()->GetString(key);
}

const CNotifyPump::NotifyMap& WindowImplBase::GetMessageMap() const {
    static const NotifyMap map{Bind(NotifyType::kClick, nullptr, &WindowImplBase::OnClick)};
    return map;
}

LRESULT WindowImplBase::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    bool handled = true;
    LRESULT result = 0;
    switch (message) {
        case WM_CREATE:
            result = OnCreate(wParam, lParam, handled);
            break;
        case WM_CLOSE:
            result = OnClose(wParam, lParam, handled);
            break;
        case WM_DESTROY:
            result = OnDestroy(wParam, lParam, handled);
            break;
        case WM_NCHITTEST:
            result = OnNcHitTest(wParam, lParam, handled);
            break;
        case WM_MOUSEMOVE:
            paintManager_.TrackMouseLeave();
            result = OnMouseMove(wParam, lParam, handled);
            break;
        case WM_MOUSELEAVE:
            result = OnMouseLeave(wParam, lParam, handled);
            break;
        case WM_LBUTTONDOWN:
            result = OnLButtonDown(wParam, lParam, handled);
            break;
        case WM_LBUTTONUP:
            paintManager_.ReleaseSystemCapture();
            result = OnLButtonUp(wParam, lParam, handled);
            if (handled) {
                paintManager_.CancelCapture();
            }
            break;
        case WM_KILLFOCUS:
            result = OnKillFocus(wParam, lParam, handled);
            break;
        case WM_SHOWWINDOW:
            // What the window says was set since it was made.
            if (wParam != FALSE && UITheme::GetInstance()->GetTextPercent() > 100) {
                FollowTextSize();
            }
            handled = false;
            break;
        case WM_SIZE:
            result = OnSize(wParam, lParam, handled);
            break;
        case WM_DPICHANGED:
            result = OnDpiChanged(wParam, lParam, handled);
            break;
        case WM_GETDPISCALEDSIZE:
            handled = TellScaledSize(static_cast<int>(wParam), *reinterpret_cast<SIZE*>(lParam));
            result = TRUE;
            break;
        case WM_ENTERSIZEMOVE:
            dragged_ = true;
            handled = false;
            break;
        case WM_EXITSIZEMOVE:
            dragged_ = false;
            FollowScreen(false);
            handled = false;
            break;
        case WM_WINDOWPOSCHANGED:
            if (fitLater_ || (reinterpret_cast<const WINDOWPOS*>(lParam)->flags & SWP_NOMOVE) == 0) {
                FollowScreen(fitLater_);
            }
            handled = false;
            break;
        case WM_DISPLAYCHANGE:
            FollowScreen(true);
            handled = false;
            break;
        case WM_SETTINGCHANGE:
            if (wParam == SPI_SETWORKAREA) {
                FollowScreen(true);
            }
            handled = false;
            break;
        case WM_NCCALCSIZE:
            // The proposed window rectangle becomes the client area as it is. A maximised window with a frame is larger
            // than its monitor, and is cut down to what can be seen.
            if (wParam != FALSE && IsZoomed(GetHWND())) {
                MONITORINFO info{};
                info.cbSize = sizeof(info);
                if (GetMonitorInfoW(MonitorFromWindow(GetHWND(), MONITOR_DEFAULTTONEAREST), &info)) {
                    reinterpret_cast<NCCALCSIZE_PARAMS*>(lParam)->rgrc[0] = info.rcWork;
                }
            }
            return 0;
        case WM_SYSCOMMAND:
            handled = IsRefused(wParam & 0xFFF0, lParam);  // the low four bits are the system's own
            break;
        case WM_NCACTIVATE:
            return DefWindowProcW(GetHWND(), message, wParam, -1);  // -1: without drawing the frame
        case WM_NCPAINT:
        case kDrawThemedCaption:
        case kDrawThemedFrame:
            return 0;
        default:
            handled = false;
            break;
    }
    if (handled || paintManager_.MessageHandler(message, wParam, lParam, result)) {
        return result;
    }
    return CWindowWnd::HandleMessage(message, wParam, lParam);
}

LRESULT WindowImplBase::OnCreate(WPARAM, LPARAM, bool&) {
    const HWND window = GetHWND();
    paintManager_.Init(window);
    paintManager_.AddNotifier(this);
    paintManager_.AddMessageFilter(this);
    paintManager_.SetQueryControlText(this);
    // An empty window still closes, moves and minimises.
    paintManager_.AttachDialog(CDialogBuilder().Create(GetSkinFile(), L"Window", this, &paintManager_));
    TakeScreen();

    UINT flags = SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED;
    const Size px = WantedSizePx();
    if (px == Size{}) {
        flags |= SWP_NOSIZE;
    }
    LONG_PTR unwanted = IsResizable() ? 0 : WS_THICKFRAME | WS_MAXIMIZEBOX;
    if (GetWindow(window, GW_OWNER)) {
        // Minimised alone, a modal window would leave its owner disabled. Windows' own commands look for the box.
        unwanted |= WS_MINIMIZEBOX;
    }
    SetWindowLongPtrW(window, GWL_STYLE, GetWindowLongPtrW(window, GWL_STYLE) & ~unwanted);
    SetWindowPos(window, nullptr, 0, 0, px.cx, px.cy, flags);
    ApplyShape();
    InitWindow();
    return 0;
}

LRESULT WindowImplBase::OnClose(WPARAM, LPARAM, bool& handled) {
    handled = false;
    return 0;
}

LRESULT WindowImplBase::OnDestroy(WPARAM, LPARAM, bool& handled) {
    handled = false;
    return 0;
}

LRESULT WindowImplBase::OnNcHitTest(WPARAM wParam, LPARAM lParam, bool&) {
    if (const LRESULT early = OnNcPreHitTest(wParam, lParam)) {
        return early;
    }
    POINT p{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    ScreenToClient(GetHWND(), &p);
    const CControlUI* const control = paintManager_.FindControl(p);
    return control && control->IsNcHit() ? HTCAPTION : HTCLIENT;
}

LRESULT WindowImplBase::OnNcPreHitTest(WPARAM, LPARAM lParam) {
    const HWND window = GetHWND();
    RECT rect{};
    if (!IsResizable() || IsZoomed(window) || !GetWindowRect(window, &rect)) {
        return 0;
    }
    const int border = DipToPx(kSizingBorderDip, paintManager_.GetDPI());
    const int x = GET_X_LPARAM(lParam);
    const int y = GET_Y_LPARAM(lParam);
    const int column = x < rect.left + border ? 0 : x >= rect.right - border ? 2 : 1;
    const int row = y < rect.top + border ? 0 : y >= rect.bottom - border ? 2 : 1;
    static constexpr LRESULT kHits[3][3] = {
        {HTTOPLEFT, HTTOP, HTTOPRIGHT}, {HTLEFT, 0, HTRIGHT}, {HTBOTTOMLEFT, HTBOTTOM, HTBOTTOMRIGHT}};
    return kHits[row][column];
}

LRESULT WindowImplBase::OnMouseMove(WPARAM, LPARAM, bool& handled) {
    handled = false;
    return 0;
}

LRESULT WindowImplBase::OnMouseLeave(WPARAM, LPARAM, bool& handled) {
    handled = false;
    return 0;
}

LRESULT WindowImplBase::OnLButtonDown(WPARAM, LPARAM, bool& handled) {
    handled = false;
    return 0;
}

LRESULT WindowImplBase::OnLButtonUp(WPARAM, LPARAM, bool& handled) {
    handled = false;
    return 0;
}

LRESULT WindowImplBase::OnKillFocus(WPARAM, LPARAM, bool& handled) {
    handled = false;
    return 0;
}

LRESULT WindowImplBase::OnSize(WPARAM wParam, LPARAM, bool& handled) {
    handled = false;
    if (wParam != SIZE_MINIMIZED) {
        ApplyShape();
    }
    return 0;
}

LRESULT WindowImplBase::OnDpiChanged(WPARAM wParam, LPARAM lParam, bool&) {
    FollowDpi(wParam, lParam);
    return 0;
}

void WindowImplBase::ApplyShape() {
    ApplyWindowShape(GetHWND(), DipToPx(paintManager_.GetWindowSpec().roundCornerDip, paintManager_.GetDPI()));
}

bool WindowImplBase::IsRefused(WPARAM command, LPARAM key) {
    switch (command) {
        case SC_KEYMENU:
            // Alt or F10 alone would open a menu that nobody sees, and swallow the next key. Alt+Space opens one.
            return key == 0;
        case SC_MAXIMIZE:
        case SC_SIZE:
            return !IsResizable();
        case SC_MINIMIZE:
            return GetWindow(GetHWND(), GW_OWNER) != nullptr;
        case SC_CLOSE:
            return IsModal() && PressCancelButton();
        default:
            return false;
    }
}

void WindowImplBase::OnModal(bool begins) {
    NotifyWinEvent(begins ? EVENT_SYSTEM_DIALOGSTART : EVENT_SYSTEM_DIALOGEND, GetHWND(), OBJID_CLIENT, CHILDID_SELF);
    if (begins && !paintManager_.GetFocus()) {
        if (CControlUI* const button = paintManager_.FindControl(paintManager_.GetWindowSpec().defaultButton)) {
            button->SetFocus();
        }
    }
}

bool WindowImplBase::PressCancelButton() {
    paintManager_.UpdateLayout();
    CControlUI* const button = paintManager_.FindControl(paintManager_.GetWindowSpec().cancelButton);
    if (!button || !button->IsShown() || !button->IsEnabledInTree()) {
        return false;
    }
    button->DoDefaultAction();
    return true;
}

bool WindowImplBase::IsResizable() {
    // With neither limit, or with both the same, the window has one size.
    return paintManager_.GetWindowSpec().minSizeDip != paintManager_.GetWindowSpec().maxSizeDip;
}

}  // namespace DuiLib
