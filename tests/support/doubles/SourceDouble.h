#pragma once
// The opened camera of the camera double. Nothing is asked of it but to shut down; the reader double delivers. Any
// thread.
#include <windows.h>

#include <mfidl.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <vector>

namespace doubles {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // deleted by Release alone
class SourceDouble final : public IMFMediaSource {
  public:
    SourceDouble();

    bool IsShutDown() const { return shutDown_; }
    // Runs when the source is shut down; at once when it is already.
    void WhenShutDown(std::function<void()> then);

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override;
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

  private:
    std::atomic<ULONG> references_ = 1;
    std::atomic<bool> shutDown_ = false;
    std::mutex mutex_;
    std::vector<std::function<void()>> whenShutDown_;  // guarded by mutex_
};
#pragma GCC diagnostic pop

}  // namespace doubles
