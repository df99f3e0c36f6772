#pragma once
// One picture as a JPEG file in memory, for cameras that deliver compressed frames.
// Any thread; starts COM on it for the time of the call when nobody has.
#include <windows.h>

#include <cstdint>
#include <vector>

namespace democamera {

// `picture`: width x height pixels, top row first, 0x00RRGGBB.
HRESULT EncodeJpeg(const std::uint32_t* picture, std::uint32_t width, std::uint32_t height,
                   std::vector<std::uint8_t>* file);

}  // namespace democamera
