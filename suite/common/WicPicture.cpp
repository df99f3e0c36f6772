#include "suite/common/WicPicture.h"

namespace suite {

namespace {

constexpr UINT kPixelBytes = 4;

}  // namespace

HRESULT MakeWicFactory(ComReference<IWICImagingFactory>& factory) {
    return CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                            factory.PutVoid());
}

HRESULT MakeWicDecoder(IWICImagingFactory* factory, const wchar_t* path, ComReference<IWICBitmapDecoder>& decoder) {
    return factory->CreateDecoderFromFilename(path, nullptr, GENERIC_READ, WICDecodeMetadataCacheOnDemand,
                                              decoder.Put());
}

HRESULT WicPicture::Open(IWICImagingFactory* factory, IWICBitmapDecoder* decoder, const WICPixelFormatGUID& format,
                         UINT maxSidePx) {
    HRESULT result = decoder->GetFrame(0, frame_.Put());
    if (SUCCEEDED(result)) {
        result = frame_->GetSize(&width_, &height_);
    }
    if (SUCCEEDED(result) && (width_ == 0 || height_ == 0 || width_ > maxSidePx || height_ > maxSidePx)) {
        result = WINCODEC_ERR_IMAGESIZEOUTOFRANGE;
    }
    if (SUCCEEDED(result)) {
        result = factory->CreateFormatConverter(pixels_.Put());
    }
    if (SUCCEEDED(result)) {
        result = pixels_->Initialize(frame_.Get(), format, WICBitmapDitherTypeNone, nullptr, 0.0,
                                     WICBitmapPaletteTypeCustom);
    }
    return result;
}

HRESULT WicPicture::ReadRows(UINT top, UINT rows, std::uint32_t* pixels) const {
    const WICRect band{0, static_cast<INT>(top), static_cast<INT>(width_), static_cast<INT>(rows)};
    const UINT stride = width_ * kPixelBytes;
    return pixels_->CopyPixels(&band, stride, stride * rows, reinterpret_cast<BYTE*>(pixels));
}

}  // namespace suite
