#pragma once
// The live camera picture: opens the first allowed camera, agrees a pixel format that the renderer can convert, reads
// frames asynchronously and hands each one to the renderer.
//
// The caller has started Media Foundation, and COM on its threads. A read or draw failure is posted to the event window
// as message kEventMessage with the HRESULT as first parameter, and reading stops; what follows is the caller's. A
// graphics device that is lost is no failure: the video window gets kDeviceMessage, and its thread calls RecoverDevice
// then and once a second until the device is there again; frames are dropped meanwhile.
//
// Threads and locks:
//   - the window's thread (the page's) calls CreateInstance, Close, RecoverDevice, RecoverDeviceWith and
//     DestroyRenderer. None of them waits for the thread that draws, or for the camera, longer than kDrawingWait or
//     kClosingWait, and what other threads send to its windows is served meanwhile.
//   - Start runs on any thread, for a camera may take its time, and where it comes too late Close does too. Close ends
//     it from outside: what it has opened by then it closes itself, and its result is false.
//   - the platform's reader thread calls OnReadSample, where all drawing happens.
// The sample lock is held while something is drawn, configured or recovered; the start lock while Start runs, and while
// a next read is issued, so that none is issued on a reader that is half built; the reader's thread takes it within the
// sample lock, so Start takes no sample lock any more once a callback can find its reader. The capture lock is a leaf:
// it guards what Close takes away, and nothing of the outside is called under it but PostMessage. Each Close begins a
// new generation; what belongs to an older one draws, reads and posts no more.
#include <windows.h>

#include <mfidl.h>
#include <mfreadwrite.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "preview/Device.h"
#include "preview/OpenCamera.h"
#include "preview/SampleLock.h"

// The interfaces have no virtual destructor; this object is only ever deleted by its own Release.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
class Preview : public IMFSourceReaderCallback {
  public:
    static constexpr UINT kEventMessage = WM_APP + 1;
    static constexpr UINT kDeviceMessage = WM_APP + 2;

    // How long the window's thread waits for a picture that is being drawn, and for a camera that is being closed.
    static constexpr std::chrono::milliseconds kDrawingWait{100};
    static constexpr std::chrono::milliseconds kClosingWait{800};

    // Makes an object and opens its renderer on `videoWindow`. The caller owns one reference. The windows are borrowed
    // and must outlive the drawing. `direct3d`: of Device::CreateDirect3D; without one the renderer makes its own.
    [[nodiscard]] static HRESULT CreateInstance(HWND videoWindow, HWND eventWindow, Preview** result,
                                                suite::ComReference<IDirect3D9> direct3d = {});

    // Opens the camera anew and starts reading; the parameter does not matter. False: the log tells why, unless Close
    // came in between. One thread at a time; also when it reads already.
    [[nodiscard]] bool Start(UINT32 ignored);
    // Stops reading and releases what belongs to the capture; also when nothing is open. Always S_OK. No callback draws
    // any more when it returns, and the camera is free, unless the device or the camera hangs.
    HRESULT Close();
    // After Close: gives the renderer's device back. False: it is in use, because the graphics device hangs or because
    // this call comes from within RecoverDevice; to be called again later.
    bool DestroyRenderer();

    // Whether frames are dropped because the graphics device is lost. Any thread.
    bool IsDeviceLost() const { return deviceLost_; }
    // S_OK: the device is there. S_FALSE: not yet. A failure: it will not come back.
    [[nodiscard]] HRESULT RecoverDevice();
    // Whether that needs a new object of Device::CreateDirect3D, with which RecoverDeviceWith goes on.
    bool WantsDirect3D() const { return wantsDirect3D_; }
    [[nodiscard]] HRESULT RecoverDeviceWith(suite::ComReference<IDirect3D9> direct3d);

    // 0: idle, 1: started. Any thread.
    UINT32 State() const { return state_; }
    // GetTickCount64 of the last frame that came, or of Start when there was none yet: a camera that stops delivering
    // is not reported by every system. Frames that are too short to be drawn do not count. Any thread.
    ULONGLONG LastFrameTickMs() const { return lastFrameTickMs_; }
    // What the last read told that brought no frame; S_OK when a frame has come since. Any thread.
    HRESULT LastReadFailure() const { return lastReadFailure_; }
    // Where Start is, in words for the log. Any thread.
    const wchar_t* OpeningStep() const { return openingStep_; }
    // The device path of the camera that is open; empty when none is.
    std::wstring CameraLink() const;

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

