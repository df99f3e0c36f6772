#include "paint/ImageCache.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <set>
#include <tuple>

#include "DuiLib/Theme.h"
#include "paint/ImageScale.h"
#include "paint/MaskTint.h"
#include "paint/PictureFile.h"
#include "suite/common/GdiObject.h"
#include "suite/logger/QxLogger.h"
#include "theme/PictureTheme.h"

namespace DuiLib {
namespace {

// Decoded pixels of a picture are kept up to this many; scaled ones up to this many for all pictures together.
constexpr size_t kMaxKeptPixels = 512 * 512;
constexpr size_t kMaxScaledPixels = 12 * 1024 * 1024;
constexpr int kMaxTargetPx = 16384;
constexpr LONG kMaxBitmapPx = 8192;

// Names are paths, and paths do not know case.
std::wstring KeyOf(const std::wstring& name) {
    std::wstring key = name;
    std::replace(key.begin(), key.end(), L'/', L'\\');
    ::CharLowerBuffW(key.data(), static_cast<DWORD>(key.size()));
    return key;
}

struct Picture {
    Size sizePx;
    Size sizeDip;
    std::wstring name;                  // of the file, as it was asked for
    std::wstring file;                  // empty: registered
    int percent = 100;                  // of the file's rendition
    std::optional<MaskColors> tint;     // a mask's
    std::vector<std::uint32_t> pixels;  // empty: too large to keep, read from the file each time
    bool failed = false;

    bool Serves(const Picture& other) const { return file == other.file && tint == other.tint; }
};

struct ScaledKey {
    std::wstring picture;
    Rect source, corner;
    Size sizePx;
    bool mirrored;

    auto Tie() const {
        return std::tie(picture, source.left, source.top, source.right, source.bottom, corner.left, corner.top,
                        corner.right, corner.bottom, sizePx.cx, sizePx.cy, mirrored);
    }
    bool operator<(const ScaledKey& other) const { return Tie() < other.Tie(); }
};

struct Scaled {
    ScaledImage image;
    unsigned long long lastUse = 0;
};

// One axis of a nine-grid: a part of the source and a length of the target, each with the margins at its ends that keep
// their size.
struct Axis {
    int begin, end;  // of the source's part
    int nearSource, farSource;
    int target;
    int nearTarget, farTarget;
};

// Where the three parts of an axis begin and end.
struct Cuts {
    int source[4];
    int target[4];
};

// Margins that do not leave a middle are made smaller; a target that is too small shows smaller corners.
Cuts CutAxis(const Axis& axis) {
    const int length = axis.end - axis.begin;
    const int nearSource = std::clamp(axis.nearSource, 0, std::max(0, length - 1));
    const int farSource = std::clamp(axis.farSource, 0, std::max(0, length - 1 - nearSource));
    int nearTarget = axis.nearTarget;
    int farTarget = axis.farTarget;
    if (nearTarget + farTarget > axis.target) {
        nearTarget = ScaleBy(axis.target, nearTarget, nearTarget + farTarget);
        farTarget = axis.target - nearTarget;
    }
    return {{axis.begin, axis.begin + nearSource, axis.end - farSource, axis.end},
            {0, nearTarget, axis.target - farTarget, axis.target}};
}

// Bitmaps with alpha are premultiplied by convention; one that is not is made to look as if it were.
std::uint32_t Premultiplied(std::uint32_t pixel) {
    const std::uint32_t alpha = pixel >> 24;
    const auto limited = [=](int shift) { return std::min((pixel >> shift) & 0xFF, alpha) << shift; };
    return (alpha << 24) | limited(16) | limited(8) | limited(0);
}

}  // namespace

class ImageCache::Impl {
  public:
    void SetDpi(int dpi) {
        if (dpi_ == dpi) {
            return;
        }
        dpi_ = dpi;
        std::erase_if(pictures_, [](const auto& entry) { return !entry.second.file.empty(); });
        scaled_.clear();
        scaledPixels_ = 0;
    }

    void OnThemeChanged() {
        for (auto it = pictures_.begin(); it != pictures_.end();) {
            Picture& picture = it->second;
            const bool other = !picture.file.empty() && !picture.Serves(Resolve(picture.name));
            if (other) {
                ForgetScaled(it->first);
            }
            it = other ? pictures_.erase(it) : std::next(it);
        }
    }

