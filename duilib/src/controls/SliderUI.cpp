#include "DuiLib/SliderUI.h"

#include <oleacc.h>

#include <algorithm>

#include "DuiLib/PaintManagerUI.h"
#include "layout/LookAttributes.h"
#include "paint/Canvas.h"
#include "text/TextRenderer.h"

namespace DuiLib {
namespace {

constexpr int kNumberGapDip = 12;  // between the bar and the number
constexpr int kNumberEdgeDip = 6;  // behind the number: room for the focus ring

}  // namespace

struct SliderAttributes {
    static bool Step(CSliderUI& c, std::wstring_view value) {
        return ApplyNumber(value, 1, [&](int step) { c.step_ = step; });
    }
    static bool ThumbSize(CSliderUI& c, std::wstring_view value) {
        return ApplyParsed(ParseSize(value), [&](Size dip) {
            c.thumbSizeDip_ = dip;
            c.Invalidate();
            c.NeedUpdate();
        });
    }
    static bool ShowValue(CSliderUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool show) {
            c.showValue_ = show;
            c.Invalidate();
            c.NeedUpdate();
        });
    }
    static bool ResetValue(CSliderUI& c, std::wstring_view value) {
        return ApplyParsed(ParseInt(value), [&](int reset) { c.resetValue_ = reset; });
    }

    static constexpr AttributeEntry<CSliderUI> kTable[] = {
        {L"step", Step},
        {L"showvalue", ShowValue},
        {L"resetvalue", ResetValue},
        {L"thumbsize", ThumbSize},
        {L"thumbimage", ApplyImage<CSliderUI, &CSliderUI::thumbImage_>},
        {L"thumbhotimage", ApplyImage<CSliderUI, &CSliderUI::thumbHotImage_>},
        {L"thumbpushedimage", ApplyImage<CSliderUI, &CSliderUI::thumbPushedImage_>},
        {L"thumbdisabledimage", ApplyImage<CSliderUI, &CSliderUI::thumbDisabledImage_>},
    };
};

AttributeResult CSliderUI::ApplyAttribute(std::wstring_view name, std::wstring_view value) {
    const AttributeResult result = ApplyFromTable(SliderAttributes::kTable, *this, name, value);
    return result == AttributeResult::kUnknown ? CProgressUI::ApplyAttribute(name, value) : result;
}

AccessibleInfo CSliderUI::GetAccessibleInfo() const {
    AccessibleInfo info = CProgressUI::GetAccessibleInfo();
    info.role = ROLE_SYSTEM_SLIDER;
    info.state &= ~STATE_SYSTEM_READONLY;
    if (showValue_ && !info.name.empty()) {
        info.name += L' ' + info.value;  // what is seen beside it
    }
    return info;
}

bool CSliderUI::SetAccessibleValue(const std::wstring& value) {
    const auto number = ParseInt(value);
    if (!number || !IsEnabled() || *number < GetMinValue() || *number > GetMaxValue()) {
        return false;
    }
    MoveTo(*number, NotifyType::kValueChanged);
    return true;
}

void CSliderUI::SetValue(int value) {
    if (!IsDragged()) {
        CProgressUI::SetValue(value);
    }
}

void CSliderUI::SetEnabled(bool enabled) {
    if (!enabled) {
        SetState(GetState() & ~kStateHot);
        EndDrag();
    }
    CProgressUI::SetEnabled(enabled);
}

// --- places and values

int CSliderUI::NumberWidthPx() const {
    if (!showValue_ || !GetManager()) {
        return 0;
    }
    int width = 0;
    for (const int value : {GetMinValue(), GetMaxValue()}) {
        width = std::max(width, MeasureText(GetManager()->GetPaintDC(), GetManager()->GetFont(GetFont()),
                                            std::to_wstring(value), 0, DT_SINGLELINE)
                                    .cx);
    }
    return width + ToPx(kNumberGapDip) + ToPx(kNumberEdgeDip);
}

Rect CSliderUI::GetTrackPos() const {
    const int number = NumberWidthPx();
    return GetPos().Deflate(IsRightToLeft() ? Rect{number, 0, 0, 0} : Rect{0, 0, number, 0});
}

