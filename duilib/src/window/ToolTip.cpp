#include "window/ToolTip.h"

#include <commctrl.h>
#include <uxtheme.h>

#include "DuiLib/PaintManagerUI.h"
#include "DuiLib/Theme.h"
#include "suite/common/SystemLibrary.h"
#include "suite/logger/QxLogger.h"

namespace DuiLib {
namespace {

constinit suite::SystemLibrary comctl32(L"comctl32.dll");
constinit suite::SystemFunction<decltype(&InitCommonControlsEx)> initCommonControls(comctl32, "InitCommonControlsEx");
constinit suite::SystemLibrary uxtheme(L"uxtheme.dll");
constinit suite::SystemFunction<decltype(&SetWindowTheme)> setWindowTheme(uxtheme, "SetWindowTheme");

TTTOOLINFOW ToolInfo(HWND window) {
    TTTOOLINFOW info{};
    info.cbSize = TTTOOLINFOW_V2_SIZE;  // known to every version of the control, with and without a manifest
    info.hwnd = window;
    info.uId = 1;
    return info;
}

COLORREF ColorRef(DWORD argb) {
    return RGB((argb >> 16) & 0xFF, (argb >> 8) & 0xFF, argb & 0xFF);
}

// The system's own tooltips are light, or have the colours of a contrast theme.
void Darken(HWND toolTip) {
    UITheme& theme = *UITheme::GetInstance();
    if (theme.GetKind() != ThemeKind::kDark) {
        return;
    }
    // With visual styles the control has no colours of its own.
    setWindowTheme(toolTip, L"", L"");
    const DWORD ground = theme.Painted(theme.FindColor(L"hint").value_or(Color()), ColorUse::kGround);
    const DWORD text = theme.Painted(theme.FindColor(L"text").value_or(Color()), ColorUse::kText);
    SendMessageW(toolTip, TTM_SETTIPBKCOLOR, ColorRef(ground), 0);
    SendMessageW(toolTip, TTM_SETTIPTEXTCOLOR, ColorRef(text), 0);
}

}  // namespace

bool ToolTip::Create(HWND window, HFONT font, bool rightToLeft) {
    const INITCOMMONCONTROLSEX classes{sizeof(classes), ICC_BAR_CLASSES};
    initCommonControls.CallOr(FALSE, &classes);
    toolTip_ = CreateWindowExW(WS_EX_TOPMOST | WS_EX_TRANSPARENT | (rightToLeft ? WS_EX_LAYOUTRTL : 0), TOOLTIPS_CLASSW,
                               nullptr, WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, CW_USEDEFAULT, CW_USEDEFAULT,
                               CW_USEDEFAULT, CW_USEDEFAULT, window, nullptr, CPaintManagerUI::GetInstance(), nullptr);
    if (!toolTip_) {
        LogLine(LogLevel::kError, L"ToolTip::Create", L"No tooltip control, error code: ", GetLastError());
        return false;
    }
    window_ = window;
    Darken(toolTip_);
    SendMessageW(toolTip_, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    TTTOOLINFOW info = ToolInfo(window);
    info.uFlags = rightToLeft ? TTF_RTLREADING : 0;
    info.lpszText = const_cast<wchar_t*>(L"");
    SendMessageW(toolTip_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&info));
    return true;
}

void ToolTip::Set(HWND window, const Rect& px, const std::wstring& text, HFONT font, bool rightToLeft, int maxWidthPx) {
    if (text.empty()) {
        Clear();
        return;
    }
    if (!toolTip_ && !Create(window, font, rightToLeft)) {
        return;
    }
    if (text == text_ && px == px_) {
        return;
    }
    SendMessageW(toolTip_, TTM_POP, 0, 0);
    TTTOOLINFOW info = ToolInfo(window);
    info.rect = {px.left, px.top, px.right, px.bottom};
    SendMessageW(toolTip_, TTM_NEWTOOLRECTW, 0, reinterpret_cast<LPARAM>(&info));
    info.lpszText = const_cast<wchar_t*>(text.c_str());
    SendMessageW(toolTip_, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&info));
    SendMessageW(toolTip_, TTM_SETMAXTIPWIDTH, 0, maxWidthPx);
    SendMessageW(toolTip_, TTM_ACTIVATE, TRUE, 0);
    text_ = text;
    px_ = px;
}

void ToolTip::Clear() {
    if (!toolTip_ || text_.empty()) {
        return;
    }
    text_.clear();
    SendMessageW(toolTip_, TTM_ACTIVATE, FALSE, 0);
}

void ToolTip::Drop() {
    if (toolTip_) {
        DestroyWindow(toolTip_);
        Forget();
    }
}

void ToolTip::Relay(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!toolTip_ || text_.empty() || window != window_) {
        return;
    }
    MSG msg{window, message, wParam, lParam, static_cast<DWORD>(GetMessageTime()), {}};
    GetCursorPos(&msg.pt);
    SendMessageW(toolTip_, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&msg));
}

void ToolTip::Forget() {
    toolTip_ = nullptr;
    window_ = nullptr;
    text_.clear();
}

}  // namespace DuiLib
