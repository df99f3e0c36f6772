#include "paint/ImageCache.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "DuiLib/Theme.h"
#include "paint/PictureFile.h"
#include "paint/PictureReadAhead.h"
#include "suite/common/GdiObject.h"
#include "suite/logger/QxLogger.h"
#include "theme/PictureTheme.h"

namespace DuiLib {
namespace {

// Scaled pixels are kept up to this many for all pictures together.
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

// Set while one lives.
class Listing {
  public:
    explicit Listing(bool& flag) : flag_(flag) { flag_ = true; }
    ~Listing() { flag_ = false; }
    Listing(const Listing&) = delete;
    Listing& operator=(const Listing&) = delete;

  private:
    bool& flag_;
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
        former_.clear();
        readAhead_.Forget();
        fresh_ = true;
    }

    void OnThemeChanged() {
        readAhead_.Forget();
        fresh_ = true;
        for (auto it = pictures_.begin(); it != pictures_.end();) {
            const auto current = it++;
            const auto& [key, picture] = *current;
            const Picture now = Resolve(picture.name);
            if (picture.file.empty() || picture.Serves(now)) {
                continue;
            }
            Former back = std::exchange(former_[key], Former{std::move(current->second), TakeScaled(key)});
            if (!back.picture.Serves(now)) {
                pictures_.erase(current);
                continue;
            }
            current->second = std::move(back.picture);
            for (auto& [use, image] : back.scaled) {
                Keep(use, std::move(image));
            }
        }
    }

    const ScaledImage* Get(const ImageAttribute& image, Size sizePx, bool rightToLeft) {
        if (sizePx.cx <= 0 || sizePx.cy <= 0 || sizePx.cx > kMaxTargetPx || sizePx.cy > kMaxTargetPx) {
            return nullptr;
        }
        const PictureUse use = UseOf(image, sizePx, rightToLeft);
        const ScaledKey key = ScaledKeyOf(use);
        if (listing_) {
            List(key.picture, use);
            return nullptr;
        }
        if (const ScaledImage* known = FindScaled(key)) {
            return known;
        }
        if (TakeRead(key.picture)) {
            if (const ScaledImage* read = FindScaled(key)) {
                return read;
            }
        }
        Picture& picture = Find(image.file);
        ScaledImage scaled;
        if (!picture.pixels.empty()) {
            scaled = ScalePicture(picture, use);
        } else if (!picture.failed) {
            const HRESULT hr = ReadPicture(decoder_, picture, use, scaled);
            if (FAILED(hr)) {
                Fail(picture, key.picture, hr);
            }
        }
        return Keep(key, std::move(scaled));
    }

    void ReadAhead(const std::function<void()>& draw) {
        fresh_ = false;
        {
            const Listing listing(listing_);
            draw();
        }
        readAhead_.Begin();
    }

    bool IsFresh() const { return fresh_; }

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
        const std::wstring key = KeyOf(name);
        const auto known = pictures_.find(key);
        if (known == pictures_.end()) {
            return readAhead_.IsRead(key);
        }
        return !known->second.failed && known->second.sizePx != Size{};
    }

    void Remove(const std::wstring& name) {
        const std::wstring key = KeyOf(name);
        TakeRead(key);
        pictures_.erase(key);
        former_.erase(key);
        logged_.erase(key);
        TakeScaled(key);
    }

  private:
    using ScaledImages = std::vector<std::pair<ScaledKey, ScaledImage>>;

    struct Former {
        Picture picture;
        ScaledImages scaled;
    };

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

    ScaledImages TakeScaled(const std::wstring& key) {
        ScaledImages taken;
        for (auto it = scaled_.begin(); it != scaled_.end();) {
            if (it->first.picture != key) {
                ++it;
                continue;
            }
            scaledPixels_ -= it->second.image.pixels.size();
            taken.emplace_back(it->first, std::move(it->second.image));
            it = scaled_.erase(it);
        }
        return taken;
    }

    PictureUse UseOf(const ImageAttribute& image, Size sizePx, bool rightToLeft) const {
        const bool mirrored =
            image.reverse && rightToLeft && !UITheme::GetInstance()->GetPictureTheme().IsUpright(image.file);
        return {image, sizePx, mirrored, dpi_};
    }

    static ScaledKey ScaledKeyOf(const PictureUse& use) {
        return {KeyOf(use.image.file), use.image.sourceDip.value_or(Rect{}), use.image.cornerDip, use.sizePx,
                use.mirrored};
    }

    // A picture that comes with the program and is not known yet is read ahead.
    void List(const std::wstring& key, const PictureUse& use) {
        if (pictures_.count(key) == 0 && IsOwnArtwork(use.image.file)) {
            readAhead_.Add(key, readAhead_.Has(key) ? Picture{} : Resolve(use.image.file), use);
        }
    }

    // Takes over what was read ahead, if it was.
    bool TakeRead(const std::wstring& key) {
        const std::shared_ptr<PictureJob> job = readAhead_.Take(key, decoder_);
        if (!job) {
            return false;
        }
        Picture& picture = pictures_[key] = std::move(job->picture);
        if (FAILED(job->result)) {
            Fail(picture, key, job->result);
            return true;
        }
        for (PictureJob::Drawn& drawn : job->drawn) {
            Keep(ScaledKeyOf(drawn.use), std::move(drawn.image));
        }
        return true;
    }

    const ScaledImage* FindScaled(const ScaledKey& key) {
        const auto known = scaled_.find(key);
        if (known == scaled_.end()) {
            return nullptr;
        }
        known->second.lastUse = ++uses_;
        return &known->second.image;
    }

    const ScaledImage* Keep(const ScaledKey& key, ScaledImage image) {
        if (image.pixels.empty()) {
            return nullptr;
        }
        MakeRoom(image.pixels.size());
        scaledPixels_ += image.pixels.size();
        Scaled& scaled = scaled_[key];
        scaled = {std::move(image), ++uses_};
        return &scaled.image;
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

    void MakeRoom(size_t pixels) {
        while (!scaled_.empty() && scaledPixels_ + pixels > kMaxScaledPixels) {
            const auto oldest = std::min_element(scaled_.begin(), scaled_.end(), [](const auto& a, const auto& b) {
                return a.second.lastUse < b.second.lastUse;
            });
            scaledPixels_ -= oldest->second.image.pixels.size();
            scaled_.erase(oldest);
        }
    }

    PictureDecoder decoder_;
    PictureReadAhead readAhead_;
    bool fresh_ = true;     // nothing was read ahead for this scale and theme
    bool listing_ = false;  // what is asked for is noted, not read
    int dpi_ = 96;
    std::map<std::wstring, Picture> pictures_;
    std::map<std::wstring, Former> former_;  // what another theme showed instead, last
    std::set<std::wstring> logged_;          // failures that were told
    std::map<ScaledKey, Scaled> scaled_;
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

void ImageCache::ReadAhead(const std::function<void()>& draw) {
    impl_->ReadAhead(draw);
}

bool ImageCache::IsFresh() const {
    return impl_->IsFresh();
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
