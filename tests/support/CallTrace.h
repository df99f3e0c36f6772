#pragma once
// What the settings model and the pages do to the outside, in its order: writes of the settings key, usage events,
// messages to the camera service, and waits.
//
// Each is noted as text, in the moment in which it is asked for, and then done: "lumi_camera_switch=1",
// "report open camera", "ping", "switch state", "wait 100". A wait is noted and not waited for. What comes from other
// threads, the reports of the beauty levels, is not noted. Thread: the test's.
#include <string>
#include <vector>

#include "tests/support/ImportHook.h"

namespace harness {

class CallTrace {
  public:
    CallTrace();
    ~CallTrace();
    CallTrace(const CallTrace&) = delete;
    CallTrace& operator=(const CallTrace&) = delete;

    // Since the last call.
    std::vector<std::string> Take();

  private:
    ImportHook write_;
    ImportHook report_;
    ImportHook post_;
    ImportHook sleep_;
};

}  // namespace harness
