#include "text/TextBlock.h"

#include <usp10.h>

#include <algorithm>
#include <string>
#include <vector>

#include "text/HtmlLayout.h"

namespace DuiLib {
namespace {

constexpr std::wstring_view kEllipsis = L"\u2026";

// A part of a line that runs in one direction.
struct DirectionRun {
    size_t begin = 0;
    size_t length = 0;
    bool rightToLeft = false;
};

// From left to right, as they are seen. Some systems put the parts of a whole line in a wrong order where two of them
// that run against the line stand side by side, as letters and digits do; parts of one direction each they draw well.
std::vector<DirectionRun> VisualRuns(std::wstring_view text, bool rightToLeft) {
    const int length = static_cast<int>(text.size());
    SCRIPT_CONTROL control{};
    SCRIPT_STATE state{};
    state.uBidiLevel = rightToLeft ? 1 : 0;
    std::vector<SCRIPT_ITEM> items(text.size() + 2);
    int count = 0;
    if (FAILED(::ScriptItemize(text.data(), length, length + 1, &control, &state, items.data(), &count)) || count < 1) {
        return {{0, text.size(), rightToLeft}};
    }
    std::vector<DirectionRun> runs;
    std::vector<BYTE> levels;
    for (int i = 0; i < count; ++i) {
        const auto begin = static_cast<size_t>(items[static_cast<size_t>(i)].iCharPos);
        const auto level = static_cast<BYTE>(items[static_cast<size_t>(i)].a.s.uBidiLevel);
        if (levels.empty() || levels.back() != level) {
            runs.push_back({begin, 0, level % 2 != 0});
            levels.push_back(level);
        }
        const size_t end =
            i + 1 < count ? static_cast<size_t>(items[static_cast<size_t>(i) + 1].iCharPos) : text.size();
        runs.back().length = end - runs.back().begin;
    }
    std::vector<int> order(runs.size());
    if (FAILED(::ScriptLayout(static_cast<int>(runs.size()), levels.data(), order.data(), nullptr))) {
        return {{0, text.size(), rightToLeft}};
    }
    std::vector<DirectionRun> visual;
    for (const int logical : order) {
        visual.push_back(runs[static_cast<size_t>(logical)]);
    }
    return visual;
}

// One analysed line.
class Shaped {
  public:
    Shaped(HDC dc, std::wstring_view text, bool rightToLeft) {
        for (const DirectionRun& run : VisualRuns(text, rightToLeft)) {
            const int length = static_cast<int>(run.length);
            const DWORD flags = SSA_GLYPHS | SSA_FALLBACK | SSA_LINK | (run.rightToLeft ? SSA_RTL : 0);
            SCRIPT_CONTROL control{};
            SCRIPT_STATE state{};
            state.uBidiLevel = run.rightToLeft ? 1 : 0;
            SCRIPT_STRING_ANALYSIS analysis = nullptr;
            if (FAILED(::ScriptStringAnalyse(dc, text.data() + run.begin, length, length * 3 / 2 + 16, -1, flags, 0,
                                             &control, &state, nullptr, nullptr, nullptr, &analysis))) {
                isGood_ = false;
                return;
            }
            runs_.push_back(analysis);
        }
    }
    ~Shaped() {
        for (SCRIPT_STRING_ANALYSIS& run : runs_) {
            ::ScriptStringFree(&run);
        }
    }
    Shaped(const Shaped&) = delete;
    Shaped& operator=(const Shaped&) = delete;

    bool IsGood() const { return isGood_; }
    int WidthPx() const {
        int width = 0;
        for (const SCRIPT_STRING_ANALYSIS run : runs_) {
            width += RunWidthPx(run);
        }
        return width;
    }
    void Draw(Point px) const {
        for (const SCRIPT_STRING_ANALYSIS run : runs_) {
            ::ScriptStringOut(run, px.x, px.y, 0, nullptr, 0, 0, FALSE);
            px.x += RunWidthPx(run);
        }
    }

  private:
    static int RunWidthPx(SCRIPT_STRING_ANALYSIS run) {
        const SIZE* const size = ::ScriptString_pSize(run);
        return size ? static_cast<int>(size->cx) : 0;
    }

    std::vector<SCRIPT_STRING_ANALYSIS> runs_;  // owned
    bool isGood_ = true;
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
    const auto align = (style & DT_CENTER) != 0                   ? HtmlLayout::Align::kCenter
                       : ((style & DT_RIGHT) != 0) == rightToLeft ? HtmlLayout::Align::kNear
                                                                  : HtmlLayout::Align::kFar;
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

// The lines that fit, the last of them with an ellipsis where something is left out; empty where all fits. At least the
// first line is kept.
std::wstring CutToSize(HDC dc, const HtmlLayout& layout, Size sizePx, bool rightToLeft) {
    const auto& pieces = layout.Pieces();
    size_t shown = 0;
    while (shown < pieces.size() && (shown == 0 || pieces[shown].rectPx.bottom <= sizePx.cy)) {
        ++shown;
    }
    if (shown == 0 || (shown == pieces.size() && layout.SizePx().cx <= sizePx.cx)) {
        return {};
    }
    std::wstring cut;
    for (size_t i = 0; i < shown; ++i) {
        const HtmlLayout::Piece& piece = pieces[i];
        const bool last = i + 1 == shown;
        // The last line takes what would have stood on the next, as far as there is room.
        const std::wstring_view line =
            last ? std::wstring_view(layout.Text().runs[piece.run].text).substr(piece.begin) : layout.TextOf(piece);
        const bool tooLong = LineWidthPx(dc, line, rightToLeft) > sizePx.cx || (last && shown < pieces.size());
        cut += tooLong ? CutToWidth(dc, line, sizePx.cx, rightToLeft) : std::wstring(line);
        cut += last ? L"" : L"\n";
    }
    return cut;
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

Size MeasureBlock(HDC dc, std::wstring_view text, int widthPx, UINT style) {
    return Arranged(dc, text, widthPx, style).SizePx();
}

void DrawBlock(HDC dc, std::wstring_view text, const Rect& px, UINT style) {
    const bool rightToLeft = IsRightToLeft(style);
    HtmlLayout layout = Arranged(dc, text, px.Width(), style);
    if ((style & DT_END_ELLIPSIS) != 0) {
        const std::wstring cut = CutToSize(dc, layout, {px.Width(), px.Height()}, rightToLeft);
        if (!cut.empty()) {
            layout = Arranged(dc, cut, px.Width(), style);
        }
    }
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
