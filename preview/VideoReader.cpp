#include "preview/VideoReader.h"

#include <mfapi.h>

#include "suite/common/ComRelease.h"

namespace {

constexpr DWORD kVideoStream = static_cast<DWORD>(MF_SOURCE_READER_FIRST_VIDEO_STREAM);

HRESULT SelectYuy2(IMFSourceReader* reader) {
    IMFMediaType* type = nullptr;
    HRESULT result = MFCreateMediaType(&type);
    if (result == S_OK) {
        result = type->SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Video);
    }
    if (result == S_OK) {
        result = type->SetGUID(MF_MT_SUBTYPE, MFVideoFormat_YUY2);
    }
    if (result == S_OK) {
        result = reader->SetCurrentMediaType(kVideoStream, nullptr, type);
    }
    ComRelease(type);
    return result;
}

}  // namespace

VideoReader::~VideoReader() {
    Close();
}

bool VideoReader::Open(const std::wstring& path) {
    if (opened_) {
        Close();
    }
    opened_ = OpenVideoStream(path);
    if (!opened_) {
        Close();
    }
    return opened_;
}

bool VideoReader::OpenVideoStream(const std::wstring& path) {
    return MFStartup(MF_VERSION, MFSTARTUP_FULL) == S_OK &&
           MFCreateSourceReaderFromURL(path.c_str(), nullptr, &reader_) == S_OK && SelectYuy2(reader_) == S_OK &&
           reader_->GetCurrentMediaType(kVideoStream, &mediaType_) == S_OK &&
           GetFrameSize(&frameWidthPx_, &frameHeightPx_);
}

bool VideoReader::GetFrameSize(UINT* widthPx, UINT* heightPx) {
    return mediaType_ != nullptr && MFGetAttributeSize(mediaType_, MF_MT_FRAME_SIZE, widthPx, heightPx) == S_OK;
}

void VideoReader::Close() {
    ComRelease(mediaType_);
    ComRelease(reader_);
    frameWidthPx_ = 0;
    frameHeightPx_ = 0;
    opened_ = false;
}
