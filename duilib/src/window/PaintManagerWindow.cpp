// A paint manager and its window: messages, layout, painting and DPI.
#include <algorithm>

#include "DuiLib/Theme.h"
#include "paint/Canvas.h"
#include "suite/common/SystemLibrary.h"
#include "suite/logger/QxLogger.h"
#include "window/FlagScope.h"
#include "window/PaintManagerImpl.h"

namespace DuiLib {
namespace {

// A change of size or text may ask for another round while it is being arranged; more than this is a control that
// never comes to rest.
constexpr int kMaxLayoutRounds = 3;
constexpr int kMinDpi = 48;
constexpr int kMaxDpi = 960;
constexpr DWORD kOpaque = 0xFF000000;

constinit suite::SystemLibrary oleacc(L"oleacc.dll");
constinit suite::SystemFunction<decltype(&LresultFromObject)> lresultFromObject(oleacc, "LresultFromObject");

class PaintScope {
  public:
    explicit PaintScope(HWND window) : window_(window) { BeginPaint(window, &paint_); }
    ~PaintScope() { EndPaint(window_, &paint_); }
    PaintScope(const PaintScope&) = delete;
    PaintScope& operator=(const PaintScope&) = delete;

    HDC GetDC() const { return paint_.hdc; }
    Rect UpdatePx() const {
        const RECT& r = paint_.rcPaint;
        return {static_cast<int>(r.left), static_cast<int>(r.top), static_cast<int>(r.right),
                static_cast<int>(r.bottom)};
    }

