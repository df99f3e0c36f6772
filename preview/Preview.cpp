#include "preview/Preview.h"

#include <shlwapi.h>

#include <new>
#include <utility>

#include "preview/CameraAllowList.h"
#include "preview/CameraThreads.h"
#include "preview/ReadPause.h"
#include "preview/ReaderPark.h"
#include "preview/ReaderSystem.h"
#include "suite/common/ComReference.h"
#include "suite/common/ComRelease.h"
#include "suite/logger/QxLogger.h"

using preview::SampleGuard;

Preview::Preview(HWND videoWindow, HWND eventWindow) : videoWindow_(videoWindow), eventWindow_(eventWindow) {}

Preview::~Preview() {
    Close();
    ComRelease(spareReference_);
    DestroyRenderer();
}

HRESULT Preview::CreateInstance(HWND videoWindow, HWND eventWindow, Preview** result,
                                suite::ComReference<IDirect3D9> direct3d) {
    if (!videoWindow || !eventWindow || !result) {
        return E_POINTER;
    }
    auto* preview = new (std::nothrow) Preview(videoWindow, eventWindow);
    if (!preview) {
        return E_OUTOFMEMORY;
    }
    const HRESULT status = preview->Initialize(std::move(direct3d));
    if (SUCCEEDED(status)) {
        *result = preview;
        preview->AddRef();
    }
    ComRelease(preview);
    return status;
}

HRESULT Preview::Initialize(suite::ComReference<IDirect3D9> direct3d) {
    renderer_.Adopt(std::move(direct3d));
    return renderer_.Open(videoWindow_);
}

HRESULT Preview::Close() {
    IMFSourceReader* reader = nullptr;
    std::shared_ptr<preview::OpenCamera> camera;
    {
        const std::scoped_lock lock(captureLock_);
        ++generation_;
        state_ = 0;
        reader = reader_.exchange(nullptr);
        camera = std::move(camera_);
        ComRelease(spareReference_);
        CoTaskMemFree(symbolicLink_);
        symbolicLink_ = nullptr;
        symbolicLinkLength_ = 0;
    }
    {
        // The picture that is being drawn comes to its end. Where it does not, the device hangs, and the camera does
        // not wait for it: a frame keeps its own memory.
        const SampleGuard drawn(sampleLock_, kDrawingWait);
        drawingHangs_ = !drawn.IsHeld();
    }
    if (reader) {
        // Kept: not released here; a callback on its way finds null and returns.
        preview::ParkReader(reader);
    }
    if (camera && !preview::CloseCamera(std::move(camera), kClosingWait)) {
        LogLine(LogLevel::kInfo, L"Preview::Close", L"the camera takes long to close; nobody waits for it");
    }
    return S_OK;
}

bool Preview::DestroyRenderer() {
    if (recovering_) {
        return false;
    }
    // Close has waited already.
    const SampleGuard guard(sampleLock_, drawingHangs_ ? std::chrono::milliseconds(0) : kDrawingWait);
    if (!guard.IsHeld()) {
        return false;
    }
    renderer_.Destroy();
    return true;
}

HRESULT Preview::RecoverDevice() {
    return Recover([this] { return renderer_.Recover(GetTickCount64()); });
}

HRESULT Preview::RecoverDeviceWith(suite::ComReference<IDirect3D9> direct3d) {
    return Recover([this, &direct3d] { return renderer_.RecoverWith(std::move(direct3d)); });
}

HRESULT Preview::Recover(const std::function<HRESULT()>& recover) {
    if (recovering_) {
        return S_FALSE;
    }
    const SampleGuard guard(sampleLock_, kDrawingWait);
    if (!guard.IsHeld()) {
        return S_FALSE;
    }
    recovering_ = true;
    const HRESULT result = recover();
    recovering_ = false;
    deviceLost_ = renderer_.IsLost();
    wantsDirect3D_ = renderer_.WantsDirect3D();
    return result;
}

