#include "windows/ToolTipWnd.h"

#include <algorithm>

#include "DuiLib/LabelUI.h"
#include "DuiLib/RenderEngine.h"
#include "suite/logger/QxLogger.h"

namespace {

constexpr int kHeightDip = 104;
constexpr int kBubbleRadiusDip = 6;
constexpr int kMarginDip = 60;  // what the popup is wider than its text
constexpr DWORD kStyle = 0x80000001;
constexpr UINT kSizeFlags = SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOOWNERZORDER;
constexpr UINT kShowFlags = SWP_NOZORDER | SWP_NOACTIVATE | SWP_SHOWWINDOW | SWP_NOOWNERZORDER | SWP_NOSENDCHANGING;

}  // namespace

ToolTipWnd& ToolTipWnd::GetInstance(DuiLib::CPaintManagerUI* paintManager) {
    static ToolTipWnd instance(L"CUSTOM_TOOL_TIP_CLASS");
    instance.Prepare(paintManager);
    return instance;
}

void ToolTipWnd::Prepare(DuiLib::CPaintManagerUI* paintManager) {
    if (!paintManager) {
        return;
    }
    const UINT dpi = static_cast<UINT>(paintManager->GetDPI());
    if (!owner_) {
        owner_ = paintManager;
    }
    if (IsWindowEnabled(GetHWND()) && dpi_ == dpi) {
        return;
    }

    if (IsWindow(GetHWND())) {
        anchor_ = nullptr;
        DestroyWindow(GetHWND());
    }
    dpi_ = dpi;
    Create(paintManager->GetPaintWindow(), title_, kStyle, WS_EX_TOPMOST);
    PaintManager().SetDPI(static_cast<int>(dpi));
}

void ToolTipWnd::SetToolTipText(const std::wstring& text) {
    constexpr wchar_t kFunction[] = L"ToolTipWnd::SetToolTipText";
    if (!IsWindow(GetHWND())) {
        LogLine(LogLevel::kError, kFunction, L"paintMgr nullptr");
        return;
    }
    DuiLib::CControlUI* control = PaintManager().FindControl(L"tooltip_text");
    if (!control) {
        LogLine(LogLevel::kError, kFunction, L"exist control nullptr");
        return;
    }
    control->SetText(text);
    control->Invalidate();
}

int ToolTipWnd::GetToolTipWidth() {
    constexpr wchar_t kFunction[] = L"ToolTipWnd::GetToolTipWidth";
    if (!IsWindow(GetHWND())) {
        LogLine(LogLevel::kError, kFunction, L"paintMgr nullptr");
        return 0;
    }
    const auto* control = PaintManager().FindControlAs<DuiLib::CLabelUI>(L"tooltip_text");
    if (!control) {
        LogLine(LogLevel::kError, kFunction, L"exist control nullptr");
        return 0;
    }
    DuiLib::Rect rect;
    DuiLib::CRenderEngine::DrawText(PaintManager().GetPaintDC(), &PaintManager(), rect, control->GetText(), 0,
                                    control->GetFont(), DT_CALCRECT);
    return DuiLib::PxToDip(rect.Width(), OwnerDpi()) + kMarginDip;
}

int ToolTipWnd::OwnerDpi() const {
    return owner_ ? owner_->GetDPI() : 96;
}

void ToolTipWnd::SetPosition(int dxPx, int dyPx) {
    if (!anchor_) {
        return;
    }
    RECT owner = {};
    GetWindowRect(GetParent(GetHWND()), &owner);
    xPx_ = owner.left + anchor_->GetPos().left + dxPx;
    yPx_ = owner.top + anchor_->GetPos().top + dyPx;
}

void ToolTipWnd::Show(bool visible) {
    if ((IsWindowVisible(GetHWND()) != FALSE) == visible) {
        return;
    }
    if (!visible) {
        anchor_ = nullptr;
        ShowWindow(false, false);
        return;
    }
    if (!IsWindow(GetHWND())) {
        LogLine(LogLevel::kError, L"ToolTipWnd::Show", L"paintMgr nullptr");
        return;
    }
    // A hint that cannot tell its width is as wide as one without a text.
    const int widthPx = DuiLib::DipToPx(std::max(GetToolTipWidth(), kMarginDip), OwnerDpi());
    const int heightPx = DuiLib::DipToPx(kHeightDip, OwnerDpi());
    // Sized and cut before anybody sees it.
    SetWindowPos(GetHWND(), nullptr, xPx_, yPx_, widthPx, heightPx, kSizeFlags);
    CutToBubble();
    SetWindowPos(GetHWND(), HWND_TOPMOST, xPx_, yPx_, widthPx, heightPx, kShowFlags);
    SetFocus(GetParent(GetHWND()));
}

void ToolTipWnd::CutToBubble() {
    PaintManager().UpdateLayout();
    const DuiLib::CControlUI* bubble = PaintManager().FindControl(L"tooltip_bubble");
    if (!bubble) {
        return;
    }
    const DuiLib::Rect& px = bubble->GetPos();
    const int cornerPx = DuiLib::DipToPx(2 * kBubbleRadiusDip, OwnerDpi());
    // The region is the system's from here on; its right and bottom edges are not part of it.
    SetWindowRgn(GetHWND(), CreateRoundRectRgn(px.left, px.top, px.right + 1, px.bottom + 1, cornerPx, cornerPx), TRUE);
}

void ToolTipWnd::Notify(DuiLib::TNotifyUI& msg) {
    if (msg.type == DuiLib::NotifyType::kTextSizeChanged) {
        Show(false);  // it has the width of its text
    }
    WindowImplBase::Notify(msg);
}

LRESULT ToolTipWnd::OnMouseLeave(WPARAM, LPARAM, bool& handled) {
    handled = false;
    POINT cursor = {};
    if (!GetCursorPos(&cursor)) {
        return 0;
    }
    RECT parent = {};
    GetWindowRect(GetParent(GetHWND()), &parent);
    const POINT inOwner{cursor.x - parent.left, cursor.y - parent.top};
    const DuiLib::CControlUI* under = owner_ ? owner_->FindControl(inOwner) : nullptr;
    if (!anchor_ || under != anchor_) {
        Show(false);
    }
    return 0;
}

LRESULT ToolTipWnd::OnMouseMove(WPARAM, LPARAM, bool&) {
    Show(false);
    return 0;
}

// It has the scale of its owner, which hides it when that changes.
LRESULT ToolTipWnd::OnDpiChanged(WPARAM, LPARAM, bool&) {
    return 0;
}
