#include "DuiLib/LabelUI.h"

#include <oleacc.h>

#include "DuiLib/PaintManagerUI.h"
#include "layout/LookAttributes.h"
#include "paint/Canvas.h"
#include "text/TextRenderer.h"
#include "theme/ColorValue.h"

namespace DuiLib {

struct LabelAttributes {
    static bool Font(CLabelUI& c, std::wstring_view value) {
        return ApplyNumber(value, -1, [&](int index) { c.SetFont(index); });
    }
    static bool TextColor(CLabelUI& c, std::wstring_view value) {
        return ApplyColorValue(value, [&](const Color& color) { c.SetTextColor(color); });
    }
    static bool DisabledTextColor(CLabelUI& c, std::wstring_view value) {
        return ApplyColorValue(value, [&](const Color& color) { c.SetDisabledTextColor(color); });
    }
    static bool TextPadding(CLabelUI& c, std::wstring_view value) {
        return ApplyParsed(ParseRect(value), [&](const Rect& dip) {
            c.textPaddingDip_ = dip;
            Rearrange(c);
        });
    }
    static bool WordWrap(CLabelUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool wrap) {
            c.wordWrap_ = wrap;
            Rearrange(c);
        });
    }
    static bool EndEllipsis(CLabelUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool cut) {
            c.endEllipsis_ = cut;
            c.Invalidate();
        });
    }
    static void Rearrange(CLabelUI& c) {
        c.Invalidate();
        c.NeedUpdate();
    }

    static constexpr AttributeEntry<CLabelUI> kTable[] = {
        {L"font", Font},
        {L"textcolor", TextColor},
        {L"disabledtextcolor", DisabledTextColor},
        {L"valign", ApplyVAlign<CLabelUI, &CLabelUI::valign_>},
        {L"textpadding", TextPadding},
        {L"wordwrap", WordWrap},
        {L"endellipsis", EndEllipsis},
    };
};

AttributeResult CLabelUI::ApplyAttribute(std::wstring_view name, std::wstring_view value) {
    const AttributeResult result = ApplyFromTable(LabelAttributes::kTable, *this, name, value);
    return result == AttributeResult::kUnknown ? CControlUI::ApplyAttribute(name, value) : result;
}

AccessibleInfo CLabelUI::GetAccessibleInfo() const {
    AccessibleInfo info = CControlUI::GetAccessibleInfo();
    if (!info.name.empty()) {
        info.role = ROLE_SYSTEM_STATICTEXT;
        info.state |= STATE_SYSTEM_READONLY;
    }
    return info;
}

void CLabelUI::SetFont(int index) {
    if (font_ != index) {
        font_ = index;
        LabelAttributes::Rearrange(*this);
    }
}

void CLabelUI::SetTextColor(const Color& color) {
    if (textColor_ != color) {
        textColor_ = color;
        Invalidate();
    }
}

void CLabelUI::SetDisabledTextColor(const Color& color) {
    if (disabledTextColor_ != color) {
        disabledTextColor_ = color;
        Invalidate();
    }
}

UINT CLabelUI::GetTextStyle() const {
    UINT style = DT_NOPREFIX;
    if (wordWrap_) {
        style |= DT_WORDBREAK;
    } else if (GetText().find(L'\n') == std::wstring::npos) {
        style |= DT_SINGLELINE;
    }
    style |= endEllipsis_ ? DT_END_ELLIPSIS : 0;
    style |= valign_ == VAlign::kCenter ? DT_VCENTER : valign_ == VAlign::kBottom ? DT_BOTTOM : DT_TOP;
    const bool rightToLeft = IsRightToLeft();
    if (GetAlign() == HAlign::kCenter) {
        style |= DT_CENTER;
    } else if ((GetAlign() == HAlign::kRight) != rightToLeft) {
        style |= DT_RIGHT;
    }
    return style | (rightToLeft ? DT_RTLREADING : 0);
}

Color CLabelUI::CurrentTextColor() const {
    const Color& own = IsEnabled() ? textColor_ : disabledTextColor_;
    if (!own.IsNone() || !GetManager()) {
        return own;
    }
    const WindowSpec& spec = GetManager()->GetWindowSpec();
    return IsEnabled() ? spec.textColor : spec.disabledTextColor;
}

Rect CLabelUI::TextPaddingPx() const {
    Rect px{ToPx(textPaddingDip_.left), ToPx(textPaddingDip_.top), ToPx(textPaddingDip_.right),
            ToPx(textPaddingDip_.bottom)};
    if (IsRightToLeft()) {
        std::swap(px.left, px.right);
    }
    return px;
}

Rect CLabelUI::TextRectPx() const {
    return GetPos().Deflate(TextPaddingPx());
}

Size CLabelUI::MeasureContent(Size availablePx) {
    const Rect padding = TextPaddingPx();
    Size size{padding.left + padding.right, padding.top + padding.bottom};
    if (GetManager()) {
        const Size text = MeasureText(GetManager()->GetPaintDC(), GetManager()->GetFont(font_), GetText(),
                                      availablePx.cx - size.cx, GetTextStyle());
        size = {size.cx + text.cx, size.cy + text.cy};
    }
    return size;
}

void CLabelUI::PaintContent(Canvas& canvas, const Rect&) {
    if (GetManager() && !GetText().empty()) {
        canvas.DrawText(GetText(), TextRectPx(), GetManager()->GetFont(font_),
                        Painted(CurrentTextColor(), ColorUse::kText), GetTextStyle());
    }
}

}  // namespace DuiLib
