// The markup of texts: parsed, read aloud, and broken into lines of several widths in both directions.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/support/Require.h"
#include "fuzz/support/WideText.h"
#include "text/HtmlLayout.h"
#include "text/HtmlParser.h"

using namespace DuiLib;

namespace {

// Every character is as wide as its place in a short list, so that widths differ and add up.
class PlainMeasurer final : public TextMeasurer {
  public:
    int WidthPx(std::wstring_view text, const HtmlRun& look) override {
        int width = 0;
        for (const wchar_t c : text) {
            width += static_cast<int>(static_cast<unsigned>(c) % 5) * 3 + (look.bold ? 1 : 0);
        }
        return width;
    }
    int AscentPx(const HtmlRun&) override { return 12; }
    int HeightPx(const HtmlRun& look) override { return look.bold ? 17 : 15; }
};

void CheckRuns(const HtmlText& html) {
    for (const HtmlRun& run : html.runs) {
        REQUIRE(run.text.find_first_of(L"\r\n") == std::wstring::npos);
        REQUIRE(run.link >= -1 && run.link < static_cast<int>(html.links.size()));
        REQUIRE(run.color == 0 || run.color >> 24 == 0xFF);
    }
}

bool IsWithinPair(const std::wstring& text, std::size_t at) {
    return at > 0 && at < text.size() && text[at - 1] >= 0xD800 && text[at - 1] <= 0xDBFF && text[at] >= 0xDC00 &&
           text[at] <= 0xDFFF;
}

void CheckLayout(const HtmlText& html, int width, bool wrap, HtmlLayout::Align align, bool rightToLeft) {
    PlainMeasurer measurer;
    HtmlLayout layout(html);
    layout.Arrange(width, wrap, align, rightToLeft, measurer);
    REQUIRE(layout.SizePx().cx >= 0 && layout.SizePx().cy >= 0);
    std::size_t run = 0, at = 0;
    for (const HtmlLayout::Piece& piece : layout.Pieces()) {
        // In the order of the text, and nothing twice.
        REQUIRE(piece.run < html.runs.size());
        REQUIRE(piece.run >= run);
        at = piece.run == run ? at : 0;
        run = piece.run;
        REQUIRE(piece.begin >= at);
        at = piece.begin + piece.length;
        REQUIRE(at <= html.runs[run].text.size());
        REQUIRE(!IsWithinPair(html.runs[run].text, at) && !IsWithinPair(html.runs[run].text, piece.begin));
        REQUIRE(layout.TextOf(piece).size() == piece.length);
        REQUIRE(piece.rectPx.Width() >= 0 && piece.rectPx.Height() >= 0);
        REQUIRE(piece.rectPx.bottom <= layout.SizePx().cy);
        const int link = layout.LinkAt({piece.rectPx.left, piece.rectPx.top});
        REQUIRE(link >= -1 && link < static_cast<int>(html.links.size()));
    }
    for (int link = 0; link < static_cast<int>(html.links.size()); ++link) {
        layout.LinkRects(link);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::wstring markup = WideText({data, size});
    const HtmlText html = ParseHtml(markup);
    CheckRuns(html);
    CheckRuns(PlainText(markup));
    std::size_t length = 0;
    for (const HtmlRun& run : html.runs) {
        length += run.text.size();
    }
    REQUIRE(length <= markup.size());
    REQUIRE(SpokenText(html).size() <= length + html.runs.size());
    for (const int width : {0, 1, 40, 300, 1 << 24}) {
        CheckLayout(html, width, true, HtmlLayout::Align::kNear, false);
    }
    CheckLayout(html, 120, true, HtmlLayout::Align::kCenter, true);
    CheckLayout(html, 120, false, HtmlLayout::Align::kFar, true);
    return 0;
}
