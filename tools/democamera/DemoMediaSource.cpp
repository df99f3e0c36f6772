#include "tools/democamera/DemoMediaSource.h"

#include <mfapi.h>
#include <mferror.h>

#include <algorithm>
#include <new>
#include <thread>
#include <vector>

#include "suite/common/ComReference.h"
#include "suite/common/ComRelease.h"
#include "suite/logger/QxLogger.h"
#include "tools/democamera/DemoMediaStream.h"
#include "tools/democamera/MediaTypes.h"

namespace democamera {

HRESULT DemoMediaSource::Make(std::shared_ptr<DemoCamera> camera, IMFMediaSource** source) {
    *source = nullptr;
    suite::ComReference<DemoMediaSource> made(new (std::nothrow) DemoMediaSource(std::move(camera)));
    if (!made) {
        return E_OUTOFMEMORY;
    }
    const HRESULT result = made->Initialize();
    if (FAILED(result)) {
        made->Shutdown();
        return result;
    }
    *source = made.Detach();
    return S_OK;
}

DemoMediaSource::DemoMediaSource(std::shared_ptr<DemoCamera> camera) : camera_(std::move(camera)) {
    ++camera_->Seen().opened;
    ++camera_->Seen().running;
    ++camera_->Seen().alive;
}

DemoMediaSource::~DemoMediaSource() {
    Shutdown();
    ComRelease(events_);
    ComRelease(streamDescriptor_);
    ComRelease(presentation_);
    --camera_->Seen().alive;
}

HRESULT DemoMediaSource::Initialize() {
    std::vector<IMFMediaType*> types;
    HRESULT result = MFCreateEventQueue(&events_);
    for (const CameraMode& mode : camera_->Settings().modes) {
        IMFMediaType* type = nullptr;
        if (SUCCEEDED(result)) {
            result = MakeMediaType(mode, &type);
        }
        if (type != nullptr) {
            types.push_back(type);
        }
    }
    if (SUCCEEDED(result)) {
        result = MFCreateStreamDescriptor(1, static_cast<DWORD>(types.size()), types.data(), &streamDescriptor_);
    }
    IMFMediaTypeHandler* handler = nullptr;
    if (SUCCEEDED(result)) {
        result = streamDescriptor_->GetMediaTypeHandler(&handler);
    }
    if (SUCCEEDED(result)) {
        result = handler->SetCurrentMediaType(types.front());
    }
    ComRelease(handler);
    if (SUCCEEDED(result)) {
        result = MFCreatePresentationDescriptor(1, &streamDescriptor_, &presentation_);
    }
    if (SUCCEEDED(result)) {
        // A reader takes what is selected; nothing selected is more than some readers can bear.
        result = presentation_->SelectStream(0);
    }
    for (IMFMediaType* type : types) {
        ComRelease(type);
    }
    return result;
}

STDMETHODIMP DemoMediaSource::GetEvent(DWORD flags, IMFMediaEvent** event) {
    return events_->GetEvent(flags, event);
}

STDMETHODIMP DemoMediaSource::BeginGetEvent(IMFAsyncCallback* callback, IUnknown* state) {
    return events_->BeginGetEvent(callback, state);
}

STDMETHODIMP DemoMediaSource::EndGetEvent(IMFAsyncResult* result, IMFMediaEvent** event) {
    return events_->EndGetEvent(result, event);
}

STDMETHODIMP DemoMediaSource::QueueEvent(MediaEventType type, REFGUID extendedType, HRESULT status,
                                         const PROPVARIANT* value) {
    return events_->QueueEventParamVar(type, extendedType, status, value);
}

STDMETHODIMP DemoMediaSource::GetCharacteristics(DWORD* characteristics) {
    *characteristics = MFMEDIASOURCE_IS_LIVE;
    return S_OK;
}

STDMETHODIMP DemoMediaSource::CreatePresentationDescriptor(IMFPresentationDescriptor** descriptor) {
    const std::lock_guard guard(lock_);
    return shutDown_ ? MF_E_SHUTDOWN : presentation_->Clone(descriptor);
}

STDMETHODIMP DemoMediaSource::Start(IMFPresentationDescriptor* descriptor, const GUID* timeFormat,
                                    const PROPVARIANT* position) {
    if (timeFormat != nullptr && *timeFormat != GUID_NULL) {
        return MF_E_UNSUPPORTED_TIME_FORMAT;
    }
    const std::lock_guard guard(lock_);
    if (shutDown_) {
        return MF_E_SHUTDOWN;
    }
    const HRESULT fault = camera_->Faults().startResult;
    if (FAILED(fault)) {
        return fault;
    }
    const HRESULT result = StartStream(descriptor);
    if (FAILED(result)) {
        return result;
    }
    return events_->QueueEventParamVar(MESourceStarted, GUID_NULL, S_OK, position);
}

HRESULT DemoMediaSource::StartStream(IMFPresentationDescriptor* descriptor) {
    BOOL selected = FALSE;
    IMFStreamDescriptor* chosen = nullptr;
    IMFMediaTypeHandler* handler = nullptr;
    IMFMediaType* type = nullptr;
    const std::vector<CameraMode>& modes = camera_->Settings().modes;
    auto mode = modes.end();
    HRESULT result = descriptor->GetStreamDescriptorByIndex(0, &selected, &chosen);
    if (SUCCEEDED(result)) {
        result = chosen->GetMediaTypeHandler(&handler);
    }
    if (SUCCEEDED(result)) {
        result = handler->GetCurrentMediaType(&type);
    }
    if (SUCCEEDED(result)) {
        mode = std::find_if(modes.begin(), modes.end(), [&](const CameraMode& each) { return IsTypeOf(each, type); });
        result = mode != modes.end() ? S_OK : MF_E_INVALIDMEDIATYPE;
    }
    if (SUCCEEDED(result) && stream_ == nullptr) {
        result = DemoMediaStream::Make(camera_, this, chosen, &stream_);
    }
    ComRelease(type);
    ComRelease(handler);
    ComRelease(chosen);
    if (FAILED(result)) {
        return result;
    }
    events_->QueueEventParamUnk(announced_ ? MEUpdatedStream : MENewStream, GUID_NULL, S_OK, stream_);
    announced_ = true;
    camera_->Seen().mode = static_cast<int>(mode - modes.begin());
    stream_->Run(*mode);
    return stream_->QueueEvent(MEStreamStarted, GUID_NULL, S_OK, nullptr);
}

STDMETHODIMP DemoMediaSource::Stop() {
    const std::lock_guard guard(lock_);
    if (shutDown_) {
        return MF_E_SHUTDOWN;
    }
    if (stream_ != nullptr) {
        stream_->Halt(false);
        stream_->QueueEvent(MEStreamStopped, GUID_NULL, S_OK, nullptr);
    }
    return events_->QueueEventParamVar(MESourceStopped, GUID_NULL, S_OK, nullptr);
}

STDMETHODIMP DemoMediaSource::Pause() {
    return MF_E_INVALID_STATE_TRANSITION;
}

STDMETHODIMP DemoMediaSource::Shutdown() {
    if (!shutDown_) {
        std::this_thread::sleep_for(camera_->Settings().closingTime);
    }
    const std::lock_guard guard(lock_);
    if (shutDown_) {
        return MF_E_SHUTDOWN;
    }
    shutDown_ = true;
    if (stream_ != nullptr) {
        stream_->Halt(true);
    }
    ComRelease(stream_);
    if (events_ != nullptr) {
        events_->Shutdown();
    }
    --camera_->Seen().running;
    LogLine(3, L"DemoMediaSource::Shutdown", L"demo camera closed");
    return S_OK;
}

void DemoMediaSource::ReportFailure(MediaEventType type, HRESULT status) {
    events_->QueueEventParamVar(type, GUID_NULL, status, nullptr);
}

}  // namespace democamera
