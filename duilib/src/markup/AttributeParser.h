#pragma once
// Values of layout attributes: numbers, rectangles, colours, words, and the attribute lists of styles. Pure logic.
//
// Every function gives nothing for a value that is not wholly understood; blanks around numbers and commas are allowed.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "DuiLib/Geometry.h"

namespace DuiLib {

std::optional<int> ParseInt(std::wstring_view text);              // decimal, sign allowed, within ±1,000,000
std::optional<bool> ParseBool(std::wstring_view text);            // "true" or "false"
std::optional<Rect> ParseRect(std::wstring_view text);            // "l,t,r,b"
std::optional<Size> ParseSize(std::wstring_view text);            // "w,h", not negative
std::optional<std::uint32_t> ParseColor(std::wstring_view text);  // "#AARRGGBB", "#RRGGBB" (opaque), "0xAARRGGBB"

// name="value" name='value' … as styles hold them; nothing when it is malformed. A value ends at a quote that a blank
// or the end of the text follows, so that a path may hold an apostrophe.
using AttributeList = std::vector<std::pair<std::wstring, std::wstring>>;
std::optional<AttributeList> ParseAttributeList(std::wstring_view text);

}  // namespace DuiLib
