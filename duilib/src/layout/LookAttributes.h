#pragma once
// Setters for attribute tables that only change how a control looks: colours, and images, which are checked while the
// layout is read. Thread: UI thread.
#include <windows.h>

#include <string>
#include <string_view>

#include "markup/AttributeTable.h"
#include "markup/ImageAttribute.h"

namespace DuiLib {

template <typename Control, DWORD Control::*kColor>
bool ApplyColor(Control& control, std::wstring_view value) {
    return ApplyParsed(ParseColor(value), [&](DWORD argb) {
        control.*kColor = argb;
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

}  // namespace DuiLib
