#pragma once
// How a camera held the picture that it wrote into a JPEG file, and the walk over the pixels that puts it upright.
//
// Why: a background is stored without the file's notes on itself, so a photo taken upright must be turned before.
// Threads: pure functions, any thread.
#include <cstddef>
#include <cstdint>
#include <span>

namespace pictures::ExifOrientation {

// As numbered in the files: 1 is upright; 2 to 4 are mirrored or upside down, 5 to 8 lie on their side.
inline constexpr int kUpright = 1;

// From the beginning of a file, as much as there is of it; kUpright for everything that is not understood.
int Read(std::span<const std::uint8_t> file);

constexpr bool SwapsSides(int orientation) {
    return orientation >= 5 && orientation <= 8;
}

// Some rows of the upright picture, from the whole picture as it is stored: width x height pixels, without gaps. The
// rows are `height` pixels wide where SwapsSides.
// REQUIRES: 1 <= orientation <= 8, and the rows lie within the upright picture.
void TurnRows(const std::uint32_t* stored, std::size_t width, std::size_t height, int orientation, std::size_t top,
              std::size_t rows, std::uint32_t* upright);

}  // namespace pictures::ExifOrientation
