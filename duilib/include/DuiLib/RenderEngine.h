#pragma once
// Text in the library's fonts, for programs that draw or measure by themselves. Thread: UI thread.
#include <windows.h>

#include <string>

#include "DuiLib/Export.h"
#include "DuiLib/Geometry.h"

namespace DuiLib {

class CPaintManagerUI;

class DUILIB_API CRenderEngine {
  public:
    // Draws a text with font `font` of the manager's layout; `style` is made of the system's DT_… flags. With
    // DT_CALCRECT (1024) nothing is drawn and `rectPx` becomes the rectangle that the text needs.
    static void DrawText(HDC dc, CPaintManagerUI* manager, Rect& rectPx, const std::wstring& text, DWORD argb, int font,
                         UINT style);
};

}  // namespace DuiLib
