#include "service/pictures/PictureThumbnail.h"

#include <wincodec.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "service/pictures/JpegThumbnail.h"
#include "service/pictures/ThumbnailMaker.h"
#include "suite/common/Handle.h"
#include "suite/common/Held.h"

namespace {

constexpr UINT kBandRows = 64;
// Beyond it sizes in bytes would no longer fit 32 bits.
constexpr UINT kMaxSidePx = 16384;

// What the file begins with; the thumbnail is in there if it has one.
std::vector<std::uint8_t> BeginningOf(const std::wstring& path) {
    const suite::Handle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    std::vector<std::uint8_t> bytes(JpegThumbnail::kSearchBytes);
    DWORD read = 0;
    if (!file || !ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) {
        return {};
    }
    bytes.resize(read);
    return bytes;
}

HRESULT ToBitmap(IWICImagingFactory* factory, IWICBitmapDecoder* decoder, HBITMAP& bitmap) {
    Held<IWICBitmapFrameDecode> frame;
    Held<IWICFormatConverter> converter;
    UINT width = 0;
    UINT height = 0;
    HRESULT result = decoder->GetFrame(0, frame.Put());
    if (SUCCEEDED(result)) {
        result = frame->GetSize(&width, &height);
    }
    if (SUCCEEDED(result) && (width == 0 || height == 0 || width > kMaxSidePx || height > kMaxSidePx)) {
        result = WINCODEC_ERR_IMAGESIZEOUTOFRANGE;
    }
    if (SUCCEEDED(result)) {
        result = factory->CreateFormatConverter(converter.Put());
    }
    if (SUCCEEDED(result)) {
        result = converter->Initialize(frame.Get(), GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone, nullptr, 0.0,
                                       WICBitmapPaletteTypeCustom);
    }
    if (FAILED(result)) {
        return result;
    }
    ThumbnailMaker maker(width, height);
    std::vector<std::uint32_t> band(std::size_t{width} * kBandRows);
    for (UINT top = 0; SUCCEEDED(result) && top < height; top += kBandRows) {
        const UINT rows = std::min(kBandRows, height - top);
        const WICRect rect{0, static_cast<INT>(top), static_cast<INT>(width), static_cast<INT>(rows)};
        result = converter->CopyPixels(&rect, width * 4, width * 4 * rows, reinterpret_cast<BYTE*>(band.data()));
        if (SUCCEEDED(result)) {
            maker.AddRows(top, rows, band.data());
        }
    }
    if (SUCCEEDED(result)) {
        const std::vector<std::uint32_t> pixels = maker.Pixels();
        bitmap = CreateBitmap(static_cast<int>(maker.Width()), static_cast<int>(maker.Height()), 1, 32, pixels.data());
    }
    return result;
}

}  // namespace

HBITMAP LoadPictureThumbnail(const std::wstring& path) {
    Held<IWICImagingFactory> factory;
    if (FAILED(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                reinterpret_cast<void**>(factory.Put())))) {
        return nullptr;
    }
    HBITMAP bitmap = nullptr;
    std::vector<std::uint8_t> beginning = BeginningOf(path);
    if (const JpegThumbnail::Bytes small = JpegThumbnail::Find(beginning); !small.empty()) {
        Held<IWICStream> stream;
        Held<IWICBitmapDecoder> decoder;
        BYTE* data = beginning.data() + (small.data() - beginning.data());
        const bool decoded = SUCCEEDED(factory->CreateStream(stream.Put())) &&
                             SUCCEEDED(stream->InitializeFromMemory(data, static_cast<DWORD>(small.size()))) &&
                             SUCCEEDED(factory->CreateDecoderFromStream(
                                 stream.Get(), nullptr, WICDecodeMetadataCacheOnDemand, decoder.Put())) &&
                             SUCCEEDED(ToBitmap(factory.Get(), decoder.Get(), bitmap));
        if (decoded && bitmap) {
            return bitmap;
        }
    }
    Held<IWICBitmapDecoder> decoder;
    if (SUCCEEDED(factory->CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ,
                                                     WICDecodeMetadataCacheOnDemand, decoder.Put()))) {
        ToBitmap(factory.Get(), decoder.Get(), bitmap);
    }
    return bitmap;
}
