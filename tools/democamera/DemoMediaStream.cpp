#include "tools/democamera/DemoMediaStream.h"

#include <mfapi.h>
#include <mferror.h>

#include <new>

#include "suite/common/ComReference.h"
#include "suite/common/ComRelease.h"
#include "tools/democamera/DemoMediaSource.h"
#include "tools/democamera/FrameEncoder.h"
#include "tools/democamera/JpegFrame.h"
#include "tools/democamera/TestPicture.h"

namespace democamera {

namespace {

constexpr LONGLONG kHnsPerSecond = 10'000'000;

bool IsDue(std::int64_t after, std::int64_t delivered) {
    return after >= 0 && delivered >= after;
}

HRESULT CopyToBuffer(const std::uint8_t* bytes, DWORD size, IMFMediaBuffer** buffer) {
    HRESULT result = MFCreateMemoryBuffer(size, buffer);
    if (FAILED(result)) {
        return result;
    }
    BYTE* data = nullptr;
    result = (*buffer)->Lock(&data, nullptr, nullptr);
    if (SUCCEEDED(result)) {
        memcpy(data, bytes, size);
        (*buffer)->Unlock();
        result = (*buffer)->SetCurrentLength(size);
    }
    return result;
}

}  // namespace

HRESULT DemoMediaStream::Make(std::shared_ptr<DemoCamera> camera, DemoMediaSource* source,
                              IMFStreamDescriptor* descriptor, DemoMediaStream** stream) {
    suite::ComReference<DemoMediaStream> made(new (std::nothrow) DemoMediaStream(std::move(camera), source));
    if (!made) {
        return E_OUTOFMEMORY;
    }
    const HRESULT result = MFCreateEventQueue(&made->events_);
    if (FAILED(result)) {
        return result;
    }
    made->descriptor_ = descriptor;
    descriptor->AddRef();
    *stream = made.Detach();
    return S_OK;
}

DemoMediaStream::DemoMediaStream(std::shared_ptr<DemoCamera> camera, DemoMediaSource* source)
    : camera_(std::move(camera)), source_(source) {}

DemoMediaStream::~DemoMediaStream() {
    ComRelease(events_);
    ComRelease(descriptor_);
}

STDMETHODIMP DemoMediaStream::GetEvent(DWORD flags, IMFMediaEvent** event) {
    return events_->GetEvent(flags, event);
}

STDMETHODIMP DemoMediaStream::BeginGetEvent(IMFAsyncCallback* callback, IUnknown* state) {
    return events_->BeginGetEvent(callback, state);
}

STDMETHODIMP DemoMediaStream::EndGetEvent(IMFAsyncResult* result, IMFMediaEvent** event) {
    return events_->EndGetEvent(result, event);
}

STDMETHODIMP DemoMediaStream::QueueEvent(MediaEventType type, REFGUID extendedType, HRESULT status,
                                         const PROPVARIANT* value) {
    return events_->QueueEventParamVar(type, extendedType, status, value);
}

STDMETHODIMP DemoMediaStream::GetMediaSource(IMFMediaSource** source) {
    const std::lock_guard guard(lock_);
    if (source_ == nullptr) {
        return MF_E_SHUTDOWN;
    }
    *source = source_;
    source_->AddRef();
    return S_OK;
}

STDMETHODIMP DemoMediaStream::GetStreamDescriptor(IMFStreamDescriptor** descriptor) {
    *descriptor = descriptor_;
    descriptor_->AddRef();
    return S_OK;
}

STDMETHODIMP DemoMediaStream::RequestSample(IUnknown* token) {
    const std::lock_guard guard(lock_);
    if (source_ == nullptr) {
        return MF_E_SHUTDOWN;
    }
    if (ended_) {
        return camera_->IsPluggedIn() ? MF_E_END_OF_STREAM : MF_E_VIDEO_RECORDING_DEVICE_INVALIDATED;
    }
    requests_.push_back(token);
    if (token != nullptr) {
        token->AddRef();
    }
    return S_OK;
}

void DemoMediaStream::Run(const CameraMode& mode) {
    Halt(false);
    mode_ = mode;
    delivered_ = 0;
    {
        const std::lock_guard guard(lock_);
        halt_ = false;
        ended_ = false;
    }
    AddRef();  // the thread's
    thread_ = std::thread([this] {
        Work();
        Release();
    });
}

void DemoMediaStream::Halt(bool forGood) {
    {
        const std::lock_guard guard(lock_);
        halt_ = true;
        if (forGood) {
            source_ = nullptr;
        }
    }
    halted_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
    DropRequests();
    if (forGood) {
        events_->Shutdown();
    }
}

void DemoMediaStream::DropRequests() {
    std::deque<IUnknown*> dropped;
    {
        const std::lock_guard guard(lock_);
        dropped.swap(requests_);
    }
    for (IUnknown* token : dropped) {
        ComRelease(token);
    }
}

void DemoMediaStream::Work() {
    const std::chrono::nanoseconds period(1'000'000'000 / mode_.framesPerSecond);
    auto tick = std::chrono::steady_clock::now();
    bool running = true;
    while (running && WaitForTick(tick)) {
        const CameraFaults faults = camera_->Faults();
        running = CheckFaults(faults) && Deliver(faults);
        // A camera does not catch up on pictures that it missed.
        tick = std::max(tick + period, std::chrono::steady_clock::now());
    }
}

bool DemoMediaStream::WaitForTick(std::chrono::steady_clock::time_point tick) {
    std::unique_lock guard(lock_);
    return !halted_.wait_until(guard, tick, [this] { return halt_; });
}

bool DemoMediaStream::CheckFaults(const CameraFaults& faults) {
    const bool unplugged = !camera_->IsPluggedIn() || IsDue(faults.unpluggedAfter, delivered_);
    const bool error = IsDue(faults.errorAfter, delivered_);
    const bool end = IsDue(faults.endAfter, delivered_);
    if (!unplugged && !error && !end) {
        return true;
    }
    DemoMediaSource* source = nullptr;
    {
        const std::lock_guard guard(lock_);
        ended_ = true;
        source = source_;
        if (source != nullptr) {
            source->AddRef();
        }
    }
    if (source != nullptr) {
        if (unplugged) {
            camera_->Unplug();
            source->ReportFailure(MEVideoCaptureDeviceRemoved, S_OK);
            source->ReportFailure(MEError, MF_E_VIDEO_RECORDING_DEVICE_INVALIDATED);
        } else if (error) {
            source->ReportFailure(MEError, faults.error);
        } else {
            QueueEvent(MEEndOfStream, GUID_NULL, S_OK, nullptr);
            source->ReportFailure(MEEndOfPresentation, S_OK);
        }
        ComRelease(source);
    }
    return false;
}

bool DemoMediaStream::Deliver(const CameraFaults& faults) {
    IUnknown* token = nullptr;
    {
        const std::lock_guard guard(lock_);
        if (IsDue(faults.silentAfter, delivered_)) {
            return true;
        }
        if (requests_.empty()) {
            ++camera_->Seen().skipped;
            return true;
        }
        token = requests_.front();
        requests_.pop_front();
    }
    IMFSample* sample = nullptr;
    const HRESULT result = MakeSample(faults, &sample);
    if (SUCCEEDED(result)) {
        if (token != nullptr) {
            sample->SetUnknown(MFSampleExtension_Token, token);
        }
        ++delivered_;
        ++camera_->Seen().frames;
        events_->QueueEventParamUnk(MEMediaSample, GUID_NULL, S_OK, sample);
        if (camera_->Settings().delivered) {
            camera_->Settings().delivered(sample);
        }
    }
    ComRelease(sample);
    ComRelease(token);
    return SUCCEEDED(result);
}

HRESULT DemoMediaStream::MakeSample(const CameraFaults& faults, IMFSample** sample) {
    HRESULT result = MFCreateSample(sample);
    if (SUCCEEDED(result) && !IsDue(faults.emptyAfter, delivered_)) {
        IMFMediaBuffer* buffer = nullptr;
        result = MakeBuffer(&buffer, IsDue(faults.shortAfter, delivered_));
        if (SUCCEEDED(result)) {
            result = (*sample)->AddBuffer(buffer);
        }
        ComRelease(buffer);
    }
    if (SUCCEEDED(result)) {
        (*sample)->SetSampleTime(MFGetSystemTime());
        (*sample)->SetSampleDuration(kHnsPerSecond / mode_.framesPerSecond);
    }
    return result;
}

HRESULT DemoMediaStream::MakeBuffer(IMFMediaBuffer** buffer, bool half) {
    const CameraSettings& settings = camera_->Settings();
    const auto index = static_cast<std::uint64_t>(delivered_);
    std::vector<std::uint8_t> frame;
    if (settings.rawPainter) {
        frame.resize(FrameBytes(mode_));
        settings.rawPainter(mode_, frame.data(), index);
    } else {
        picture_.resize(std::size_t{mode_.width} * mode_.height);
        if (settings.painter) {
            settings.painter(picture_.data(), mode_.width, mode_.height, index);
        } else {
            PaintTestPicture(picture_.data(), mode_.width, mode_.height, index);
        }
        if (mode_.format == CameraFormat::kMjpg) {
            const HRESULT result = EncodeJpeg(picture_.data(), mode_.width, mode_.height, &frame);
            if (FAILED(result)) {
                return result;
            }
        } else {
            frame.resize(FrameBytes(mode_));
            EncodeFrame(mode_, picture_.data(), frame.data());
        }
    }
    return CopyToBuffer(frame.data(), static_cast<DWORD>(half ? frame.size() / 2 : frame.size()), buffer);
}

}  // namespace democamera
