#include "DuiLib/WindowWnd.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "DuiLib/PaintManagerUI.h"
#include "suite/logger/QxLogger.h"
#include "window/StartPlace.h"

namespace DuiLib {

namespace {

// What is open in front of a window that is disabled: a modal window or a dialog of the system. A hint or a picture,
// which the window owns too, has no menu of the system. REQUIRES: the window is disabled.
HWND ModalWindowOf(HWND owner) {
    struct Search {
        HWND owner;
        HWND found;
    } search{owner, nullptr};
    const auto look = [](HWND window, LPARAM parameter) -> BOOL {
        auto& searched = *reinterpret_cast<Search*>(parameter);
        const auto style = static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE));
        if ((style & WS_SYSMENU) != 0 && IsWindowVisible(window) && IsWindowEnabled(window)) {
            HWND below = window;
            while (below && below != searched.owner) {
                below = GetWindow(below, GW_OWNER);
            }
            searched.found = below ? window : nullptr;
        }
        return searched.found == nullptr;
    };
    EnumThreadWindows(GetCurrentThreadId(), look, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

}  // namespace

struct CWindowWnd::ModalLoop {
    HWND owner = nullptr;  // null when there is none to enable again
    UINT result = 0;
    bool done = false;
};

CWindowWnd::~CWindowWnd() {
    if (hwnd_) {
        DestroyWindow(hwnd_);
    }
    DestroyIcons();
}

bool CWindowWnd::RegisterWindowClass() {
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof(wc);
    wc.style = GetClassStyle();
    wc.lpfnWndProc = WindowProc;
    wc.hInstance = CPaintManagerUI::GetInstance();
    wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    wc.lpszClassName = GetWindowClassName();
    // Several kinds of windows may share one class name.
    return RegisterClassExW(&wc) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

HWND CWindowWnd::Create(HWND parent, const std::wstring& title, DWORD style, DWORD exStyle, int x, int y, int cx,
                        int cy, HMENU menu) {
    if (hwnd_) {
        DestroyWindow(hwnd_);
    }
    if (!RegisterWindowClass()) {
        LogLine(LogLevel::kError, L"CWindowWnd::Create", L"No window class, error code: ", GetLastError());
        return nullptr;
    }
    if (x == CW_USEDEFAULT) {
        const POINT place = StartPlace(parent);
        x = place.x;
        y = place.y;
    }
    const HWND created = CreateWindowExW(exStyle, GetWindowClassName(), title.c_str(), style, x, y, cx, cy, parent,
                                         menu, CPaintManagerUI::GetInstance(), this);
    if (!created) {
        LogLine(LogLevel::kError, L"CWindowWnd::Create", L"No window, error code: ", GetLastError());
    }
    return created;
}

LRESULT CALLBACK CWindowWnd::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto* const created = static_cast<CWindowWnd*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        created->hwnd_ = hwnd;
        created->gone_ = false;
        SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created));
    }
    auto* const self = reinterpret_cast<CWindowWnd*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    if (!self) {
        return DefWindowProcW(hwnd, message, wParam, lParam);
    }
    ++self->depth_;
    const LRESULT result = self->Guarded(message, wParam, lParam);
    if (message == WM_NCDESTROY) {
        SetWindowLongPtrW(hwnd, GWLP_USERDATA, 0);
        self->hwnd_ = nullptr;
        self->gone_ = true;
        if (ModalLoop* const modal = std::exchange(self->modal_, nullptr)) {
            modal->done = true;
            // The loop may be waiting for a message while the window ends by one that was sent.
            ::PostMessageW(nullptr, WM_NULL, 0, 0);
        }
    }
    if (--self->depth_ == 0 && self->gone_) {
        self->gone_ = false;
        try {
            self->OnFinalMessage(hwnd);
        } catch (...) {
            LogLine(LogLevel::kError, L"CWindowWnd::WindowProc", L"Unexpected exception in OnFinalMessage");
        }
    }
    return result;
}

LRESULT CWindowWnd::Guarded(UINT message, WPARAM wParam, LPARAM lParam) {
    try {
        if (message == WM_CLOSE && modal_) {
            modal_->result = static_cast<UINT>(wParam);
        } else if (message == WM_DESTROY) {
            if (modal_) {
                OnModal(false);
            }
            EnableOwner();
        }
        return HandleMessage(message, wParam, lParam);
    } catch (const std::exception& e) {
        LogLine(LogLevel::kError, L"CWindowWnd::WindowProc", L"Unexpected exception in message ", message, L": ",
                e.what());
    } catch (...) {
        LogLine(LogLevel::kError, L"CWindowWnd::WindowProc", L"Unexpected exception in message ", message);
    }
    if (message == WM_PAINT && hwnd_) {
        // What stays invalid is asked for again at once, for ever.
        ValidateRect(hwnd_, nullptr);
    }
    return 0;
}

LRESULT CWindowWnd::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_ACTIVATE && LOWORD(wParam) != WA_INACTIVE && !IsWindowEnabled(hwnd_)) {
        // Another program may activate a disabled window: whoever types would find it dead.
        if (const HWND modal = ModalWindowOf(hwnd_)) {
            SetActiveWindow(modal);
            return 0;
        }
    }
    if (message == WM_CLOSE) {
        // Before the window ends: the system gives the foreground to an enabled window only.
        EnableOwner();
    }
    return DefWindowProcW(hwnd_, message, wParam, lParam);
}

