#include "tests/support/PngFile.h"

#include <wincodec.h>

#include "suite/common/ComRelease.h"

bool WritePng(const std::wstring& path, const std::vector<DWORD>& pixels, int widthPx, int heightPx) {
    IWICImagingFactory* factory = nullptr;
    IWICStream* stream = nullptr;
    IWICBitmapEncoder* encoder = nullptr;
    IWICBitmapFrameEncode* frame = nullptr;
    const auto width = static_cast<UINT>(widthPx);
    const auto height = static_cast<UINT>(heightPx);
    const auto* bytes = reinterpret_cast<const BYTE*>(pixels.data());
    WICPixelFormatGUID format = GUID_WICPixelFormat32bppBGR;
    void* object = nullptr;
    HRESULT result =
        CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory, &object);
    factory = static_cast<IWICImagingFactory*>(object);
    if (SUCCEEDED(result))
        result = factory->CreateStream(&stream);
    if (SUCCEEDED(result))
        result = stream->InitializeFromFilename(path.c_str(), GENERIC_WRITE);
    if (SUCCEEDED(result))
        result = factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, &encoder);
    if (SUCCEEDED(result))
        result = encoder->Initialize(stream, WICBitmapEncoderNoCache);
    if (SUCCEEDED(result))
        result = encoder->CreateNewFrame(&frame, nullptr);
    if (SUCCEEDED(result))
        result = frame->Initialize(nullptr);
    if (SUCCEEDED(result))
        result = frame->SetSize(width, height);
    if (SUCCEEDED(result))
        result = frame->SetPixelFormat(&format);
    // The encoder chose a format of its own where it has not this one: three bytes a pixel.
    std::vector<BYTE> packed;
    if (SUCCEEDED(result) && format == GUID_WICPixelFormat24bppBGR) {
        packed.reserve(pixels.size() * 3);
        for (const DWORD pixel : pixels) {
            for (const int shift : {0, 8, 16})
                packed.push_back(static_cast<BYTE>(pixel >> shift));
        }
        result = frame->WritePixels(height, width * 3, static_cast<UINT>(packed.size()), packed.data());
    } else if (SUCCEEDED(result)) {
        result = frame->WritePixels(height, width * 4, static_cast<UINT>(pixels.size() * 4), const_cast<BYTE*>(bytes));
    }
    if (SUCCEEDED(result))
        result = frame->Commit();
    if (SUCCEEDED(result))
        result = encoder->Commit();
    ComRelease(frame);
    ComRelease(encoder);
    ComRelease(stream);
    ComRelease(factory);
    return SUCCEEDED(result);
}
