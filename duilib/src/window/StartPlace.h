#pragma once
// The screen on which a window is made, so that it has the right scale from its first message on.
//
// A popup for which no place is given is made at the corner of the first screen, whatever its owner stands on.
// Thread: any.
#include <windows.h>

namespace DuiLib {

// A corner of that screen's work area: of the owner's screen; without an owner, of the one whose task bar or jump list
// the program was started from, else of the one with the pointer.
POINT StartPlace(HWND owner);

}  // namespace DuiLib
