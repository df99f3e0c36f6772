#include "preview/pixels/PixelRows.h"

namespace preview {

namespace {

template <bool kMirrored>
struct Rows {
    static void Rgb32(std::uint8_t* destination, std::ptrdiff_t, const std::uint8_t* source, std::uint32_t width) {
        ScalarRgb32<kMirrored>(destination, source, width, 0, width);
    }
    static void Rgb24(std::uint8_t* destination, std::ptrdiff_t, const std::uint8_t* source, std::uint32_t width) {
        ScalarRgb24<kMirrored>(destination, source, width, 0, width);
    }
    static void Yuy2(std::uint8_t* destination, std::ptrdiff_t, const std::uint8_t* source, std::uint32_t width,
                     bool missingCr) {
        ScalarYuy2<kMirrored>(destination, source, width, 0, width, missingCr);
    }
    static void Nv12Pair(std::uint8_t* destination, std::ptrdiff_t below, const std::uint8_t* luma0,
                         const std::uint8_t* luma1, const std::uint8_t* chroma, std::uint32_t width, bool missingCr) {
        ScalarNv12<kMirrored>(destination, luma0, chroma, width, 0, width, missingCr);
        ScalarNv12<kMirrored>(destination + below, luma1, chroma, width, 0, width, missingCr);
    }
    static void Nv12Last(std::uint8_t* destination, const std::uint8_t* luma, const std::uint8_t* chroma,
                         std::uint32_t width, bool missingCr) {
        ScalarNv12<kMirrored>(destination, luma, chroma, width, 0, width, missingCr);
    }
    static constexpr PixelRowFunctions kTable = {Rgb32, Rgb24, Yuy2, Nv12Pair, Nv12Last};
};

}  // namespace

constinit const PixelRowFunctions kScalarRows = Rows<false>::kTable;
constinit const PixelRowFunctions kScalarRowsMirrored = Rows<true>::kTable;

}  // namespace preview
