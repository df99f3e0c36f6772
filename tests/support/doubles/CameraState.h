#pragma once
// What the objects of the camera double share: script, counters and what was handed out. Internal to it.
#include <deque>
#include <mutex>

#include "tests/support/doubles/CameraDouble.h"

namespace doubles {

class CameraState {
  public:
    static CameraState& The();

    // Keeps a reference of an object that is handed out, to see at the end that nobody else has one.
    void Watch(IUnknown* object, const char* what);

    std::mutex mutex;
    // Guarded by mutex.
    CameraScript script;
    CameraSeen seen;
    struct Watched {
        IUnknown* object;
        const char* what;
    };
    std::deque<Watched> watched;
    int readersAnswering = 0;  // whose thread has not ended
};

}  // namespace doubles
