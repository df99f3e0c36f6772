#include "DuiLib/ControlUI.h"

#include <oleacc.h>

#include <atomic>
#include <climits>

#include "DuiLib/ContainerUI.h"
#include "DuiLib/PaintManagerUI.h"
#include "DuiLib/Theme.h"
#include "DuiLib/UICulture.h"
#include "layout/ControlLimits.h"
#include "layout/LayoutArithmetic.h"
#include "layout/LiveEvent.h"
#include "markup/ImageAttribute.h"
#include "paint/Canvas.h"
#include "paint/ImageCache.h"
#include "suite/logger/QxLogger.h"

namespace DuiLib {
namespace {

// Widths of the focus ring's two lines, and the radius of a ring around square corners, in units.
constexpr int kFocusRingDip = 2;
constexpr int kFocusRingInnerDip = 1;
constexpr int kFocusRingRadiusDip = 4;

long NextId() {
    static std::atomic<long> last{0};
    return ++last;
}

}  // namespace

CControlUI::CControlUI() : id_(NextId()), maxSizeDip_{kNoLimitDip, kNoLimitDip} {}

CControlUI::~CControlUI() {
    if (manager_) {
        manager_->ControlRemoved(this);
    }
}

void CControlUI::SetManager(CPaintManagerUI* manager, CContainerUI* parent) {
    if (manager_ && manager_ != manager) {
        manager_->ControlRemoved(this);
    }
    if (manager_ != manager) {
        ForgetMeasured();
    }
    manager_ = manager;
    parent_ = parent;
}

void CControlUI::SetAttribute(std::wstring_view name, std::wstring_view value) {
    const AttributeResult result = ApplyAttribute(name, value);
    if (result != AttributeResult::kOk) {
        LogLine(LogLevel::kError, L"CControlUI::SetAttribute",
                result == AttributeResult::kUnknown ? L"unknown attribute " : L"bad value ", name, L"=\"", value,
                L"\" of ", GetClass(), L" ", name_);
    }
}

// --- text

void CControlUI::SetText(const std::wstring& text) {
    if (text_ == text) {
        return;
    }
    text_ = text;
    Invalidate();
    if (width_.kind != LengthDip::Kind::kFixed || height_.kind != LengthDip::Kind::kFixed) {
        NeedUpdate();
    }
    TellNameChanged();
}

void CControlUI::TellNameChanged() {
    if (manager_) {
        manager_->NotifyAccessible(this, EVENT_OBJECT_NAMECHANGE);
        if (accLive_) {
            manager_->NotifyAccessible(this, kLiveRegionChanged);
        }
    }
}

std::wstring CControlUI::ResolveText(std::wstring_view text) const {
    if (manager_) {
        return manager_->ResolveText(text);
    }
    return text.starts_with(L"IDS_") ? UICulture::GetInstance()->GetString(std::wstring(text)) : std::wstring(text);
}

// --- state

bool CControlUI::IsShown() const {
    for (const CControlUI* control = this; control; control = control->parent_) {
        if (!control->visible_ || control->IsCollapsed() || control->posPx_.IsEmpty()) {
            return false;
        }
    }
    return true;
}

void CControlUI::SetVisible(bool visible) {
    if (visible_ == visible) {
        return;
    }
    visible_ = visible;
    Invalidate();
    NeedUpdate();
    if (manager_) {
        manager_->NotifyAccessibleTree(*this, visible ? EVENT_OBJECT_SHOW : EVENT_OBJECT_HIDE);
    }
}

bool CControlUI::IsEnabledInTree() const {
    for (const CControlUI* control = this; control; control = control->parent_) {
        if (!control->IsEnabled()) {
            return false;
        }
    }
    return true;
}

void CControlUI::SetEnabled(bool enabled) {
    if (IsEnabled() == enabled) {
        return;
    }
    SetState(enabled ? state_ & ~kStateDisabled : state_ | kStateDisabled);
    if (manager_) {
        manager_->NeedUpdate();  // the focus must leave a disabled control
        manager_->NotifyAccessible(this, EVENT_OBJECT_STATECHANGE);
    }
}

void CControlUI::SetState(unsigned state) {
    if (state_ != state) {
        state_ = state;
        Invalidate();
    }
}

void CControlUI::SetFocus() {
    if (manager_) {
        manager_->SetFocus(this);
    }
}

bool CControlUI::CanHaveFocus() const {
    return keyboard_.value_or(FocusableByDefault()) && IsEnabledInTree() && IsShown();
}

// --- size

void CControlUI::ChangeLength(LengthDip& length, LengthDip value) {
    if (length != value) {
        length = value;
        NeedUpdate();
    }
}

void CControlUI::ChangeLimit(int& limit, int dip) {
    dip = std::max(0, dip);
    if (limit != dip) {
        const bool collapsed = IsCollapsed();
        limit = dip;
        if (manager_ && collapsed != IsCollapsed()) {
            manager_->NotifyAccessibleTree(*this, collapsed ? EVENT_OBJECT_SHOW : EVENT_OBJECT_HIDE);
        }
        Invalidate();  // what collapses is not arranged, so nothing else would repaint its place
        NeedUpdate();
    }
}

void CControlUI::SetFixedWidth(int dip) {
    ChangeLength(width_, {LengthDip::Kind::kFixed, std::max(0, dip)});
}

void CControlUI::SetFixedHeight(int dip) {
    ChangeLength(height_, {LengthDip::Kind::kFixed, std::max(0, dip)});
}

void CControlUI::SetMinWidth(int dip) {
    ChangeLimit(minSizeDip_.cx, dip);
}

void CControlUI::SetMaxWidth(int dip) {
    ChangeLimit(maxSizeDip_.cx, dip);
}

void CControlUI::SetMinHeight(int dip) {
    ChangeLimit(minSizeDip_.cy, dip);
}

void CControlUI::SetMaxHeight(int dip) {
    ChangeLimit(maxSizeDip_.cy, dip);
}

void CControlUI::SetPadding(const Rect& dip) {
    if (paddingDip_ != dip) {
        paddingDip_ = dip;
        NeedUpdate();
    }
}

bool CControlUI::GrowsNow() const {
    return growHeight_ && UITheme::GetInstance()->GetTextPercent() > 100;
}

int CControlUI::Dpi() const {
    return manager_ ? manager_->GetDPI() : 96;
}

// --- measure and arrange

Size CControlUI::EstimateSize(Size availablePx) {
    const Limits limits = LimitsPx(*this, Dpi());
    const bool fixedWidth = width_.kind == LengthDip::Kind::kFixed;
    const bool givenHeight = height_.kind == LengthDip::Kind::kFixed;
    const bool fixedHeight = givenHeight && !GrowsNow();
    Size size{fixedWidth ? ToPx(width_.value) : 0, givenHeight ? ToPx(height_.value) : 0};
    if (!fixedWidth || !fixedHeight) {
        const Size room{Limit(fixedWidth ? size.cx : availablePx.cx, limits.minPx.cx, limits.maxPx.cx),
                        Limit(fixedHeight ? size.cy : availablePx.cy, limits.minPx.cy, limits.maxPx.cy)};
        const unsigned fontGeneration = manager_ ? manager_->GetFontGeneration() : 0u;
        const Measured* known = nullptr;
        for (const Measured& measured : measured_) {
            if (measured.fontGeneration == fontGeneration && measured.availablePx == room) {
                known = &measured;
            }
        }
        const Size content = known ? known->contentPx : MeasureContent(room);
        if (!known) {
            measured_[measuredNext_] = {room, content, fontGeneration};
            measuredNext_ = (measuredNext_ + 1) % kMeasuredCount;
        }
        size = {fixedWidth ? size.cx : content.cx, fixedHeight ? size.cy : std::max(size.cy, content.cy)};
    }
    return {Limit(size.cx, limits.minPx.cx, limits.maxPx.cx), Limit(size.cy, limits.minPx.cy, limits.maxPx.cy)};
}

Size CControlUI::MeasureContent(Size) {
    return {};
}

void CControlUI::SetPos(const Rect& px) {
    if (posPx_ != px) {
        Invalidate();
        posPx_ = px;
        Invalidate();
    }
}

void CControlUI::ForgetMeasured() {
    for (Measured& measured : measured_) {
        measured.fontGeneration = kNotMeasured;
    }
}

void CControlUI::NeedUpdate() {
    for (CControlUI* control = this; control; control = control->parent_) {
        control->ForgetMeasured();
    }
    if (manager_) {
        manager_->NeedUpdate();
    }
}

void CControlUI::Invalidate() {
    if (!manager_) {
        return;
    }
    Rect visible = posPx_;
    for (const CControlUI* ancestor = parent_; ancestor; ancestor = ancestor->parent_) {
        visible = visible.Intersect(ancestor->posPx_);
    }
    if (!visible.IsEmpty()) {
        manager_->Invalidate(visible);
    }
}

// --- paint

DWORD CControlUI::Painted(const Color& color, ColorUse use) {
    return UITheme::GetInstance()->Painted(color, use);
}

DWORD CControlUI::GetBkColor() const {
    return UITheme::GetInstance()->Number(bkColor_);
}

void CControlUI::SetBkColor(const Color& color) {
    if (color.IsNamed()) {
        bkColorName_ = color;
    }
    if (bkColor_ != color) {
        bkColor_ = color;
        Invalidate();
    }
}

Color CControlUI::CurrentBkColor() const {
    const bool replaced = bkColorName_.IsNamed() && UITheme::GetInstance()->IsContrast();
    return replaced ? bkColorName_ : bkColor_;
}

void CControlUI::SetBorderColor(const Color& color) {
    if (borderColor_ != color) {
        borderColor_ = color;
        Invalidate();
    }
}

void CControlUI::SetBkImage(const std::wstring& imageAttribute) {
    if (bkImage_ != imageAttribute) {
        bkImage_ = imageAttribute;
        Invalidate();
    }
}

void CControlUI::Paint(Canvas& canvas, const Rect& dirtyPx) {
    canvas.FillRect(posPx_, Painted(CurrentBkColor(), ColorUse::kGround), ToPx(borderRoundDip_));
    if (ShowsBkImage()) {
        PaintImage(canvas, bkImage_);
    }
    PaintContent(canvas, dirtyPx);
    if (borderSizeDip_ > 0) {
        const Color& color = IsFocused() && !focusBorderColor_.IsNone() ? focusBorderColor_ : borderColor_;
        canvas.StrokeRect(posPx_, Painted(color, ColorUse::kLine), std::max(1, ToPx(borderSizeDip_)),
                          ToPx(borderRoundDip_));
    }
    if (IsFocused() && manager_ && manager_->IsFocusRingShown()) {
        PaintFocusRing(canvas);
    }
}

void CControlUI::PaintContent(Canvas&, const Rect&) {}

bool CControlUI::ShowsBkImage() const {
    return text_.empty() || !UITheme::GetInstance()->IsContrast();
}

void CControlUI::PaintFocusRing(Canvas& canvas) const {
    // Two lines of different brightness: one of them is seen on any background.
    const int outer = std::max(1, ToPx(kFocusRingDip));
    const int radius = ToPx(borderRoundDip_ > 0 ? borderRoundDip_ : kFocusRingRadiusDip);
    const Rect inner = posPx_.Deflate({outer, outer, outer, outer});
    const WindowSpec& spec = manager_->GetWindowSpec();
    canvas.StrokeRect(posPx_, Painted(spec.focusColor, ColorUse::kLine), outer, radius);
    canvas.StrokeRect(inner, Painted(spec.bkColor, ColorUse::kGround), std::max(1, ToPx(kFocusRingInnerDip)),
                      std::max(0, radius - outer));
}

void CControlUI::PaintImage(Canvas& canvas, const std::wstring& imageAttribute) const {
    PaintImage(canvas, imageAttribute, posPx_);
}

void CControlUI::PaintImage(Canvas& canvas, const std::wstring& imageAttribute, const Rect& px) const {
    if (imageAttribute.empty() || !manager_) {
        return;
    }
    const std::optional<ImageAttribute> image = ParseImageAttribute(imageAttribute);
    if (!image) {
        return;
    }
    const bool rightToLeft = IsRightToLeft();
    Rect place = px;
    if (image->destDip) {
        const Rect& dest = *image->destDip;
        place = Rect{ToPx(dest.left), ToPx(dest.top), ToPx(dest.right), ToPx(dest.bottom)}.Offset(px.left, px.top);
        if (rightToLeft) {
            place = {px.left + px.right - place.right, place.top, px.left + px.right - place.left, place.bottom};
        }
    }
    if (place.IsEmpty()) {
        return;
    }
    const ScaledImage* scaled = manager_->Images().Get(*image, {place.Width(), place.Height()}, rightToLeft);
    if (scaled) {
        canvas.DrawImage(*scaled, place, static_cast<BYTE>(image->fade), ToPx(borderRoundDip_));
    }
}

bool CControlUI::IsRightToLeft() const {
    return UICulture::GetInstance()->IsRightToLeft();
}

// --- events

void CControlUI::DoEvent(const TEventUI& event) {
    switch (event.type) {
        case EventType::kSetFocus:
            SetState(state_ | kStateFocused);
            // A click leaves the scroll position: what is pressed must not move away from under the pointer.
            if (parent_ && manager_ && manager_->IsFocusRingShown()) {
                parent_->EnsureVisible(*this);
            }
            SendNotify(NotifyType::kSetFocus);
            break;
        case EventType::kKillFocus:
            SetState(state_ & ~kStateFocused);
            SendNotify(NotifyType::kKillFocus);
            break;
        case EventType::kSetCursor:
            ::SetCursor(::LoadCursorW(nullptr, handCursor_ ? IDC_HAND : IDC_ARROW));
            break;
        case EventType::kMouseWheel:
        case EventType::kKeyDown:
        case EventType::kKeyUp:
            if (parent_) {
                parent_->DoEvent(event);
            }
            break;
        default:
            break;
    }
}

CControlUI* CControlUI::FindControlAt(Point px) {
    return mouse_ && visible_ && !IsCollapsed() && posPx_.Contains(px) ? this : nullptr;
}

CControlUI* CControlUI::FindControlByName(std::wstring_view name) {
    return !name.empty() && name_ == name ? this : nullptr;
}

bool CControlUI::Visit(const std::function<bool(CControlUI&)>& visit) {
    return visit(*this);
}

void CControlUI::SendNotify(const wchar_t* type, WPARAM wParam, LPARAM lParam) {
    if (manager_) {
        manager_->SendNotify(this, type, wParam, lParam);
    }
}

// --- accessibility

AccessibleInfo CControlUI::GetAccessibleInfo() const {
    AccessibleInfo info;
    info.name = !accName_.empty() ? accName_ : !text_.empty() ? text_ : toolTip_;
    // Screen readers get a picture only where the layout names it.
    info.role = accName_.empty() ? 0 : ROLE_SYSTEM_GRAPHIC;
    return info;
}

std::wstring CControlUI::GetAccessibleDescription() const {
    return toolTip_ == GetAccessibleInfo().name ? std::wstring() : toolTip_;
}

}  // namespace DuiLib
