#pragma once
// How long the renderer goes without its graphics device, and what is to be tried next.
//
// A device is lost whenever the desktop is out of reach (a locked screen, a prompt for consent, a renewed driver), and
// nobody tells when it is back: it has to be asked for, once a second at most. Some devices only come back with a new
// Direct3D object. Counted in tries and not by the clock, so that the time that the computer sleeps does not count.
// Pure logic; guarded by its owner.
#include <cstdint>

namespace preview {

// In the log, once a loss. PixoraDiagnostics counts them.
inline constexpr const wchar_t* kDeviceLostLine = L"the graphics device is lost";
inline constexpr const wchar_t* kDeviceBackLine = L"the graphics device is back";

class DeviceLoss {
  public:
    static constexpr std::uint64_t kBetweenTriesMs = 1000;
    static constexpr int kTriesOfAnObject = 5;  // the next one is with a new object
    static constexpr int kMostTries = 31;       // the first at once, so the last is after half a minute

    bool IsLost() const { return lost_; }
    // Something has told that the device is lost: frames are dropped until it is found again.
    void Notice() { lost_ = true; }
    // It works again, as far as it says; the tries count on until a frame has come to the screen.
    void Find() { lost_ = false; }
    void Present() {
        lost_ = false;
        tries_ = 0;
    }

    // Begins a try; false when the last one is too short a time ago.
    bool BeginTry(std::uint64_t nowMs) {
        if (tries_ > 0 && nowMs - lastTryMs_ < kBetweenTriesMs) {
            return false;
        }
        lastTryMs_ = nowMs;
        ++tries_;
        return true;
    }
    // Of the try that is under way. An object takes its time, which there is none of behind the last one.
    bool WantsNewObject() const { return tries_ > 1 && tries_ % kTriesOfAnObject == 1 && !IsLastTry(); }
    bool IsLastTry() const { return tries_ >= kMostTries; }
    // Even the last one did not bring a frame to the screen.
    bool IsOver() const { return tries_ > kMostTries; }

  private:
    bool lost_ = false;
    int tries_ = 0;  // since a frame was presented
    std::uint64_t lastTryMs_ = 0;
};

}  // namespace preview
