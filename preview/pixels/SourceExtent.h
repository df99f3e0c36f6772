#pragma once
// How much memory a frame of a format takes, so that a buffer that is too short for the agreed size (a broken transfer,
// a camera that changed its format by itself) is noticed before it is read. Pure functions, any thread.
#include <cstdint>

#include "preview/pixels/PixelConverter.h"

namespace preview {

// REQUIRES of each function: width and height are at most this.
constexpr std::uint32_t kMostSide = 0x8000;

// The bytes that a converter reads, relative to the first row's start: from `begin` (0 or less) up to `end`.
struct SourceExtent {
    std::int64_t begin;
    std::int64_t end;
};

SourceExtent ExtentOf(PixelFormat format, std::int32_t stride, std::uint32_t width, std::uint32_t height);

// The distance of a frame's rows where they follow each other, as the system lays them out: RGB in units of four bytes.
std::int32_t GaplessStride(PixelFormat format, std::uint32_t width);

// The bytes of a row that has room for nothing but its pixels.
std::int64_t PackedRowBytes(PixelFormat format, std::uint32_t width);

}  // namespace preview
