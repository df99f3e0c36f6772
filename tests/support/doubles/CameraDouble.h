#pragma once
// A camera and the source reader over it that keep the documented rules, and what a test makes them do.
//
// Linked in the place of camera_system and reader_system. Laxer systems forgive what this one does not:
//   - one read is outstanding at most; after a callback with MF_SOURCE_READERF_ERROR, and after its last Release,
//     nothing of the reader may be called
//   - the type does not change while a read is outstanding (MF_E_INVALIDREQUEST)
//   - every callback comes on another thread; the last Release of the reader must not come within one
//   - a read that is outstanding when the source is shut down comes back with an error
//   - who opened the source shuts it down; activation, start and Shutdown take as long as the test wants
// Objects that were handed out are counted: at the end nobody may hold one. Threads: any; guarded by one mutex, which
// no call of the outside is made under.
#include <windows.h>

#include <mfidl.h>
#include <mfreadwrite.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/doubles/CameraType.h"

namespace doubles {

// What one ReadSample leads to.
struct CameraAnswer {
    HRESULT readResult = S_OK;  // of ReadSample itself; a failure brings no callback
    bool never = false;         // no callback
    HRESULT status = S_OK;
    DWORD flags = 0;
    IMFSample* sample = nullptr;        // the double releases it
    std::optional<CameraType> newType;  // the reader's current type from this callback on
    bool atOnce = false;                // before the read comes back, without a camera's pause
};

struct CameraScript {
    HRESULT enumerate = S_OK;
    std::vector<std::wstring> links = {L"\\\\?\\usb#vid_05c8&pid_0001&mi_00#double"};
    HRESULT activate = S_OK;
    std::function<void()> withinActivation;
    HRESULT createReader = S_OK;
    std::vector<CameraType> natives = {CameraType{}};
    HRESULT noNativeType = static_cast<HRESULT>(0xC00D36B9);  // past the list's end
    // What the reader delivers for a type that is offered; none: it refuses with `refusal`. Null: native types only.
    std::function<std::optional<CameraType>(const CameraType& offered)> accept;
    HRESULT refusal = static_cast<HRESULT>(0xC00D5212);
    std::function<HRESULT(int call)> currentType;  // results of GetCurrentMediaType, from call 0 on; null: S_OK
    bool currentTypeWithoutSubtype = false;        // from the second call on
    bool currentTypeWithoutSize = false;           // from the second call on
    std::function<CameraAnswer(int read)> answer;  // from read 0 on; null: pictures of the current type
    std::function<void()> withinRead;
    std::function<void()> withinShutdown;
};

struct CameraSeen {
    int activations = 0;  // tried
    int sources = 0;
    int sourcesRunning = 0;  // not shut down
    int sourcesAlive = 0;
    int readers = 0;
    int readersAlive = 0;
    int reads = 0;
    int callbacks = 0;  // that have returned
    HRESULT lastCallbackResult = S_OK;
    std::vector<CameraType> offers;  // every SetCurrentMediaType
};

class Cameras {
  public:
    // One healthy camera that nobody has seen.
    static void Begin();
    // Waits until all that was handed out has come back; what has not in that time is a broken rule (Violations).
    static void End(std::chrono::seconds patience = std::chrono::seconds(20));

    static void Change(const std::function<void(CameraScript&)>& change);
    static CameraScript Script();
    static CameraSeen Seen();
};

}  // namespace doubles