Rect CSliderUI::NumberRectPx() const {
    const Rect& pos = GetPos();
    const Rect track = GetTrackPos();
    return IsRightToLeft() ? Rect{pos.left, pos.top, track.left, pos.bottom}
                           : Rect{track.right, pos.top, pos.right, pos.bottom};
}

Rect CSliderUI::ThumbRectPx() const {
    const Rect pos = GetTrackPos();
    const Size thumb{std::min(ToPx(thumbSizeDip_.cx), pos.Width()), std::min(ToPx(thumbSizeDip_.cy), pos.Height())};
    const int along = ValueToPx(pos.Width() - thumb.cx);
    const int left = IsRightToLeft() ? pos.right - thumb.cx - along : pos.left + along;
    const int top = pos.top + (pos.Height() - thumb.cy) / 2;
    return {left, top, left + thumb.cx, top + thumb.cy};
}

int CSliderUI::ValueAt(int xPx) const {
    const Rect pos = GetTrackPos();
    const int thumb = ThumbRectPx().Width();
    const int travel = pos.Width() - thumb;
    const int range = GetMaxValue() - GetMinValue();
    if (travel <= 0 || range <= 0) {
        return LimitedValue();
    }
    const int along = IsRightToLeft() ? pos.right - thumb / 2 - xPx : xPx - pos.left - thumb / 2;
    const int exact = ScaleBy(std::clamp(along, 0, travel), range, travel);
    const int stepped = exact == range ? range : ScaleBy(exact, 1, step_) * step_;
    return GetMinValue() + std::min(stepped, range);
}

bool CSliderUI::MoveTo(int value, const wchar_t* notification) {
    if (value == GetValue()) {
        return false;
    }
    CProgressUI::SetValue(value);
    SendNotify(notification, static_cast<WPARAM>(value));
    return true;
}

// --- events

void CSliderUI::DoEvent(const TEventUI& event) {
    switch (event.type) {
        case EventType::kMouseEnter:
            SetState(IsEnabled() ? GetState() | kStateHot : GetState());
            return;
        case EventType::kMouseLeave:
            SetState(GetState() & ~kStateHot);
            return;
        case EventType::kButtonDown:
            if (event.doubleClick && resetValue_) {
                Reset();
            } else if (!NumberRectPx().Contains(event.mousePx)) {
                BeginDrag(event.mousePx);
            }
            return;
        case EventType::kMouseMove:
            if (IsDragged()) {
                const int value = ValueAt(event.mousePx.x - grabOffsetPx_);
                movedInDrag_ = movedInDrag_ || value != GetValue();
                MoveTo(value, NotifyType::kMoveValueChanged);
            }
            return;
        case EventType::kButtonUp:
        case EventType::kCaptureLost:
            EndDrag();
            return;
        case EventType::kMouseWheel:
            if (IsEnabled() && !IsDragged()) {
                wheelRest_ += event.wheelDelta;
                const int notches = wheelRest_ / WHEEL_DELTA;
                wheelRest_ -= notches * WHEEL_DELTA;
                MoveTo(std::clamp(LimitedValue() + notches * step_, GetMinValue(), GetMaxValue()),
                       NotifyType::kValueChanged);
            }
            return;
        case EventType::kKeyDown:
            if (HandleKey(event)) {
                return;
            }
            break;
        default:
            break;
    }
    CProgressUI::DoEvent(event);
}

void CSliderUI::BeginDrag(Point mousePx) {
    if (!IsEnabled() || !GetManager()) {
        return;
    }
    const Rect thumb = ThumbRectPx();
    const bool onThumb = mousePx.x >= thumb.left && mousePx.x < thumb.right;
    grabOffsetPx_ = onThumb ? mousePx.x - (thumb.left + thumb.Width() / 2) : 0;
    const int value = onThumb ? GetValue() : ValueAt(mousePx.x);
    movedInDrag_ = value != GetValue();
    SetState(GetState() | kStateHot | kStatePushed | kStateCaptured);
    GetManager()->SetCapture(this);
    MoveTo(value, NotifyType::kMoveValueChanged);
}

