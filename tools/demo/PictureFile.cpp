#include "tools/demo/PictureFile.h"

#include <windows.h>

#include <wincodec.h>

#include "suite/common/ComApartment.h"
#include "suite/common/ComReference.h"

namespace {

HRESULT Decode(IWICImagingFactory* factory, const std::wstring& path, democamera::Picture& picture) {
    suite::ComReference<IWICBitmapDecoder> decoder;
    suite::ComReference<IWICBitmapFrameDecode> frame;
    suite::ComReference<IWICFormatConverter> converter;
    UINT width = 0;
    UINT height = 0;
    HRESULT result = factory->CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ,
                                                        WICDecodeMetadataCacheOnDemand, decoder.Put());
    if (SUCCEEDED(result)) {
        result = decoder->GetFrame(0, frame.Put());
    }
    if (SUCCEEDED(result)) {
        result = factory->CreateFormatConverter(converter.Put());
    }
    if (SUCCEEDED(result)) {
        result = converter->Initialize(frame.Get(), GUID_WICPixelFormat32bppBGR, WICBitmapDitherTypeNone, nullptr, 0,
                                       WICBitmapPaletteTypeCustom);
    }
    if (SUCCEEDED(result)) {
        result = converter->GetSize(&width, &height);
    }
    if (SUCCEEDED(result)) {
        picture.width = static_cast<int>(width);
        picture.height = static_cast<int>(height);
        picture.pixels.resize(std::size_t{width} * height);
        result = converter->CopyPixels(nullptr, 4 * width, 4 * width * height,
                                       reinterpret_cast<BYTE*>(picture.pixels.data()));
    }
    return result;
}

}  // namespace

std::shared_ptr<const democamera::Picture> LoadPicture(const std::wstring& path) {
    const suite::ComApartment com(suite::ComApartment::Kind::kMultiThreaded);
    auto picture = std::make_shared<democamera::Picture>();
    suite::ComReference<IWICImagingFactory> factory;
    HRESULT result = CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                      factory.PutVoid());
    if (SUCCEEDED(result)) {
        result = Decode(factory.Get(), path, *picture);
    }
    if (FAILED(result) || picture->pixels.empty()) {
        return nullptr;
    }
    return picture;
}
