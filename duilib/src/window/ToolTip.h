#pragma once
// The tooltip of a window's controls, shown by the system's tooltip control. The control is made when the first tooltip
// is wanted, in the colours and the font of that moment; the system owns it with the window. Thread: UI thread.
#include <windows.h>

#include <string>

#include "DuiLib/Geometry.h"

namespace DuiLib {

class ToolTip {
  public:
    // The text belongs to that part of the window's client area; the system shows it when the pointer rests there.
    // `font` is borrowed until Drop.
    void Set(HWND window, const Rect& px, const std::wstring& text, HFONT font, bool rightToLeft, int maxWidthPx);
    void Clear();
    // The control goes; the next Set makes another.
    void Drop();
    // A mouse message of the window.
    void Relay(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    // The window is gone, and the tooltip control with it.
    void Forget();

  private:
    bool Create(HWND window, HFONT font, bool rightToLeft);

    HWND toolTip_ = nullptr;
    HWND window_ = nullptr;
    std::wstring text_;  // empty: nothing is shown
    Rect px_;
};

}  // namespace DuiLib
