#include "paint/PictureFile.h"

#include <algorithm>
#include <array>

#include "markup/ResourceFiles.h"
#include "suite/common/WicPicture.h"

namespace DuiLib {
namespace {

constexpr UINT kMaxSidePx = 8192;
constexpr std::wstring_view kDrawable = L"drawable\\";  // as names begin, whatever the family that has them
constexpr std::array kRenditions{100, 125, 150, 200, 300};

std::wstring WithBackslashes(std::wstring path) {
    std::replace(path.begin(), path.end(), L'/', L'\\');
    return path;
}

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

bool IsOwnArtwork(const std::wstring& name) {
    return WithBackslashes(name).starts_with(kDrawable);
}

PicturePath FindPicture(const std::wstring& name, int dpi, const PictureTheme& theme) {
    const std::wstring path = WithBackslashes(name);
    if (IsFullPath(path)) {
        return {path};
    }
    const std::wstring& folder = GetResourceFolder();
    if (!path.starts_with(kDrawable)) {
        return {folder + path};
    }
    const std::wstring below = L"\\" + path.substr(kDrawable.size());
    for (const std::wstring& family : theme.families) {
        for (const int percent : InOrderOfUse(dpi)) {
            const std::wstring file =
                folder + family + (percent == 100 ? std::wstring() : L"-" + std::to_wstring(percent)) + below;
            if (Exists(file)) {
                return {file, percent, family == theme.maskFamily};
            }
        }
    }
    return {folder + path};
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
    return suite::MakeWicFactory(factory_);
}

HRESULT PictureDecoder::Open(const std::wstring& file,
                             const std::function<HRESULT(Size sizePx, const RowReader& read)>& use) {
    suite::ComReference<IWICBitmapDecoder> decoder;
    suite::WicPicture picture;
    HRESULT hr = MakeFactory();
    if (SUCCEEDED(hr)) {
        hr = suite::MakeWicDecoder(factory_.Get(), file.c_str(), decoder);
    }
    if (SUCCEEDED(hr)) {
        hr = picture.Open(factory_.Get(), decoder.Get(), GUID_WICPixelFormat32bppPBGRA, kMaxSidePx);
    }
    if (FAILED(hr)) {
        return hr;
    }
    HRESULT readResult = S_OK;
    const RowReader read = [&](int top, int rows, std::uint32_t* pixels) {
        readResult = picture.ReadRows(static_cast<UINT>(top), static_cast<UINT>(rows), pixels);
        return SUCCEEDED(readResult);
    };
    hr = use({static_cast<int>(picture.Width()), static_cast<int>(picture.Height())}, read);
    return FAILED(readResult) ? readResult : hr;
}

}  // namespace DuiLib
