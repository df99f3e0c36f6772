#pragma once
// Input events as controls receive them (DoEvent), after hit test and capture. Thread: UI thread.
#include <windows.h>

#include "DuiLib/Geometry.h"

namespace DuiLib {

enum class EventType {
    MouseEnter,  // also for each ancestor: the pointer came onto the control or something in it
    MouseLeave,
    MouseMove,
    MouseWheel,  // `wheelDelta`, in multiples of WHEEL_DELTA
    ButtonDown,  // left button; the second press of a double click is one more
    ButtonUp,
    KeyDown,  // `key`
    KeyUp,
    SetFocus,
    KillFocus,
    CaptureLost,  // the capture went to somebody else; whatever is being dragged ends
    SetCursor
};

struct TEventUI {
    EventType type;
    Point mousePx;  // client coordinates
    WORD key = 0;   // virtual key
    int wheelDelta = 0;
    bool control = false;  // Ctrl is held
    bool shift = false;    // Shift is held; with SetFocus: the focus came by Shift+Tab
    bool repeat = false;   // a KeyDown that comes because the key is being held
};

}  // namespace DuiLib
