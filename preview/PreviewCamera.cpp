// The part of Preview that finds, opens and agrees with the camera; all of it runs under the start lock.
#include <utility>

#include "preview/CameraSystem.h"
#include "preview/MediaFoundation.h"
#include "preview/Preview.h"
#include "preview/ReaderPark.h"
#include "preview/ReaderSystem.h"
#include "suite/common/ComReference.h"
#include "suite/common/ComRelease.h"
#include "suite/logger/QxLogger.h"

using preview::SampleGuard;
using reader_system::kVideoStream;

namespace {

// How many types are set in all, whatever the camera lists: one that accepts nothing ends in a failure, not in a walk
// without end.
constexpr UINT32 kMostOffers = 64;

// For what is drawn in the last moment of the capture before.
constexpr std::chrono::seconds kRendererPatience{2};
constexpr HRESULT kRendererBusy = HRESULT_FROM_WIN32(ERROR_TIMEOUT);

// Null text (the read failed) gives an empty link.
std::wstring TakeText(WCHAR* text) {
    std::wstring copy = text ? text : L"";
    CoTaskMemFree(text);
    return copy;
}

// The stream's type at `index`, as an object of our own: some systems hand out the source's own object, which must not
// be changed by an offer.
HRESULT CopyNativeType(IMFSourceReader* reader, DWORD index, IMFMediaType** copy) {
    IMFMediaType* native = nullptr;
    HRESULT result = reader->GetNativeMediaType(kVideoStream, index, &native);
    if (SUCCEEDED(result)) {
        result = media_foundation::CreateMediaType(copy);
    }
    if (SUCCEEDED(result)) {
        result = native->CopyAllItems(*copy);
    }
    ComRelease(native);
    return result;
}

}  // namespace

bool Preview::Start(UINT32 /*ignored*/) {
    // A preview that reads is closed before the start lock is taken: its callback may hold the sample lock and wait
    // for the start lock.
    openingStep_ = L"closing what was open";
    Close();
    const std::scoped_lock guard(startLock_);
    Close();
    openingGeneration_ = generation_;
    published_ = false;
    opening_ = std::make_shared<preview::OpenCamera>();
    openingStep_ = L"listing the cameras";
    const INT32 index = SelectDevice();
    const bool opened = index >= 0 && CreateDeviceSource(index);
    const std::shared_ptr<preview::OpenCamera> camera = std::move(opening_);
    bool cancelled = false;
    {
        const std::scoped_lock lock(captureLock_);
        cancelled = IsCancelled();
        if (!cancelled) {
            camera_ = camera;  // what a failure leaves is the next Close's
            state_ = opened ? 1 : 0;
            lastFrameTickMs_ = GetTickCount64();
        }
    }
    openingStep_ = L"ended";
    if (cancelled && !published_) {
        camera->ShutDown();
    } else if (!cancelled && !opened && index >= 0) {
        LogLine(LogLevel::kError, L"Preview::Start", L"create device source error!");
    }
    return opened && !cancelled;
}

INT32 Preview::SelectDevice() {
    preview::OpenCamera& camera = *opening_;
    if (FAILED(media_foundation::CreateAttributes(&camera.enumerationAttributes, 1)) ||
        FAILED(camera.enumerationAttributes->SetGUID(MF_DEVSOURCE_ATTRIBUTE_SOURCE_TYPE,
                                                     MF_DEVSOURCE_ATTRIBUTE_SOURCE_TYPE_VIDCAP_GUID))) {
        return -1;
    }
    if (FAILED(camera_system::EnumDeviceSources(camera.enumerationAttributes, &camera.devices, &camera.deviceCount))) {
        LogLine(LogLevel::kError, L"Preview::SelectDevice", L"enum device error!");
        return -1;
    }
    if (camera.deviceCount == 0) {
        LogLine(LogLevel::kError, L"Preview::SelectDevice", L"can not find any video device!");
        return -1;
    }
    for (UINT32 i = 0; i < camera.deviceCount; ++i) {
        WCHAR* text = nullptr;
        UINT32 length = 0;
        const HRESULT result = camera.devices[i]->GetAllocatedString(
            MF_DEVSOURCE_ATTRIBUTE_SOURCE_TYPE_VIDCAP_SYMBOLIC_LINK, &text, &length);
        camera.link = TakeText(text);
        if (SUCCEEDED(result) && IsAllowedCamera(camera.link)) {
            return static_cast<INT32>(i);
        }
    }
    LogLine(LogLevel::kError, L"Preview::SelectDevice", L"can not find any valid video device!");
    return -1;
}

bool Preview::CreateDeviceSource(INT32 index) {
    preview::OpenCamera& camera = *opening_;
    // What Close has ended fails for that reason alone.
    const auto fail = [this](const wchar_t* text, HRESULT result) {
        if (!IsCancelled()) {
            LogLine(LogLevel::kError, L"Preview::CreateDeviceSource", text);
            LogLine(LogLevel::kInfo, L"Preview::CreateDeviceSource", L"the reason is 0x", std::hex, result,
                    result == E_ACCESSDENIED ? L": the privacy settings keep the camera from this program" : L"");
        }
        return false;
    };
    openingStep_ = L"opening the camera";
    HRESULT result = camera_system::CreateDeviceSource(camera.devices[index], &camera.source);
    if (FAILED(result)) {
        return fail(L"create device source error!", result);
    }
    IMFAttributes* attributes = nullptr;
    if (FAILED(media_foundation::CreateAttributes(&attributes, 1))) {
        return false;
    }
    attributes->SetUnknown(MF_SOURCE_READER_ASYNC_CALLBACK, this);
    openingStep_ = L"making the reader";
    result = CreateReader(camera.source, attributes);
    ComRelease(attributes);
    if (FAILED(result)) {
        return fail(L"create source reader error!", result);
    }
    if (FAILED(typeResult_)) {
        return fail(L"get media type error!", typeResult_);
    }
    result = camera.mediaType->GetGUID(MF_MT_SUBTYPE, &camera.subtype);
    if (FAILED(result)) {
        return fail(L"get subtype error!", result);
    }
    result = MFGetAttributeSize(camera.mediaType, MF_MT_FRAME_SIZE, &camera.frameWidthPx, &camera.frameHeightPx);
    if (FAILED(result)) {
        return fail(L"get frame size error!", result);
    }
    return true;
}

