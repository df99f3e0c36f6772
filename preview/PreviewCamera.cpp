// The part of Preview that finds, opens and agrees with the camera; all of it runs under the start lock.
#include <string>

#include "preview/CameraSystem.h"
#include "preview/MediaFoundation.h"
#include "preview/Preview.h"
#include "preview/ReaderSystem.h"
#include "suite/common/ComRelease.h"
#include "suite/logger/QxLogger.h"

namespace {

constexpr DWORD kVideoStream = static_cast<DWORD>(MF_SOURCE_READER_FIRST_VIDEO_STREAM);

// How many formats are offered to a camera while one type after the other is tried, not counting the first offer of
// each format to each type. A camera that accepts nothing ends in a failure, not in a walk without end.
constexpr UINT32 kMostOffers = 64;

// Null text (the read failed) gives an empty link.
std::wstring TakeText(WCHAR* text) {
    std::wstring copy = text != nullptr ? text : L"";
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

INT32 Preview::SelectDevice() {
    deviceCount_ = 0;
    if (FAILED(media_foundation::CreateAttributes(&enumerationAttributes_, 1)) ||
        FAILED(enumerationAttributes_->SetGUID(MF_DEVSOURCE_ATTRIBUTE_SOURCE_TYPE,
                                               MF_DEVSOURCE_ATTRIBUTE_SOURCE_TYPE_VIDCAP_GUID))) {
        return -1;
    }
    if (FAILED(camera_system::EnumDeviceSources(enumerationAttributes_, &devices_, &deviceCount_))) {
        LogLine(4, L"Preview::SelectDevice", L"enum device error!");
        return -1;
    }
    if (deviceCount_ == 0) {
        LogLine(4, L"Preview::SelectDevice", L"can not find any video device!");
        return -1;
    }
    for (UINT32 i = 0; i < deviceCount_; ++i) {
        WCHAR* text = nullptr;
        UINT32 length = 0;
        const HRESULT result =
            devices_[i]->GetAllocatedString(MF_DEVSOURCE_ATTRIBUTE_SOURCE_TYPE_VIDCAP_SYMBOLIC_LINK, &text, &length);
        const std::wstring link = TakeText(text);
        if (SUCCEEDED(result) && IsAllowedCamera(link)) {
            return static_cast<INT32>(i);
        }
    }
    LogLine(4, L"Preview::SelectDevice", L"can not find any valid video device!");
    return -1;
}

bool Preview::CreateDeviceSource(INT32 index) {
    const auto fail = [](const wchar_t* text) {
        LogLine(4, L"Preview::CreateDeviceSource", text);
        return false;
    };
    if (FAILED(camera_system::CreateDeviceSource(devices_[index], &mediaSource_))) {
        return fail(L"create device source error!");
    }
    IMFAttributes* attributes = nullptr;
    if (FAILED(media_foundation::CreateAttributes(&attributes, 1))) {
        return false;
    }
    attributes->SetUnknown(MF_SOURCE_READER_ASYNC_CALLBACK, this);
    const HRESULT created = CreateReader(mediaSource_, attributes);
    ComRelease(attributes);
    if (FAILED(created)) {
        return fail(L"create source reader error!");
    }
    IMFSourceReader* reader = reader_;
    if (FAILED(reader->GetCurrentMediaType(kVideoStream, &mediaType_))) {
        return fail(L"get media type error!");
    }
    if (FAILED(mediaType_->GetGUID(MF_MT_SUBTYPE, &subtype_))) {
        return fail(L"get subtype error!");
    }
    if (FAILED(MFGetAttributeSize(mediaType_, MF_MT_FRAME_SIZE, &frameWidthPx_, &frameHeightPx_))) {
        return fail(L"get frame size error!");
    }
    return true;
}

HRESULT Preview::CreateReader(IMFMediaSource* source, IMFAttributes* attributes) {
    IMFSourceReader* reader = nullptr;
    HRESULT result = reader_system::CreateFromMediaSource(source, attributes, &reader);
    if (SUCCEEDED(result)) {
        result = NegotiateMediaType(reader);
    }
    firstSamplePending_ = TRUE;
    baseTimeHns_ = 0;
    // Only now may a callback find a reader: a late one of an earlier reader must not draw while the renderer is being
    // configured.
    reader_ = reader;
    if (SUCCEEDED(result) && reader != nullptr) {
        result = RequestSample();
    }
    return result;
}

HRESULT Preview::RequestSample() {
    return reader_.load()->ReadSample(kVideoStream, 0, nullptr, nullptr, nullptr, nullptr);
}

HRESULT Preview::NegotiateMediaType(IMFSourceReader* reader) {
    offersLeft_ = kMostOffers;
    IMFMediaType* type = nullptr;
    HRESULT result = reader->GetCurrentMediaType(kVideoStream, &type);
    if (SUCCEEDED(result)) {
        result = TryMediaType(reader, type);
    }
    ComRelease(type);
    for (DWORD index = 0; FAILED(result); ++index) {
        const HRESULT copied = CopyNativeType(reader, index, &type);
        result = SUCCEEDED(copied) ? TryMediaType(reader, type) : copied;
        ComRelease(type);
        if (FAILED(copied)) {
            break;
        }
    }
    return result;
}

HRESULT Preview::TryMediaType(IMFSourceReader* reader, IMFMediaType* type) {
    GUID subtype = {};
    HRESULT result = type->GetGUID(MF_MT_SUBTYPE, &subtype);
    if (SUCCEEDED(result) && !renderer_.IsFormatSupported(subtype)) {
        result = OfferFormats(reader, type, &subtype);
    }
    if (FAILED(result)) {
        return result;
    }
    negotiatedSubtype_ = subtype;
    return renderer_.ConfigureVideo(type);
}

// Offers the renderer's formats in their order. Kept: past the table's end the last offer is repeated, for a camera may
// refuse for a moment only; but the repetitions of all types together are limited.
HRESULT Preview::OfferFormats(IMFSourceReader* reader, IMFMediaType* type, GUID* subtype) {
    const size_t formats = preview::FormatTable().size();
    for (UINT index = 0;; ++index) {
        (void)renderer_.GetFormat(index, subtype);
        HRESULT result = type->SetGUID(MF_MT_SUBTYPE, *subtype);
        if (FAILED(result)) {
            return result;
        }
        result = reader->SetCurrentMediaType(kVideoStream, nullptr, type);
        if (SUCCEEDED(result)) {
            return result;
        }
        if (offersLeft_ > 0) {
            --offersLeft_;
        }
        if (offersLeft_ == 0 && index + 1 >= formats) {
            return result;
        }
    }
}
