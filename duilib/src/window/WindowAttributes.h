#pragma once
// What a layout says beside its controls: the attributes of <Window> and of <Font>. Thread: UI thread.
#include <string_view>

#include "DuiLib/ControlUI.h"
#include "DuiLib/PaintManagerUI.h"
#include "markup/AttributeTable.h"

namespace DuiLib {

// A <Font> element while it is read.
struct FontElement {
    int index = -1;  // -1: none given
    FontSpec spec;
    bool isDefault = false;
};

AttributeResult ApplyWindowAttribute(WindowSpec& window, std::wstring_view name, std::wstring_view value);
AttributeResult ApplyFontAttribute(FontElement& font, std::wstring_view name, std::wstring_view value);

}  // namespace DuiLib
