#pragma once
// Setters for attribute tables that several controls need: colours, images, which are checked while the layout is read,
// and places. Thread: UI thread.
#include <string>
#include <string_view>

#include "DuiLib/ControlUI.h"
#include "markup/AttributeTable.h"
#include "markup/ImageAttribute.h"
#include "theme/ColorValue.h"

namespace DuiLib {

template <typename Control, Color Control::*kColor>
bool ApplyColor(Control& control, std::wstring_view value) {
    return ApplyColorValue(value, [&](const Color& color) {
        control.*kColor = color;
        control.Invalidate();
    });
}

// Empty: no image.
template <typename Control, std::wstring Control::*kImage>
bool ApplyImage(Control& control, std::wstring_view value) {
    if (!value.empty() && !ParseImageAttribute(value)) {
        return false;
    }
    if (control.*kImage != value) {
        control.*kImage = value;
        control.Invalidate();
    }
    return true;
}

// "top" and so on, for members of that type; the control is measured and painted again.
template <typename Control, VAlign Control::*kAlign>
bool ApplyVAlign(Control& control, std::wstring_view value) {
    const bool known = value == L"top" || value == L"center" || value == L"bottom";
    if (known) {
        control.*kAlign = value == L"top" ? VAlign::kTop : value == L"center" ? VAlign::kCenter : VAlign::kBottom;
        control.Invalidate();
        control.NeedUpdate();
    }
    return known;
}

}  // namespace DuiLib
