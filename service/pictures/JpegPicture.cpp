#include "service/pictures/JpegPicture.h"

#include <ocidl.h>
#include <wincodec.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

#include "service/pictures/ExifOrientation.h"
#include "service/pictures/JpegThumbnail.h"
#include "service/pictures/ThumbnailMaker.h"
#include "suite/common/ComReference.h"
#include "suite/common/Handle.h"
#include "suite/common/WicPicture.h"

namespace pictures {

namespace {

using suite::ComReference;

constexpr float kQuality = 0.92F;
constexpr UINT kBandRows = 64;
// A camera's notes stand at the beginning of the file; each of them is at most 64 KiB.
constexpr DWORD kNotesBytes = 256 * 1024;

struct Picture {
    int orientation = ExifOrientation::kUpright;
    bool isPlain = false;  // its own pixels are three bytes, blue, green, red
    ComReference<IWICBitmapDecoder> decoder;
    suite::WicPicture file;

    UINT UprightWidth() const { return ExifOrientation::SwapsSides(orientation) ? file.Height() : file.Width(); }
    UINT UprightHeight() const { return ExifOrientation::SwapsSides(orientation) ? file.Width() : file.Height(); }
};

int OrientationOf(const std::wstring& path) {
    const suite::Handle file(CreateFileW(path.c_str(), GENERIC_READ,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                         FILE_ATTRIBUTE_NORMAL, nullptr));
    std::vector<std::uint8_t> beginning(kNotesBytes);
    DWORD read = 0;
    if (!file || !ReadFile(file.Get(), beginning.data(), kNotesBytes, &read, nullptr)) {
        return ExifOrientation::kUpright;
    }
    return ExifOrientation::Read({beginning.data(), read});
}

HRESULT Open(IWICImagingFactory* factory, const std::wstring& path, Picture& picture) {
    HRESULT result = suite::MakeWicDecoder(factory, path.c_str(), picture.decoder);
    if (SUCCEEDED(result)) {
        result = picture.file.Open(factory, picture.decoder.Get());
    }
    WICPixelFormatGUID format = {};
    picture.isPlain = SUCCEEDED(result) && SUCCEEDED(picture.file.Frame()->GetPixelFormat(&format)) &&
                      IsEqualGUID(format, GUID_WICPixelFormat24bppBGR);
    picture.orientation = OrientationOf(path);
    return result;
}

// Lays what is transparent on white.
void Flatten(std::uint32_t* pixels, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t alpha = pixels[i] >> 24;
        if (alpha == 255) {
            continue;
        }
        std::uint32_t flat = 0xFF000000;
        for (int shift = 0; shift < 24; shift += 8) {
            const std::uint32_t value = pixels[i] >> shift & 0xFF;
            flat |= (value * alpha + 255 * (255 - alpha) + 127) / 255 << shift;
        }
        pixels[i] = flat;
    }
}

// Three bytes for each pixel.
void Pack(const std::uint32_t* pixels, std::size_t count, BYTE* bgr) {
    for (std::size_t i = 0; i < count; ++i, bgr += 3) {
        const std::uint32_t pixel = pixels[i];
        bgr[0] = static_cast<BYTE>(pixel);
        bgr[1] = static_cast<BYTE>(pixel >> 8);
        bgr[2] = static_cast<BYTE>(pixel >> 16);
    }
}

// Writes the upright picture's bands, which `read` gives, and lets the thumbnail see them.
HRESULT WriteBands(IWICBitmapFrameEncode* frame, UINT width, UINT height, ThumbnailMaker& thumbnail,
                   const std::function<HRESULT(UINT top, UINT rows, std::uint32_t* pixels)>& read) {
    const UINT stride = (width * 3 + 3) / 4 * 4;
    std::vector<std::uint32_t> pixels(std::size_t{width} * kBandRows);
    std::vector<BYTE> bgr(std::size_t{stride} * kBandRows);
    HRESULT result = S_OK;
    for (UINT top = 0; SUCCEEDED(result) && top < height; top += kBandRows) {
        const UINT rows = std::min(kBandRows, height - top);
        result = read(top, rows, pixels.data());
        if (FAILED(result)) {
            break;
        }
        Flatten(pixels.data(), std::size_t{width} * rows);
        thumbnail.AddRows(top, rows, pixels.data());
        for (UINT row = 0; row < rows; ++row) {
            Pack(pixels.data() + std::size_t{row} * width, width, bgr.data() + std::size_t{row} * stride);
        }
        result = frame->WritePixels(rows, stride, stride * rows, bgr.data());
    }
    return result;
}

// As WriteBands, for pixels that need nothing done to them: saves a pass over all of them.
HRESULT CopyBands(IWICBitmapFrameEncode* frame, const Picture& picture, ThumbnailMaker& thumbnail) {
    const UINT stride = (picture.file.Width() * 3 + 3) / 4 * 4;
    std::vector<BYTE> bgr(std::size_t{stride} * kBandRows);
    HRESULT result = S_OK;
    for (UINT top = 0; SUCCEEDED(result) && top < picture.file.Height(); top += kBandRows) {
        const UINT rows = std::min(kBandRows, picture.file.Height() - top);
        const WICRect band{0, static_cast<INT>(top), static_cast<INT>(picture.file.Width()), static_cast<INT>(rows)};
        result = picture.file.Frame()->CopyPixels(&band, stride, stride * rows, bgr.data());
        if (SUCCEEDED(result)) {
            thumbnail.AddRows(top, rows, bgr.data(), 3, stride);
            result = frame->WritePixels(rows, stride, stride * rows, bgr.data());
        }
    }
    return result;
}

HRESULT SetFormat(IWICBitmapFrameEncode* frame, UINT width, UINT height) {
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    HRESULT result = frame->SetSize(width, height);
    if (SUCCEEDED(result)) {
        result = frame->SetPixelFormat(&format);
    }
    return SUCCEEDED(result) && !IsEqualGUID(format, GUID_WICPixelFormat24bppBGR) ? WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT
                                                                                  : result;
}

HRESULT WritePicture(const Picture& picture, IWICBitmapFrameEncode* frame, ThumbnailMaker& thumbnail) {
    HRESULT result = SetFormat(frame, picture.UprightWidth(), picture.UprightHeight());
    if (FAILED(result)) {
        return result;
    }
    if (picture.orientation == ExifOrientation::kUpright && picture.isPlain) {
        return CopyBands(frame, picture, thumbnail);
    }
    if (picture.orientation == ExifOrientation::kUpright) {
        return WriteBands(frame, picture.file.Width(), picture.file.Height(), thumbnail,
                          [&picture](UINT top, UINT rows, std::uint32_t* pixels) {
                              return picture.file.ReadRows(top, rows, pixels);
                          });
    }
    std::vector<std::uint32_t> stored(std::size_t{picture.file.Width()} * picture.file.Height());
    for (UINT top = 0; SUCCEEDED(result) && top < picture.file.Height(); top += kBandRows) {
        result = picture.file.ReadRows(top, std::min(kBandRows, picture.file.Height() - top),
                                       stored.data() + std::size_t{top} * picture.file.Width());
    }
    if (FAILED(result)) {
        return result;
    }
    return WriteBands(frame, picture.UprightWidth(), picture.UprightHeight(), thumbnail,
                      [&](UINT top, UINT rows, std::uint32_t* pixels) {
                          ExifOrientation::TurnRows(stored.data(), picture.file.Width(), picture.file.Height(),
                                                    picture.orientation, top, rows, pixels);
                          return S_OK;
                      });
}

// An encoder that does not know the option keeps its own quality.
void SetQuality(IPropertyBag2* options) {
    PROPBAG2 option = {};
    wchar_t name[] = L"ImageQuality";
    option.pstrName = name;
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_R4;
    value.fltVal = kQuality;
    options->Write(1, &option, &value);
}

HRESULT BytesOf(IStream* stream, std::vector<std::uint8_t>& bytes) {
    HGLOBAL memory = nullptr;
    STATSTG state = {};
    HRESULT result = GetHGlobalFromStream(stream, &memory);
    if (SUCCEEDED(result)) {
        result = stream->Stat(&state, STATFLAG_NONAME);
    }
    if (FAILED(result)) {
        return result;
    }
    const auto* const data = static_cast<const std::uint8_t*>(GlobalLock(memory));
    if (!data) {
        return E_OUTOFMEMORY;
    }
    bytes.assign(data, data + state.cbSize.QuadPart);
    GlobalUnlock(memory);
    return S_OK;
}

// `write` gives the frame its size, format and rows.
HRESULT Encode(IWICImagingFactory* factory, const std::function<HRESULT(IWICBitmapFrameEncode* frame)>& write,
               std::vector<std::uint8_t>& file) {
    ComReference<IStream> stream;
    ComReference<IWICBitmapEncoder> encoder;
    ComReference<IWICBitmapFrameEncode> frame;
    ComReference<IPropertyBag2> options;
    HRESULT result = CreateStreamOnHGlobal(nullptr, TRUE, stream.Put());
    if (SUCCEEDED(result)) {
        result = factory->CreateEncoder(GUID_ContainerFormatJpeg, nullptr, encoder.Put());
    }
    if (SUCCEEDED(result)) {
        result = encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache);
    }
    if (SUCCEEDED(result)) {
        result = encoder->CreateNewFrame(frame.Put(), options.Put());
    }
    if (SUCCEEDED(result)) {
        if (options.Get()) {
            SetQuality(options.Get());
        }
        result = frame->Initialize(options.Get());
    }
    if (SUCCEEDED(result)) {
        result = write(frame.Get());
    }
    if (SUCCEEDED(result)) {
        result = frame->Commit();
    }
    if (SUCCEEDED(result)) {
        result = encoder->Commit();
    }
    if (SUCCEEDED(result)) {
        result = BytesOf(stream.Get(), file);
    }
    return result;
}

