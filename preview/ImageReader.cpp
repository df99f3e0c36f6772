#include "preview/ImageReader.h"

#include "suite/common/ComRelease.h"
#include "suite/logger/QxLogger.h"

namespace {

constexpr wchar_t kOpen[] = L"ImageReader::Open";

bool IsAccepted(const WICPixelFormatGUID& format) {
    return IsEqualGUID(format, GUID_WICPixelFormat32bppBGRA) || IsEqualGUID(format, GUID_WICPixelFormat32bppBGR) ||
           IsEqualGUID(format, GUID_WICPixelFormat24bppBGR);
}

}  // namespace

ImageReader::~ImageReader() {
    Close();
}

bool ImageReader::Open(const std::wstring& path) {
    const bool opened = OpenFirstFrame(path);
    if (!opened) {
        Close();
    }
    return opened;
}

bool ImageReader::OpenFirstFrame(const std::wstring& path) {
    const HRESULT created = CoCreateInstance(CLSID_WICImagingFactory2, nullptr, CLSCTX_INPROC_SERVER,
                                             IID_IWICImagingFactory, reinterpret_cast<void**>(&factory_));
    if (created != S_OK) {
        LogLine(LogLevel::kError, kOpen, L"open error creatInstance", created);
        return false;
    }
    if (factory_->CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ, WICDecodeMetadataCacheOnDemand,
                                            &decoder_) != S_OK) {
        LogLine(LogLevel::kError, kOpen, L"open error creatDecoder");
        return false;
    }
    if (decoder_->GetFrame(0, &frame_) != S_OK) {
        LogLine(LogLevel::kError, kOpen, L"open error getFrame");
        return false;
    }
    UINT width = 0, height = 0;
    if (frame_->GetSize(&width, &height) != S_OK) {
        LogLine(LogLevel::kError, kOpen, L"open error getSize");
        return false;
    }
    WICPixelFormatGUID format = {};
    if (frame_->GetPixelFormat(&format) != S_OK) {
        LogLine(LogLevel::kError, kOpen, L"open error GetPixelFormat");
        return false;
    }
    if (!IsAccepted(format)) {
        LogLine(LogLevel::kError, kOpen, L"open error pixelFormat not support");
        return false;
    }
    return true;
}

bool ImageReader::GetSize(UINT* widthPx, UINT* heightPx) {
    UINT width = 0, height = 0;
    if (frame_ == nullptr || frame_->GetSize(&width, &height) != S_OK) {
        return false;
    }
    *widthPx = width;
    *heightPx = height;
    return true;
}

void ImageReader::Close() {
    ComRelease(frame_);
    ComRelease(decoder_);
    ComRelease(factory_);
}
