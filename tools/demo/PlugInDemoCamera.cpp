// Plugs the demo camera in before the program starts: this file is all that PixoraDemo has beyond the shipped program.
#include <mferror.h>

#include <algorithm>
#include <cstdlib>

#include "tools/democamera/CameraOptions.h"
#include "tools/democamera/DemoCameraSystem.h"

namespace {

using namespace democamera;

constexpr std::uint32_t kRed = 0xD03030;
constexpr std::uint32_t kBlue = 0x3050D0;

CameraFaults FaultsOf(const CameraOptions& options) {
    CameraFaults faults;
    faults.opens = options.opens;
    switch (options.fault) {
        case CameraFault::kBusy:
            faults.openResult = MF_E_HW_MFT_FAILED_START_STREAMING;  // what a camera that is in use answers
            break;
        case CameraFault::kRefused:
            faults.openResult = E_ACCESSDENIED;
            break;
        case CameraFault::kNoStart:
            faults.startResult = E_FAIL;
            break;
        case CameraFault::kError:
            faults.errorAfter = options.after;
            break;
        case CameraFault::kSilent:
            faults.silentAfter = options.after;
            break;
        case CameraFault::kUnplugged:
            faults.unpluggedAfter = options.after;
            break;
        case CameraFault::kEnd:
            faults.endAfter = options.after;
            break;
        case CameraFault::kEmpty:
            faults.emptyAfter = options.after;
            break;
        case CameraFault::kShort:
            faults.shortAfter = options.after;
            break;
        case CameraFault::kNone:
        case CameraFault::kAbsent:
            break;
    }
    return faults;
}

void PaintHalves(std::uint32_t* picture, std::uint32_t width, std::uint32_t height, std::uint64_t) {
    for (std::uint32_t y = 0; y < height; ++y, picture += width) {
        std::fill_n(picture, width / 2, kRed);
        std::fill_n(picture + width / 2, width - width / 2, kBlue);
    }
}

bool PlugIn() {
    const char* text = std::getenv("PIXORA_DEMO_CAMERA");
    const CameraOptions options = ParseCameraOptions(text ? text : "");
    if (options.fault == CameraFault::kAbsent)
        return false;
    CameraSettings settings;
    settings.modes = {options.mode};
    if (options.picture == CameraPicture::kHalves)
        settings.painter = PaintHalves;
    const auto camera = DemoCamera::Make(std::move(settings));
    camera->SetFaults(FaultsOf(options));
    SetCameras({camera});
    return true;
}

[[maybe_unused]] const bool g_pluggedIn = PlugIn();

}  // namespace
