#include "paint/PictureFile.h"

#include <wincodec.h>

#include <algorithm>
#include <array>

#include "markup/ResourceFiles.h"

namespace DuiLib {
namespace {

constexpr UINT kMaxSidePx = 8192;
constexpr std::wstring_view kDrawable = L"drawable\\";
constexpr std::array kRenditions{100, 125, 150, 200, 300};

bool Exists(const std::wstring& file) {
    const DWORD attributes = ::GetFileAttributesW(file.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

// The best first: the smallest that is large enough, the next larger ones, then the smaller ones from the largest down.
std::array<int, kRenditions.size()> InOrderOfUse(int dpi) {
    auto order = kRenditions;
    const auto large = std::stable_partition(order.begin(), order.end(), [dpi](int p) { return p * 96 >= dpi * 100; });
    std::reverse(large, order.end());
    return order;
}

}  // namespace

PicturePath FindPicture(const std::wstring& name, int dpi) {
    std::wstring path = name;
    std::replace(path.begin(), path.end(), L'/', L'\\');
    if (IsFullPath(path)) {
        return {path, 100};
    }
    const std::wstring& folder = GetResourceFolder();
    if (!path.starts_with(kDrawable)) {
        return {folder + path, 100};
    }
    const std::wstring below = path.substr(kDrawable.size());
    for (const int percent : InOrderOfUse(dpi)) {
        const std::wstring rendition = percent == 100 ? L"drawable\\" : L"drawable-" + std::to_wstring(percent) + L"\\";
        if (Exists(folder + rendition + below)) {
            return {folder + rendition + below, percent};
        }
    }
    return {folder + path, 100};
}

PictureDecoder::PictureDecoder() = default;

PictureDecoder::~PictureDecoder() {
    factory_.Reset();
    if (apartment_) {
        ::CoDecrementMTAUsage(apartment_);
    }
}

HRESULT PictureDecoder::MakeFactory() {
    if (factory_) {
        return S_OK;
    }
    if (!apartment_) {
        ::CoIncrementMTAUsage(&apartment_);
    }
    return ::CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                              factory_.PutVoid());
}

HRESULT PictureDecoder::Open(const std::wstring& file,
                             const std::function<HRESULT(Size sizePx, const RowReader& read)>& use) {
    suite::ComReference<IWICBitmapDecoder> decoder;
    suite::ComReference<IWICBitmapFrameDecode> frame;
    suite::ComReference<IWICFormatConverter> converter;
    UINT width = 0, height = 0;
    HRESULT hr = MakeFactory();
    if (SUCCEEDED(hr)) {
        hr = factory_->CreateDecoderFromFilename(file.c_str(), nullptr, GENERIC_READ, WICDecodeMetadataCacheOnDemand,
                                                 decoder.Put());
    }
    if (SUCCEEDED(hr)) {
        hr = decoder->GetFrame(0, frame.Put());
    }
    if (SUCCEEDED(hr)) {
        hr = frame->GetSize(&width, &height);
    }
    if (SUCCEEDED(hr) && (width == 0 || height == 0 || width > kMaxSidePx || height > kMaxSidePx)) {
        hr = WINCODEC_ERR_IMAGESIZEOUTOFRANGE;
    }
    if (SUCCEEDED(hr)) {
        hr = factory_->CreateFormatConverter(converter.Put());
    }
    if (SUCCEEDED(hr)) {
        hr = converter->Initialize(frame.Get(), GUID_WICPixelFormat32bppPBGRA, WICBitmapDitherTypeNone, nullptr, 0.0,
                                   WICBitmapPaletteTypeCustom);
    }
    if (FAILED(hr)) {
        return hr;
    }
    HRESULT readResult = S_OK;
    const RowReader read = [&](int top, int rows, std::uint32_t* pixels) {
        const WICRect rect{0, top, static_cast<INT>(width), rows};
        const UINT stride = width * 4;
        readResult =
            converter->CopyPixels(&rect, stride, stride * static_cast<UINT>(rows), reinterpret_cast<BYTE*>(pixels));
        return SUCCEEDED(readResult);
    };
    hr = use({static_cast<int>(width), static_cast<int>(height)}, read);
    return FAILED(readResult) ? readResult : hr;
}

}  // namespace DuiLib
