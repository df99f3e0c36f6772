#include "service/pictures/PictureThumbnail.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "service/pictures/JpegThumbnail.h"
#include "service/pictures/ThumbnailMaker.h"
#include "suite/common/ComReference.h"
#include "suite/common/Handle.h"
#include "suite/common/WicPicture.h"

namespace pictures {

namespace {

using suite::ComReference;

constexpr UINT kBandRows = 64;

// What the file begins with; the thumbnail is in there if it has one.
std::vector<std::uint8_t> BeginningOf(const std::wstring& path) {
    const suite::Handle file(CreateFileW(path.c_str(), GENERIC_READ,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                         FILE_ATTRIBUTE_NORMAL, nullptr));
    std::vector<std::uint8_t> bytes(JpegThumbnail::kSearchBytes);
    DWORD read = 0;
    if (!file || !ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) {
        return {};
    }
    bytes.resize(read);
    return bytes;
}

// Null when the decoder's picture cannot be read.
suite::GdiBitmap Shrink(IWICImagingFactory* factory, IWICBitmapDecoder* decoder) {
    suite::WicPicture picture;
    if (FAILED(picture.Open(factory, decoder))) {
        return {};
    }
    ThumbnailMaker maker(picture.Width(), picture.Height());
    std::vector<std::uint32_t> band(std::size_t{picture.Width()} * kBandRows);
    for (UINT top = 0; top < picture.Height(); top += kBandRows) {
        const UINT rows = std::min(kBandRows, picture.Height() - top);
        if (FAILED(picture.ReadRows(top, rows, band.data()))) {
            return {};
        }
        maker.AddRows(top, rows, band.data());
    }
    const std::vector<std::uint32_t> pixels = maker.Pixels();
    return suite::GdiBitmap(
        CreateBitmap(static_cast<int>(maker.Width()), static_cast<int>(maker.Height()), 1, 32, pixels.data()));
}

}  // namespace

suite::GdiBitmap LoadPictureThumbnail(const std::wstring& path) {
    ComReference<IWICImagingFactory> factory;
    if (FAILED(suite::MakeWicFactory(factory))) {
        return {};
    }
    std::vector<std::uint8_t> beginning = BeginningOf(path);
    if (const JpegThumbnail::Bytes small = JpegThumbnail::Find(beginning); !small.empty()) {
        ComReference<IWICStream> stream;
        ComReference<IWICBitmapDecoder> decoder;
        BYTE* data = beginning.data() + (small.data() - beginning.data());
        const bool decoded = SUCCEEDED(factory->CreateStream(stream.Put())) &&
                             SUCCEEDED(stream->InitializeFromMemory(data, static_cast<DWORD>(small.size()))) &&
                             SUCCEEDED(factory->CreateDecoderFromStream(stream.Get(), nullptr,
                                                                        WICDecodeMetadataCacheOnDemand, decoder.Put()));
        suite::GdiBitmap bitmap = decoded ? Shrink(factory.Get(), decoder.Get()) : suite::GdiBitmap();
        if (bitmap) {
            return bitmap;
        }
    }
    ComReference<IWICBitmapDecoder> decoder;
    return SUCCEEDED(suite::MakeWicDecoder(factory.Get(), path.c_str(), decoder)) ? Shrink(factory.Get(), decoder.Get())
                                                                                  : suite::GdiBitmap();
}

}  // namespace pictures