std::wstring Preview::CameraLink() const {
    const std::scoped_lock lock(captureLock_);
    return camera_ ? camera_->link : std::wstring();
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

void Preview::PostFailure(HRESULT result, UINT32 generation) {
    // Under the lock: what Close has ended posts nothing any more.
    const std::scoped_lock lock(captureLock_);
    if (generation == generation_) {
        PostMessageW(eventWindow_, eventMessage_, static_cast<WPARAM>(result), 0);
    }
}

void Preview::TellLoss() {
    if (renderer_.IsLost() && !deviceLost_.exchange(true)) {
        PostMessageW(videoWindow_, kDeviceMessage, 0, 0);
    }
}

// --- reading

STDMETHODIMP Preview::OnReadSample(HRESULT status, DWORD /*streamIndex*/, DWORD streamFlags, LONGLONG timestampHns,
                                   IMFSample* sample) {
    const UINT32 generation = generation_;
    if (!reader_) {
        return S_OK;
    }
    try {
        const SampleGuard guard(sampleLock_);
        // Closed while this callback waited.
        if (generation != generation_) {
            return S_OK;
        }
        const HRESULT result = HandleSample(status, streamFlags, timestampHns, sample, generation);
        if (FAILED(result)) {
            PostFailure(result, generation);
        }
        return result;
    } catch (...) {
        LogLine(LogLevel::kError, L"Preview::OnReadSample", L"exception in the reader's callback");
        PostFailure(E_FAIL, generation);
        return E_FAIL;
    }
}

HRESULT Preview::HandleSample(HRESULT status, DWORD streamFlags, LONGLONG timestampHns, IMFSample* sample,
                              UINT32 generation) {
    const DWORD typeChanged = MF_SOURCE_READERF_CURRENTMEDIATYPECHANGED | MF_SOURCE_READERF_NATIVEMEDIATYPECHANGED;
    HRESULT result = S_OK;
    if ((streamFlags & typeChanged) != 0 && (streamFlags & MF_SOURCE_READERF_ERROR) == 0) {
        result = AdoptChangedType();
    }
    if (sample && SUCCEEDED(result)) {
        if (firstSamplePending_) {
            baseTimeHns_ = timestampHns;
            firstSamplePending_ = FALSE;
        }
        result = sample->SetSampleTime(timestampHns - baseTimeHns_);
        if (SUCCEEDED(result)) {
            result = DrawFirstBuffer(sample, generation);
        }
    }
    return SUCCEEDED(result) ? ReadOn(status, streamFlags, sample != nullptr, generation) : result;
}

// The reader delivers another type from now on, with this sample.
HRESULT Preview::AdoptChangedType() {
    IMFSourceReader* reader = reader_;
    if (!reader) {
        return S_OK;  // closed in this moment
    }
    suite::ComReference<IMFMediaType> type;
    HRESULT result = reader->GetCurrentMediaType(reader_system::kVideoStream, type.Put());
    if (SUCCEEDED(result)) {
        result = renderer_.ConfigureVideo(type.Get());
        TellLoss();
    }
    return result;
}

HRESULT Preview::DrawFirstBuffer(IMFSample* sample, UINT32 generation) {
    suite::ComReference<IMFMediaBuffer> buffer;
    HRESULT result = sample->GetBufferByIndex(0, buffer.Put());
    if (SUCCEEDED(result)) {
        result = renderer_.DrawSample(buffer.Get());
        TellLoss();
        // A picture of before Close counts no more: it may have been held up by the device for long.
        if (result == S_OK && generation == generation_) {
            lastFrameTickMs_ = GetTickCount64();
            lastReadFailure_ = S_OK;
        }
    }
    return SUCCEEDED(result) ? S_OK : result;
}

// Kept: a failed read without a sample only leads to the next read. But the next one may fail as fast: from the third
// in a row each waits a little. After an error of the reader nothing may be asked of it any more; that read fails here.
HRESULT Preview::ReadOn(HRESULT status, DWORD streamFlags, bool hasSample, UINT32 generation) {
    if (!hasSample && FAILED(status)) {
        lastReadFailure_ = status;
    }
    if ((streamFlags & MF_SOURCE_READERF_ERROR) != 0) {
        return FAILED(status) ? status : E_FAIL;
    }
    if (hasSample) {
        readsWithoutFrame_ = 0;
    } else if ((streamFlags & MF_SOURCE_READERF_STREAMTICK) == 0) {
        ++readsWithoutFrame_;
        const int pauseMs = preview::PauseBeforeReadMs(readsWithoutFrame_);
        if (pauseMs > 0 && ReadAfterPause(pauseMs, generation)) {
            return S_OK;
        }
    }
    return RequestSample(generation);
}

HRESULT Preview::RequestSample(UINT32 generation) {
    // Waits for a start to end, which holds its lock. But a start after Close waits itself for the sample lock, which
    // the caller holds.
    constexpr std::chrono::milliseconds kBetweenLooks(1);
    std::unique_lock guard(startLock_, std::defer_lock);
    while (!guard.try_lock_for(kBetweenLooks)) {
        if (generation != generation_) {
            return S_OK;
        }
    }
    IMFSourceReader* reader = reader_;
    if (state_ != 1 || !reader) {
        return S_OK;
    }
    // Closed in this moment, the reader waits in the park; a call that hangs may take longer than that.
    reader->AddRef();
    const HRESULT result = reader->ReadSample(reader_system::kVideoStream, 0, nullptr, nullptr, nullptr, nullptr);
    if (reader_ == reader) {
        ComRelease(reader);  // not the last one, which must not be given back here
    } else {
        preview::ParkReader(reader);
    }
    // What the last read told is the better reason.
    return FAILED(result) && FAILED(lastReadFailure_) ? lastReadFailure_.load() : result;
}

namespace {

struct Pause {
    Preview* preview;  // a reference
    UINT32 generation;
};

}  // namespace

bool Preview::ReadAfterPause(int pauseMs, UINT32 generation) {
    constexpr LONGLONG kHnsPerMs = 10'000;
    auto pause = std::make_unique<Pause>(Pause{this, generation});
    PTP_TIMER timer = CreateThreadpoolTimer(OnPauseOver, pause.get(), nullptr);
    if (!timer) {
        return false;
    }
    AddRef();
    (void)pause.release();
    ULARGE_INTEGER relative;
    relative.QuadPart = static_cast<ULONGLONG>(-pauseMs * kHnsPerMs);
    FILETIME due = {relative.LowPart, relative.HighPart};
    SetThreadpoolTimer(timer, &due, 0, 0);
    return true;
}

void CALLBACK Preview::OnPauseOver(PTP_CALLBACK_INSTANCE /*instance*/, void* context, PTP_TIMER timer) {
    const std::unique_ptr<Pause> pause(static_cast<Pause*>(context));
    pause->preview->ReadNow(pause->generation);
    CloseThreadpoolTimer(timer);
    ComRelease(pause->preview);
}

void Preview::ReadNow(UINT32 generation) {
    const SampleGuard guard(sampleLock_);
    if (generation != generation_) {
        return;
    }
    const HRESULT result = RequestSample(generation);
    if (FAILED(result)) {
        PostFailure(result, generation);
    }
}

STDMETHODIMP Preview::OnFlush(DWORD /*streamIndex*/) {
    return S_OK;
}

STDMETHODIMP Preview::OnEvent(DWORD /*streamIndex*/, IMFMediaEvent* /*event*/) {
    return S_OK;
}
