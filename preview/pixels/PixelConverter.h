#pragma once
// Camera pixels to 32-bit pixels: the converters that draw every frame, in a plain and a mirrored form.
//
// Why two forms: a mirrored converter writes each row from right to left and so saves a second walk over a picture
// that may lie in memory that must not be read back. Its result is that of the plain converter followed by a mirror
// step with four bytes a pixel. Every processor level gives bit for bit the same pixels.
// Pure functions, any thread. Rows may start at any address; strides may be negative (the picture is bottom-up);
// every width and height from 1 is converted. Only width * 4 bytes of each destination row are written.
#include <cstdint>

namespace preview {

// Writes width x height pixels, bytes in the order blue, green, red, fourth byte. Strides in bytes.
using PixelConverter = void (*)(std::uint8_t* destination, std::int32_t destinationStride, const std::uint8_t* source,
                                std::int32_t sourceStride, std::uint32_t width, std::uint32_t height);

// The source formats, in the order in which they are offered to a camera.
//   kRgb32  blue, green, red and a fourth byte that is copied
//   kRgb24  blue, green, red; the fourth byte becomes 255
//   kYuy2   Y0 Cb Y1 Cr for each two pixels; the fourth byte is 0
//   kNv12   a plane of Y, then at source + height * stride a plane of Cb Cr for each 2 x 2 pixels; fourth byte 0
// Odd sizes: the last column and row have a Cb Cr pair of their own. Where the row (the stride) ends before that
// pair's Cr, the Cr of the pair before stands in, or 128 when there is none.
enum class PixelFormat { kRgb32, kRgb24, kYuy2, kNv12 };

// The instruction sets that there are versions for, worst first.
enum class CpuLevel { kScalar, kSsse3, kAvx2 };

struct ConverterPair {
    PixelConverter plain;
    PixelConverter mirrored;
};

// The best level that this processor and its system offer.
CpuLevel BestCpuLevel();
// That of a processor that has these.
constexpr CpuLevel CpuLevelWith(bool ssse3, bool avx2) {
    return avx2 ? CpuLevel::kAvx2 : ssse3 ? CpuLevel::kSsse3 : CpuLevel::kScalar;
}

// REQUIRES: the processor offers `level`.
ConverterPair ConvertersFor(PixelFormat format, CpuLevel level);

}  // namespace preview
