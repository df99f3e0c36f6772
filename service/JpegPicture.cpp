#include "service/JpegPicture.h"

#include <ocidl.h>
#include <wincodec.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

#include "service/ExifOrientation.h"
#include "suite/common/ComRelease.h"
#include "suite/common/Handle.h"

namespace {

constexpr float kQuality = 0.92F;
constexpr UINT kBandRows = 64;
// What decoder and encoder take at most; beyond it sizes in bytes would no longer fit 32 bits.
constexpr UINT kMaxSidePx = 16384;
// A camera's notes stand at the beginning of the file; each of them is at most 64 KiB.
constexpr DWORD kNotesBytes = 256 * 1024;

// Releases its interface at the end of a scope.
template <typename Interface>
class Held {
  public:
    Held() = default;
    ~Held() { ComRelease(pointer_); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    Interface** Put() { return &pointer_; }
    Interface* Get() const { return pointer_; }
    Interface* operator->() const { return pointer_; }

  private:
    Interface* pointer_ = nullptr;
};

struct Picture {
    UINT width = 0;
    UINT height = 0;
    int orientation = ExifOrientation::kUpright;
    Held<IWICBitmapDecoder> decoder;
    Held<IWICBitmapFrameDecode> frame;
    Held<IWICFormatConverter> pixels;  // 32 bits each, alpha last
};

int OrientationOf(const std::wstring& path) {
    const suite::Handle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    std::vector<std::uint8_t> beginning(kNotesBytes);
    DWORD read = 0;
    if (!file || !ReadFile(file.Get(), beginning.data(), kNotesBytes, &read, nullptr)) {
        return ExifOrientation::kUpright;
    }
    return ExifOrientation::Read({beginning.data(), read});
}

HRESULT Open(IWICImagingFactory* factory, const std::wstring& path, Picture& picture) {
    HRESULT result = factory->CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ,
                                                        WICDecodeMetadataCacheOnDemand, picture.decoder.Put());
    if (SUCCEEDED(result)) {
        result = picture.decoder->GetFrame(0, picture.frame.Put());
    }
    if (SUCCEEDED(result)) {
        result = picture.frame->GetSize(&picture.width, &picture.height);
    }
    if (SUCCEEDED(result) &&
        (picture.width == 0 || picture.height == 0 || picture.width > kMaxSidePx || picture.height > kMaxSidePx)) {
        result = WINCODEC_ERR_IMAGESIZEOUTOFRANGE;
    }
    if (SUCCEEDED(result)) {
        result = factory->CreateFormatConverter(picture.pixels.Put());
    }
    if (SUCCEEDED(result)) {
        result = picture.pixels->Initialize(picture.frame.Get(), GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone,
                                            nullptr, 0.0, WICBitmapPaletteTypeCustom);
    }
    picture.orientation = OrientationOf(path);
    return result;
}

HRESULT ReadRows(const Picture& picture, UINT top, UINT rows, std::uint32_t* pixels) {
    const WICRect band{0, static_cast<INT>(top), static_cast<INT>(picture.width), static_cast<INT>(rows)};
    const UINT stride = picture.width * 4;
    return picture.pixels->CopyPixels(&band, stride, stride * rows, reinterpret_cast<BYTE*>(pixels));
}

// Three bytes for each pixel; what is transparent lies on white.
void Flatten(const std::uint32_t* pixels, std::size_t count, BYTE* bgr) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t pixel = pixels[i];
        const std::uint32_t alpha = pixel >> 24;
        for (int shift = 0; shift < 24; shift += 8) {
            const std::uint32_t value = pixel >> shift & 0xFF;
            *bgr++ = static_cast<BYTE>(alpha == 255 ? value : (value * alpha + 255 * (255 - alpha) + 127) / 255);
        }
    }
}

// Writes the upright picture's bands, which `read` gives.
HRESULT WriteBands(IWICBitmapFrameEncode* frame, UINT width, UINT height,
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
        for (UINT row = 0; row < rows; ++row) {
            Flatten(pixels.data() + std::size_t{row} * width, width, bgr.data() + std::size_t{row} * stride);
        }
        result = frame->WritePixels(rows, stride, stride * rows, bgr.data());
    }
    return result;
}

HRESULT WritePicture(const Picture& picture, IWICBitmapFrameEncode* frame) {
    const bool swaps = ExifOrientation::SwapsSides(picture.orientation);
    const UINT width = swaps ? picture.height : picture.width;
    const UINT height = swaps ? picture.width : picture.height;
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    HRESULT result = frame->SetSize(width, height);
    if (SUCCEEDED(result)) {
        result = frame->SetPixelFormat(&format);
    }
    if (SUCCEEDED(result) && !IsEqualGUID(format, GUID_WICPixelFormat24bppBGR)) {
        result = WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT;
    }
    if (FAILED(result)) {
        return result;
    }
    if (picture.orientation == ExifOrientation::kUpright) {
        return WriteBands(frame, width, height, [&picture](UINT top, UINT rows, std::uint32_t* pixels) {
            return ReadRows(picture, top, rows, pixels);
        });
    }
    std::vector<std::uint32_t> stored(std::size_t{picture.width} * picture.height);
    for (UINT top = 0; SUCCEEDED(result) && top < picture.height; top += kBandRows) {
        result = ReadRows(picture, top, std::min(kBandRows, picture.height - top),
                          stored.data() + std::size_t{top} * picture.width);
    }
    if (FAILED(result)) {
        return result;
    }
    return WriteBands(frame, width, height, [&](UINT top, UINT rows, std::uint32_t* pixels) {
        ExifOrientation::TurnRows(stored.data(), picture.width, picture.height, picture.orientation, top, rows, pixels);
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

HRESULT Encode(IWICImagingFactory* factory, const Picture& picture, const std::wstring& target) {
    Held<IWICStream> stream;
    Held<IWICBitmapEncoder> encoder;
    Held<IWICBitmapFrameEncode> frame;
    Held<IPropertyBag2> options;
    HRESULT result = factory->CreateStream(stream.Put());
    if (SUCCEEDED(result)) {
        result = stream->InitializeFromFilename(target.c_str(), GENERIC_WRITE);
    }
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
        result = WritePicture(picture, frame.Get());
    }
    if (SUCCEEDED(result)) {
        result = frame->Commit();
    }
    return SUCCEEDED(result) ? encoder->Commit() : result;
}

}  // namespace

HRESULT SaveAsJpeg(const std::wstring& source, const std::wstring& target) {
    Held<IWICImagingFactory> factory;
    HRESULT result = CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                      reinterpret_cast<void**>(factory.Put()));
    Picture picture;
    if (SUCCEEDED(result)) {
        result = Open(factory.Get(), source, picture);
    }
    return SUCCEEDED(result) ? Encode(factory.Get(), picture, target) : result;
}
