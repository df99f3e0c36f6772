#pragma once
// The live camera picture: opens the first allowed camera, agrees a pixel format that the renderer can convert, reads
// frames asynchronously and hands each one to the renderer.
//
// The caller has started COM and Media Foundation on its thread. A read or draw failure is posted to the event window
// as message kEventMessage with the HRESULT as first parameter, and reading stops; what follows is the caller's.
// Threads: one thread (the page's) calls CreateInstance, Start, Close and DestroyRenderer; the platform's reader thread
// calls OnReadSample, where all drawing happens. The sample lock keeps a picture's drawing and the tearing down apart,
// the start lock keeps a next read from being issued on a reader that is half built. Close returns when no callback
// draws any more.
#include <windows.h>

#include <mfidl.h>
#include <mfreadwrite.h>

#include <atomic>
#include <mutex>
#include <string>

#include "preview/Device.h"

// The interfaces have no virtual destructor; this object is only ever deleted by its own Release.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
class Preview : public IMFSourceReaderCallback {
  public:
    static constexpr UINT kEventMessage = WM_APP + 1;

    // Makes an object and opens its renderer on `videoWindow`. The caller owns one reference. The windows are borrowed
    // and must outlive the drawing.
    [[nodiscard]] static HRESULT CreateInstance(HWND videoWindow, HWND eventWindow, Preview** result);

    // Opens the camera anew and starts reading; the parameter does not matter. False: the log tells why.
    [[nodiscard]] bool Start(UINT32 ignored);
    // Stops reading and releases what belongs to the capture; also when nothing is open. Always S_OK.
    HRESULT Close();
    // After Close: gives the renderer's device back.
    void DestroyRenderer();

    // 0: idle, 1: started.
    UINT32 State() const { return state_; }
    // GetTickCount64 of the last frame that was drawn, or of Start when there was none yet: a camera that stops
    // delivering is not reported by every system. Any thread.
    ULONGLONG LastFrameTickMs() const { return lastFrameTickMs_; }

    // Whether a camera with that symbolic link may be used.
    static bool IsAllowedCamera(std::wstring symbolicLink);

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    // The platform's reader thread.
    STDMETHODIMP OnReadSample(HRESULT status, DWORD streamIndex, DWORD streamFlags, LONGLONG timestampHns,
                              IMFSample* sample) override;
    STDMETHODIMP OnFlush(DWORD streamIndex) override;
    STDMETHODIMP OnEvent(DWORD streamIndex, IMFMediaEvent* event) override;

    Preview(const Preview&) = delete;
    Preview& operator=(const Preview&) = delete;

  private:
    Preview(HWND videoWindow, HWND eventWindow);
    virtual ~Preview();

    HRESULT Initialize();
    INT32 SelectDevice();
    bool CreateDeviceSource(INT32 index);
    HRESULT CreateReader(IMFMediaSource* source, IMFAttributes* attributes);
    HRESULT NegotiateMediaType(IMFSourceReader* reader);
    HRESULT TryMediaType(IMFSourceReader* reader, IMFMediaType* type);
    HRESULT OfferFormats(IMFSourceReader* reader, IMFMediaType* type, GUID* subtype);
    HRESULT RequestSample();
    HRESULT HandleSample(LONGLONG timestampHns, IMFSample* sample);
    HRESULT DrawFirstBuffer(IMFSample* sample);
    void PostFailure(HRESULT result);

    const UINT32 eventMessage_ = kEventMessage;
    [[maybe_unused]] const UINT32 frameArea_ = 1280 * 720;  // kept for compatibility: nothing reads it
    std::atomic<UINT32> state_ = 0;
    IMFMediaSource* mediaSource_ = nullptr;
    IMFActivate** devices_ = nullptr;  // CoTaskMemFree
    IMFMediaType* mediaType_ = nullptr;
    IMFAttributes* enumerationAttributes_ = nullptr;
    GUID subtype_ = {};
    UINT32 frameWidthPx_ = 0;
    UINT32 frameHeightPx_ = 0;
    BOOL firstSamplePending_ = FALSE;
    LONGLONG baseTimeHns_ = 0;
    std::atomic<ULONG> referenceCount_ = 1;
    CRITICAL_SECTION sampleLock_;  // taken before the start lock by the reader thread, after it by Start
    GUID negotiatedSubtype_ = {};
    const HWND videoWindow_;
    const HWND eventWindow_;
    std::atomic<IMFSourceReader*> reader_ = nullptr;  // null: a callback has nothing to do
    IUnknown* spareReference_ = nullptr;
    Device renderer_;
    WCHAR* symbolicLink_ = nullptr;  // CoTaskMemFree
    UINT32 symbolicLinkLength_ = 0;
    UINT32 deviceCount_ = 0;
    std::mutex startLock_;

    std::atomic<ULONGLONG> lastFrameTickMs_ = 0;
    UINT32 offersLeft_ = 0;  // of the negotiation that is under way
};
#pragma GCC diagnostic pop
