#include "tools/demo/PictureFile.h"

#include <windows.h>

#include <wincodec.h>

#include "suite/common/ComRelease.h"

namespace {

HRESULT Decode(IWICImagingFactory* factory, const std::wstring& path, democamera::Picture& picture) {
    IWICBitmapDecoder* decoder = nullptr;
    IWICBitmapFrameDecode* frame = nullptr;
    IWICFormatConverter* converter = nullptr;
    UINT width = 0;
    UINT height = 0;
    HRESULT result = factory->CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ,
                                                        WICDecodeMetadataCacheOnDemand, &decoder);
    if (SUCCEEDED(result)) {
        result = decoder->GetFrame(0, &frame);
    }
    if (SUCCEEDED(result)) {
        result = factory->CreateFormatConverter(&converter);
    }
    if (SUCCEEDED(result)) {
        result = converter->Initialize(frame, GUID_WICPixelFormat32bppBGR, WICBitmapDitherTypeNone, nullptr, 0,
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
    ComRelease(converter);
    ComRelease(frame);
    ComRelease(decoder);
    return result;
}

}  // namespace

std::shared_ptr<const democamera::Picture> LoadPicture(const std::wstring& path) {
    const HRESULT com = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    auto picture = std::make_shared<democamera::Picture>();
    IWICImagingFactory* factory = nullptr;
    HRESULT result = CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                      reinterpret_cast<void**>(&factory));
    if (SUCCEEDED(result)) {
        result = Decode(factory, path, *picture);
    }
    ComRelease(factory);
    if (SUCCEEDED(com)) {
        CoUninitialize();
    }
    if (FAILED(result) || picture->pixels.empty()) {
        return nullptr;
    }
    return picture;
}
