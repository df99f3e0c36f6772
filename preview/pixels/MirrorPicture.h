#pragma once
// The mirror step of the renderer: flips a locked picture left to right in place.
//
// The size of a pixel comes from the pitch (pitch / width), not from a format, and what is left over at the end of a
// row is left alone. Kept: a pitch of five times the width or more makes pixels of five bytes or more, and then
// `MirrorPicture` is the only right answer; with four bytes a pixel a mirrored converter does the same in one pass.
// Pure functions, any thread.
#include <cstdint>

namespace preview {

constexpr std::uint32_t BytesPerPixel(std::uint32_t pitchBytes, std::uint32_t width) {
    return width == 0 ? 0 : pitchBytes / width;
}

// REQUIRES: `bits` holds pitchBytes * height bytes.
void MirrorPicture(std::uint8_t* bits, std::uint32_t pitchBytes, std::uint32_t width, std::uint32_t height);

}  // namespace preview