    const ScaledImage* Get(const ImageAttribute& image, Size sizePx, bool rightToLeft) {
        const bool mirrored =
            image.reverse && rightToLeft && !UITheme::GetInstance()->GetPictureTheme().IsUpright(image.file);
        if (sizePx.cx <= 0 || sizePx.cy <= 0 || sizePx.cx > kMaxTargetPx || sizePx.cy > kMaxTargetPx) {
            return nullptr;
        }
        const ScaledKey key{KeyOf(image.file), image.sourceDip.value_or(Rect{}), image.cornerDip, sizePx, mirrored};
        if (const auto known = scaled_.find(key); known != scaled_.end()) {
            known->second.lastUse = ++uses_;
            return &known->second.image;
        }
        Picture& picture = Find(image.file);
        std::vector<std::uint32_t> pixels;
        if (!picture.pixels.empty()) {
            pixels = ScaleParts(picture, picture.pixels, image, sizePx);
        } else if (!picture.failed) {
            pixels = ReadAndScale(picture, image, sizePx);
        }
        if (pixels.empty()) {
            return nullptr;
        }
        if (mirrored) {
            MirrorRows(pixels, sizePx);
        }
        MakeRoom(pixels.size());
        scaledPixels_ += pixels.size();
        Scaled& scaled = scaled_[key];
        const bool opaque = std::all_of(pixels.begin(), pixels.end(), [](std::uint32_t p) { return p >> 24 == 255; });
        scaled = {{sizePx, std::move(pixels), opaque}, ++uses_};
        return &scaled.image;
    }

    bool Add(const std::wstring& name, HBITMAP bitmap, Size sizeDip, bool alpha) {
        BITMAP header{};
        if (!bitmap || ::GetObjectW(bitmap, sizeof(header), &header) == 0 || header.bmWidth <= 0 ||
            header.bmHeight == 0 || header.bmWidth > kMaxBitmapPx || std::abs(header.bmHeight) > kMaxBitmapPx) {
            return false;
        }
        Picture picture;
        picture.sizePx = {static_cast<int>(header.bmWidth), static_cast<int>(std::abs(header.bmHeight))};
        picture.sizeDip = sizeDip.cx > 0 && sizeDip.cy > 0 ? sizeDip : picture.sizePx;
        picture.pixels.resize(static_cast<size_t>(picture.sizePx.cx) * static_cast<size_t>(picture.sizePx.cy));
        BITMAPINFO info = suite::PixelInfo(picture.sizePx.cx, picture.sizePx.cy);
        const suite::MemoryDc dc(::CreateCompatibleDC(nullptr));
        const int rows = ::GetDIBits(dc.Get(), bitmap, 0, static_cast<UINT>(picture.sizePx.cy), picture.pixels.data(),
                                     &info, DIB_RGB_COLORS);
        if (rows != picture.sizePx.cy) {
            return false;
        }
        for (std::uint32_t& pixel : picture.pixels) {
            pixel = alpha ? Premultiplied(pixel) : pixel | 0xFF000000;
        }
        Remove(name);
        pictures_[KeyOf(name)] = std::move(picture);
        return true;
    }

    bool Has(const std::wstring& name) const {
        const auto known = pictures_.find(KeyOf(name));
        return known != pictures_.end() && !known->second.failed && known->second.sizePx != Size{};
    }

    void Remove(const std::wstring& name) {
        const std::wstring key = KeyOf(name);
        pictures_.erase(key);
        logged_.erase(key);
        ForgetScaled(key);
    }

  private:
    using ScaledMap = std::map<ScaledKey, Scaled>;

    // The file that serves the name now; not read yet.
    Picture Resolve(const std::wstring& name) const {
        const PictureTheme& theme = UITheme::GetInstance()->GetPictureTheme();
        PicturePath path = FindPicture(name, dpi_, theme);
        Picture picture;
        picture.name = name;
        picture.file = std::move(path.file);
        picture.percent = path.percent;
        picture.tint = path.mask ? std::optional(theme.ColorsOf(name)) : std::nullopt;
        return picture;
    }

    void ForgetScaled(const std::wstring& key) {
        for (auto it = scaled_.begin(); it != scaled_.end();) {
            it = it->first.picture == key ? Drop(it) : std::next(it);
        }
    }

    // A file's picture is not read yet when it is new.
    Picture& Find(const std::wstring& name) {
        const auto [known, isNew] = pictures_.try_emplace(KeyOf(name));
        Picture& picture = known->second;
        if (isNew) {
            picture = Resolve(name);
        }
        return picture;
    }

    void Fail(Picture& picture, const std::wstring& key, HRESULT hr) {
        picture.failed = true;
        picture.pixels.clear();
        if (logged_.insert(key).second) {
            LogLine(LogLevel::kError, L"ImageCache::Get", L"The image ", picture.file, L" cannot be read: ",
                    static_cast<long>(hr));
        }
    }

    // Opens the file once: a small picture's pixels are kept, those of a large one only pass through the scaler.
    std::vector<std::uint32_t> ReadAndScale(Picture& picture, const ImageAttribute& image, Size targetPx) {
        std::vector<std::uint32_t> result;
        const HRESULT hr = decoder_.Open(picture.file, [&](Size sizePx, const RowReader& read) {
            picture.sizePx = sizePx;
            picture.sizeDip = {ScaleBy(sizePx.cx, 100, picture.percent), ScaleBy(sizePx.cy, 100, picture.percent)};
            if (static_cast<size_t>(sizePx.cx) * static_cast<size_t>(sizePx.cy) <= kMaxKeptPixels) {
                picture.pixels = ReadWhole(picture, read, sizePx);
                result = ScaleParts(picture, picture.pixels, image, targetPx);
            } else if (!image.sourceDip && image.cornerDip == Rect{}) {
                result = ScaleRows(read, sizePx, targetPx);
                Tint(picture, result);
            } else {
                result = ScaleParts(picture, ReadWhole(picture, read, sizePx), image, targetPx);
            }
            return S_OK;
        });
        if (FAILED(hr)) {
            Fail(picture, KeyOf(image.file), hr);
            result.clear();
        }
        return result;
    }

