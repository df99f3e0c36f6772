#include "text/HtmlLayout.h"

#include <gmock/gmock.h>

using namespace DuiLib;
using testing::ElementsAre;

namespace {

// Every character is 10 wide, a bold one 12; lines are 20 high, bold ones 24, with ascents of 15 and 18.
class GridMeasurer final : public TextMeasurer {
  public:
    int WidthPx(std::wstring_view text, const HtmlRun& look) override {
        return static_cast<int>(text.size()) * (look.bold ? 12 : 10);
    }
    int AscentPx(const HtmlRun& look) override { return look.bold ? 18 : 15; }
    int HeightPx(const HtmlRun& look) override { return look.bold ? 24 : 20; }
};

HtmlLayout Arranged(std::wstring_view markup, int width, bool wrap = true,
                    HtmlLayout::Align align = HtmlLayout::Align::kNear, bool rightToLeft = false) {
    GridMeasurer measurer;
    HtmlLayout layout(ParseHtml(markup));
    layout.Arrange(width, wrap, align, rightToLeft, measurer);
    return layout;
}

// The text of each line, pieces divided by '|'.
std::vector<std::wstring> LinesOf(const HtmlLayout& layout) {
    std::vector<std::wstring> lines;
    int bottom = -1;
    for (const HtmlLayout::Piece& piece : layout.Pieces()) {
        if (lines.empty() || piece.rectPx.top >= bottom) {
            lines.emplace_back();
        } else {
            lines.back() += L'|';
        }
        bottom = std::max(bottom, piece.rectPx.bottom);
        lines.back() += layout.TextOf(piece);
    }
    return lines;
}

TEST(HtmlLayout, BreaksAfterBlanks) {
    EXPECT_THAT(LinesOf(Arranged(L"one two three", 80)), ElementsAre(L"one two", L"three"));
    EXPECT_THAT(LinesOf(Arranged(L"one two three", 70)), ElementsAre(L"one two", L"three"));
    EXPECT_THAT(LinesOf(Arranged(L"one two three", 69)), ElementsAre(L"one", L"two", L"three"));
    EXPECT_THAT(LinesOf(Arranged(L"one  two", 40)), ElementsAre(L"one", L"two"));
}

TEST(HtmlLayout, WithoutWrappingOnlyItsOwnBreaksCount) {
    EXPECT_THAT(LinesOf(Arranged(L"one two<br>three", 10, false)), ElementsAre(L"one two", L"three"));
}

TEST(HtmlLayout, AWordMayHaveSeveralLooks) {
    EXPECT_THAT(LinesOf(Arranged(L"aa b<b>cc</b>d", 60)), ElementsAre(L"aa", L"b|cc|d"));
}

TEST(HtmlLayout, ALongWordIsBrokenWhereItMust) {
    EXPECT_THAT(LinesOf(Arranged(L"ab abcdefgh", 30)), ElementsAre(L"ab", L"abc", L"def", L"gh"));
    EXPECT_THAT(LinesOf(Arranged(L"abc", 5)), ElementsAre(L"a", L"b", L"c"));
    EXPECT_THAT(LinesOf(Arranged(L"e\u0301e\u0301", 15)), ElementsAre(L"e\u0301", L"e\u0301"));
}

TEST(HtmlLayout, EastAsianTextBreaksBetweenCharactersButNotBeforePunctuation) {
    EXPECT_THAT(LinesOf(Arranged(L"中文字", 20)), ElementsAre(L"中文", L"字"));
    EXPECT_THAT(LinesOf(Arranged(L"中文。", 20)), ElementsAre(L"中", L"文。"));
    EXPECT_THAT(LinesOf(Arranged(L"中「文", 20)), ElementsAre(L"中", L"「文"));
    EXPECT_THAT(LinesOf(Arranged(L"葛\uFE00城", 20)), ElementsAre(L"葛\uFE00", L"城"));
    EXPECT_THAT(LinesOf(Arranged(L"城葛\uFE00", 20)), ElementsAre(L"城", L"葛\uFE00"));
}

TEST(HtmlLayout, BreaksAfterHyphensButNotInNumbers) {
    EXPECT_THAT(LinesOf(Arranged(L"auto-focus", 60)), ElementsAre(L"auto-", L"focus"));
    EXPECT_THAT(LinesOf(Arranged(L"x -10", 30)), ElementsAre(L"x", L"-10"));
}

TEST(HtmlLayout, EmptyLinesTakeRoom) {
    const HtmlLayout layout = Arranged(L"a<br><br>b", 100);
    EXPECT_EQ(layout.SizePx().cy, 60);
    ASSERT_EQ(layout.Pieces().size(), 2u);
    EXPECT_EQ(layout.Pieces()[1].rectPx.top, 40);
    EXPECT_EQ(Arranged(L"", 100).SizePx(), (Size{0, 0}));
}

TEST(HtmlLayout, PiecesOfALineShareABaseline) {
    const HtmlLayout layout = Arranged(L"a<b>b</b>", 100);
    EXPECT_EQ(layout.Pieces()[0].rectPx, (Rect{0, 3, 10, 23}));
    EXPECT_EQ(layout.Pieces()[1].rectPx, (Rect{10, 0, 22, 24}));
    EXPECT_EQ(layout.SizePx(), (Size{22, 24}));
}

TEST(HtmlLayout, LinesAreAlignedWithoutTheirHangingBlanks) {
    using Align = HtmlLayout::Align;
    EXPECT_EQ(Arranged(L"ab cde", 40, true, Align::kCenter).Pieces()[0].rectPx.left, 10);
    EXPECT_EQ(Arranged(L"ab cde", 40, true, Align::kFar).Pieces()[0].rectPx.left, 20);
    EXPECT_EQ(Arranged(L"ab cde", 40, true, Align::kFar).Pieces()[1].rectPx.left, 10);
}

TEST(HtmlLayout, RightToLeftLinesRunFromTheRight) {
    using Align = HtmlLayout::Align;
    const HtmlLayout near = Arranged(L"ab<b>c</b>", 100, true, Align::kNear, true);
    EXPECT_EQ(near.Pieces()[0].rectPx.left, 80);
    EXPECT_EQ(near.Pieces()[1].rectPx.left, 68);
    EXPECT_EQ(Arranged(L"ab", 100, true, Align::kFar, true).Pieces()[0].rectPx.left, 0);
}

TEST(HtmlLayout, LinksAreFoundOnEveryLine) {
    const HtmlLayout layout = Arranged(L"see <a href='x'>this page</a> or <a href='y'>that</a>", 120);
    EXPECT_THAT(LinesOf(layout), ElementsAre(L"see |this", L"page| or |that"));
    EXPECT_EQ(layout.LinkAt({0, 0}), -1);
    EXPECT_EQ(layout.LinkAt({40, 0}), 0);
    EXPECT_EQ(layout.LinkAt({79, 19}), 0);
    EXPECT_EQ(layout.LinkAt({80, 10}), -1);
    EXPECT_EQ(layout.LinkAt({0, 20}), 0);
    EXPECT_EQ(layout.LinkAt({80, 20}), 1);
    EXPECT_EQ(layout.LinkAt({-1, 500}), -1);
    EXPECT_THAT(layout.LinkRects(0), ElementsAre(Rect{40, 0, 80, 20}, Rect{0, 20, 40, 40}));
    EXPECT_TRUE(layout.LinkRects(-1).empty());
}

TEST(HtmlLayout, ArrangingAgainReplacesTheEarlierLines) {
    GridMeasurer measurer;
    HtmlLayout layout(ParseHtml(L"one two"));
    layout.Arrange(30, true, HtmlLayout::Align::kNear, false, measurer);
    EXPECT_EQ(layout.SizePx(), (Size{30, 40}));
    layout.Arrange(300, true, HtmlLayout::Align::kNear, false, measurer);
    EXPECT_EQ(layout.SizePx(), (Size{70, 20}));
}

TEST(HtmlLayout, AVeryLongWordIsArrangedInReasonableTime) {
    const HtmlLayout layout = Arranged(std::wstring(65536, L'x'), 500);
    EXPECT_EQ(layout.SizePx().cx, 500);
    // 50 characters fit, and the stretches that are measured at a time end at a multiple of 1024.
    EXPECT_LE(layout.Pieces().size(), 65536u / 50 + 100);
}

// Text comes in 16-bit units; a character beyond them is two of them, wherever a line ends.
TEST(HtmlLayout, NoPairIsBroken) {
    EXPECT_THAT(LinesOf(Arranged(L"a\xD83D\xDE00z", 20)), ElementsAre(L"a", L"\xD83D\xDE00", L"z"));
    EXPECT_THAT(LinesOf(Arranged(L"\xD842\xDFB7\xD842\xDFB7", 30)), ElementsAre(L"\xD842\xDFB7", L"\xD842\xDFB7"));
    // Where a stretch is too long to be measured as one.
    const std::wstring stretch(1023, L'x');
    EXPECT_THAT(LinesOf(Arranged(stretch + L"\xD83D\xDE00", 10245)), ElementsAre(stretch, L"\xD83D\xDE00"));
}

}  // namespace