HRESULT Preview::CreateReader(IMFMediaSource* source, IMFAttributes* attributes) {
    suite::ComReference<IMFSourceReader> reader;
    HRESULT result = reader_system::CreateFromMediaSource(source, attributes, reader.Put());
    if (SUCCEEDED(result)) {
        result = NegotiateMediaType(reader.Get());
    }
    if (!reader) {
        return result;
    }
    // Of two references others may close and release the one that is published.
    reader->AddRef();
    if (!Publish(reader.Get())) {
        preview::ParkReader(reader.Get());
        return E_ABORT;
    }
    if (FAILED(result)) {
        return result;
    }
    // Asked before the first read: what comes back from that may be an error, after which nothing may be asked.
    typeResult_ = reader->GetCurrentMediaType(kVideoStream, &opening_->mediaType);
    return reader->ReadSample(kVideoStream, 0, nullptr, nullptr, nullptr, nullptr);
}

bool Preview::Publish(IMFSourceReader* reader) {
    // Only now may a callback find a reader: a late one of an earlier reader must not draw while the renderer is being
    // configured.
    const SampleGuard guard(sampleLock_, kRendererPatience);
    if (!guard.IsHeld()) {
        return false;
    }
    firstSamplePending_ = TRUE;
    baseTimeHns_ = 0;
    readsWithoutFrame_ = 0;
    lastReadFailure_ = S_OK;
    const std::scoped_lock lock(captureLock_);
    if (IsCancelled()) {
        return false;
    }
    camera_ = opening_;
    reader_ = reader;
    published_ = true;
    return true;
}

HRESULT Preview::NegotiateMediaType(IMFSourceReader* reader) {
    offersLeft_ = kMostOffers;
    IMFMediaType* type = nullptr;
    HRESULT result = reader->GetCurrentMediaType(kVideoStream, &type);
    if (SUCCEEDED(result)) {
        result = TryMediaType(reader, type, true);
    }
    ComRelease(type);
    for (DWORD index = 0; FAILED(result) && offersLeft_ > 0 && !IsCancelled(); ++index) {
        const HRESULT copied = CopyNativeType(reader, index, &type);
        result = SUCCEEDED(copied) ? TryMediaType(reader, type, false) : copied;
        ComRelease(type);
        if (FAILED(copied)) {
            break;
        }
    }
    return result;
}

HRESULT Preview::TryMediaType(IMFSourceReader* reader, IMFMediaType* type, bool isCurrent) {
    GUID subtype = {};
    HRESULT result = type->GetGUID(MF_MT_SUBTYPE, &subtype);
    if (FAILED(result)) {
        return result;
    }
    const bool supported = renderer_.IsFormatSupported(subtype);
    if (supported && isCurrent) {
        return ConfigureRenderer(type);
    }
    // A type that can be drawn, but is not the current one, is made so first.
    result = supported ? Offer(reader, type) : OfferFormats(reader, type);
    if (FAILED(result)) {
        return result;
    }
    // The renderer is configured for what the reader delivers: a decoder decides size and stride itself.
    IMFMediaType* delivered = nullptr;
    result = reader->GetCurrentMediaType(kVideoStream, &delivered);
    if (SUCCEEDED(result)) {
        result = ConfigureRenderer(delivered);
    }
    ComRelease(delivered);
    return result;
}

// Offers the renderer's formats in their order, each once: what was refused once is refused again.
HRESULT Preview::OfferFormats(IMFSourceReader* reader, IMFMediaType* type) {
    IMFMediaType* offered = nullptr;
    HRESULT result = media_foundation::CreateMediaType(&offered);
    if (SUCCEEDED(result)) {
        result = type->CopyAllItems(offered);
    }
    if (FAILED(result)) {
        ComRelease(offered);
        return result;
    }
    // They are those of the type that the offer is copied from.
    offered->DeleteItem(MF_MT_DEFAULT_STRIDE);
    offered->DeleteItem(MF_MT_SAMPLE_SIZE);
    GUID subtype = {};
    bool accepted = false;
    for (UINT index = 0; !accepted && offersLeft_ > 0 && SUCCEEDED(renderer_.GetFormat(index, &subtype)); ++index) {
        result = offered->SetGUID(MF_MT_SUBTYPE, subtype);
        if (FAILED(result)) {
            break;
        }
        result = Offer(reader, offered);
        accepted = SUCCEEDED(result);
    }
    ComRelease(offered);
    return result;
}

HRESULT Preview::Offer(IMFSourceReader* reader, IMFMediaType* type) {
    --offersLeft_;
    return reader->SetCurrentMediaType(kVideoStream, nullptr, type);
}

HRESULT Preview::ConfigureRenderer(IMFMediaType* type) {
    HRESULT result = type->GetGUID(MF_MT_SUBTYPE, &opening_->negotiatedSubtype);
    if (FAILED(result)) {
        return result;
    }
    const SampleGuard guard(sampleLock_, kRendererPatience);
    if (!guard.IsHeld() || IsCancelled()) {
        return kRendererBusy;
    }
    result = renderer_.ConfigureVideo(type);
    TellLoss();
    return result;
}