void CWindowWnd::OnFinalMessage(HWND) {}

void CWindowWnd::ShowWindow(bool show, bool takeFocus) {
    ::ShowWindow(hwnd_, show ? (takeFocus ? SW_SHOWNORMAL : SW_SHOWNOACTIVATE) : SW_HIDE);
}

UINT CWindowWnd::ShowModal() {
    if (!hwnd_ || modal_) {
        LogLine(LogLevel::kError, L"CWindowWnd::ShowModal", L"No window, or modal already");
        return 0;
    }
    // The object may be gone when the loop ends, so the loop looks at its own state only.
    ModalLoop modal;
    modal_ = &modal;
    const HWND owner = GetWindow(hwnd_, GW_OWNER);
    if (owner && IsWindowEnabled(owner)) {
        modal.owner = owner;
        EnableWindow(owner, FALSE);
    }
    ShowWindow();
    if (!modal.done) {
        OnModal(true);
    }
    while (!modal.done) {
        MSG msg{};
        const BOOL got = GetMessageW(&msg, nullptr, 0, 0);
        if (got > 0) {
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
            continue;
        }
        if (!modal.done) {
            DestroyWindow(hwnd_);
        }
        if (got == 0) {
            PostQuitMessage(static_cast<int>(msg.wParam));
        }
        break;
    }
    return modal.result;
}

void CWindowWnd::EnableOwner() {
    if (!modal_ || !modal_->owner) {
        return;
    }
    const HWND owner = std::exchange(modal_->owner, nullptr);
    EnableWindow(owner, TRUE);
    if (GetActiveWindow() == hwnd_) {
        SetActiveWindow(owner);
    }
}

void CWindowWnd::Close(UINT result) {
    if (hwnd_) {
        ::PostMessageW(hwnd_, WM_CLOSE, result, 0);
    }
}

void CWindowWnd::MoveIntoWorkArea(HMONITOR monitor, int x, int y, const SIZE* px) {
    MONITORINFO info{};
    info.cbSize = sizeof(info);
    RECT window{};
    if (!GetMonitorInfoW(monitor, &info) || !GetWindowRect(hwnd_, &window)) {
        return;
    }
    const RECT& work = info.rcWork;
    const SIZE size = px ? *px : SIZE{window.right - window.left, window.bottom - window.top};
    // A window larger than the area keeps its top left within it.
    const int left = std::max<int>(std::min<int>(x, work.right - size.cx), work.left);
    const int top = std::max<int>(std::min<int>(y, work.bottom - size.cy), work.top);
    SetWindowPos(hwnd_, nullptr, left, top, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE | (px ? 0 : SWP_NOSIZE));
}

void CWindowWnd::CenterWindow() {
    const HMONITOR monitor = MonitorFromWindow(hwnd_, MONITOR_DEFAULTTONEAREST);
    MONITORINFO info{};
    info.cbSize = sizeof(info);
    RECT window{};
    if (!GetMonitorInfoW(monitor, &info) || !GetWindowRect(hwnd_, &window)) {
        return;
    }
    const RECT& work = info.rcWork;
    MoveIntoWorkArea(monitor, (work.left + work.right - (window.right - window.left)) / 2,
                     (work.top + work.bottom - (window.bottom - window.top)) / 2);
}

void CWindowWnd::Center2ParentWindow() {
    const HWND owner = GetWindow(hwnd_, GW_OWNER);
    RECT around{};
    RECT window{};
    if (!owner || !IsWindowVisible(owner) || IsIconic(owner) || !GetWindowRect(owner, &around) ||
        !GetWindowRect(hwnd_, &window)) {
        CenterWindow();
        return;
    }
    MoveIntoWorkArea(MonitorFromWindow(owner, MONITOR_DEFAULTTONEAREST),
                     (around.left + around.right - (window.right - window.left)) / 2,
                     (around.top + around.bottom - (window.bottom - window.top)) / 2);
}

void CWindowWnd::SetIcon(UINT resourceId) {
    const UINT dpi = GetDpiForWindow(hwnd_);
    const auto load = [&](int metric) {
        const int size = GetSystemMetricsForDpi(metric, dpi);
        return static_cast<HICON>(LoadImageW(CPaintManagerUI::GetInstance(), MAKEINTRESOURCEW(resourceId), IMAGE_ICON,
                                             size, size, LR_DEFAULTCOLOR));
    };
    const HICON big = load(SM_CXICON);
    const HICON small = load(SM_CXSMICON);
    if (!big || !small) {
        LogLine(LogLevel::kError, L"CWindowWnd::SetIcon", L"No icon ", resourceId, L", error code: ", GetLastError());
    }
    ::SendMessageW(hwnd_, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(big));
    ::SendMessageW(hwnd_, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(small));
    DestroyIcons();
    bigIcon_ = big;
    smallIcon_ = small;
}

void CWindowWnd::DestroyIcons() {
    for (HICON* icon : {&bigIcon_, &smallIcon_}) {
        if (*icon) {
            DestroyIcon(*icon);
            *icon = nullptr;
        }
    }
}

LRESULT CWindowWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return ::SendMessageW(hwnd_, message, wParam, lParam);
}

bool CWindowWnd::PostMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return ::PostMessageW(hwnd_, message, wParam, lParam) != FALSE;
}

}  // namespace DuiLib
