#pragma once
// The arithmetic of a stored bitmap: depth and sizes. Pure functions, any thread.
#include <cstdint>

namespace preview {

constexpr std::uint32_t kFileHeaderBytes = 14;
constexpr std::uint32_t kInfoHeaderBytes = 40;

// Depths that a bitmap is stored with; the first is also the unit of bytes that a row is aligned to.
constexpr std::int32_t kFirstDepth = 4;
constexpr std::int32_t kSecondDepth = 8;
constexpr std::int32_t kThirdDepth = 24;

// Bits of a stored pixel on a display with so many bits.
constexpr std::int32_t StoredDepth(std::int32_t displayBits) {
    if (displayBits <= 1) {
        return 1;
    }
    if (displayBits <= kFirstDepth) {
        return kFirstDepth;
    }
    return displayBits <= kSecondDepth ? kSecondDepth : kThirdDepth;
}

constexpr std::uint64_t StoredPixelBytes(std::uint32_t width, std::uint32_t height, std::int32_t depth) {
    const std::uint64_t rowBits = std::uint64_t{width} * static_cast<std::uint32_t>(depth);
    return (rowBits + 31) / 32 * kFirstDepth * height;
}

}  // namespace preview
