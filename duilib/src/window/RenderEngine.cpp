#include "DuiLib/RenderEngine.h"

#include "DuiLib/PaintManagerUI.h"
#include "text/TextRenderer.h"

namespace DuiLib {
namespace {

// Text of a translucent colour on a device context whose pixels we do not have: a premultiplied bitmap blended over it.
void DrawTranslucent(HDC dc, HFONT font, const std::wstring& text, const Rect& px, DWORD argb, UINT style) {
    const TextMask mask = MakeTextMask(dc, font, text, {px.Width(), px.Height()}, style);
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), mask.sizePx.cx, -mask.sizePx.cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const HBITMAP bitmap =
        mask.pixels.empty() ? nullptr : ::CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (bitmap == nullptr) {
        return;
    }
    auto* out = static_cast<std::uint32_t*>(bits);
    for (const std::uint32_t coverage : mask.pixels) {
        const std::uint32_t alpha = ((coverage >> 8) & 0xFF) * (argb >> 24) / 255;
        const auto part = [&](int shift) { return (((argb >> shift) & 0xFF) * alpha / 255) << shift; };
        *out++ = (alpha << 24) | part(16) | part(8) | part(0);
    }
    const HDC memory = ::CreateCompatibleDC(dc);
    if (memory != nullptr) {
        const HGDIOBJ original = ::SelectObject(memory, bitmap);
        ::AlphaBlend(dc, px.left, px.top, mask.sizePx.cx, mask.sizePx.cy, memory, 0, 0, mask.sizePx.cx, mask.sizePx.cy,
                     {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA});
        ::SelectObject(memory, original);
        ::DeleteDC(memory);
    }
    ::DeleteObject(bitmap);
}

}  // namespace

void CRenderEngine::DrawText(HDC dc, CPaintManagerUI* manager, Rect& rectPx, const std::wstring& text, DWORD argb,
                             int font, UINT style) {
    const HFONT handle = manager != nullptr ? manager->GetFont(font) : nullptr;
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
