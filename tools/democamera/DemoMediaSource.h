#pragma once
// A camera as Media Foundation sees one: a live media source with one video stream.
//
// It is a true source, read by the platform's own source reader; only the pictures are made up. Start announces the
// stream (MENewStream, without which a reader shows nothing) and runs it, Shutdown ends everything. The camera's
// description, faults and counters are in DemoCamera.
// Threads: any, as for every media source.
#include <windows.h>

#include <mfidl.h>

#include <atomic>
#include <memory>
#include <mutex>

#include "suite/common/ComObject.h"
#include "tools/democamera/DemoCamera.h"

namespace democamera {

class DemoMediaStream;

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // deleted by Release alone
class DemoMediaSource : public suite::ComObject<IMFMediaSource, IMFMediaEventGenerator> {
  public:
    static HRESULT Make(std::shared_ptr<DemoCamera> camera, IMFMediaSource** source);

    STDMETHODIMP GetEvent(DWORD flags, IMFMediaEvent** event) override;
    STDMETHODIMP BeginGetEvent(IMFAsyncCallback* callback, IUnknown* state) override;
    STDMETHODIMP EndGetEvent(IMFAsyncResult* result, IMFMediaEvent** event) override;
    STDMETHODIMP QueueEvent(MediaEventType type, REFGUID extendedType, HRESULT status,
                            const PROPVARIANT* value) override;

    STDMETHODIMP GetCharacteristics(DWORD* characteristics) override;
    STDMETHODIMP CreatePresentationDescriptor(IMFPresentationDescriptor** descriptor) override;
    STDMETHODIMP Start(IMFPresentationDescriptor* descriptor, const GUID* timeFormat,
                       const PROPVARIANT* position) override;
    STDMETHODIMP Stop() override;
    STDMETHODIMP Pause() override;
    STDMETHODIMP Shutdown() override;

    // The stream's thread tells that the device failed.
    void ReportFailure(MediaEventType type, HRESULT status);

  private:
    explicit DemoMediaSource(std::shared_ptr<DemoCamera> camera);
    ~DemoMediaSource() override;
    HRESULT Initialize();
    HRESULT StartStream(IMFPresentationDescriptor* descriptor);

    const std::shared_ptr<DemoCamera> camera_;
    IMFMediaEventQueue* events_ = nullptr;
    IMFStreamDescriptor* streamDescriptor_ = nullptr;
    IMFPresentationDescriptor* presentation_ = nullptr;
    std::mutex lock_;
    // Guarded by lock_.
    DemoMediaStream* stream_ = nullptr;
    bool announced_ = false;
    std::atomic<bool> shutDown_ = false;
};
#pragma GCC diagnostic pop

}  // namespace democamera
