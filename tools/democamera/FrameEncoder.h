#pragma once
// Turns a painted picture into the bytes that a camera of a given mode delivers. Pure functions, any thread.
#include <cstdint>

#include "tools/democamera/CameraMode.h"

namespace democamera {

// `picture`: mode.width x mode.height pixels, top row first, bytes blue, green, red and one that is not looked at.
// `frame`: FrameBytes(mode) bytes. REQUIRES: a format that is not compressed.
void EncodeFrame(const CameraMode& mode, const std::uint32_t* picture, std::uint8_t* frame);

}  // namespace democamera
