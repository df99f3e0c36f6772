#pragma once
// A moving test picture: colour bars, an arrow that points to the picture's right side (so that mirroring shows), and a
// block that moves one step a frame. Pure function, any thread.
#include <cstdint>

namespace democamera {

// `picture`: width x height pixels, top row first, 0x00RRGGBB.
void PaintTestPicture(std::uint32_t* picture, std::uint32_t width, std::uint32_t height, std::uint64_t frameIndex);

}  // namespace democamera