  private:
    HWND window_;
    PAINTSTRUCT paint_{};
};

}  // namespace

Size CPaintManagerUI::Impl::ClientSizePx() const {
    RECT client{};
    GetClientRect(window, &client);
    return {static_cast<int>(client.right), static_cast<int>(client.bottom)};
}

Rect CPaintManagerUI::Impl::ClientRectPx() const {
    return {0, 0, sizePx.cx, sizePx.cy};
}

void CPaintManagerUI::Impl::UpdateLayout() {
    if (!layoutNeeded || arranging || !root || sizePx.cx <= 0 || sizePx.cy <= 0) {
        return;
    }
    const FlagScope scope(arranging);
    for (int round = 0; layoutNeeded && round < kMaxLayoutRounds; ++round) {
        layoutNeeded = false;
        root->SetPos(ClientRectPx());
    }
    layoutNeeded = false;
    treeChanged = true;
}

void CPaintManagerUI::Impl::ReadPicturesAhead() {
    if (root && root->IsVisible()) {
        // Painted on nothing: each control asks for the pictures of its present state.
        images.ReadAhead([this] {
            Canvas nothing(nullptr, nullptr, {}, {});
            root->Paint(nothing, root->GetPos());
        });
    }
}

bool CPaintManagerUI::Impl::Render() {
    if (sizePx.cx <= 0 || sizePx.cy <= 0) {
        return false;
    }
    if (buffer.IsEmpty() || buffer.GetSize() != sizePx) {
        if (!buffer.Resize(sizePx)) {
            return false;
        }
        dirty.Add(ClientRectPx());
    }
    if (treeChanged || images.IsFresh()) {
        ReadPicturesAhead();
    }
    UITheme& theme = *UITheme::GetInstance();
    const int borderPx = std::max(1, DipToPx(1, dpi));
    for (const Rect& px : dirty.Take()) {
        Canvas canvas(buffer.GetDC(), buffer.Bits(), sizePx, px);
        canvas.FillRect(px, theme.Painted(spec.bkColor, ColorUse::kGround) | kOpaque);
        if (root && root->IsVisible() && !root->GetPos().Intersect(px).IsEmpty()) {
            root->Paint(canvas, root->GetPos().Intersect(px));
        }
        canvas.StrokeRect(ClientRectPx(), theme.Painted(spec.borderColor, ColorUse::kLine), borderPx,
                          DipToPx(spec.roundCornerDip, dpi));
    }
    return true;
}

void CPaintManagerUI::Impl::InvalidateAll() {
    owner.Invalidate(ClientRectPx());
}

void CPaintManagerUI::Impl::RenewFonts() {
    input.DropToolTip();  // it has one of the fonts
    fonts.Renew(dpi);
    ++fontGeneration;
    owner.NeedUpdate();
    InvalidateAll();
}

void CPaintManagerUI::Impl::OnThemeChanged(const ThemeChange& change) {
    input.DropToolTip();
    if (change.text) {
        RenewFonts();
    }
    if (change.look) {
        images.OnThemeChanged();
        InvalidateAll();
        if (window) {
            UITheme::GetInstance()->ApplyToFrame(window);
        }
    }
    if (change.textSize) {
        owner.SendNotify(root.get(), NotifyType::kTextSizeChanged);
    }
}

void CPaintManagerUI::Impl::OnSize(WPARAM kind) {
    const Size px = ClientSizePx();
    // A minimised window keeps its pixels and its arrangement, and so comes back as it was.
    if (kind == SIZE_MINIMIZED || px.cx <= 0 || px.cy <= 0 || px == sizePx) {
        return;
    }
    sizePx = px;
    owner.NeedUpdate();
    InvalidateAll();
}

void CPaintManagerUI::Impl::OnGetMinMaxInfo(MINMAXINFO& info) const {
    // The system's own minimum has room for a frame that these windows do not draw.
    info.ptMinTrackSize = {std::max(1, DipToPx(spec.minSizeDip.cx, dpi)),
                           std::max(1, DipToPx(spec.minSizeDip.cy, dpi))};
    if (spec.maxSizeDip.cx > 0) {
        info.ptMaxTrackSize.x = DipToPx(spec.maxSizeDip.cx, dpi);
    }
    if (spec.maxSizeDip.cy > 0) {
        info.ptMaxTrackSize.y = DipToPx(spec.maxSizeDip.cy, dpi);
    }
}

LRESULT CPaintManagerUI::Impl::OnGetObject(WPARAM wParam, LPARAM lParam) {
    // The identifier is a 32-bit number; some senders extend its sign and some do not.
    if (static_cast<LONG>(lParam) != OBJID_CLIENT) {
        return 0;
    }
    if (!accessible) {
        accessible = suite::ComReference<WindowAccessible>(new WindowAccessible(owner));
    }
    return lresultFromObject.CallOr(0, IID_IAccessible, wParam, accessible.Get());
}

void CPaintManagerUI::Impl::OnWindowGone() {
    live.ClearAll(window);
    if (accessible) {
        accessible->Disconnect();
        accessible.Reset();
    }
    input.OnWindowGone();
    window = nullptr;
}

bool CPaintManagerUI::MessageHandler(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    Impl& impl = *impl_;
    if (!impl.window) {
        return false;
    }
    const RetiredControls::Scope scope(impl.retired);
    const std::vector<IMessageFilterUI*> filters = impl.filters;
    for (IMessageFilterUI* filter : filters) {
        if (std::find(impl.filters.begin(), impl.filters.end(), filter) != impl.filters.end() &&
            filter->FilterMessage(message, wParam, lParam, result)) {
            return true;
        }
    }
    result = 0;
    switch (message) {
        case WM_ERASEBKGND:
            result = TRUE;
            return true;
        case WM_PAINT:
            OnWM_PAINT();
            return true;
        case WM_PRINTCLIENT:
            PaintTo(reinterpret_cast<HDC>(wParam));
            return true;
        case WM_SIZE:
            impl.OnSize(wParam);
            return false;
        case WM_GETMINMAXINFO:
            impl.OnGetMinMaxInfo(*reinterpret_cast<MINMAXINFO*>(lParam));
            return true;
        case WM_DPICHANGED:
            OnDpiChanged(wParam, lParam);
            return true;
        case WM_GETOBJECT:
            result = impl.OnGetObject(wParam, lParam);
            return result != 0;
        case WM_SETTINGCHANGE:
            impl.input.ReadSettings();
            [[fallthrough]];
        case WM_SYSCOLORCHANGE:
        case WM_THEMECHANGED:
            // What the message says of the setting is not relied on: most senders name none, or another one.
            UITheme::GetInstance()->Reread();
            return false;
        case WM_FONTCHANGE:
            impl.RenewFonts();
            return false;
        case WM_NCDESTROY:
            impl.OnWindowGone();
            return false;
        default:
            break;
    }
    if (message == DefaultActionMessage()) {
        if (CControlUI* const control = FindControlById(static_cast<long>(lParam))) {
            control->DoDefaultAction();
        }
        return true;
    }
    return impl.input.OnMessage(message, wParam, lParam, result);
}

void CPaintManagerUI::OnWM_PAINT() {
    Impl& impl = *impl_;
    if (!impl.window) {
        return;
    }
    const RetiredControls::Scope scope(impl.retired);
    const bool minimised = IsIconic(impl.window) != FALSE;
    if (!minimised) {
        // Before BeginPaint, so that what the arrangement moves is part of this paint.
        impl.UpdateLayout();
    }
    {
        const PaintScope paint(impl.window);
        if (!minimised && impl.Render()) {
            impl.buffer.CopyTo(paint.GetDC(), paint.UpdatePx());
        }
    }
    if (impl.treeChanged && !minimised) {
        impl.treeChanged = false;
        impl.input.OnTreeChanged();
    }
}

void CPaintManagerUI::PaintTo(HDC dc) {
    impl_->UpdateLayout();
    if (impl_->Render()) {
        impl_->buffer.CopyTo(dc, impl_->ClientRectPx());
    }
}

int CPaintManagerUI::GetDPI() const {
    return impl_->dpi;
}

void CPaintManagerUI::SetDPI(int dpi) {
    impl_->dpi = std::clamp(dpi, kMinDpi, kMaxDpi);
    impl_->images.SetDpi(impl_->dpi);
    impl_->RenewFonts();
}

void CPaintManagerUI::OnDpiChanged(WPARAM wParam, LPARAM lParam) {
    const HWND window = impl_->window;
    if (!window) {
        return;
    }
    const int former = impl_->dpi;
    const int told = LOWORD(wParam);
    SetDPI(told != 0 ? told : static_cast<int>(GetDpiForWindow(window)));
    const UINT flags = SWP_NOZORDER | SWP_NOACTIVATE;
    if (const RECT* const suggested = reinterpret_cast<const RECT*>(lParam)) {
        SetWindowPos(window, nullptr, suggested->left, suggested->top, suggested->right - suggested->left,
                     suggested->bottom - suggested->top, flags);
        return;
    }
    RECT place{};
    GetWindowRect(window, &place);
    SetWindowPos(window, nullptr, 0, 0, ScaleBy(place.right - place.left, impl_->dpi, former),
                 ScaleBy(place.bottom - place.top, impl_->dpi, former), flags | SWP_NOMOVE);
}

void CPaintManagerUI::Invalidate(const Rect& px) {
    const Rect seen = px.Intersect(impl_->ClientRectPx());
    if (seen.IsEmpty()) {
        return;
    }
    impl_->dirty.Add(seen);
    if (impl_->window) {
        const RECT rect{seen.left, seen.top, seen.right, seen.bottom};
        InvalidateRect(impl_->window, &rect, FALSE);
    }
}

void CPaintManagerUI::NeedUpdate() {
    if (impl_->layoutNeeded) {
        return;
    }
    impl_->layoutNeeded = true;
    if (impl_->window && !impl_->arranging) {
        // A paint message without an update region: what the arrangement moves invalidates itself.
        RedrawWindow(impl_->window, nullptr, nullptr, RDW_INTERNALPAINT);
    }
}

void CPaintManagerUI::UpdateLayout() {
    impl_->UpdateLayout();
}

void CPaintManagerUI::ReadPicturesAhead() {
    impl_->UpdateLayout();
    impl_->ReadPicturesAhead();
}

}  // namespace DuiLib
