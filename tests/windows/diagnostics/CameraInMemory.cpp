// Plugs a camera in before the diagnostics program starts.
#include "tools/democamera/DemoCameraSystem.h"

namespace {

[[maybe_unused]] const bool kPluggedIn = [] {
    democamera::SetCameras({democamera::DemoCamera::Make({})});
    return true;
}();

}  // namespace
