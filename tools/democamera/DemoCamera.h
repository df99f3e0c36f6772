#pragma once
// One camera that a program makes up: what it is called, what it delivers, what goes wrong with it, and what has been
// seen of it.
//
// The camera itself is only this description with its counters; opening it makes a DemoMediaSource, which delivers
// frames through the platform's real source reader. Faults may be changed while the camera runs.
// Threads: settings are constant once the camera is shared; everything else may be called from any thread.
#include <windows.h>

#include <mfidl.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tools/democamera/CameraMode.h"

namespace democamera {

struct CameraSettings {
    std::wstring symbolicLink = L"\\\\?\\usb#vid_05c8&pid_0001&mi_00#demo#{e5323777-f976-4f5b-9b55-b94699c46e44}";
    std::wstring friendlyName = L"Demo camera";
    std::vector<CameraMode> modes = {CameraMode{}};  // the native types in their order; the first is the current one

    // Paints a picture of that size, top row first, 0x00RRGGBB; null: the test picture. On the camera's thread.
    std::function<void(std::uint32_t* picture, std::uint32_t width, std::uint32_t height, std::uint64_t frameIndex)>
        painter;
    // Instead of the painter: writes the FrameBytes(mode) bytes of a frame as they are delivered. On the camera's
    // thread.
    std::function<void(const CameraMode& mode, std::uint8_t* frame, std::uint64_t frameIndex)> rawPainter;
    // How long it takes to open the camera, and to shut it down.
    std::chrono::milliseconds openingTime{0};
    std::chrono::milliseconds closingTime{0};
    // Sees each sample after it was handed to the reader; on the camera's thread.
    std::function<void(IMFSample* sample)> delivered;
};

// What goes wrong. Counts are numbers of frames delivered since the source was opened; -1: never.
struct CameraFaults {
    HRESULT openResult = S_OK;         // of opening, 0xC00D3704: in use by another program
    HRESULT startResult = S_OK;        // of starting to read
    std::int64_t errorAfter = -1;      // the source reports an error and ends
    HRESULT error = E_FAIL;            // which one
    std::int64_t silentAfter = -1;     // no more frames, and no word about it
    std::int64_t unpluggedAfter = -1;  // the device is gone: an event, an error, and it cannot be opened any more
    std::int64_t endAfter = -1;        // end of the stream
    std::int64_t emptyAfter = -1;      // samples without a buffer
    std::int64_t shortAfter = -1;      // buffers that hold half a frame
    std::int64_t opens = -1;           // how many openings all of this holds for, tries included; -1: all
};

class DemoCamera : public std::enable_shared_from_this<DemoCamera> {
  public:
    static std::shared_ptr<DemoCamera> Make(CameraSettings settings);

    const CameraSettings& Settings() const { return settings_; }

    void SetFaults(const CameraFaults& faults);
    CameraFaults Faults() const;
    // As if somebody pulled the cable, now.
    void Unplug();
    void PlugIn() { pluggedIn_ = true; }
    bool IsPluggedIn() const { return pluggedIn_; }

    // Opens the camera as the platform would.
    HRESULT OpenSource(IMFMediaSource** source);

    // What has been seen of it.
    struct Counters {
        std::atomic<int> tried = 0;             // openings, those that failed included
        std::atomic<int> opened = 0;            // sources ever made
        std::atomic<int> running = 0;           // sources that are not shut down
        std::atomic<int> mode = -1;             // the native type that was last run
        std::atomic<int> alive = 0;             // source objects that exist
        std::atomic<std::int64_t> frames = 0;   // delivered in all
        std::atomic<std::int64_t> skipped = 0;  // due, but nobody had asked for one
    };
    Counters& Seen() { return seen_; }

  private:
    explicit DemoCamera(CameraSettings settings) : settings_(std::move(settings)) {}

    const CameraSettings settings_;
    mutable SRWLOCK lock_ = SRWLOCK_INIT;
    CameraFaults faults_;  // guarded by lock_
    std::atomic<bool> pluggedIn_ = true;
    Counters seen_;
};

}  // namespace democamera