    static void Tint(const Picture& picture, std::vector<std::uint32_t>& pixels) {
        if (picture.tint) {
            TintMask(pixels, *picture.tint);
        }
    }

    static std::vector<std::uint32_t> ReadWhole(const Picture& picture, const RowReader& read, Size sizePx) {
        std::vector<std::uint32_t> pixels = ScaleRows(read, sizePx, sizePx);
        Tint(picture, pixels);
        return pixels;
    }

    std::vector<std::uint32_t> ScaleParts(const Picture& picture, const std::vector<std::uint32_t>& pixels,
                                          const ImageAttribute& image, Size sizePx) const {
        const Rect whole{0, 0, picture.sizePx.cx, picture.sizePx.cy};
        const Rect part = image.sourceDip ? InPixels(picture, *image.sourceDip).Intersect(whole) : whole;
        if (pixels.empty() || part.IsEmpty()) {
            return {};
        }
        std::vector<std::uint32_t> result(static_cast<size_t>(sizePx.cx) * static_cast<size_t>(sizePx.cy));
        const ConstPixelView source{pixels.data(), picture.sizePx.cx, picture.sizePx.cy, picture.sizePx.cx};
        const PixelView target{result.data(), sizePx.cx, sizePx.cy, sizePx.cx};
        const Rect& corner = image.cornerDip;
        const Rect cornerPx = InPixels(picture, corner);
        const Cuts x = CutAxis({.begin = part.left,
                                .end = part.right,
                                .nearSource = cornerPx.left,
                                .farSource = cornerPx.right,
                                .target = sizePx.cx,
                                .nearTarget = DipToPx(corner.left, dpi_),
                                .farTarget = DipToPx(corner.right, dpi_)});
        const Cuts y = CutAxis({.begin = part.top,
                                .end = part.bottom,
                                .nearSource = cornerPx.top,
                                .farSource = cornerPx.bottom,
                                .target = sizePx.cy,
                                .nearTarget = DipToPx(corner.top, dpi_),
                                .farTarget = DipToPx(corner.bottom, dpi_)});
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column) {
                ScalePart(source, {x.source[column], y.source[row], x.source[column + 1], y.source[row + 1]}, target,
                          {x.target[column], y.target[row], x.target[column + 1], y.target[row + 1]});
            }
        }
        return result;
    }

    // Units of the picture to its pixels.
    static Rect InPixels(const Picture& picture, const Rect& dip) {
        const Size px = picture.sizePx, unit{std::max(1, picture.sizeDip.cx), std::max(1, picture.sizeDip.cy)};
        return {ScaleBy(dip.left, px.cx, unit.cx), ScaleBy(dip.top, px.cy, unit.cy), ScaleBy(dip.right, px.cx, unit.cx),
                ScaleBy(dip.bottom, px.cy, unit.cy)};
    }

    void MakeRoom(size_t pixels) {
        while (!scaled_.empty() && scaledPixels_ + pixels > kMaxScaledPixels) {
            Drop(std::min_element(scaled_.begin(), scaled_.end(),
                                  [](const auto& a, const auto& b) { return a.second.lastUse < b.second.lastUse; }));
        }
    }

    ScaledMap::iterator Drop(ScaledMap::iterator it) {
        scaledPixels_ -= it->second.image.pixels.size();
        return scaled_.erase(it);
    }

    PictureDecoder decoder_;
    int dpi_ = 96;
    std::map<std::wstring, Picture> pictures_;
    std::set<std::wstring> logged_;  // failures that were told
    ScaledMap scaled_;
    size_t scaledPixels_ = 0;
    unsigned long long uses_ = 0;
};

ImageCache::ImageCache() : impl_(std::make_unique<Impl>()) {}
ImageCache::~ImageCache() = default;

void ImageCache::SetDpi(int dpi) {
    impl_->SetDpi(dpi);
}

void ImageCache::OnThemeChanged() {
    impl_->OnThemeChanged();
}

const ScaledImage* ImageCache::Get(const ImageAttribute& image, Size sizePx, bool rightToLeft) {
    return impl_->Get(image, sizePx, rightToLeft);
}

bool ImageCache::Add(const std::wstring& name, HBITMAP bitmap, Size sizeDip, bool alpha) {
    return impl_->Add(name, bitmap, sizeDip, alpha);
}

bool ImageCache::Has(const std::wstring& name) const {
    return impl_->Has(name);
}

void ImageCache::Remove(const std::wstring& name) {
    impl_->Remove(name);
}

}  // namespace DuiLib
