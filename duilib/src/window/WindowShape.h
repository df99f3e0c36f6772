#pragma once
// The outline of a window without a drawn frame: rounded by the system where it can, else by a region. Thread: UI
// thread.
#include <windows.h>

namespace DuiLib {

// `radiusPx` 0: square corners. A maximised window is always square.
void ApplyWindowShape(HWND window, int radiusPx);

}  // namespace DuiLib