// Empty when it cannot be made: the gallery then reads the picture itself.
std::vector<std::uint8_t> EncodeThumbnail(IWICImagingFactory* factory, const ThumbnailMaker& thumbnail) {
    const auto width = static_cast<UINT>(thumbnail.Width());
    const auto height = static_cast<UINT>(thumbnail.Height());
    const std::vector<std::uint32_t> pixels = thumbnail.Pixels();
    std::vector<std::uint8_t> file;
    const HRESULT result = Encode(
        factory,
        [&](IWICBitmapFrameEncode* frame) {
            const UINT stride = width * 3;
            std::vector<BYTE> bgr(std::size_t{stride} * height);
            Pack(pixels.data(), pixels.size(), bgr.data());
            const HRESULT set = SetFormat(frame, width, height);
            return SUCCEEDED(set) ? frame->WritePixels(height, stride, stride * height, bgr.data()) : set;
        },
        file);
    return SUCCEEDED(result) ? file : std::vector<std::uint8_t>();
}

}  // namespace

HRESULT EncodeAsJpeg(const std::wstring& source, std::vector<std::uint8_t>& file) {
    ComReference<IWICImagingFactory> factory;
    HRESULT result = suite::MakeWicFactory(factory);
    Picture picture;
    if (SUCCEEDED(result)) {
        result = Open(factory.Get(), source, picture);
    }
    if (FAILED(result)) {
        return result;
    }
    ThumbnailMaker thumbnail(picture.UprightWidth(), picture.UprightHeight());
    result = Encode(
        factory.Get(), [&](IWICBitmapFrameEncode* frame) { return WritePicture(picture, frame, thumbnail); }, file);
    if (SUCCEEDED(result)) {
        if (const std::vector<std::uint8_t> small = EncodeThumbnail(factory.Get(), thumbnail); !small.empty()) {
            file = JpegThumbnail::Embed(file, small);
        }
    }
    return result;
}

}  // namespace pictures
