#pragma once
// Makes a small bitmap of one frame of a video. Pure but for the bitmap; any thread.
#include <windows.h>

#include <cstdint>
#include <vector>

namespace preview {

struct CoverFrame {
    UINT width = 0;
    UINT height = 0;
    std::vector<std::uint32_t> pixels;  // blue, green, red, 0; top row first

    // 0 to 255.
    UINT MeanBrightness() const;
    // A bitmap that the caller owns; null without memory.
    HBITMAP ToBitmap() const;
};

// The YUY2 frame, as many whole times smaller as it takes to fit into that size. REQUIRES: the source holds height rows
// of `stride` bytes, and width and height are at least 1.
CoverFrame ShrinkYuy2(const std::uint8_t* source, UINT stride, UINT width, UINT height, UINT maxWidth, UINT maxHeight);

}  // namespace preview
