#include "ShapedText.h"

#include <usp10.h>

#include <algorithm>
#include <string>

#include "HtmlLayout.h"

namespace DuiLib {
namespace {

constexpr std::wstring_view kEllipsis = L"\u2026";

// One analysed line.
class Shaped {
  public:
    Shaped(HDC dc, std::wstring_view text, bool rightToLeft) {
        const int length = static_cast<int>(text.size());
        const DWORD flags = SSA_GLYPHS | SSA_FALLBACK | SSA_LINK | (rightToLeft ? SSA_RTL : 0);
        SCRIPT_CONTROL control{};
        SCRIPT_STATE state{};
        state.uBidiLevel = rightToLeft ? 1 : 0;
        const HRESULT hr = ::ScriptStringAnalyse(dc, text.data(), length, length * 3 / 2 + 16, -1, flags, 0, &control,
                                                 &state, nullptr, nullptr, nullptr, &analysis_);
        if (FAILED(hr)) {
            analysis_ = nullptr;
        }
    }
    ~Shaped() {
        if (analysis_ != nullptr) {
            ::ScriptStringFree(&analysis_);
        }
    }
    Shaped(const Shaped&) = delete;
    Shaped& operator=(const Shaped&) = delete;

    bool IsGood() const { return analysis_ != nullptr; }
    int WidthPx() const {
        const SIZE* const size = ::ScriptString_pSize(analysis_);
        return size != nullptr ? static_cast<int>(size->cx) : 0;
    }
    void Draw(Point px) const { ::ScriptStringOut(analysis_, px.x, px.y, 0, nullptr, 0, 0, FALSE); }

  private:
    SCRIPT_STRING_ANALYSIS analysis_ = nullptr;
};

int PlainWidthPx(HDC dc, std::wstring_view text) {
    SIZE size{};
    ::GetTextExtentPoint32W(dc, text.data(), static_cast<int>(text.size()), &size);
    return static_cast<int>(size.cx);
}

void DrawLine(HDC dc, Point px, std::wstring_view text, bool rightToLeft) {
    if (NeedsShaping(text)) {
        const Shaped shaped(dc, text, rightToLeft);
        if (shaped.IsGood()) {
            shaped.Draw(px);
            return;
        }
    }
    ::ExtTextOutW(dc, px.x, px.y, rightToLeft ? ETO_RTLREADING : 0, nullptr, text.data(),
                  static_cast<UINT>(text.size()), nullptr);
}

class LineMeasurer final : public TextMeasurer {
  public:
    LineMeasurer(HDC dc, bool rightToLeft) : dc_(dc), rightToLeft_(rightToLeft) { ::GetTextMetricsW(dc, &metrics_); }
    int WidthPx(std::wstring_view text, const HtmlRun&) override { return LineWidthPx(dc_, text, rightToLeft_); }
    int AscentPx(const HtmlRun&) override { return static_cast<int>(metrics_.tmAscent); }
    int HeightPx(const HtmlRun&) override { return static_cast<int>(metrics_.tmHeight); }

  private:
    HDC dc_;
    bool rightToLeft_;
    TEXTMETRICW metrics_{};
};

bool IsRightToLeft(UINT style) {
    return (style & DT_RTLREADING) != 0;
}

HtmlLayout Arranged(HDC dc, std::wstring_view text, int widthPx, UINT style) {
    const bool rightToLeft = IsRightToLeft(style);
    const auto align = (style & DT_CENTER) != 0                   ? HtmlLayout::Align::Center
                       : ((style & DT_RIGHT) != 0) == rightToLeft ? HtmlLayout::Align::Near
                                                                  : HtmlLayout::Align::Far;
    LineMeasurer measurer(dc, rightToLeft);
    HtmlLayout layout(PlainText(text));
    layout.Arrange(widthPx, (style & DT_WORDBREAK) != 0, align, rightToLeft, measurer);
    return layout;
}

// As much of the text as fits together with an ellipsis.
std::wstring CutToWidth(HDC dc, std::wstring_view text, int widthPx, bool rightToLeft) {
    const auto withEllipsis = [&](size_t length) { return std::wstring(text.substr(0, length)).append(kEllipsis); };
    size_t low = 0, high = text.size();
    while (low < high) {
        const size_t middle = low + (high - low + 1) / 2;
        if (LineWidthPx(dc, withEllipsis(middle), rightToLeft) <= widthPx) {
            low = middle;
        } else {
            high = middle - 1;
        }
    }
    const bool halfPair = low > 0 && IS_HIGH_SURROGATE(text[low - 1]);
    return withEllipsis(low - (halfPair ? 1 : 0));
}

}  // namespace

bool NeedsShaping(std::wstring_view text) {
    return !text.empty() && ::ScriptIsComplex(text.data(), static_cast<int>(text.size()), SIC_COMPLEX) == S_OK;
}

int LineWidthPx(HDC dc, std::wstring_view text, bool rightToLeft) {
    if (NeedsShaping(text)) {
        const Shaped shaped(dc, text, rightToLeft);
        if (shaped.IsGood()) {
            return shaped.WidthPx();
        }
    }
    return PlainWidthPx(dc, text);
}

Size MeasureShaped(HDC dc, std::wstring_view text, int widthPx, UINT style) {
    return Arranged(dc, text, widthPx, style).SizePx();
}

void DrawShaped(HDC dc, std::wstring_view text, const Rect& px, UINT style) {
    const bool rightToLeft = IsRightToLeft(style);
    std::wstring cut;
    if ((style & DT_END_ELLIPSIS) != 0 && (style & DT_SINGLELINE) != 0 &&
        LineWidthPx(dc, text, rightToLeft) > px.Width()) {
        cut = CutToWidth(dc, text, px.Width(), rightToLeft);
        text = cut;
    }
    const HtmlLayout layout = Arranged(dc, text, px.Width(), style);
    const int spare = std::max(0, px.Height() - layout.SizePx().cy);
    const int top = px.top + ((style & DT_BOTTOM) != 0 ? spare : (style & DT_VCENTER) != 0 ? spare / 2 : 0);
    const int saved = ::SaveDC(dc);
    if ((style & DT_NOCLIP) == 0) {
        ::IntersectClipRect(dc, px.left, px.top, px.right, px.bottom);
    }
    for (const HtmlLayout::Piece& piece : layout.Pieces()) {
        DrawLine(dc, {px.left + piece.rectPx.left, top + piece.rectPx.top}, layout.TextOf(piece), rightToLeft);
    }
    ::RestoreDC(dc, saved);
}

}  // namespace DuiLib
