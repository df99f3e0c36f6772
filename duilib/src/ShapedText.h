#pragma once
// Lines of text in scripts whose letters join, stack or run from right to left, shaped by the system's script engine.
//
// Why not GDI alone: not every system measures such text as it draws it, and then nothing is aligned or breaks where
// it should. Text of other scripts goes the plain way, which also knows linked fonts. Thread: UI thread.
#include <windows.h>

#include <string_view>

#include "DuiLib/Geometry.h"

namespace DuiLib {

bool NeedsShaping(std::wstring_view text);

// One line with the font of the device context, shaped where that is needed.
int LineWidthPx(HDC dc, std::wstring_view text, bool rightToLeft);

// As the system's DrawText for a text that needs shaping, with the font and colours of the device context. DT_VCENTER
// and DT_BOTTOM hold for several lines, too; DT_END_ELLIPSIS for a single one.
Size MeasureShaped(HDC dc, std::wstring_view text, int widthPx, UINT style);
void DrawShaped(HDC dc, std::wstring_view text, const Rect& px, UINT style);

}  // namespace DuiLib
