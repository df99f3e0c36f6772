#include "window/ToolTip.h"

#include <commctrl.h>

#include "DuiLib/PaintManagerUI.h"
#include "suite/common/SystemLibrary.h"
#include "suite/logger/QxLogger.h"

namespace DuiLib {
namespace {

constinit suite::SystemLibrary comctl32(L"comctl32.dll");
constinit suite::SystemFunction<decltype(&InitCommonControlsEx)> initCommonControls(comctl32, "InitCommonControlsEx");

TTTOOLINFOW ToolInfo(HWND window) {
    TTTOOLINFOW info{};
    info.cbSize = TTTOOLINFOW_V2_SIZE;  // known to every version of the control, with and without a manifest
    info.hwnd = window;
    info.uId = 1;
    return info;
}

}  // namespace

bool ToolTip::Create(HWND window, bool rightToLeft) {
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
    TTTOOLINFOW info = ToolInfo(window);
    info.uFlags = rightToLeft ? TTF_RTLREADING : 0;
    info.lpszText = const_cast<wchar_t*>(L"");
    SendMessageW(toolTip_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&info));
    return true;
}

void ToolTip::Set(HWND window, const Rect& px, const std::wstring& text, bool rightToLeft, int maxWidthPx) {
    if (text.empty()) {
        Clear();
        return;
    }
    if (!toolTip_ && !Create(window, rightToLeft)) {
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
