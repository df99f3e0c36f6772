// Series of drawing operations with any rectangles, radii and clips over pixels that lie in exactly the memory that
// they need: only what is within rectangle, clip and view changes, and it stays opaque.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "Raster.h"
#include "fuzz/support/Input.h"
#include "fuzz/support/Require.h"

using namespace DuiLib;

namespace {

constexpr int kMostSide = 40;
constexpr int kFar = 1 << 24;  // as far out as layouts can place anything
constexpr int kMostOperations = 12;

// Pixels with a gap behind each row but the last.
struct Picture {
    Picture(int widthPx, int heightPx, int gapPx, std::uint32_t color)
        : width(widthPx), height(heightPx), stride(widthPx + gapPx) {
        pixels.resize(height == 0 ? 0
                                  : static_cast<std::size_t>(stride) * static_cast<std::size_t>(height - 1) +
                                        static_cast<std::size_t>(width),
                      color);
    }
    PixelView View() { return {pixels.data(), width, height, stride}; }

    int width, height, stride;
    std::vector<std::uint32_t> pixels;
};

Picture TakePicture(Input& in, std::uint32_t color) {
    const int width = static_cast<int>(in.Within(0, kMostSide));
    const int height = static_cast<int>(in.Within(0, kMostSide));
    return {width, height, static_cast<int>(in.Within(0, 5)), color};
}

Rect TakeRect(Input& in) {
    if (in.Any<std::uint8_t>() % 8 == 0) {
        return {static_cast<int>(in.Within(-kFar, kFar)), static_cast<int>(in.Within(-kFar, kFar)),
                static_cast<int>(in.Within(-kFar, kFar)), static_cast<int>(in.Within(-kFar, kFar))};
    }
    return {in.Any<std::int8_t>(), in.Any<std::int8_t>(), in.Any<std::int8_t>(), in.Any<std::int8_t>()};
}

int TakeLength(Input& in) {
    return static_cast<int>(in.Any<std::uint8_t>() % 8 == 0 ? in.Within(-kFar, kFar) : in.Within(-2, 70));
}

std::uint32_t Premultiplied(std::uint32_t argb) {
    const std::uint32_t alpha = argb >> 24;
    const auto channel = [&](int shift) { return ((argb >> shift) & 0xFF) * alpha / 255 << shift; };
    return alpha << 24 | channel(16) | channel(8) | channel(0);
}

void Draw(Input& in, const PixelView& view, const Rect& rect, const Rect& clip) {
    const auto argb = in.Any<std::uint32_t>();
    const int radius = TakeLength(in);
    switch (in.Within(0, 4)) {
        case 0:
            FillRoundRect(view, rect, radius, argb, clip);
            break;
        case 1:
            StrokeRoundRect(view, rect, radius, TakeLength(in), argb, clip);
            break;
        case 2: {
            Picture image = TakePicture(in, 0);
            const bool opaque = in.Flag();
            for (std::uint32_t& pixel : image.pixels) {
                pixel = Premultiplied(opaque ? argb | 0xFF000000 : argb ^ in.Any<std::uint8_t>() << 20);
            }
            BlendImage(view, rect, {image.pixels.data(), image.width, image.height, image.stride, opaque},
                       in.Any<std::uint8_t>(), radius, clip);
            break;
        }
        case 3: {
            Picture mask = TakePicture(in, 0x00808080);
            for (std::uint32_t& pixel : mask.pixels) {
                pixel ^= in.Any<std::uint8_t>();
            }
            BlendMask(view, rect, {mask.pixels.data(), mask.width, mask.height, mask.stride, false}, argb, clip);
            break;
        }
        default:
            MakeOpaque(view, rect.Intersect(clip));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input in(data, size);
    Picture target = TakePicture(in, 0xFF204080);
    const Rect whole{0, 0, target.width, target.height};
    for (int i = 0; i < kMostOperations && !in.Empty(); ++i) {
        const Rect rect = TakeRect(in);
        const Rect clip = in.Flag() ? whole : TakeRect(in);
        const std::vector<std::uint32_t> before = target.pixels;
        Draw(in, target.View(), rect, clip);
        const Rect area = rect.Intersect(clip).Intersect(whole);
        for (std::size_t at = 0; at < before.size(); ++at) {
            const Point place{static_cast<int>(at) % target.stride, static_cast<int>(at) / target.stride};
            REQUIRE(target.pixels[at] == before[at] || area.Contains(place));
            REQUIRE(target.pixels[at] >> 24 == 0xFF);
        }
    }
    return 0;
}
