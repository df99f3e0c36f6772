#pragma once
// Input events as controls receive them (DoEvent), after hit test and capture. Thread: UI thread.
#include <windows.h>

#include "DuiLib/Geometry.h"

namespace DuiLib {

enum class EventType {
    kMouseEnter,  // also for each ancestor: the pointer came onto the control or something in it
    kMouseLeave,
    kMouseMove,
    kMouseWheel,  // `wheelDelta`: WHEEL_DELTA is a notch, fine wheels and touchpads send parts of one
    kButtonDown,  // left button; the second press of a double click is one more, with `doubleClick`
    kButtonUp,
    kKeyDown,  // `key`
    kKeyUp,
    kSetFocus,
    kKillFocus,
    kCaptureLost,  // the capture went to somebody else; whatever is being dragged ends
    kSetCursor
};

struct TEventUI {
    EventType type;
    Point mousePx;  // client coordinates
    WORD key = 0;   // virtual key
    int wheelDelta = 0;
    bool control = false;  // Ctrl is held
    bool shift = false;    // Shift is held; with SetFocus: the focus came by Shift+Tab
    bool doubleClick = false;
    bool repeat = false;  // a KeyDown that comes because the key is being held
};

}  // namespace DuiLib
