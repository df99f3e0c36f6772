#include "preview/VideoReader.h"

#include <utility>

#include "preview/CoverFrame.h"
#include "preview/MediaFoundation.h"
#include "preview/ReaderSystem.h"
#include "preview/VisiblePart.h"
#include "preview/pixels/SourceExtent.h"
#include "suite/common/ComReference.h"
#include "suite/common/ComRelease.h"

using reader_system::kVideoStream;

namespace {

constexpr int kMaxCoverFrames = 30;
constexpr int kMaxCoverReads = 90;  // reads may bring no frame, but no file shall keep the program busy for ever
constexpr UINT kNotDark = 24;

// Empty when the buffer does not hold a whole frame of that type.
preview::CoverFrame ShrinkSample(IMFSample* sample, IMFMediaType* type, UINT maxWidth, UINT maxHeight) {
    preview::CoverFrame frame;
    UINT32 width = 0, height = 0;
    if (MFGetAttributeSize(type, MF_MT_FRAME_SIZE, &width, &height) != S_OK || width == 0 || height == 0 ||
        width > preview::kMostSide || height > preview::kMostSide) {
        return frame;
    }
    suite::ComReference<IMFMediaBuffer> buffer;
    BYTE* data = nullptr;
    DWORD length = 0;
    if (sample->ConvertToContiguousBuffer(buffer.Put()) != S_OK || buffer->Lock(&data, nullptr, &length) != S_OK) {
        return frame;
    }
    const UINT stride = (width + 1) / 2 * 4;
    if (UINT64{stride} * height <= length) {
        // Two columns share their colour.
        RECT part = preview::VisiblePart(type, static_cast<LONG>(width), static_cast<LONG>(height));
        part.left &= ~1L;
        const BYTE* first =
            data + static_cast<std::size_t>(part.top) * stride + 2 * static_cast<std::size_t>(part.left);
        frame = preview::ShrinkYuy2(first, stride, static_cast<UINT>(part.right - part.left),
                                    static_cast<UINT>(part.bottom - part.top), maxWidth, maxHeight);
    }
    buffer->Unlock();
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
    Close();
    const bool opened = OpenVideoStream(path);
    if (!opened) {
        Close();
    }
    return opened;
}

bool VideoReader::OpenVideoStream(const std::wstring& path) {
    UINT width = 0, height = 0;
    return media_foundation::Startup(MF_VERSION, MFSTARTUP_FULL) == S_OK &&
           reader_system::CreateFromUrl(path.c_str(), &reader_) == S_OK && SelectYuy2(reader_) == S_OK &&
           reader_->GetCurrentMediaType(kVideoStream, &mediaType_) == S_OK && GetFrameSize(&width, &height);
}

bool VideoReader::GetFrameSize(UINT* widthPx, UINT* heightPx) {
    return mediaType_ != nullptr && MFGetAttributeSize(mediaType_, MF_MT_FRAME_SIZE, widthPx, heightPx) == S_OK;
}

HBITMAP VideoReader::ReadCover(UINT maxWidthPx, UINT maxHeightPx) {
    constexpr DWORD kNoMore = MF_SOURCE_READERF_ENDOFSTREAM | static_cast<DWORD>(MF_SOURCE_READERF_ERROR);
    preview::CoverFrame cover;
    int frames = 0;
    for (int reads = 0; reader_ && reads < kMaxCoverReads && frames < kMaxCoverFrames; ++reads) {
        DWORD stream = 0, flags = 0;
        LONGLONG time = 0;
        suite::ComReference<IMFSample> sample;
        const HRESULT result = reader_->ReadSample(kVideoStream, 0, &stream, &flags, &time, sample.Put());
        if (FAILED(result)) {
            break;
        }
        if ((flags & MF_SOURCE_READERF_CURRENTMEDIATYPECHANGED) != 0) {
            // A decoder that has seen the first frame knows its size better.
            ComRelease(mediaType_);
            if (reader_->GetCurrentMediaType(kVideoStream, &mediaType_) != S_OK) {
                break;
            }
        }
        if (sample) {
            ++frames;
            preview::CoverFrame next = ShrinkSample(sample.Get(), mediaType_, maxWidthPx, maxHeightPx);
            if (!next.pixels.empty()) {
                cover = std::move(next);
            }
        }
        if ((flags & kNoMore) != 0 || cover.MeanBrightness() > kNotDark) {
            break;
        }
    }
    return cover.pixels.empty() ? nullptr : cover.ToBitmap();
}

void VideoReader::Close() {
    ComRelease(mediaType_);
    ComRelease(reader_);
}
