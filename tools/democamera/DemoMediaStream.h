#pragma once
// The video stream of a demo camera: a thread that takes a picture at each tick of the camera's rate and delivers it
// when one was asked for, as a camera does; pictures that nobody wants are skipped.
//
// It knows its source until the source shuts it down; neither holds the other alive after that.
// Threads: any for the COM operations; one thread of its own between Run and Halt.
#include <windows.h>

#include <mfidl.h>

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "suite/common/ComObject.h"
#include "tools/democamera/DemoCamera.h"

namespace democamera {

class DemoMediaSource;

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // deleted by Release alone
class DemoMediaStream : public suite::ComObject<IMFMediaStream, IMFMediaEventGenerator> {
  public:
    // `source`: borrowed until Halt with `forGood`.
    static HRESULT Make(std::shared_ptr<DemoCamera> camera, DemoMediaSource* source, IMFStreamDescriptor* descriptor,
                        DemoMediaStream** stream);

    STDMETHODIMP GetEvent(DWORD flags, IMFMediaEvent** event) override;
    STDMETHODIMP BeginGetEvent(IMFAsyncCallback* callback, IUnknown* state) override;
    STDMETHODIMP EndGetEvent(IMFAsyncResult* result, IMFMediaEvent** event) override;
    STDMETHODIMP QueueEvent(MediaEventType type, REFGUID extendedType, HRESULT status,
                            const PROPVARIANT* value) override;

    STDMETHODIMP GetMediaSource(IMFMediaSource** source) override;
    STDMETHODIMP GetStreamDescriptor(IMFStreamDescriptor** descriptor) override;
    STDMETHODIMP RequestSample(IUnknown* token) override;

    // Delivers frames of that mode from now on.
    void Run(const CameraMode& mode);
    // Ends the thread and forgets what was asked for. `forGood`: the source is being shut down.
    void Halt(bool forGood);

  private:
    DemoMediaStream(std::shared_ptr<DemoCamera> camera, DemoMediaSource* source);
    ~DemoMediaStream() override;

    void Work();
    bool WaitForTick(std::chrono::steady_clock::time_point tick);
    // Both false: the stream has ended.
    bool CheckFaults(const CameraFaults& faults);
    bool Deliver(const CameraFaults& faults);
    HRESULT MakeSample(const CameraFaults& faults, IMFSample** sample);
    HRESULT MakeBuffer(IMFMediaBuffer** buffer, bool half);
    void DropRequests();

    const std::shared_ptr<DemoCamera> camera_;
    IMFMediaEventQueue* events_ = nullptr;
    IMFStreamDescriptor* descriptor_ = nullptr;

    // The thread's, while it runs.
    CameraMode mode_;
    std::int64_t delivered_ = 0;
    std::vector<std::uint32_t> picture_;

    std::mutex lock_;
    std::condition_variable halted_;
    // Guarded by lock_.
    DemoMediaSource* source_;         // borrowed; null after the source was shut down
    std::deque<IUnknown*> requests_;  // one per wanted frame: the reader's token, or null
    bool halt_ = false;
    bool ended_ = false;

    std::thread thread_;  // the threads' that run and halt, one at a time by the source's lock
};
#pragma GCC diagnostic pop

}  // namespace democamera
