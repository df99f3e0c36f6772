#pragma once
// What the processor levels of the pixel converters share: the table of row functions that each level fills, and the
// scalar rows, which are the reference and also convert what is left beside the blocks of the faster levels.
// Internal to PixelConverter. Any thread.
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace preview {

// The row functions of one level, plain or mirrored. `ahead`: bytes from a place in the destination to the place below
// that is written next but one; the faster levels fetch it into the cache, for a row that is written backwards does not
// tell the processor where the next one begins. `missingCr`: see PixelFormat about odd sizes.
struct PixelRowFunctions {
    void (*rgb32)(std::uint8_t* destination, std::ptrdiff_t ahead, const std::uint8_t* source, std::uint32_t width);
    void (*rgb24)(std::uint8_t* destination, std::ptrdiff_t ahead, const std::uint8_t* source, std::uint32_t width);
    void (*yuy2)(std::uint8_t* destination, std::ptrdiff_t ahead, const std::uint8_t* source, std::uint32_t width,
                 bool missingCr);
    // Two rows that share a row of chroma; `below`: bytes from the first one's destination to the second one's.
    void (*nv12Pair)(std::uint8_t* destination, std::ptrdiff_t below, const std::uint8_t* luma0,
                     const std::uint8_t* luma1, const std::uint8_t* chroma, std::uint32_t width, bool missingCr);
    // The last row of a picture with an odd height.
    void (*nv12Last)(std::uint8_t* destination, const std::uint8_t* luma, const std::uint8_t* chroma,
                     std::uint32_t width, bool missingCr);
};

extern const PixelRowFunctions kScalarRows, kScalarRowsMirrored;
extern const PixelRowFunctions kSsse3Rows, kSsse3RowsMirrored;
extern const PixelRowFunctions kAvx2Rows, kAvx2RowsMirrored;

constexpr std::uint32_t ClipToByte(int value) {
    return value < 0 ? 0U : value > 255 ? 255U : static_cast<std::uint32_t>(value);
}

// One pixel: 0 << 24 | red << 16 | green << 8 | blue.
constexpr std::uint32_t YCbCr(int luma, int cb, int cr) {
    const int c = luma - 16;
    const int d = cb - 128;
    const int e = cr - 128;
    const std::uint32_t red = ClipToByte((298 * c + 409 * e + 128) >> 8);
    const std::uint32_t green = ClipToByte((298 * c - 100 * d - 208 * e + 128) >> 8);
    const std::uint32_t blue = ClipToByte((298 * c + 516 * d + 128) >> 8);
    return red << 16 | green << 8 | blue;
}

// Where the pixel of source column `column` goes in its row.
template <bool kMirrored>
std::uint8_t* PixelPlace(std::uint8_t* row, std::uint32_t width, std::uint32_t column) {
    return row + std::size_t{4} * (kMirrored ? width - 1 - column : column);
}

// The blocks of kBlock columns that cover the columns [0, columns) of a row, the second one overlapping the first where
// it must. REQUIRES: kBlock <= columns <= width.
template <std::uint32_t kBlock, bool kMirrored>
class PixelBlocks {
  public:
    struct Block {
        std::size_t x;        // its first column in the source
        std::uint8_t* place;  // where its pixels go
    };

    class Iterator {
      public:
        Iterator(const PixelBlocks& blocks, std::size_t x)
            : blocks_(blocks), x_(x), step_((blocks.columns_ - 1) % kBlock + 1) {}
        Block operator*() const { return {x_, blocks_.row_ + 4 * (kMirrored ? blocks_.width_ - kBlock - x_ : x_)}; }
        Iterator& operator++() {
            x_ += step_;
            step_ = kBlock;
            return *this;
        }
        bool operator!=(const Iterator& other) const { return x_ != other.x_; }

      private:
        const PixelBlocks& blocks_;
        std::size_t x_;
        std::size_t step_;  // what is left over comes first
    };

    PixelBlocks(std::uint32_t columns, std::uint8_t* row, std::uint32_t width)
        : columns_(columns), row_(row), width_(width) {}

    Iterator begin() const { return {*this, 0}; }
    Iterator end() const { return {*this, columns_}; }

  private:
    std::size_t columns_;
    std::uint8_t* row_;
    std::uint32_t width_;
};

inline void StorePixel(std::uint8_t* place, std::uint32_t pixel) {
    std::memcpy(place, &pixel, 4);
}

// The scalar rows over the columns [begin, end); begin is even for the two formats with shared chroma.

template <bool kMirrored>
void ScalarRgb32(std::uint8_t* row, const std::uint8_t* source, std::uint32_t width, std::uint32_t begin,
                 std::uint32_t end) {
    for (std::uint32_t x = begin; x < end; ++x) {
        std::memcpy(PixelPlace<kMirrored>(row, width, x), source + std::size_t{4} * x, 4);
    }
}

// The faster levels' row of this format that is not mirrored.
inline void CopyRgb32(std::uint8_t* row, std::ptrdiff_t, const std::uint8_t* source, std::uint32_t width) {
    std::memcpy(row, source, std::size_t{4} * width);
}

template <bool kMirrored>
void ScalarRgb24(std::uint8_t* row, const std::uint8_t* source, std::uint32_t width, std::uint32_t begin,
                 std::uint32_t end) {
    for (std::uint32_t x = begin; x < end; ++x) {
        const std::uint8_t* bytes = source + std::size_t{3} * x;
        const std::uint32_t pixel = 0xFF000000U | static_cast<std::uint32_t>(bytes[2]) << 16 |
                                    static_cast<std::uint32_t>(bytes[1]) << 8 | bytes[0];
        StorePixel(PixelPlace<kMirrored>(row, width, x), pixel);
    }
}

template <bool kMirrored>
void ScalarYuy2(std::uint8_t* row, const std::uint8_t* source, std::uint32_t width, std::uint32_t begin,
                std::uint32_t end, bool missingCr) {
    for (std::uint32_t x = begin; x < end; x += 2) {
        const std::uint8_t* bytes = source + std::size_t{2} * x;
        const bool pair = x + 1 < width;
        const int cb = bytes[1];
        const int cr = pair || !missingCr ? bytes[3] : x > 0 ? bytes[-1] : 128;
        StorePixel(PixelPlace<kMirrored>(row, width, x), YCbCr(bytes[0], cb, cr));
        if (pair) {
            StorePixel(PixelPlace<kMirrored>(row, width, x + 1), YCbCr(bytes[2], cb, cr));
        }
    }
}

template <bool kMirrored>
void ScalarNv12(std::uint8_t* row, const std::uint8_t* luma, const std::uint8_t* chroma, std::uint32_t width,
                std::uint32_t begin, std::uint32_t end, bool missingCr) {
    for (std::uint32_t x = begin; x < end; x += 2) {
        const bool pair = x + 1 < width;
        const int cb = chroma[x];
        const int cr = pair || !missingCr ? chroma[x + 1] : x > 0 ? chroma[x - 1] : 128;
        StorePixel(PixelPlace<kMirrored>(row, width, x), YCbCr(luma[x], cb, cr));
        if (pair) {
            StorePixel(PixelPlace<kMirrored>(row, width, x + 1), YCbCr(luma[x + 1], cb, cr));
        }
    }
}

}  // namespace preview
