#include "DuiLib/RenderEngine.h"

#include "DuiLib/PaintManagerUI.h"
#include "suite/common/GdiObject.h"
#include "text/TextRenderer.h"

namespace DuiLib {
namespace {

// Text of a translucent colour on a device context whose pixels we do not have: a premultiplied bitmap blended over it.
void DrawTranslucent(HDC dc, HFONT font, const std::wstring& text, const Rect& px, DWORD argb, UINT style) {
    const TextMask mask = MakeTextMask(dc, font, text, {px.Width(), px.Height()}, style);
    if (mask.pixels.empty()) {
        return;
    }
    std::uint32_t* out = nullptr;
    const suite::GdiBitmap bitmap = suite::MakePixelBitmap(mask.sizePx.cx, mask.sizePx.cy, out);
    const suite::MemoryDc memory(::CreateCompatibleDC(dc));
    if (!bitmap || !memory) {
        return;
    }
    for (const std::uint32_t coverage : mask.pixels) {
        const std::uint32_t alpha = ((coverage >> 8) & 0xFF) * (argb >> 24) / 255;
        const auto part = [&](int shift) { return (((argb >> shift) & 0xFF) * alpha / 255) << shift; };
        *out++ = (alpha << 24) | part(16) | part(8) | part(0);
    }
    const suite::GdiSelection selection(memory.Get(), bitmap.Get());
    ::GdiAlphaBlend(dc, px.left, px.top, mask.sizePx.cx, mask.sizePx.cy, memory.Get(), 0, 0, mask.sizePx.cx,
                    mask.sizePx.cy, {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA});
}

}  // namespace

void CRenderEngine::DrawText(HDC dc, CPaintManagerUI* manager, Rect& rectPx, const std::wstring& text, DWORD argb,
                             int font, UINT style) {
    const HFONT handle = manager ? manager->GetFont(font) : nullptr;
    if ((style & DT_CALCRECT) != 0) {
        const Size needed = MeasureText(dc, handle, text, rectPx.Width(), style);
        rectPx = {rectPx.left, rectPx.top, rectPx.left + needed.cx, rectPx.top + needed.cy};
    } else if ((argb >> 24) == 255) {
        DrawPlainText(dc, handle, text, rectPx, argb, style);
    } else if ((argb >> 24) != 0) {
        DrawTranslucent(dc, handle, text, rectPx, argb, style);
    }
}

}  // namespace DuiLib
