#pragma once
// Colours in attributes: "#AARRGGBB", "#RRGGBB" (opaque), "0xAARRGGBB", or a name of the theme's table. Thread: UI
// thread.
#include <optional>
#include <string_view>

#include "DuiLib/Color.h"
#include "DuiLib/Theme.h"
#include "markup/AttributeParser.h"
#include "markup/AttributeTable.h"

namespace DuiLib {

inline std::optional<Color> ParseColorValue(std::wstring_view text) {
    if (const std::optional<std::uint32_t> argb = ParseColor(text)) {
        return Color(*argb);
    }
    return UITheme::GetInstance()->FindColor(text);
}

// Hands the colour on; false for what is neither a number nor a name.
template <typename Apply>
bool ApplyColorValue(std::wstring_view value, Apply apply) {
    return ApplyParsed(ParseColorValue(value), apply);
}

}  // namespace DuiLib
