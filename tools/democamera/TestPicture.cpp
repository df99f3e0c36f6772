#include "tools/democamera/TestPicture.h"

#include <algorithm>
#include <cstddef>

namespace democamera {

namespace {

constexpr std::uint32_t kBars[] = {0xEBEBEB, 0xE0D018, 0x18D0D8, 0x20C838, 0xC828C0, 0xD82828, 0x2038D0, 0x181818};
constexpr std::uint32_t kArrow = 0x101010;
constexpr std::uint32_t kBlock = 0xFF8000;

void FillBox(std::uint32_t* picture, std::uint32_t width, std::uint32_t left, std::uint32_t top, std::uint32_t right,
             std::uint32_t bottom, std::uint32_t color) {
    for (std::uint32_t y = top; y < bottom; ++y) {
        std::fill(picture + std::size_t{y} * width + left, picture + std::size_t{y} * width + right, color);
    }
}

}  // namespace

void PaintTestPicture(std::uint32_t* picture, std::uint32_t width, std::uint32_t height, std::uint64_t frameIndex) {
    constexpr std::uint32_t kBarCount = sizeof kBars / sizeof kBars[0];
    for (std::uint32_t x = 0; x < width; ++x) {
        picture[x] = kBars[std::uint64_t{x} * kBarCount / width];
    }
    for (std::uint32_t y = 1; y < height; ++y) {
        std::copy_n(picture, width, picture + std::size_t{y} * width);
    }
    // The arrow: a triangle whose tip is at three quarters of the width, in the upper half.
    const std::uint32_t middle = height / 4;
    const std::uint32_t reach = std::min(height / 8, width / 4);
    for (std::uint32_t offset = 0; offset < reach; ++offset) {
        const std::uint32_t tip = width * 3 / 4 - offset;
        FillBox(picture, width, width / 2, middle + offset, tip, middle + offset + 1, kArrow);
        FillBox(picture, width, width / 2, middle - offset, tip, middle - offset + 1, kArrow);
    }
    const std::uint32_t side = std::max<std::uint32_t>(1, std::min(width, height) / 6);
    const std::uint32_t travel = width - std::min(side, width) + 1;
    const auto left = static_cast<std::uint32_t>(frameIndex * 4 % travel);
    const std::uint32_t top = height - std::min(height, side + side / 2);
    FillBox(picture, width, left, top, std::min(width, left + side), std::min(height, top + side), kBlock);
}

}  // namespace democamera
