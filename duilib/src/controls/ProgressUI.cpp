#include "DuiLib/ProgressUI.h"

#include <oleacc.h>

#include <algorithm>

#include "DuiLib/PaintManagerUI.h"
#include "layout/LookAttributes.h"
#include "paint/Canvas.h"

namespace DuiLib {

struct ProgressAttributes {
    template <int CProgressUI::*number>
    static bool Limit(CProgressUI& c, std::wstring_view value) {
        return ApplyParsed(ParseInt(value), [&](int parsed) {
            c.*number = parsed;
            c.Invalidate();
        });
    }
    static bool Value(CProgressUI& c, std::wstring_view value) {
        return ApplyParsed(ParseInt(value), [&](int parsed) { c.SetValue(parsed); });
    }
    static bool BarHeight(CProgressUI& c, std::wstring_view value) {
        return ApplyNumber(value, 0, [&](int dip) {
            c.barHeightDip_ = dip;
            c.Invalidate();
            c.NeedUpdate();
        });
    }

    static constexpr AttributeEntry<CProgressUI> kTable[] = {
        {L"min", Limit<&CProgressUI::min_>},
        {L"max", Limit<&CProgressUI::max_>},
        {L"value", Value},
        {L"barheight", BarHeight},
        {L"barcolor", ApplyColor<CProgressUI, &CProgressUI::barColor_>},
        {L"forecolor", ApplyColor<CProgressUI, &CProgressUI::foreColor_>},
        {L"foreimage", ApplyImage<CProgressUI, &CProgressUI::foreImage_>},
    };
};

AttributeResult CProgressUI::ApplyAttribute(std::wstring_view name, std::wstring_view value) {
    const AttributeResult result = ApplyFromTable(ProgressAttributes::kTable, *this, name, value);
    return result == AttributeResult::kUnknown ? CLabelUI::ApplyAttribute(name, value) : result;
}

AccessibleInfo CProgressUI::GetAccessibleInfo() const {
    // A label that is pressed or filled is no static text. NOLINTNEXTLINE(bugprone-parent-virtual-call)
    AccessibleInfo info = CControlUI::GetAccessibleInfo();
    info.role = ROLE_SYSTEM_PROGRESSBAR;
    info.state |= STATE_SYSTEM_READONLY;
    info.value = std::to_wstring(value_);
    return info;
}

void CProgressUI::SetValue(int value) {
    if (value_ == value) {
        return;
    }
    value_ = value;
    Invalidate();
    if (GetManager()) {
        GetManager()->NotifyAccessible(this, EVENT_OBJECT_VALUECHANGE);
    }
}

int CProgressUI::LimitedValue() const {
    return std::clamp(value_, min_, std::max(min_, max_));
}

int CProgressUI::ValueToPx(int lengthPx) const {
    const int range = max_ - min_;
    return range > 0 ? ScaleBy(lengthPx, LimitedValue() - min_, range) : 0;
}

Rect CProgressUI::BarRectPx(const Rect& px) const {
    Rect bar = px;
    const int height = ToPx(barHeightDip_);
    if (height > 0 && height < bar.Height()) {
        bar.top += (bar.Height() - height) / 2;
        bar.bottom = bar.top + height;
    }
    return bar;
}

Size CProgressUI::MeasureContent(Size availablePx) {
    const Size label = CLabelUI::MeasureContent(availablePx);
    return {label.cx, std::max(label.cy, ToPx(barHeightDip_))};
}

void CProgressUI::PaintBar(Canvas& canvas, const Rect& bar, int filledPx) {
    const int radius = bar.Height() / 2;
    canvas.FillRect(bar, Painted(barColor_, ColorUse::kLine), radius);
    Rect filled = bar;
    if (IsRightToLeft()) {
        filled.left = std::max(bar.left, bar.right - filledPx);
    } else {
        filled.right = std::min(bar.right, bar.left + filledPx);
    }
    if (filled.IsEmpty()) {
        return;
    }
    if (foreImage_.empty()) {
        canvas.FillRect(filled, Painted(foreColor_, ColorUse::kFill), radius);
    } else {
        const Rect earlier = canvas.PushClip(filled);
        PaintImage(canvas, foreImage_, bar);
        canvas.RestoreClip(earlier);
    }
}

void CProgressUI::PaintContent(Canvas& canvas, const Rect& dirtyPx) {
    const Rect bar = BarRectPx(GetPos());
    PaintBar(canvas, bar, ValueToPx(bar.Width()));
    CLabelUI::PaintContent(canvas, dirtyPx);
}

}  // namespace DuiLib
