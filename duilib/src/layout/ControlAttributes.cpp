// The attributes that every control has: one table of names and setters.
#include <iterator>

#include "DuiLib/ControlUI.h"
#include "layout/LookAttributes.h"
#include "markup/AttributeParser.h"
#include "theme/ColorValue.h"

namespace DuiLib {

struct ControlAttributes {
    static bool Length(LengthDip& length, std::wstring_view value) {
        if (value == L"fill") {
            length = {LengthDip::Kind::kFill, 0};
        } else if (value == L"auto") {
            length = {LengthDip::Kind::kAuto, 0};
        } else if (const auto number = ParseInt(value); number && *number >= 0) {
            length = {LengthDip::Kind::kFixed, *number};
        } else {
            return false;
        }
        return true;
    }

    static bool Name(CControlUI& c, std::wstring_view value) {
        c.SetName(std::wstring(value));
        return true;
    }
    static bool Width(CControlUI& c, std::wstring_view value) {
        LengthDip length;
        if (!Length(length, value)) {
            return false;
        }
        c.ChangeLength(c.width_, length);
        return true;
    }
    static bool Height(CControlUI& c, std::wstring_view value) {
        LengthDip length;
        if (!Length(length, value)) {
            return false;
        }
        c.ChangeLength(c.height_, length);
        return true;
    }
    static bool MinWidth(CControlUI& c, std::wstring_view value) {
        return ApplyNumber(value, 0, [&](int dip) { c.SetMinWidth(dip); });
    }
    static bool MaxWidth(CControlUI& c, std::wstring_view value) {
        return ApplyNumber(value, 0, [&](int dip) { c.SetMaxWidth(dip); });
    }
    static bool MinHeight(CControlUI& c, std::wstring_view value) {
        return ApplyNumber(value, 0, [&](int dip) { c.SetMinHeight(dip); });
    }
    static bool MaxHeight(CControlUI& c, std::wstring_view value) {
        return ApplyNumber(value, 0, [&](int dip) { c.SetMaxHeight(dip); });
    }
    static bool GrowHeight(CControlUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool grow) {
            c.growHeight_ = grow;
            c.NeedUpdate();
        });
    }
    static bool Padding(CControlUI& c, std::wstring_view value) {
        return ApplyParsed(ParseRect(value), [&](const Rect& dip) { c.SetPadding(dip); });
    }
    static bool Float(CControlUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool floating) {
            c.floating_ = floating;
            c.NeedUpdate();
        });
    }
    static bool Pos(CControlUI& c, std::wstring_view value) {
        return ApplyParsed(ParseRect(value), [&](const Rect& dip) {
            c.floatPosDip_ = dip;
            c.NeedUpdate();
        });
    }
    static bool Align(CControlUI& c, std::wstring_view value) {
        if (value == L"left") {
            c.align_ = HAlign::kLeft;
        } else if (value == L"center") {
            c.align_ = HAlign::kCenter;
        } else if (value == L"right") {
            c.align_ = HAlign::kRight;
        } else {
            return false;
        }
        c.Invalidate();
        c.NeedUpdate();
        return true;
    }
    static bool Visible(CControlUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool visible) { c.SetVisible(visible); });
    }
    static bool Enabled(CControlUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool enabled) { c.SetEnabled(enabled); });
    }
    static bool Text(CControlUI& c, std::wstring_view value) {
        c.SetText(c.ResolveText(value));
        return true;
    }
    static bool ToolTip(CControlUI& c, std::wstring_view value) {
        c.SetToolTip(c.ResolveText(value));
        return true;
    }
    static bool AccName(CControlUI& c, std::wstring_view value) {
        std::wstring name = c.ResolveText(value);
        if (c.accName_ != name) {
            c.accName_ = std::move(name);
            c.TellNameChanged();
        }
        return true;
    }
    static bool AccLive(CControlUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool live) { c.accLive_ = live; });
    }
    static bool BkColor(CControlUI& c, std::wstring_view value) {
        return ApplyColorValue(value, [&](const Color& color) { c.SetBkColor(color); });
    }
    static bool BorderColor(CControlUI& c, std::wstring_view value) {
        return ApplyColorValue(value, [&](const Color& color) { c.SetBorderColor(color); });
    }
    static bool BorderSize(CControlUI& c, std::wstring_view value) {
        return ApplyNumber(value, 0, [&](int dip) {
            c.borderSizeDip_ = dip;
            c.Invalidate();
        });
    }
    static bool BorderRound(CControlUI& c, std::wstring_view value) {
        return ApplyNumber(value, 0, [&](int dip) {
            c.borderRoundDip_ = dip;
            c.Invalidate();
        });
    }
    static bool NcHit(CControlUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool ncHit) { c.ncHit_ = ncHit; });
    }
    static bool VirtualWnd(CControlUI& c, std::wstring_view value) {
        c.SetVirtualWnd(std::wstring(value));
        return true;
    }
    static bool Keyboard(CControlUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool keyboard) { c.keyboard_ = keyboard; });
    }
    static bool Mouse(CControlUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool mouse) { c.mouse_ = mouse; });
    }
    static bool Cursor(CControlUI& c, std::wstring_view value) {
        if (value != L"hand" && value != L"arrow") {
            return false;
        }
        c.handCursor_ = value == L"hand";
        return true;
    }
    static bool UserData(CControlUI& c, std::wstring_view value) {
        c.userData_ = value;
        return true;
    }

    static constexpr AttributeEntry<CControlUI> kTable[] = {
        {L"name", Name},
        {L"width", Width},
        {L"height", Height},
        {L"minwidth", MinWidth},
        {L"maxwidth", MaxWidth},
        {L"minheight", MinHeight},
        {L"maxheight", MaxHeight},
        {L"growheight", GrowHeight},
        {L"padding", Padding},
        {L"float", Float},
        {L"pos", Pos},
        {L"align", Align},
        {L"visible", Visible},
        {L"enabled", Enabled},
        {L"text", Text},
        {L"tooltip", ToolTip},
        {L"accname", AccName},
        {L"acclive", AccLive},
        {L"bkcolor", BkColor},
        {L"bordercolor", BorderColor},
        {L"focusbordercolor", ApplyColor<CControlUI, &CControlUI::focusBorderColor_>},
        {L"bordersize", BorderSize},
        {L"borderround", BorderRound},
        {L"bkimage", ApplyImage<CControlUI, &CControlUI::bkImage_>},
        {L"IsNcHit", NcHit},
        {L"virtualwnd", VirtualWnd},
        {L"keyboard", Keyboard},
        {L"mouse", Mouse},
        {L"cursor", Cursor},
        {L"userdata", UserData},
    };
};

AttributeResult CControlUI::ApplyAttribute(std::wstring_view name, std::wstring_view value) {
    return ApplyFromTable(ControlAttributes::kTable, *this, name, value);
}

}  // namespace DuiLib
