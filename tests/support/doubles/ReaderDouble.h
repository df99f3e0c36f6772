#pragma once
// The source reader of the camera double; its rules are told in CameraDouble.h.
//
// Each reader has a thread that answers its reads one by one, each by a callback on a new thread. Any thread.
#include <windows.h>

#include <mfidl.h>
#include <mfreadwrite.h>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>

#include "tests/support/doubles/CameraDouble.h"
#include "tests/support/doubles/SourceDouble.h"

namespace doubles {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // deleted by Release alone
class ReaderDouble final : public IMFSourceReader {
  public:
    // Both are referenced as long as the reader lives.
    ReaderDouble(SourceDouble* source, IMFSourceReaderCallback* callback);

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP GetStreamSelection(DWORD index, WINBOOL* selected) override;
    STDMETHODIMP SetStreamSelection(DWORD index, WINBOOL selected) override;
    STDMETHODIMP GetNativeMediaType(DWORD index, DWORD typeIndex, IMFMediaType** type) override;
    STDMETHODIMP GetCurrentMediaType(DWORD index, IMFMediaType** type) override;
    STDMETHODIMP SetCurrentMediaType(DWORD index, DWORD* reserved, IMFMediaType* type) override;
    STDMETHODIMP SetCurrentPosition(REFGUID format, REFPROPVARIANT position) override;
    STDMETHODIMP ReadSample(DWORD index, DWORD flags, DWORD* actualIndex, DWORD* sampleFlags, LONGLONG* timestamp,
                            IMFSample** sample) override;
    STDMETHODIMP Flush(DWORD index) override;
    STDMETHODIMP GetServiceForStream(DWORD index, REFGUID service, REFIID iid, void** object) override;
    STDMETHODIMP GetPresentationAttribute(DWORD index, REFGUID guid, PROPVARIANT* value) override;

  private:
    // Shared with the answering thread, which may outlive the reader for a moment.
    struct Core {
        std::mutex mutex;
        std::condition_variable changed;
        // Guarded by mutex.
        IMFSourceReaderCallback* callback = nullptr;  // a reference, until the reader's end
        std::optional<CameraAnswer> pending;          // of the read that is outstanding
        CameraType current;
        bool failed = false;    // a callback told of an error
        bool shutDown = false;  // the source was
        bool ended = false;     // the reader is gone
        DWORD callbackThread = 0;
    };
    static void Work(const std::shared_ptr<Core>& core);
    static void Deliver(Core& core, IMFSourceReaderCallback* callback, const CameraAnswer& answer, LONGLONG timeHns);
    // Notes the call when it is against the rules.
    void Check(const char* call, DWORD index) const;

    SourceDouble* const source_;  // a reference
    const std::shared_ptr<Core> core_ = std::make_shared<Core>();
    std::atomic<ULONG> references_ = 1;
    std::atomic<int> currentTypeCalls_ = 0;
};
#pragma GCC diagnostic pop

}  // namespace doubles
