#pragma once
// The system's text drawing with what it lacks: blocks of lines that are centred or at the bottom, and translucent
// colours. '&' is always an ordinary character. Thread: UI thread.
#include <windows.h>

#include <cstdint>
#include <string_view>
#include <vector>

#include "DuiLib/Geometry.h"

namespace DuiLib {

// White text on black: each colour channel is the coverage of its part of the pixel.
struct TextMask {
    Size sizePx;
    std::vector<std::uint32_t> pixels;
};

// The room that the text needs, in lines no longer than `widthPx` when the style has DT_WORDBREAK.
Size MeasureText(HDC dc, HFONT font, std::wstring_view text, int widthPx, UINT style);
// Draws in an opaque colour (its alpha is not looked at) and leaves the device context as it was.
void DrawPlainText(HDC dc, HFONT font, std::wstring_view text, const Rect& px, DWORD argb, UINT style);
// The text as it would stand in a rectangle of that size; `dc` is what it is compatible with.
TextMask MakeTextMask(HDC dc, HFONT font, std::wstring_view text, Size sizePx, UINT style);

}  // namespace DuiLib
