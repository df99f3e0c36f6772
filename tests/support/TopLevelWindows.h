#pragma once
// The windows of the screen by their class.
//
// Why not FindWindowEx from one window to the next: a window that ends in between ends the walk, or, on some systems,
// makes it endless. Any thread.
#include <windows.h>

#include <vector>

namespace harness {

// All top-level windows of that class, also of other programs, hidden ones too, the uppermost first.
std::vector<HWND> TopLevelWindows(const wchar_t* className);
// Those of them that the window owns.
std::vector<HWND> OwnedWindows(const wchar_t* className, HWND owner);

}  // namespace harness
