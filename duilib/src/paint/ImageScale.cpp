#include "paint/ImageScale.h"

#include <algorithm>
#include <cmath>
#include <deque>

namespace DuiLib {
namespace {

using Pixel = std::uint32_t;

constexpr int kChannels = 4;
constexpr int kBandPixels = 1 << 16;   // read at a time
constexpr double kBlockFrom = 3.0;     // blocks are averaged where a picture shrinks by more than this
constexpr double kFilterRadius = 2.0;  // of the cubic filter, in pixels of the smaller picture

double CubicFilter(double x) {
    x = std::abs(x);
    if (x < 1.0) {
        return (1.5 * x - 2.5) * x * x + 1.0;
    }
    return x < 2.0 ? ((-0.5 * x + 2.5) * x - 4.0) * x + 2.0 : 0.0;
}

// The source pixels that make up one target pixel along an axis.
struct Taps {
    int first = 0;
    std::vector<float> weights;
    int Last() const { return first + static_cast<int>(weights.size()) - 1; }
};

// `block`: source pixels that were averaged into one of the `count` that are left.
std::vector<Taps> MakeTaps(int source, int block, int target) {
    const int count = (source + block - 1) / block;
    const double scale = static_cast<double>(source) / block / target;
    const double widen = std::max(scale, 1.0);
    std::vector<Taps> all(static_cast<size_t>(target));
    for (int i = 0; i < target; ++i) {
        Taps& taps = all[static_cast<size_t>(i)];
        const double centre = (i + 0.5) * scale - 0.5;
        const int from = static_cast<int>(std::ceil(centre - kFilterRadius * widen));
        const int to = static_cast<int>(std::floor(centre + kFilterRadius * widen));
        taps.first = std::clamp(from, 0, count - 1);
        taps.weights.assign(static_cast<size_t>(std::clamp(to, 0, count - 1) - taps.first + 1), 0.0f);
        double sum = 0.0;
        for (int at = from; at <= to; ++at) {
            const double weight = CubicFilter((at - centre) / widen);
            // Beyond the edge the edge's own pixel goes on.
            taps.weights[static_cast<size_t>(std::clamp(at, 0, count - 1) - taps.first)] += static_cast<float>(weight);
            sum += weight;
        }
        for (float& weight : taps.weights) {
            weight = static_cast<float>(weight / sum);
        }
    }
    return all;
}

Pixel Pack(const float* channels) {
    // Premultiplied: no colour may exceed the alpha.
    const auto limited = [](float value, float most) {
        return static_cast<Pixel>(std::lround(std::clamp(value, 0.0f, most)));
    };
    const float alpha = std::clamp(channels[3], 0.0f, 255.0f);
    return limited(channels[0], alpha) | limited(channels[1], alpha) << 8 | limited(channels[2], alpha) << 16 |
           limited(alpha, 255.0f) << 24;
}

// Takes a picture's rows from the top and gives the scaled picture's rows as soon as they are complete.
class RowScaler {
  public:
    RowScaler(Size source, Size target, std::function<void(int row, const Pixel*)> out)
        : source_(source),
          target_(target),
          blockX_(BlockOf(source.cx, target.cx)),
          blockY_(BlockOf(source.cy, target.cy)),
          across_(MakeTaps(source.cx, blockX_, target.cx)),
          down_(MakeTaps(source.cy, blockY_, target.cy)),
          out_(std::move(out)),
          block_(static_cast<size_t>((source.cx + blockX_ - 1) / blockX_) * kChannels),
          scaled_(static_cast<size_t>(target.cx) * kChannels),
          packed_(static_cast<size_t>(target.cx)) {}

    void Push(const Pixel* row) {
        AddToBlock(row);
        if (++rowsInBlock_ < blockY_ && rowsSeen_ + rowsInBlock_ < source_.cy) {
            return;
        }
        ScaleAcross();
        Distribute(rowsSeen_ / blockY_);
        rowsSeen_ += rowsInBlock_;
        rowsInBlock_ = 0;
        std::fill(block_.begin(), block_.end(), 0.0f);
    }

  private:
    static int BlockOf(int source, int target) {
        const double scale = static_cast<double>(source) / target;
        return scale > kBlockFrom ? static_cast<int>(scale / 2.0) : 1;
    }

    void AddToBlock(const Pixel* row) {
        if (blockX_ == 1) {
            for (int x = 0; x < source_.cx; ++x) {
                AddPixel(&block_[static_cast<size_t>(x) * kChannels], row[x]);
            }
            return;
        }
        float* out = block_.data();
        for (int x = 0; x < source_.cx; x += blockX_, out += kChannels) {
            Pixel blue = 0, green = 0, red = 0, alpha = 0;
            const int end = std::min(x + blockX_, source_.cx);
            for (int i = x; i < end; ++i) {
                blue += row[i] & 0xFF;
                green += (row[i] >> 8) & 0xFF;
                red += (row[i] >> 16) & 0xFF;
                alpha += row[i] >> 24;
            }
            const float each = 1.0f / static_cast<float>(end - x);
            out[0] += static_cast<float>(blue) * each;
            out[1] += static_cast<float>(green) * each;
            out[2] += static_cast<float>(red) * each;
            out[3] += static_cast<float>(alpha) * each;
        }
    }

