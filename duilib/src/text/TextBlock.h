#pragma once
// Lines and blocks of text: shaped by the system's script engine in scripts whose letters join, stack or run from right
// to left, and broken into lines by HtmlLayout.
//
// Why not the system's DrawText alone: not every system measures such scripts as it draws them, and then nothing is
// aligned or breaks where it should; and it cuts off words that are wider than a line. A line of other scripts goes the
// plain way, which also knows linked fonts. Thread: UI thread.
#include <windows.h>

#include <string_view>

#include "DuiLib/Geometry.h"

namespace DuiLib {

bool NeedsShaping(std::wstring_view text);

// One line with the font of the device context, shaped where that is needed.
int LineWidthPx(HDC dc, std::wstring_view text, bool rightToLeft);

// As the system's DrawText, with the font and colours of the device context; DT_VCENTER and DT_BOTTOM hold for several
// lines, too. With DT_END_ELLIPSIS, the last line that fits ends with an ellipsis where there are more, or where it is
// too long.
Size MeasureBlock(HDC dc, std::wstring_view text, int widthPx, UINT style);
void DrawBlock(HDC dc, std::wstring_view text, const Rect& px, UINT style);

}  // namespace DuiLib
