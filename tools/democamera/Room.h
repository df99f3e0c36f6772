#pragma once
// The room behind the person, as a camera sees it that is set to the person: out of focus. Pure code, any thread.
#include <cstdint>

namespace democamera {

// `picture`: width x height pixels, top row first, 0x00RRGGBB.
void PaintRoom(std::uint32_t* picture, int width, int height);

}  // namespace democamera
