#include "preview/VideoReader.h"

#include <utility>

#include "preview/CoverFrame.h"
#include "preview/MediaFoundation.h"
#include "preview/ReaderSystem.h"
#include "suite/common/ComRelease.h"

namespace {

constexpr DWORD kVideoStream = static_cast<DWORD>(MF_SOURCE_READER_FIRST_VIDEO_STREAM);

constexpr int kMaxCoverFrames = 30;
constexpr int kMaxCoverReads = 90;  // reads may bring no frame, but no file shall keep the program busy for ever
constexpr UINT kNotDark = 24;

// Empty when the buffer does not hold a whole frame.
preview::CoverFrame ShrinkSample(IMFSample* sample, UINT width, UINT height, UINT maxWidth, UINT maxHeight) {
    preview::CoverFrame frame;
    IMFMediaBuffer* buffer = nullptr;
    BYTE* data = nullptr;
    DWORD length = 0;
    if (sample->ConvertToContiguousBuffer(&buffer) == S_OK && buffer->Lock(&data, nullptr, &length) == S_OK) {
        const UINT stride = (width + 1) / 2 * 4;
        if (width > 0 && height > 0 && UINT64{stride} * height <= length) {
            frame = preview::ShrinkYuy2(data, stride, width, height, maxWidth, maxHeight);
        }
        buffer->Unlock();
    }
    ComRelease(buffer);
    return frame;
}

HRESULT SelectYuy2(IMFSourceReader* reader) {
    IMFMediaType* type = nullptr;
    HRESULT result = media_foundation::CreateMediaType(&type);
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
    return media_foundation::Startup(MF_VERSION, MFSTARTUP_FULL) == S_OK &&
           reader_system::CreateFromUrl(path.c_str(), &reader_) == S_OK && SelectYuy2(reader_) == S_OK &&
           reader_->GetCurrentMediaType(kVideoStream, &mediaType_) == S_OK &&
           GetFrameSize(&frameWidthPx_, &frameHeightPx_);
}

bool VideoReader::GetFrameSize(UINT* widthPx, UINT* heightPx) {
    return mediaType_ != nullptr && MFGetAttributeSize(mediaType_, MF_MT_FRAME_SIZE, widthPx, heightPx) == S_OK;
}

HBITMAP VideoReader::ReadCover(UINT maxWidthPx, UINT maxHeightPx) {
    preview::CoverFrame cover;
    int frames = 0;
    for (int reads = 0; reader_ != nullptr && reads < kMaxCoverReads && frames < kMaxCoverFrames; ++reads) {
        DWORD stream = 0, flags = 0;
        LONGLONG time = 0;
        IMFSample* sample = nullptr;
        const HRESULT result = reader_->ReadSample(kVideoStream, 0, &stream, &flags, &time, &sample);
        if (SUCCEEDED(result) && sample != nullptr) {
            ++frames;
            preview::CoverFrame next = ShrinkSample(sample, frameWidthPx_, frameHeightPx_, maxWidthPx, maxHeightPx);
            if (!next.pixels.empty()) {
                cover = std::move(next);
            }
        }
        ComRelease(sample);
        if (FAILED(result) || (flags & (MF_SOURCE_READERF_ENDOFSTREAM | MF_SOURCE_READERF_ERROR)) != 0 ||
            cover.MeanBrightness() > kNotDark) {
            break;
        }
    }
    return cover.pixels.empty() ? nullptr : cover.ToBitmap();
}

void VideoReader::Close() {
    ComRelease(mediaType_);
    ComRelease(reader_);
    frameWidthPx_ = 0;
    frameHeightPx_ = 0;
    opened_ = false;
}