void CSliderUI::Reset() {
    if (IsEnabled()) {
        MoveTo(*resetValue_, NotifyType::kValueChanged);
    }
}

void CSliderUI::EndDrag() {
    if (!IsDragged()) {
        return;
    }
    SetState(GetState() & ~(kStatePushed | kStateCaptured));
    if (GetManager()) {
        GetManager()->ReleaseCapture();
    }
    if (movedInDrag_) {
        movedInDrag_ = false;
        SendNotify(NotifyType::kValueChanged, static_cast<WPARAM>(GetValue()));
    }
}

bool CSliderUI::HandleKey(const TEventUI& event) {
    const int range = std::max(0, GetMaxValue() - GetMinValue());
    const int page = std::max(step_, std::min(10 * step_, range / 10));
    const int towardsRight = IsRightToLeft() ? -step_ : step_;
    long long value = LimitedValue();
    switch (event.key) {
        case VK_RIGHT:
            value += towardsRight;
            break;
        case VK_LEFT:
            value -= towardsRight;
            break;
        case VK_UP:
            value += step_;
            break;
        case VK_DOWN:
            value -= step_;
            break;
        case VK_PRIOR:
            value += page;
            break;
        case VK_NEXT:
            value -= page;
            break;
        case VK_HOME:
            value = GetMinValue();
            break;
        case VK_END:
            value = GetMaxValue();
            break;
        default:
            return false;
    }
    if (IsEnabled() && !IsDragged()) {
        const long long most = GetMinValue() + range;
        MoveTo(static_cast<int>(std::clamp<long long>(value, GetMinValue(), most)), NotifyType::kValueChanged);
    }
    return true;
}

// --- look

Size CSliderUI::MeasureContent(Size) {
    Size size{ToPx(thumbSizeDip_.cx), std::max(ToPx(thumbSizeDip_.cy), ToPx(BarHeightDip()))};
    if (showValue_ && GetManager()) {
        const Size number =
            MeasureText(GetManager()->GetPaintDC(), GetManager()->GetFont(GetFont()), L"0", 0, DT_SINGLELINE);
        size = {size.cx + NumberWidthPx(), std::max(size.cy, number.cy)};
    }
    return size;
}

const std::wstring& CSliderUI::CurrentThumbImage() const {
    const unsigned state = GetState();
    if (!IsEnabled()) {
        return thumbDisabledImage_.empty() ? thumbImage_ : thumbDisabledImage_;
    }
    if ((state & kStatePushed) != 0 && !thumbPushedImage_.empty()) {
        return thumbPushedImage_;
    }
    return (state & (kStateHot | kStatePushed)) != 0 && !thumbHotImage_.empty() ? thumbHotImage_ : thumbImage_;
}

void CSliderUI::PaintContent(Canvas& canvas, const Rect&) {
    const Rect thumb = ThumbRectPx();
    const Rect track = GetTrackPos();
    const int centre = thumb.left + thumb.Width() / 2;
    const int toCentre = IsRightToLeft() ? track.right - centre : centre - track.left;
    // A round thumb does not cover the bar's end: a rest of colour beside it would say that there is a level.
    PaintBar(canvas, BarRectPx(track), LimitedValue() > GetMinValue() ? toCentre : 0);
    const std::wstring& image = CurrentThumbImage();
    if (image.empty()) {
        const DWORD color =
            IsEnabled() ? Painted(GetForeColor(), ColorUse::kFill) : Painted(CurrentTextColor(), ColorUse::kText);
        canvas.FillRect(thumb, color, thumb.Height() / 2);
    } else {
        PaintImage(canvas, image, thumb);
    }
    if (showValue_ && GetManager()) {
        const int edge = ToPx(kNumberEdgeDip);
        const Rect number = NumberRectPx().Deflate(IsRightToLeft() ? Rect{edge, 0, 0, 0} : Rect{0, 0, edge, 0});
        canvas.DrawText(std::to_wstring(GetValue()), number, GetManager()->GetFont(GetFont()),
                        Painted(CurrentTextColor(), ColorUse::kText),
                        DT_SINGLELINE | DT_VCENTER | (IsRightToLeft() ? DT_LEFT : DT_RIGHT));
    }
}

}  // namespace DuiLib
