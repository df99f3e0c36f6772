#include "preview/pixels/MirrorPicture.h"

#include <algorithm>
#include <cstddef>

namespace preview {

void MirrorPicture(std::uint8_t* bits, std::uint32_t pitchBytes, std::uint32_t width, std::uint32_t height) {
    const std::size_t pixelBytes = BytesPerPixel(pitchBytes, width);
    for (std::uint32_t row = 0; row < height; ++row) {
        std::uint8_t* left = bits + std::size_t{row} * pitchBytes;
        std::uint8_t* right = left + pixelBytes * (width - 1);
        for (std::uint32_t column = 0; column < width / 2; ++column) {
            std::swap_ranges(left, left + pixelBytes, right);
            left += pixelBytes;
            right -= pixelBytes;
        }
    }
}

}  // namespace preview
