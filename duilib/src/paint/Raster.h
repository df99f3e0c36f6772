#pragma once
// Coverage drawing into 32-bit pixels: filled and stroked rounded rectangles, images and text masks. Pure logic.
//
// Pixels are 0xAARRGGBB, destination opaque (its alpha is kept at 255 where it is drawn). Colours given are straight
// ARGB, images premultiplied. Coverage of a corner pixel is the area of the circle in it, to 1/255 within ±2.
// Thread: any, on different pixels.
#include <cstdint>

#include "DuiLib/Geometry.h"

namespace DuiLib {

struct PixelView {
    std::uint32_t* bits = nullptr;  // borrowed, top row first
    int widthPx = 0, heightPx = 0;
    int stridePx = 0;  // pixels from one row to the next
};

struct ConstPixelView {
    const std::uint32_t* bits = nullptr;
    int widthPx = 0, heightPx = 0;
    int stridePx = 0;
    bool opaque = false;  // no pixel is translucent, so that rows may be copied
};

// All are clipped to `clip` and the view. A radius is limited to half the shorter side.
void FillRoundRect(const PixelView& target, const Rect& rect, int radius, std::uint32_t argb, const Rect& clip);
// The line lies inside the rectangle; one that is too thick fills it.
void StrokeRoundRect(const PixelView& target, const Rect& rect, int radius, int width, std::uint32_t argb,
                     const Rect& clip);
// `image` (premultiplied: no colour is larger than the alpha) at the rectangle's place, pixel for pixel: the smaller of
// the two sizes counts.
void BlendImage(const PixelView& target, const Rect& rect, const ConstPixelView& image, std::uint8_t alpha, int radius,
                const Rect& clip);
// A colour through a mask that has its own coverage for red, green and blue (text as the system draws it, white on
// black), at the rectangle's place.
void BlendMask(const PixelView& target, const Rect& rect, const ConstPixelView& mask, std::uint32_t argb,
               const Rect& clip);
// Makes the rectangle's alpha 255 (the system's text leaves 0 where it draws).
void MakeOpaque(const PixelView& target, const Rect& rect);

}  // namespace DuiLib
