// Plugs the demo camera in before the program starts: this file is all that PixoraDemo has beyond the shipped program.
#include <mferror.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <mutex>

#include "tools/demo/EffectSettings.h"
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
        case CameraFault::kTaken:
            faults.errorAfter = options.after;
            faults.error = MF_E_HW_MFT_FAILED_START_STREAMING;
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

// The person, as the present settings make it look. The scene goes on where the last preview left it.
class PersonPainter {
  public:
    void Paint(std::uint32_t* picture, std::uint32_t width, std::uint32_t height, std::uint64_t frame) {
        constexpr std::uint64_t kFramesBetweenReadings = 6;
        const std::lock_guard guard(lock_);
        if (frame % kFramesBetweenReadings == 0) {
            settings_.Update();
        }
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start_;
        scene_.Paint(picture, static_cast<int>(width), static_cast<int>(height), time.count(), settings_.Scene());
    }

  private:
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::mutex lock_;
    // Guarded by lock_: a camera that is opened again may overlap with the one that closes.
    EffectSettings settings_;
    DemoScene scene_;
};

bool PlugIn() {
    const char* text = std::getenv("PIXORA_DEMO_CAMERA");
    const CameraOptions options = ParseCameraOptions(text ? text : "");
    if (options.fault == CameraFault::kAbsent) {
        return false;
    }
    CameraSettings settings;
    settings.modes = {options.mode};
    settings.openingTime = std::chrono::milliseconds(options.openingMs);
    settings.closingTime = std::chrono::milliseconds(options.closingMs);
    if (options.picture == CameraPicture::kHalves) {
        settings.painter = PaintHalves;
    }
    if (options.picture == CameraPicture::kPerson) {
        settings.painter = [painter = std::make_shared<PersonPainter>()](auto... frame) { painter->Paint(frame...); };
    }
    const auto camera = DemoCamera::Make(std::move(settings));
    camera->SetFaults(FaultsOf(options));
    SetCameras({camera});
    return true;
}

[[maybe_unused]] const bool g_pluggedIn = PlugIn();

}  // namespace