    HRESULT Initialize(suite::ComReference<IDirect3D9> direct3d);

    // --- Start's thread, under the start lock (PreviewCamera.cpp)
    INT32 SelectDevice();
    bool CreateDeviceSource(INT32 index);
    HRESULT CreateReader(IMFMediaSource* source, IMFAttributes* attributes);
    HRESULT NegotiateMediaType(IMFSourceReader* reader);
    HRESULT TryMediaType(IMFSourceReader* reader, IMFMediaType* type, bool isCurrent);
    HRESULT OfferFormats(IMFSourceReader* reader, IMFMediaType* type);
    HRESULT Offer(IMFSourceReader* reader, IMFMediaType* type);
    HRESULT ConfigureRenderer(IMFMediaType* type);
    // From here on Close takes camera and reader away. False: Close came before.
    bool Publish(IMFSourceReader* reader);
    bool IsCancelled() const { return generation_ != openingGeneration_; }

    // --- the reader's thread, under the sample lock
    HRESULT HandleSample(HRESULT status, DWORD streamFlags, LONGLONG timestampHns, IMFSample* sample,
                         UINT32 generation);
    HRESULT AdoptChangedType();
    HRESULT DrawFirstBuffer(IMFSample* sample, UINT32 generation);
    HRESULT ReadOn(HRESULT status, DWORD streamFlags, bool hasSample, UINT32 generation);
    HRESULT RequestSample(UINT32 generation);

    // After a pause, on a thread of the pool.
    bool ReadAfterPause(int pauseMs, UINT32 generation);
    void ReadNow(UINT32 generation);
    static void CALLBACK OnPauseOver(PTP_CALLBACK_INSTANCE instance, void* context, PTP_TIMER timer);

    HRESULT Recover(const std::function<HRESULT()>& recover);
    void TellLoss();
    void PostFailure(HRESULT result, UINT32 generation);

    const UINT32 eventMessage_ = kEventMessage;
    [[maybe_unused]] const UINT32 frameArea_ = 1280 * 720;  // kept for compatibility: nothing reads it
    std::atomic<ULONG> referenceCount_ = 1;
    const HWND videoWindow_;
    const HWND eventWindow_;

    // --- any thread
    std::atomic<ULONGLONG> lastFrameTickMs_ = 0;
    std::atomic<HRESULT> lastReadFailure_ = S_OK;
    std::atomic<const wchar_t*> openingStep_ = L"not begun";
    std::atomic<bool> deviceLost_ = false;
    std::atomic<bool> drawingHangs_ = false;  // as Close found it

    // --- changed under the capture lock only, read anywhere
    mutable std::mutex captureLock_;
    std::atomic<UINT32> generation_ = 0;
    std::atomic<UINT32> state_ = 0;
    std::atomic<IMFSourceReader*> reader_ = nullptr;  // null: a callback has nothing to do
    // Guarded by the capture lock.
    std::shared_ptr<preview::OpenCamera> camera_;
    IUnknown* spareReference_ = nullptr;  // kept for compatibility, with the link: nothing sets them
    WCHAR* symbolicLink_ = nullptr;       // CoTaskMemFree
    UINT32 symbolicLinkLength_ = 0;

    // --- the window's thread
    bool recovering_ = false;
    bool wantsDirect3D_ = false;  // as the last try left it

    // --- guarded by the sample lock
    preview::SampleLock sampleLock_;
    Device renderer_;
    BOOL firstSamplePending_ = FALSE;
    LONGLONG baseTimeHns_ = 0;
    int readsWithoutFrame_ = 0;  // in a row

    // --- guarded by the start lock
    std::timed_mutex startLock_;
    std::shared_ptr<preview::OpenCamera> opening_;
    HRESULT typeResult_ = S_OK;  // of the type that the opened camera delivers
    UINT32 openingGeneration_ = 0;
    bool published_ = false;  // Close may have taken the camera
    UINT32 offersLeft_ = 0;   // of the negotiation that is under way
};
#pragma GCC diagnostic pop
