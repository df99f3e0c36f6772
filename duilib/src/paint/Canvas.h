#pragma once
// What controls paint on: a 32-bit back buffer (0xAARRGGBB, top-down, opaque) with a clip rectangle.
//
// Shapes are drawn by our own coverage arithmetic (Raster.h), because the system's is not smooth everywhere; images
// are premultiplied and already scaled (ImageCache); text goes through GDI into the same bits.
// Coordinates are client pixels of the window. Thread: UI thread.
#include <windows.h>

#include <cstdint>
#include <string_view>

#include "DuiLib/Geometry.h"

namespace DuiLib {

struct PixelView;
struct ScaledImage;

class Canvas {
  public:
    // `bits` of a DIB section that is selected into `dc`; both borrowed.
    Canvas(HDC dc, std::uint32_t* bits, Size sizePx, const Rect& clipPx);

    HDC GetDC() const { return dc_; }
    const Rect& GetClip() const { return clip_; }
    // Narrows the clip; the result is to be handed to RestoreClip in reverse order.
    [[nodiscard]] Rect PushClip(const Rect& px);
    void RestoreClip(const Rect& earlier);

    // Blends a colour over the rectangle; corners of that radius are smooth.
    void FillRect(const Rect& px, DWORD argb, int radiusPx = 0);
    // A line of that width inside the rectangle's edge.
    void StrokeRect(const Rect& px, DWORD argb, int widthPx, int radiusPx = 0);
    // Blends an image of the rectangle's own size; with a radius it is clipped to rounded corners.
    void DrawImage(const ScaledImage& image, const Rect& px, BYTE alpha = 255, int radiusPx = 0);
    // DT_… flags as in CRenderEngine::DrawText, without DT_CALCRECT.
    void DrawText(std::wstring_view text, const Rect& px, HFONT font, DWORD argb, UINT style);

  private:
    PixelView View() const;

    HDC dc_;
    std::uint32_t* bits_;
    Size size_;
    Rect clip_;
};

}  // namespace DuiLib
