#include "preview/Preview.h"

#include <shlwapi.h>

#include <new>

#include "preview/CameraAllowList.h"
#include "preview/ReaderPark.h"
#include "suite/common/ComRelease.h"
#include "suite/logger/QxLogger.h"

namespace {

class SampleGuard {
  public:
    explicit SampleGuard(CRITICAL_SECTION& lock) : lock_(lock) { EnterCriticalSection(&lock_); }
    ~SampleGuard() { LeaveCriticalSection(&lock_); }
    SampleGuard(const SampleGuard&) = delete;
    SampleGuard& operator=(const SampleGuard&) = delete;

  private:
    CRITICAL_SECTION& lock_;
};

}  // namespace

Preview::Preview(HWND videoWindow, HWND eventWindow) : videoWindow_(videoWindow), eventWindow_(eventWindow) {
    InitializeCriticalSection(&sampleLock_);
}

Preview::~Preview() {
    Close();
    ComRelease(spareReference_);
    DestroyRenderer();
    DeleteCriticalSection(&sampleLock_);
}

HRESULT Preview::CreateInstance(HWND videoWindow, HWND eventWindow, Preview** result) {
    if (videoWindow == nullptr || eventWindow == nullptr || result == nullptr) {
        return E_POINTER;
    }
    auto* preview = new (std::nothrow) Preview(videoWindow, eventWindow);
    if (preview == nullptr) {
        return E_OUTOFMEMORY;
    }
    const HRESULT status = preview->Initialize();
    if (SUCCEEDED(status)) {
        *result = preview;
        preview->AddRef();
    }
    preview->Release();
    return status;
}

HRESULT Preview::Initialize() {
    return renderer_.Open(videoWindow_);
}

bool Preview::Start(UINT32 /*ignored*/) {
    // A preview that reads is closed before the start lock is taken: its callback may hold the sample lock and wait
    // for the start lock.
    Close();
    const std::lock_guard guard(startLock_);
    Close();
    const INT32 index = SelectDevice();
    if (index < 0) {
        return false;
    }
    if (!CreateDeviceSource(index)) {
        LogLine(4, L"Preview::Start", L"create device source error!");
        return false;
    }
    lastFrameTickMs_ = GetTickCount64();
    state_ = 1;
    return true;
}

HRESULT Preview::Close() {
    const SampleGuard guard(sampleLock_);
    if (IMFSourceReader* reader = reader_.exchange(nullptr)) {
        // Kept: not released here, under the lock; a callback on its way finds null and returns.
        preview::ParkReader(reader);
    }
    ComRelease(spareReference_);
    CoTaskMemFree(symbolicLink_);
    symbolicLink_ = nullptr;
    symbolicLinkLength_ = 0;
    state_ = 0;
    if (mediaSource_ != nullptr) {
        mediaSource_->Shutdown();
        ComRelease(mediaSource_);
    }
    if (devices_ != nullptr) {
        for (UINT32 i = 0; i < deviceCount_; ++i) {
            ComRelease(devices_[i]);
        }
        CoTaskMemFree(devices_);
        devices_ = nullptr;
    }
    ComRelease(enumerationAttributes_);
    ComRelease(mediaType_);
    return S_OK;
}

void Preview::DestroyRenderer() {
    renderer_.Destroy();
}

bool Preview::IsAllowedCamera(std::wstring symbolicLink) {
    return preview::IsAllowedCameraLink(std::move(symbolicLink));
}

STDMETHODIMP Preview::QueryInterface(REFIID iid, void** object) {
    static const QITAB kTable[] = {
        {&IID_IMFSourceReaderCallback, 0},
        {nullptr, 0},
    };
    return QISearch(this, kTable, iid, object);
}

STDMETHODIMP_(ULONG) Preview::AddRef() {
    return ++referenceCount_;
}

STDMETHODIMP_(ULONG) Preview::Release() {
    const ULONG count = --referenceCount_;
    if (count == 0) {
        delete this;
    }
    return count;
}

STDMETHODIMP Preview::OnReadSample(HRESULT /*status*/, DWORD /*streamIndex*/, DWORD /*streamFlags*/,
                                   LONGLONG timestampHns, IMFSample* sample) {
    if (reader_ == nullptr) {
        return S_OK;
    }
    try {
        const SampleGuard guard(sampleLock_);
        // Closed while this callback waited.
        if (reader_ == nullptr) {
            return S_OK;
        }
        return HandleSample(timestampHns, sample);
    } catch (...) {
        LogLine(4, L"Preview::OnReadSample", L"exception in the reader's callback");
        return E_FAIL;
    }
}

// Kept: a failed read without a sample only leads to the next read.
HRESULT Preview::HandleSample(LONGLONG timestampHns, IMFSample* sample) {
    HRESULT result = S_OK;
    if (sample != nullptr) {
        if (firstSamplePending_) {
            baseTimeHns_ = timestampHns;
            firstSamplePending_ = FALSE;
        }
        result = sample->SetSampleTime(timestampHns - baseTimeHns_);
        if (SUCCEEDED(result)) {
            result = DrawFirstBuffer(sample);
        }
        if (FAILED(result)) {
            PostFailure(result);
            return result;
        }
        result = S_OK;
    }
    {
        const std::lock_guard guard(startLock_);
        if (state_ == 1 && reader_ != nullptr) {
            result = RequestSample();
        }
    }
    if (FAILED(result)) {
        PostFailure(result);
    }
    return result;
}

HRESULT Preview::DrawFirstBuffer(IMFSample* sample) {
    IMFMediaBuffer* buffer = nullptr;
    HRESULT result = sample->GetBufferByIndex(0, &buffer);
    if (SUCCEEDED(result)) {
        result = renderer_.DrawSample(buffer);
        if (result == S_OK) {
            lastFrameTickMs_ = GetTickCount64();
        }
    }
    ComRelease(buffer);
    return result;
}

void Preview::PostFailure(HRESULT result) {
    PostMessageW(eventWindow_, eventMessage_, static_cast<WPARAM>(result), 0);
}

STDMETHODIMP Preview::OnFlush(DWORD /*streamIndex*/) {
    return S_OK;
}

STDMETHODIMP Preview::OnEvent(DWORD /*streamIndex*/, IMFMediaEvent* /*event*/) {
    return S_OK;
}
