#pragma once
// A place in which a call of the outside waits until the test lets it go on; at the gate's end it does. Any thread.
#include <windows.h>

#include "suite/common/Handle.h"
#include "tests/support/Wait.h"

namespace doubles {

class Gate {
  public:
    Gate()
        : reached_(CreateEventW(nullptr, TRUE, FALSE, nullptr)), open_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
    ~Gate() { Open(); }
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;

    // The caller waits here.
    void Pass() const {
        SetEvent(reached_.Get());
        WaitForSingleObject(open_.Get(), INFINITE);
    }
    void Open() const { SetEvent(open_.Get()); }
    // Serves messages until somebody waits in it.
    bool WaitUntilReached() const {
        return harness::PumpUntil([this] { return WaitForSingleObject(reached_.Get(), 0) == WAIT_OBJECT_0; });
    }

  private:
    const suite::Handle reached_;
    const suite::Handle open_;
};

}  // namespace doubles
