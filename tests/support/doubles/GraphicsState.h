#pragma once
// What the objects of the Direct3D double share: script, counters and the state of the desktop. Internal to it.
#include "tests/support/doubles/GraphicsDouble.h"

namespace doubles {

class GraphicsState {
  public:
    static GraphicsState& The();

    std::mutex mutex;
    // Guarded by mutex.
    GraphicsScript script;
    GraphicsSeen seen;
    bool desktopGone = false;
    int callsUntilBack = -1;   // -1: until somebody gives the desktop back
    int objectsOfThePast = 0;  // objects with smaller numbers are dead for ever
    int losses = 0;            // how often the desktop was taken

    // Whether the desktop is out of reach for that object; counts the call. Takes the mutex.
    bool IsGone(int object);
};

}  // namespace doubles