    static void AddPixel(float* out, Pixel pixel) {
        for (int channel = 0; channel < kChannels; ++channel) {
            out[channel] += static_cast<float>((pixel >> (8 * channel)) & 0xFF);
        }
    }

    void ScaleAcross() {
        const float each = 1.0f / static_cast<float>(rowsInBlock_);
        float* out = scaled_.data();
        for (const Taps& taps : across_) {
            float sum[kChannels] = {};
            const float* in = &block_[static_cast<size_t>(taps.first) * kChannels];
            for (const float weight : taps.weights) {
                for (int channel = 0; channel < kChannels; ++channel) {
                    sum[channel] += weight * in[channel];
                }
                in += kChannels;
            }
            for (const float channel : sum) {
                *out++ = channel * each;
            }
        }
    }

    // Adds the row to every target row that it is part of, and hands over those that it completes.
    void Distribute(int row) {
        while (nextRow_ < target_.cy && down_[static_cast<size_t>(nextRow_)].first <= row) {
            open_.emplace_back(scaled_.size(), 0.0f);
            ++nextRow_;
        }
        const int firstOpen = nextRow_ - static_cast<int>(open_.size());
        for (size_t i = 0; i < open_.size(); ++i) {
            const Taps& taps = down_[static_cast<size_t>(firstOpen) + i];
            if (row < taps.first || row > taps.Last()) {
                continue;
            }
            const float weight = taps.weights[static_cast<size_t>(row - taps.first)];
            float* sum = open_[i].data();
            for (size_t x = 0; x < scaled_.size(); ++x) {
                sum[x] += weight * scaled_[x];
            }
        }
        while (!open_.empty()) {
            const int complete = nextRow_ - static_cast<int>(open_.size());
            if (down_[static_cast<size_t>(complete)].Last() > row) {
                break;
            }
            for (int x = 0; x < target_.cx; ++x) {
                packed_[static_cast<size_t>(x)] = Pack(&open_.front()[static_cast<size_t>(x) * kChannels]);
            }
            out_(complete, packed_.data());
            open_.pop_front();
        }
    }

    Size source_, target_;
    int blockX_, blockY_;
    std::vector<Taps> across_, down_;
    std::function<void(int row, const Pixel*)> out_;
    std::vector<float> block_;   // the rows of the present block, summed
    std::vector<float> scaled_;  // the block's row, as wide as the target
    std::vector<Pixel> packed_;
    std::deque<std::vector<float>> open_;  // target rows that are not complete, up to nextRow_
    int nextRow_ = 0, rowsSeen_ = 0, rowsInBlock_ = 0;
};

bool IsEmpty(Size size) {
    return size.cx <= 0 || size.cy <= 0;
}

}  // namespace

std::vector<std::uint32_t> ScaleRows(const RowReader& read, Size sourcePx, Size targetPx) {
    if (IsEmpty(sourcePx) || IsEmpty(targetPx)) {
        return {};
    }
    std::vector<Pixel> result(static_cast<size_t>(targetPx.cx) * static_cast<size_t>(targetPx.cy));
    if (sourcePx == targetPx) {
        return read(0, sourcePx.cy, result.data()) ? result : std::vector<Pixel>{};
    }
    RowScaler scaler(sourcePx, targetPx, [&](int row, const Pixel* pixels) {
        std::copy_n(pixels, targetPx.cx, result.begin() + static_cast<std::ptrdiff_t>(row) * targetPx.cx);
    });
    const int bandRows = std::clamp(kBandPixels / sourcePx.cx, 1, sourcePx.cy);
    std::vector<Pixel> band(static_cast<size_t>(bandRows) * static_cast<size_t>(sourcePx.cx));
    for (int top = 0; top < sourcePx.cy; top += bandRows) {
        const int rows = std::min(bandRows, sourcePx.cy - top);
        if (!read(top, rows, band.data())) {
            return {};
        }
        for (int row = 0; row < rows; ++row) {
            scaler.Push(band.data() + static_cast<size_t>(row) * static_cast<size_t>(sourcePx.cx));
        }
    }
    return result;
}

void ScalePart(const ConstPixelView& source, const Rect& part, const PixelView& target, const Rect& rect) {
    if (part.IsEmpty() || rect.IsEmpty()) {
        return;
    }
    const auto sourceRow = [&](int y) {
        return source.bits + static_cast<std::ptrdiff_t>(part.top + y) * source.stridePx + part.left;
    };
    const auto put = [&](int row, const Pixel* pixels) {
        std::copy_n(pixels, rect.Width(),
                    target.bits + static_cast<std::ptrdiff_t>(rect.top + row) * target.stridePx + rect.left);
    };
    const bool same = part.Width() == rect.Width() && part.Height() == rect.Height();
    if (same) {
        for (int y = 0; y < part.Height(); ++y) {
            put(y, sourceRow(y));
        }
        return;
    }
    RowScaler scaler({part.Width(), part.Height()}, {rect.Width(), rect.Height()}, put);
    for (int y = 0; y < part.Height(); ++y) {
        scaler.Push(sourceRow(y));
    }
}

void MirrorRows(std::vector<std::uint32_t>& pixels, Size sizePx) {
    for (auto row = pixels.begin(); row != pixels.end(); row += sizePx.cx) {
        std::reverse(row, row + sizePx.cx);
    }
}

}  // namespace DuiLib
