#pragma once
// Frames with known pixels for the renderer's tests, and what the window has to show for them. One thread.
#include <windows.h>

#include <mfidl.h>

#include <cstdint>
#include <vector>

#include "preview/pixels/PixelConverter.h"

namespace preview_test {

// A frame in memory as a camera delivers it.
struct Frame {
    preview::PixelFormat format;
    std::uint32_t width;
    std::uint32_t height;
    std::int32_t stride;              // negative: bottom-up
    std::vector<std::uint8_t> bytes;  // the lowest address first
    const std::uint8_t* FirstRow() const;
};

const GUID& SubtypeOf(preview::PixelFormat format);

// Large patches of colour with hard edges. `extraStride`: a gap behind each row.
Frame MakeFrame(preview::PixelFormat format, std::uint32_t width, std::uint32_t height, std::int32_t extraStride = 0,
                bool bottomUp = false);

// The frame's pixels, mirrored: 0x00RRGGBB, top row first.
std::vector<std::uint32_t> MirroredPixels(const Frame& frame);

// The media type of the frame; the stride only when asked for. The caller releases it.
IMFMediaType* TypeOf(const Frame& frame, bool withStride = true);

// The frame in a plain buffer, or in one with rows of its own. The caller releases it.
IMFMediaBuffer* PlainBuffer(const Frame& frame);
IMFMediaBuffer* PlaneBuffer(const Frame& frame, bool bottomUp);

}  // namespace preview_test
