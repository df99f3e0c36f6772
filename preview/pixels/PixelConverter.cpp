#include "preview/pixels/PixelConverter.h"

#include <immintrin.h>

#include <cstdlib>

#include "preview/pixels/PixelRows.h"

namespace preview {

namespace {

// What was written past the caches is there for other threads and devices from here on.
void EndOfPicture() {
    _mm_sfence();
}

// Whether an odd row ends before its last Cr; says nothing of an even one.
bool LastCrIsMissing(std::int32_t stride, std::uint64_t pairedRowBytes) {
    return static_cast<std::uint64_t>(std::llabs(stride)) < pairedRowBytes;
}

template <const PixelRowFunctions& kRows>
void ConvertRgb32(std::uint8_t* destination, std::int32_t destinationStride, const std::uint8_t* source,
                  std::int32_t sourceStride, std::uint32_t width, std::uint32_t height) {
    for (std::uint32_t y = 0; y < height; ++y) {
        kRows.rgb32(destination, 2 * std::ptrdiff_t{destinationStride}, source, width);
        destination += destinationStride;
        source += sourceStride;
    }
}

template <const PixelRowFunctions& kRows>
void ConvertRgb24(std::uint8_t* destination, std::int32_t destinationStride, const std::uint8_t* source,
                  std::int32_t sourceStride, std::uint32_t width, std::uint32_t height) {
    for (std::uint32_t y = 0; y < height; ++y) {
        kRows.rgb24(destination, 2 * std::ptrdiff_t{destinationStride}, source, width);
        destination += destinationStride;
        source += sourceStride;
    }
    EndOfPicture();
}

template <const PixelRowFunctions& kRows>
void ConvertYuy2(std::uint8_t* destination, std::int32_t destinationStride, const std::uint8_t* source,
                 std::int32_t sourceStride, std::uint32_t width, std::uint32_t height) {
    const bool missingCr = LastCrIsMissing(sourceStride, 2 * (std::uint64_t{width} + 1));
    for (std::uint32_t y = 0; y < height; ++y) {
        kRows.yuy2(destination, 2 * std::ptrdiff_t{destinationStride}, source, width, missingCr);
        destination += destinationStride;
        source += sourceStride;
    }
    EndOfPicture();
}

template <const PixelRowFunctions& kRows>
void ConvertNv12(std::uint8_t* destination, std::int32_t destinationStride, const std::uint8_t* source,
                 std::int32_t sourceStride, std::uint32_t width, std::uint32_t height) {
    const bool missingCr = LastCrIsMissing(sourceStride, std::uint64_t{width} + 1);
    const std::ptrdiff_t lumaStride = sourceStride;
    const std::ptrdiff_t pixelStride = destinationStride;
    const std::uint8_t* chroma = source + lumaStride * static_cast<std::ptrdiff_t>(height);
    std::uint32_t y = 0;
    for (; y + 1 < height; y += 2) {
        kRows.nv12Pair(destination, pixelStride, source, source + lumaStride, chroma, width, missingCr);
        destination += 2 * pixelStride;
        source += 2 * lumaStride;
        chroma += lumaStride;
    }
    if (y < height) {
        kRows.nv12Last(destination, source, chroma, width, missingCr);
    }
    EndOfPicture();
}

template <const PixelRowFunctions& kPlain, const PixelRowFunctions& kMirrored>
ConverterPair PairFor(PixelFormat format) {
    switch (format) {
        case PixelFormat::kRgb32:
            return {ConvertRgb32<kPlain>, ConvertRgb32<kMirrored>};
        case PixelFormat::kRgb24:
            return {ConvertRgb24<kPlain>, ConvertRgb24<kMirrored>};
        case PixelFormat::kYuy2:
            return {ConvertYuy2<kPlain>, ConvertYuy2<kMirrored>};
        case PixelFormat::kNv12:
            break;
    }
    return {ConvertNv12<kPlain>, ConvertNv12<kMirrored>};
}

}  // namespace

CpuLevel BestCpuLevel() {
    return CpuLevelWith(__builtin_cpu_supports("ssse3") != 0, __builtin_cpu_supports("avx2") != 0);
}

ConverterPair ConvertersFor(PixelFormat format, CpuLevel level) {
    switch (level) {
        case CpuLevel::kAvx2:
            return PairFor<kAvx2Rows, kAvx2RowsMirrored>(format);
        case CpuLevel::kSsse3:
            return PairFor<kSsse3Rows, kSsse3RowsMirrored>(format);
        case CpuLevel::kScalar:
            break;
    }
    return PairFor<kScalarRows, kScalarRowsMirrored>(format);
}

}  // namespace preview
