// Pictures of any size to any size: every row is asked for once, a plain picture stays plain, no colour exceeds its
// alpha, and a part goes where it belongs and nowhere else.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/support/Input.h"
#include "fuzz/support/Require.h"
#include "paint/ImageScale.h"

using namespace DuiLib;

namespace {

constexpr int kMostPixels = 4'000;

// Mostly small, now and then one long side.
Size TakeSize(Input& in) {
    const bool small = in.Any<std::uint8_t>() % 8 != 0;
    Size size{static_cast<int>(in.Within(0, small ? 60 : 2000)), static_cast<int>(in.Within(0, small ? 60 : 2000))};
    while (size.cx * size.cy > kMostPixels) {
        (size.cx > size.cy ? size.cy : size.cx) /= 2;
    }
    return size;
}

std::size_t Area(Size size) {
    return static_cast<std::size_t>(std::max(size.cx, 0)) * static_cast<std::size_t>(std::max(size.cy, 0));
}

std::uint32_t Premultiplied(std::uint32_t argb) {
    const std::uint32_t alpha = argb >> 24;
    const auto channel = [&](int shift) { return ((argb >> shift) & 0xFF) * alpha / 255 << shift; };
    return alpha << 24 | channel(16) | channel(8) | channel(0);
}

bool IsPremultiplied(std::uint32_t pixel) {
    const std::uint32_t alpha = pixel >> 24;
    return (pixel & 0xFF) <= alpha && (pixel >> 8 & 0xFF) <= alpha && (pixel >> 16 & 0xFF) <= alpha;
}

// A picture whose pixels come of its number and the input.
std::vector<std::uint32_t> MakePixels(Size size, std::uint32_t color, std::uint32_t change) {
    std::vector<std::uint32_t> pixels(Area(size));
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = Premultiplied(color ^ static_cast<std::uint32_t>(i) * change);
    }
    return pixels;
}

void CheckRows(Size source, Size target, std::uint32_t color, std::uint32_t change, int failAt) {
    const std::vector<std::uint32_t> pixels = MakePixels(source, color, change);
    int next = 0;
    const auto read = [&](int top, int rows, std::uint32_t* out) {
        REQUIRE(top == next && rows > 0 && top + rows <= source.cy);
        next = top + rows;
        std::copy_n(pixels.begin() + std::ptrdiff_t{top} * source.cx, std::ptrdiff_t{rows} * source.cx, out);
        return failAt < top || failAt >= next;
    };
    std::vector<std::uint32_t> scaled = ScaleRows(read, source, target);
    if (Area(source) == 0 || Area(target) == 0 || (failAt >= 0 && failAt < source.cy)) {
        REQUIRE(scaled.empty());
        return;
    }
    REQUIRE(next == source.cy && scaled.size() == Area(target));
    REQUIRE(std::all_of(scaled.begin(), scaled.end(), IsPremultiplied));
    if (change == 0) {
        REQUIRE(std::count(scaled.begin(), scaled.end(), pixels.front()) == static_cast<std::ptrdiff_t>(scaled.size()));
    }
    if (source == target) {
        REQUIRE(scaled == pixels);
    }
    std::vector<std::uint32_t> turned = scaled;
    MirrorRows(turned, target);
    REQUIRE(turned[static_cast<std::size_t>(target.cx) - 1] == scaled.front());
    MirrorRows(turned, target);
    REQUIRE(turned == scaled);
}

// A rectangle within that size; it may be empty.
Rect TakePart(Input& in, Size size) {
    const int left = static_cast<int>(in.Within(0, size.cx)), top = static_cast<int>(in.Within(0, size.cy));
    return {left, top, static_cast<int>(in.Within(left, size.cx)), static_cast<int>(in.Within(top, size.cy))};
}

void CheckPart(Input& in, Size source, Size target, std::uint32_t color, std::uint32_t change) {
    constexpr std::uint32_t kUntouched = 0x12345678;  // no premultiplied pixel
    const std::vector<std::uint32_t> pixels = MakePixels(source, color, change);
    const Rect part = TakePart(in, source), rect = TakePart(in, target);
    std::vector<std::uint32_t> out(Area(target), kUntouched);
    ScalePart({pixels.data(), source.cx, source.cy, source.cx, false}, part,
              {out.data(), target.cx, target.cy, target.cx}, rect);
    for (std::size_t at = 0; at < out.size(); ++at) {
        const Point place{static_cast<int>(at) % target.cx, static_cast<int>(at) / target.cx};
        const bool drawn = rect.Contains(place) && !part.IsEmpty();
        REQUIRE(drawn ? IsPremultiplied(out[at]) : out[at] == kUntouched);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input in(data, size);
    const Size source = TakeSize(in), target = TakeSize(in);
    const auto color = in.Any<std::uint32_t>();
    const auto change = in.Flag() ? in.Any<std::uint32_t>() : 0;
    CheckPart(in, source, target, color, change);
    CheckRows(source, target, color, change, in.Flag() ? static_cast<int>(in.Within(0, 2000)) : -1);
    return 0;
}
