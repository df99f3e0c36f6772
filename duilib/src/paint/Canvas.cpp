#include "paint/Canvas.h"

#include "paint/ImageCache.h"
#include "paint/Raster.h"
#include "text/TextRenderer.h"

namespace DuiLib {

Canvas::Canvas(HDC dc, std::uint32_t* bits, Size sizePx, const Rect& clipPx)
    : dc_(dc), bits_(bits), size_(sizePx), clip_(clipPx.Intersect({0, 0, sizePx.cx, sizePx.cy})) {
    ::GdiFlush();  // batched GDI calls would draw over the pixels later
}

Rect Canvas::PushClip(const Rect& px) {
    const Rect earlier = clip_;
    clip_ = clip_.Intersect(px);
    return earlier;
}

void Canvas::RestoreClip(const Rect& earlier) {
    clip_ = earlier;
}

PixelView Canvas::View() const {
    return {bits_, size_.cx, size_.cy, size_.cx};
}

void Canvas::FillRect(const Rect& px, DWORD argb, int radiusPx) {
    FillRoundRect(View(), px, radiusPx, argb, clip_);
}

void Canvas::StrokeRect(const Rect& px, DWORD argb, int widthPx, int radiusPx) {
    StrokeRoundRect(View(), px, radiusPx, widthPx, argb, clip_);
}

void Canvas::DrawImage(const ScaledImage& image, const Rect& px, BYTE alpha, int radiusPx) {
    const ConstPixelView view{image.pixels.data(), image.sizePx.cx, image.sizePx.cy, image.sizePx.cx, image.opaque};
    BlendImage(View(), px, view, alpha, radiusPx, clip_);
}

void Canvas::DrawText(std::wstring_view text, const Rect& px, HFONT font, DWORD argb, UINT style) {
    const Rect seen = px.Intersect(clip_);
    if (text.empty() || seen.IsEmpty() || (argb >> 24) == 0) {
        return;
    }
    if ((argb >> 24) != 255) {
        const TextMask mask = MakeTextMask(dc_, font, text, {px.Width(), px.Height()}, style);
        BlendMask(View(), px, {mask.pixels.data(), mask.sizePx.cx, mask.sizePx.cy, mask.sizePx.cx}, argb, clip_);
        return;
    }
    const int saved = ::SaveDC(dc_);
    ::IntersectClipRect(dc_, seen.left, seen.top, seen.right, seen.bottom);
    DrawPlainText(dc_, font, text, px, argb, style);
    ::RestoreDC(dc_, saved);
    ::GdiFlush();
    MakeOpaque(View(), seen);
}

}  // namespace DuiLib
