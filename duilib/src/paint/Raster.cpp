#include "paint/Raster.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

namespace DuiLib {
namespace {

using Pixel = std::uint32_t;

// Corner masks of this radius and smaller are kept: buttons and cards come back in every paint.
constexpr int kMaxKeptRadius = 64;

constexpr Pixel DivideBy255(Pixel value) {
    return (value + 128 + ((value + 128) >> 8)) >> 8;
}

// Two channels at once: each of the two 16-bit lanes divided by 255, rounded.
constexpr Pixel DivideLanesBy255(Pixel lanes) {
    lanes += 0x00800080;
    return ((lanes + ((lanes >> 8) & 0x00FF00FF)) >> 8) & 0x00FF00FF;
}

// Every channel of `pixel` times `factor` / 255.
constexpr Pixel ScalePixel(Pixel pixel, Pixel factor) {
    const Pixel redBlue = DivideLanesBy255((pixel & 0x00FF00FF) * factor);
    const Pixel alphaGreen = DivideLanesBy255(((pixel >> 8) & 0x00FF00FF) * factor);
    return redBlue | (alphaGreen << 8);
}

// `color` (its alpha is not looked at) over an opaque pixel.
constexpr Pixel Mix(Pixel below, Pixel color, Pixel alpha) {
    const Pixel rest = 255 - alpha;
    const Pixel redBlue = DivideLanesBy255((color & 0x00FF00FF) * alpha + (below & 0x00FF00FF) * rest);
    const Pixel green = DivideBy255(((color >> 8) & 0xFF) * alpha + ((below >> 8) & 0xFF) * rest);
    return 0xFF000000 | redBlue | (green << 8);
}

// A premultiplied pixel over an opaque one. No sum exceeds 255, because no colour exceeds its alpha.
constexpr Pixel Over(Pixel below, Pixel above) {
    const Pixel rest = 255 - (above >> 24);
    const Pixel redBlue = DivideLanesBy255((below & 0x00FF00FF) * rest);
    const Pixel green = DivideBy255(((below >> 8) & 0xFF) * rest);
    return 0xFF000000 | ((above & 0x00FFFFFF) + (redBlue | (green << 8)));
}

// Area of the quarter disc x² + y² <= r² (x, y >= 0) within the unit square whose corner next to the centre is (x, y).
double AreaInPixel(double r, int x, int y) {
    const double left = x, right = x + 1.0, low = y, high = y + 1.0;
    if (left * left + low * low >= r * r) {
        return 0.0;
    }
    if (right * right + high * high <= r * r) {
        return 1.0;
    }
    const auto heightAt = [r](double at) { return at >= r ? 0.0 : std::sqrt(r * r - at * at); };
    const auto integral = [r, &heightAt](double at) {
        const double limited = std::min(at, r);
        return 0.5 * (limited * heightAt(limited) + r * r * std::asin(limited / r));
    };
    // Left of `full` the disc is higher than the square; right of `none` it is below it.
    const double full = std::clamp(heightAt(high), left, right);
    const double none = std::clamp(heightAt(low), left, right);
    return (full - left) + (integral(none) - integral(full)) - low * (none - full);
}

// Coverage of the pixel that is `x` columns and `y` rows away from the centre of a corner's circle.
std::uint8_t CornerCoverage(int radius, int x, int y) {
    return static_cast<std::uint8_t>(std::lround(255.0 * AreaInPixel(radius, x, y)));
}

// The corner's quarter disc, row `y` from the centre at y * radius.
const std::vector<std::uint8_t>* KeptCorner(int radius) {
    if (radius > kMaxKeptRadius) {
        return nullptr;
    }
    thread_local std::map<int, std::vector<std::uint8_t>> kept;
    auto& mask = kept[radius];
    if (mask.empty()) {
        mask.resize(static_cast<size_t>(radius) * radius);
        for (int y = 0; y < radius; ++y) {
            for (int x = 0; x < radius; ++x) {
                mask[static_cast<size_t>(y) * radius + x] = CornerCoverage(radius, x, y);
            }
        }
    }
    return &mask;
}

// A rounded rectangle as coverage, asked row by row.
class RoundShape {
  public:
    RoundShape(const Rect& rect, int radius)
        : rect_(rect),
          radius_(std::clamp(radius, 0, std::max(0, std::min(rect.Width(), rect.Height()) / 2))),
          corner_(radius_ > 0 ? KeptCorner(radius_) : nullptr) {}

