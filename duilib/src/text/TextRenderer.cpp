#include "text/TextRenderer.h"

#include <algorithm>

#include "suite/common/GdiObject.h"
#include "text/TextBlock.h"

namespace DuiLib {
namespace {

// A mask is no larger than this in either direction: no window is.
constexpr int kMaxMaskPx = 16384;

// GDI takes no longer texts on every system.
constexpr size_t kMaxCharacters = 8192;

int LengthOf(std::wstring_view text) {
    return static_cast<int>(std::min(text.size(), kMaxCharacters));
}

// Selects a font and the colours for text, and puts back what was there.
class TextSetup {
  public:
    TextSetup(HDC dc, HFONT font, COLORREF color)
        : dc_(dc),
          font_(::SelectObject(dc, font ? font : ::GetStockObject(DEFAULT_GUI_FONT))),
          color_(::SetTextColor(dc, color)),
          mode_(::SetBkMode(dc, TRANSPARENT)) {}
    ~TextSetup() {
        ::SetBkMode(dc_, mode_);
        ::SetTextColor(dc_, color_);
        ::SelectObject(dc_, font_);
    }
    TextSetup(const TextSetup&) = delete;
    TextSetup& operator=(const TextSetup&) = delete;

  private:
    HDC dc_;
    HGDIOBJ font_;
    COLORREF color_;
    int mode_;
};

UINT Cleaned(UINT style) {
    return (style | DT_NOPREFIX) & ~static_cast<UINT>(DT_CALCRECT | DT_MODIFYSTRING);
}

// The system's own way for what it does well: one line of an ordinary script.
bool IsSimple(std::wstring_view text, UINT style) {
    return (style & DT_SINGLELINE) != 0 && !NeedsShaping(text);
}

void DrawPrepared(HDC dc, std::wstring_view text, const Rect& px, UINT style) {
    if (IsSimple(text, style)) {
        RECT rect{px.left, px.top, px.right, px.bottom};
        ::DrawTextW(dc, text.data(), LengthOf(text), &rect, style);
    } else {
        DrawBlock(dc, text, px, style);
    }
}

// The font, drawn in grey whatever the system smooths with: coloured edges are no coverage. None for none.
suite::GdiFont MakeMaskFont(HFONT font) {
    LOGFONTW description{};
    if (::GetObjectW(font, sizeof(description), &description) == 0) {
        return {};
    }
    description.lfQuality = ANTIALIASED_QUALITY;
    return suite::GdiFont(::CreateFontIndirectW(&description));
}

}  // namespace

Size MeasureText(HDC dc, HFONT font, std::wstring_view text, int widthPx, UINT style) {
    if (text.empty()) {
        return {};
    }
    const TextSetup setup(dc, font, 0);
    // An ellipsis would be measured as the text that is left.
    const UINT measured = Cleaned(style) & ~static_cast<UINT>(DT_VCENTER | DT_BOTTOM | DT_END_ELLIPSIS);
    if (!IsSimple(text, style)) {
        return MeasureBlock(dc, text, std::max(widthPx, 1), measured);
    }
    RECT rect{};
    ::DrawTextW(dc, text.data(), LengthOf(text), &rect, measured | DT_CALCRECT);
    return {static_cast<int>(rect.right - rect.left), static_cast<int>(rect.bottom - rect.top)};
}

void DrawPlainText(HDC dc, HFONT font, std::wstring_view text, const Rect& px, DWORD argb, UINT style) {
    if (text.empty()) {
        return;
    }
    const TextSetup setup(dc, font, RGB((argb >> 16) & 0xFF, (argb >> 8) & 0xFF, argb & 0xFF));
    DrawPrepared(dc, text, px, Cleaned(style));
}

TextMask MakeTextMask(HDC dc, HFONT font, std::wstring_view text, Size sizePx, UINT style) {
    TextMask mask;
    sizePx = {std::min(sizePx.cx, kMaxMaskPx), std::min(sizePx.cy, kMaxMaskPx)};
    if (sizePx.cx <= 0 || sizePx.cy <= 0 || text.empty()) {
        return mask;
    }
    std::uint32_t* pixels = nullptr;
    const suite::GdiBitmap bitmap = suite::MakePixelBitmap(sizePx.cx, sizePx.cy, pixels);
    const suite::MemoryDc memory(::CreateCompatibleDC(dc));
    const suite::GdiFont grey = MakeMaskFont(font);
    if (bitmap && memory) {
        const suite::GdiSelection selection(memory.Get(), bitmap.Get());
        {
            const TextSetup setup(memory.Get(), grey.Get(), RGB(255, 255, 255));
            DrawPrepared(memory.Get(), text, {0, 0, sizePx.cx, sizePx.cy}, Cleaned(style));
        }
        ::GdiFlush();
        mask.pixels.assign(pixels, pixels + static_cast<size_t>(sizePx.cx) * static_cast<size_t>(sizePx.cy));
        mask.sizePx = sizePx;
    }
    return mask;
}

}  // namespace DuiLib
