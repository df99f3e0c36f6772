#include "text/HtmlParser.h"

#include <gmock/gmock.h>

using namespace DuiLib;
using testing::ElementsAre;

namespace {

HtmlRun Plain(std::wstring text) {
    HtmlRun run;
    run.text = std::move(text);
    return run;
}

HtmlRun Bold(std::wstring text) {
    HtmlRun run = Plain(std::move(text));
    run.bold = true;
    return run;
}

HtmlRun Link(std::wstring text, int link) {
    HtmlRun run = Plain(std::move(text));
    run.link = link;
    return run;
}

HtmlRun Line(HtmlRun run) {
    run.lineBreak = true;
    return run;
}

std::vector<HtmlRun> RunsOf(std::wstring_view markup) {
    return ParseHtml(markup).runs;
}

// What is seen of a markup that should have no effect.
void ExpectLiteral(std::wstring_view markup) {
    EXPECT_THAT(RunsOf(markup), ElementsAre(Plain(std::wstring(markup))));
}

TEST(HtmlParser, PlainTextIsOneRun) {
    EXPECT_THAT(RunsOf(L"Hello, world"), ElementsAre(Plain(L"Hello, world")));
    EXPECT_TRUE(RunsOf(L"").empty());
}

TEST(HtmlParser, StylesNestAndCross) {
    HtmlRun both = Bold(L"b");
    both.italic = true;
    HtmlRun italic = Plain(L"c");
    italic.italic = true;
    EXPECT_THAT(RunsOf(L"<b>a<i>b</i></b>"), ElementsAre(Bold(L"a"), both));
    EXPECT_THAT(RunsOf(L"<b>a<i>b</b>c</i>d"), ElementsAre(Bold(L"a"), both, italic, Plain(L"d")));
    HtmlRun underlined = Plain(L"x");
    underlined.underline = true;
    EXPECT_THAT(RunsOf(L"<U >x</u\t>"), ElementsAre(underlined));
    EXPECT_THAT(RunsOf(L"<b>a</b><b>b</b>"), ElementsAre(Bold(L"ab")));
}

TEST(HtmlParser, LinksHaveAnIndexAndAnAddress) {
    const HtmlText text = ParseHtml(
        L"See <a href=\"https://a.example/?x=1&amp;y=2\">here</a> or <A HREF = 'mailto:b' target='_blank'>there</A>.");
    EXPECT_THAT(text.runs,
                ElementsAre(Plain(L"See "), Link(L"here", 0), Plain(L" or "), Link(L"there", 1), Plain(L".")));
    EXPECT_THAT(text.links, ElementsAre(L"https://a.example/?x=1&y=2", L"mailto:b"));
}

TEST(HtmlParser, TwoEqualLinksSideBySideStayTwo) {
    EXPECT_THAT(RunsOf(L"<a href='x'>1</a><a href='x'>2</a>"), ElementsAre(Link(L"1", 0), Link(L"2", 1)));
}

TEST(HtmlParser, ColoursAreOpaque) {
    HtmlRun red = Plain(L"r");
    red.color = 0xFFFF0000;
    EXPECT_THAT(RunsOf(L"<font color=\"#FF0000\">r</font>"), ElementsAre(red));
    EXPECT_THAT(RunsOf(L"<font color='#10FF0000'>r</font>"), ElementsAre(red));
    HtmlRun blue = Plain(L"b");
    blue.color = 0xFF0000FF;
    EXPECT_THAT(RunsOf(L"<font color='#FF0000'>r<font color='#0000FF'>b</font>r</font>"), ElementsAre(red, blue, red));
}

TEST(HtmlParser, LinesBreakAtTagsAndLineFeeds) {
    EXPECT_THAT(RunsOf(L"a<br>b<BR/>c<br />\nd\r\ne"),
                ElementsAre(Line(Plain(L"a")), Line(Plain(L"b")), Line(Plain(L"c")), Line(Plain(L"")),
                            Line(Plain(L"d")), Plain(L"e")));
    EXPECT_THAT(RunsOf(L"<b>a<br>b</b>"), ElementsAre(Line(Bold(L"a")), Bold(L"b")));
    EXPECT_THAT(RunsOf(L"<br><br>"), ElementsAre(Line(Plain(L"")), Line(Plain(L""))));
}

TEST(HtmlParser, EntitiesStandForCharacters) {
    EXPECT_THAT(RunsOf(L"&lt;b&gt; &amp; &quot;&apos;&nbsp;&#65;&#x4E2D;"),
                ElementsAre(Plain(L"<b> & \"'\u00A0A\u4E2D")));
    EXPECT_THAT(RunsOf(L"&#128512;"), ElementsAre(Plain(L"\U0001F600")));
    EXPECT_THAT(RunsOf(L"a&#10;b"), ElementsAre(Plain(L"a b")));
}

TEST(HtmlParser, WhatIsNoEntityIsShown) {
    for (const wchar_t* text : {L"a & b", L"&", L"&;", L"&unknown;", L"&LT;", L"&#;", L"&#x;", L"&#xG;", L"&#0;",
                                L"&#55296;", L"&#x110000;", L"&#99999999999999;", L"&#-1;", L"fish&chips"}) {
        ExpectLiteral(text);
    }
}

TEST(HtmlParser, WhatIsNoTagIsShown) {
    for (const wchar_t* text :
         {L"1 < 2", L"<", L"<>", L"</>", L"< b>", L"<x>y</x>", L"<bold>x</bold>", L"<b", L"<b x", L"<a>x</a>",
          L"<a href=x>y</a>", L"<a href='x>y</a>", L"<a href>y</a>", L"<font>x</font>", L"<font color='red'>x</font>",
          L"</br>", L"<b/>", L"<a href='x'y='z'>t</a>", L"<script src='x'>y</script>"}) {
        ExpectLiteral(text);
    }
}

TEST(HtmlParser, TagsWithoutTheirOtherHalfAreShown) {
    ExpectLiteral(L"<b>never closed");
    ExpectLiteral(L"never opened</i>");
    EXPECT_THAT(RunsOf(L"<b>a<b>b</b>"), ElementsAre(Plain(L"<b>a"), Bold(L"b")));
    EXPECT_THAT(RunsOf(L"<i>x <a href='y'>z</a>"), ElementsAre(Plain(L"<i>x "), Link(L"z", 0)));
}

TEST(HtmlParser, OnlyThirtyTwoTagsAreOpenAtATime) {
    std::wstring markup, ends;
    for (int i = 0; i < 33; ++i) {
        markup += L"<b>";
        ends += L"</b>";
    }
    EXPECT_THAT(RunsOf(markup + L"x" + ends), ElementsAre(Bold(L"<b>x"), Plain(L"</b>")));
}

TEST(HtmlParser, ALongTextIsCut) {
    const auto runs = RunsOf(std::wstring(100000, L'x'));
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].text.size(), 65536u);
    // Never within a character of two units.
    const std::wstring text(65535, L'x');
    EXPECT_EQ(RunsOf(text + L"\xD83D\xDE00").at(0).text, text);
    EXPECT_EQ(RunsOf(text + L"\xD7FF!").at(0).text, text + L'\xD7FF');
    EXPECT_EQ(RunsOf(text + L"\xDC00!").at(0).text, text + L'\xDC00');
}

TEST(HtmlParser, ManyOpenBracketsTakeLinearTime) {
    std::wstring markup;
    while (markup.size() < 65536) {
        markup += L"<a href='<b x=\"";
    }
    EXPECT_FALSE(RunsOf(markup).empty());
}

TEST(HtmlParser, PlainTextKeepsEverythingButLineFeeds) {
    EXPECT_THAT(PlainText(L"<b>&lt;\nx").runs, ElementsAre(Line(Plain(L"<b>&lt;")), Plain(L"x")));
}

TEST(HtmlParser, SpokenTextHasNoMarkup) {
    EXPECT_EQ(SpokenText(ParseHtml(L"<b>Note</b><br>see <a href='x'>this</a> &amp; that")), L"Note see this & that");
}

}  // namespace