    // True where the row meets a corner: only the columns from FlatLeft to FlatRight are wholly covered then.
    bool IsCornerRow(int y) const {
        return y >= rect_.top && y < rect_.bottom && (y < rect_.top + radius_ || y >= rect_.bottom - radius_);
    }
    int FlatLeft() const { return rect_.left + radius_; }
    int FlatRight() const { return rect_.right - radius_; }

    Pixel CoverageAt(int x, int y) const {
        if (rect_.IsEmpty() || !rect_.Contains({x, y})) {
            return 0;
        }
        const int fromX = x < FlatLeft() ? FlatLeft() - 1 - x : x - FlatRight();
        const int fromY = y < rect_.top + radius_ ? rect_.top + radius_ - 1 - y : y - (rect_.bottom - radius_);
        if (fromX < 0 || fromY < 0) {
            return 255;
        }
        return corner_ ? (*corner_)[static_cast<size_t>(fromY) * radius_ + fromX]
                       : CornerCoverage(radius_, fromX, fromY);
    }

  private:
    Rect rect_;
    int radius_;
    const std::vector<std::uint8_t>* corner_;
};

Rect ClipTo(const PixelView& target, const Rect& rect, const Rect& clip) {
    return rect.Intersect(clip).Intersect({0, 0, target.widthPx, target.heightPx});
}

Pixel* RowOf(const PixelView& target, int y) {
    return target.bits + static_cast<std::ptrdiff_t>(y) * target.stridePx;
}

void FillSpan(Pixel* row, int from, int to, Pixel argb) {
    const Pixel alpha = argb >> 24;
    if (alpha == 255) {
        std::fill(row + from, row + std::max(from, to), argb);
        return;
    }
    for (int x = from; x < to; ++x) {
        row[x] = Mix(row[x], argb, alpha);
    }
}

void BlendSpan(Pixel* row, const Pixel* source, int from, int to, Pixel alpha, bool opaque) {
    if (alpha != 255) {
        for (int x = from; x < to; ++x) {
            row[x] = Over(row[x], ScalePixel(source[x], alpha));
        }
    } else if (opaque) {
        std::copy(source + from, source + std::max(from, to), row + from);
    } else {
        for (int x = from; x < to; ++x) {
            row[x] = Over(row[x], source[x]);
        }
    }
}

void MixAt(Pixel* row, int x, Pixel argb, Pixel coverage) {
    if (coverage != 0) {
        row[x] = Mix(row[x], argb, DivideBy255((argb >> 24) * coverage));
    }
}

}  // namespace

void FillRoundRect(const PixelView& target, const Rect& rect, int radius, std::uint32_t argb, const Rect& clip) {
    const Rect area = ClipTo(target, rect, clip);
    if (area.IsEmpty() || (argb >> 24) == 0) {
        return;
    }
    const RoundShape shape(rect, radius);
    for (int y = area.top; y < area.bottom; ++y) {
        Pixel* row = RowOf(target, y);
        if (!shape.IsCornerRow(y)) {
            FillSpan(row, area.left, area.right, argb);
            continue;
        }
        const int flatLeft = std::clamp(shape.FlatLeft(), area.left, area.right);
        const int flatRight = std::clamp(shape.FlatRight(), flatLeft, area.right);
        for (int x = area.left; x < flatLeft; ++x) {
            MixAt(row, x, argb, shape.CoverageAt(x, y));
        }
        FillSpan(row, flatLeft, flatRight, argb);
        for (int x = flatRight; x < area.right; ++x) {
            MixAt(row, x, argb, shape.CoverageAt(x, y));
        }
    }
}

void StrokeRoundRect(const PixelView& target, const Rect& rect, int radius, int width, std::uint32_t argb,
                     const Rect& clip) {
    const Rect area = ClipTo(target, rect, clip);
    if (area.IsEmpty() || width <= 0 || (argb >> 24) == 0) {
        return;
    }
    const int limited = std::clamp(radius, 0, std::max(0, std::min(rect.Width(), rect.Height()) / 2));
    const Rect inside{rect.left + width, rect.top + width, rect.right - width, rect.bottom - width};
    if (inside.IsEmpty()) {
        FillRoundRect(target, rect, limited, argb, clip);
        return;
    }
    const RoundShape outer(rect, limited), inner(inside, std::max(0, limited - width));
    // Columns between the two are inside the line's hole in every row that is neither in the line nor in a corner.
    const int band = std::max(limited, width);
    for (int y = area.top; y < area.bottom; ++y) {
        Pixel* row = RowOf(target, y);
        const bool plainRow = y >= rect.top + band && y < rect.bottom - band;
        const int holeLeft = std::clamp(rect.left + band, area.left, area.right);
        const int holeRight = std::clamp(rect.right - band, holeLeft, area.right);
        const auto mixRange = [&](int from, int to) {
            for (int x = from; x < to; ++x) {
                MixAt(row, x, argb, outer.CoverageAt(x, y) - std::min(outer.CoverageAt(x, y), inner.CoverageAt(x, y)));
            }
        };
        mixRange(area.left, holeLeft);
        if (!plainRow && (y < inside.top || y >= inside.bottom)) {
            FillSpan(row, holeLeft, holeRight, argb);
        }
        mixRange(holeRight, area.right);
    }
}

void BlendImage(const PixelView& target, const Rect& rect, const ConstPixelView& image, std::uint8_t alpha, int radius,
                const Rect& clip) {
    const Rect covered{rect.left, rect.top, std::min(rect.right, rect.left + image.widthPx),
                       std::min(rect.bottom, rect.top + image.heightPx)};
    const Rect area = ClipTo(target, covered, clip);
    if (area.IsEmpty() || alpha == 0) {
        return;
    }
    const RoundShape shape(rect, radius);
    for (int y = area.top; y < area.bottom; ++y) {
        Pixel* row = RowOf(target, y);
        const Pixel* source = image.bits + static_cast<std::ptrdiff_t>(y - rect.top) * image.stridePx - rect.left;
        const bool corner = radius > 0 && shape.IsCornerRow(y);
        const int flatLeft = corner ? std::clamp(shape.FlatLeft(), area.left, area.right) : area.left;
        const int flatRight = corner ? std::clamp(shape.FlatRight(), flatLeft, area.right) : area.right;
        const auto blendCorner = [&](int from, int to) {
            for (int x = from; x < to; ++x) {
                row[x] = Over(row[x], ScalePixel(source[x], DivideBy255(shape.CoverageAt(x, y) * alpha)));
            }
        };
        blendCorner(area.left, flatLeft);
        BlendSpan(row, source, flatLeft, flatRight, alpha, image.opaque);
        blendCorner(flatRight, area.right);
    }
}

void BlendMask(const PixelView& target, const Rect& rect, const ConstPixelView& mask, std::uint32_t argb,
               const Rect& clip) {
    const Rect covered{rect.left, rect.top, std::min(rect.right, rect.left + mask.widthPx),
                       std::min(rect.bottom, rect.top + mask.heightPx)};
    const Rect area = ClipTo(target, covered, clip);
    const Pixel alpha = argb >> 24;
    for (int y = area.top; y < area.bottom; ++y) {
        Pixel* row = RowOf(target, y);
        const Pixel* source = mask.bits + static_cast<std::ptrdiff_t>(y - rect.top) * mask.stridePx - rect.left;
        for (int x = area.left; x < area.right; ++x) {
            if ((source[x] & 0x00FFFFFF) == 0) {
                continue;
            }
            Pixel mixed = 0xFF000000;
            for (int shift = 0; shift <= 16; shift += 8) {
                const Pixel part = DivideBy255(((source[x] >> shift) & 0xFF) * alpha);
                const Pixel above = (argb >> shift) & 0xFF, below = (row[x] >> shift) & 0xFF;
                mixed |= DivideBy255(above * part + below * (255 - part)) << shift;
            }
            row[x] = mixed;
        }
    }
}

void MakeOpaque(const PixelView& target, const Rect& rect) {
    const Rect area = ClipTo(target, rect, rect);
    for (int y = area.top; y < area.bottom; ++y) {
        Pixel* row = RowOf(target, y);
        for (int x = area.left; x < area.right; ++x) {
            row[x] |= 0xFF000000;
        }
    }
}

}  // namespace DuiLib
