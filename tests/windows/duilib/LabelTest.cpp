// Labels: where the text stands, how it breaks and is cut, and its colours, at several scales.
#include "DuiLib/LabelUI.h"

#include <oleacc.h>

#include "DuiLib/RenderEngine.h"
#include "Rendering.h"

namespace DuiLib::Test {
namespace {

constexpr std::uint32_t kWhite = 0xFFFFFFFF;

class Label : public testing::TestWithParam<int> {
  protected:
    int Dpi() const { return GetParam(); }
    int Px(int dip) const { return DipToPx(dip, Dpi()); }
    // One label "x" of 200 x 40 at the window's top left, with more attributes.
    std::string Layout(const std::string& attributes) const {
        return R"(<Window size="220,120" bkcolor="#FFFFFFFF"><Font id="0" size="14" default="true"/><Font id="7" size="28"/>
                  <Container><Label name="x" float="true" pos="0,0,200,40" textcolor="#FF000000" )" +
               attributes + R"(/></Container></Window>)";
    }
    // Where it draws; `text` replaces the attribute's.
    Rect Ink(const std::string& attributes, const wchar_t* text = nullptr) const {
        TestWindow window(Layout(attributes));
        if (text != nullptr) {
            window.Find(L"x").SetText(text);
        }
        const Picture picture = Render(window, Dpi());
        const Rect ink = picture.InkWithin({0, 0, picture.sizePx.cx, picture.sizePx.cy}, kWhite);
        EXPECT_FALSE(ink.IsEmpty()) << attributes;
        return ink;
    }
};

INSTANTIATE_TEST_SUITE_P(Scales, Label, testing::Values(96, 144, 192), testing::PrintToStringParamName());

TEST_P(Label, StandsLeftCentredOrRight) {
    const Rect left = Ink(R"(text="Hmmm")"), center = Ink(R"(text="Hmmm" align="center")"),
               right = Ink(R"(text="Hmmm" align="right")");
    EXPECT_LE(left.left, Px(3));
    EXPECT_NEAR(center.left + center.right, Px(200), Px(3));
    EXPECT_GE(right.right, Px(197));
    EXPECT_EQ(left.Width(), right.Width());
    EXPECT_NEAR(left.top + left.bottom, Px(40), Px(6));
}

TEST_P(Label, StandsAtTheTopOrTheBottom) {
    EXPECT_LE(Ink(R"(text="H" valign="top")").bottom, Px(20));
    EXPECT_GE(Ink(R"(text="H" valign="bottom")").top, Px(20));
    const Rect lines = Ink(R"(valign="bottom")", L"H\nH");
    EXPECT_GT(lines.Height(), Px(20));
    EXPECT_GE(lines.bottom, Px(34));
    EXPECT_LE(lines.bottom, Px(40));
}

TEST_P(Label, PaddingMovesTheText) {
    EXPECT_GE(Ink(R"(text="H" textpadding="30,0,0,0")").left, Px(30));
    EXPECT_LE(Ink(R"(text="H" align="right" textpadding="0,0,30,0")").right, Px(170));
}

TEST_P(Label, RightToLeftExchangesTheSides) {
    const Direction direction(true);
    const std::string text = R"(text="Hmmm" )";
    EXPECT_GE(Ink(text).right, Px(215));
    EXPECT_LE(Ink(text + R"(align="right")").left, Px(23));
    EXPECT_LE(Ink(text + R"(textpadding="30,0,0,0")").right, Px(190));
}

TEST_P(Label, RightToLeftScriptsAreMeasuredAsTheyAreDrawn) {
    const Direction direction(true);
    const Rect arabic = Ink(R"(text="تطبيق الإعدادات")");
    EXPECT_GE(arabic.right, Px(214));
    const Rect centred = Ink(R"(text="تطبيق الإعدادات" align="center")");
    EXPECT_NEAR(centred.left + centred.right, Px(20 + 220), Px(6));
}

TEST_P(Label, LettersAndDigitsSideBySideKeepTheirOrder) {
    const Direction direction(true);
    // All of it begins at the place's left, where a line that runs from right to left ends.
    const auto picture = [this](const std::string& text) {
        TestWindow window(Layout(R"(align="right" text=")" + text + R"(")"));
        return Render(window, Dpi());
    };
    const Picture seen = picture("فيديو MP4"), wanted = picture("MP4"), reversed = picture("4MP");
    const Rect ink = wanted.InkWithin({0, 0, wanted.sizePx.cx, wanted.sizePx.cy}, kWhite);
    const auto differences = [&](const Picture& other) {
        int count = 0;
        for (int y = ink.top; y < ink.bottom; ++y) {
            for (int x = ink.left; x < ink.right; ++x) {
                count += seen.At({x, y}) != other.At({x, y}) ? 1 : 0;
            }
        }
        return count;
    };
    // A letter may stand a pixel beside where it stands alone.
    EXPECT_LT(differences(wanted), differences(reversed) / 2);
}

TEST_P(Label, TheFontIsScaled) {
    const Rect small = Ink(R"(text="H")"), large = Ink(R"(text="H" font="7")");
    EXPECT_NEAR(small.Height(), Px(10), Px(2));
    EXPECT_NEAR(large.Height(), Px(20), Px(2));
}

TEST_P(Label, TextStaysWithinItsPlace) {
    const std::string text = R"(text="A text that is much longer than the place that there is for it" )";
    EXPECT_LE(Ink(text).right, Px(200));
    EXPECT_LE(Ink(text + R"(endellipsis="true")").right, Px(200));
    // Three dots at the line's end stand on the line.
    TestWindow window(Layout(text + R"(endellipsis="true")"));
    const Picture cut = Render(window, Dpi());
    const Rect end = cut.InkWithin({Px(190), 0, Px(200), Px(40)}, kWhite);
    EXPECT_LE(end.Height(), Px(5));
}

TEST_P(Label, WrappedLinesMakeItHigher) {
    TestWindow window(
        R"(<Window size="220,300" bkcolor="#FFFFFFFF"><Font id="0" size="14" default="true"/><VerticalLayout>
        <Label name="one" height="auto" textcolor="#FF000000" text="one line"/>
        <Label name="many" height="auto" wordwrap="true" textcolor="#FF000000"
               text="This label has so many words that they need several lines of a small window"/>
        <Label name="breaks" height="auto" textcolor="#FF000000"/></VerticalLayout></Window>)");
    window.Find(L"breaks").SetText(L"a\nb\nc");
    const Picture picture = Render(window, Dpi(), L"wrapped");
    const Rect one = window.Find(L"one").GetPos(), many = window.Find(L"many").GetPos(),
               breaks = window.Find(L"breaks").GetPos();
    EXPECT_GE(many.Height(), 3 * one.Height());
    EXPECT_EQ(breaks.Height(), 3 * one.Height());
    // The last line is drawn, and nothing is cut off at the right.
    const Rect last{many.left, many.bottom - one.Height(), many.right, many.bottom};
    EXPECT_FALSE(picture.InkWithin(last, kWhite).IsEmpty());
    EXPECT_LT(picture.InkWithin(many, kWhite).right, many.right);
}

TEST_P(Label, ALongWordIsBrokenAndLinesThatDoNotFitEndWithAnEllipsis) {
    const std::string word =
        R"(wordwrap="true" valign="top" text="Donaudampfschifffahrtselektrizitätenhauptbetriebswerk" )";
    EXPECT_GT(Ink(word).bottom, Px(20));
    EXPECT_LE(Ink(word).right, Px(200));
    const std::string words =
        R"(wordwrap="true" valign="top" text="One two three four five six seven eight nine ten eleven twelve thirteen" )";
    TestWindow window(Layout(words + R"(endellipsis="true")"));
    const Picture picture = Render(window, Dpi(), L"ellipsis");
    const Rect ink = picture.InkWithin({0, 0, Px(200), Px(40)}, kWhite);
    EXPECT_LE(ink.bottom, Px(36));  // two lines, none cut through
    const Rect dots = picture.InkWithin({ink.right - Px(9), Px(18), ink.right, Px(40)}, kWhite);
    EXPECT_LE(dots.Height(), Px(4));
}

// As much of the last line as fits, and the first line where none does.
TEST_P(Label, WhatIsCutOffIsAsLittleAsCanBe) {
    const auto look = [&](const wchar_t* place, const Rect& within) {
        TestWindow window(Layout(R"(wordwrap="true" valign="top" endellipsis="true")"));
        window.Find(L"x").SetAttribute(L"pos", place);
        window.Find(L"x").SetText(std::wstring(120, L'n'));
        const Picture picture = Render(window, Dpi());
        return picture.InkWithin({Px(within.left), Px(within.top), Px(within.right), Px(within.bottom)}, kWhite);
    };
    const Rect second = look(L"0,0,200,40", {0, 21, 220, 60});
    EXPECT_GT(second.right, Px(185));
    EXPECT_LE(second.right, Px(200));
    EXPECT_GT(look(L"0,0,200,12", {0, 0, 220, 60}).right, Px(185)) << "too low for a line";
}

TEST_P(Label, ColoursFollowTheState) {
    const auto darkest = [&](const std::string& attributes) {
        TestWindow window(Layout(R"(font="7" text="HHHH" )" + attributes));
        const Picture picture = Render(window, Dpi());
        std::uint32_t found = kWhite;
        for (const std::uint32_t pixel : picture.pixels) {
            EXPECT_EQ(pixel >> 24, 255u);
            found = std::min(found, pixel);
        }
        return found;
    };
    EXPECT_EQ(darkest(""), 0xFF000000u);
    EXPECT_EQ(darkest(R"(enabled="false" disabledtextcolor="#FF405060")"), 0xFF405060u);
    EXPECT_EQ(darkest(R"(enabled="false")"), 0xFFA0A0A0u);
    // A translucent colour is blended with what is below.
    EXPECT_NEAR(darkest(R"(enabled="false" disabledtextcolor="#80000000")") & 0xFF, 127, 1);
}

TEST_P(Label, AnAmpersandIsACharacter) {
    EXPECT_GT(Ink(R"(text="&amp;&amp;&amp;&amp;")").Width(), Px(30));
}

TEST_P(Label, ChangesAreSeenAtOnceAndEqualValuesRepaintNothing) {
    TestWindow window(Layout(R"(text="one")"));
    auto& label = window.Find<CLabelUI>(L"x");
    Render(window, Dpi());
    window.ShowWindow(true, false);
    PumpPending();
    const HWND hwnd = window.GetHWND();
    const auto isDirty = [&] { return GetUpdateRect(hwnd, nullptr, FALSE) != FALSE; };
    ASSERT_TRUE(PumpUntil([&] { return !isDirty(); }));
    label.SetText(L"one");
    label.SetTextColor(0xFF000000);
    label.SetFont(-1);
    EXPECT_FALSE(isDirty());
    label.SetTextColor(0xFF0000FF);
    EXPECT_TRUE(isDirty());
    ASSERT_TRUE(PumpUntil([&] { return !isDirty(); }));
    label.SetAttribute(L"align", L"right");
    EXPECT_TRUE(isDirty());
}

TEST_P(Label, TheRenderEngineMeasuresWhatIsDrawn) {
    TestWindow window(Layout(R"(text="Measured")"));
    const Picture picture = Render(window, Dpi());
    Rect needed;
    CPaintManagerUI& manager = window.PaintManager();
    CRenderEngine::DrawText(manager.GetPaintDC(), &manager, needed, L"Measured", 0xFF000000, -1, DT_CALCRECT);
    const Rect ink = picture.InkWithin({0, 0, picture.sizePx.cx, picture.sizePx.cy}, kWhite);
    EXPECT_NEAR(needed.Width(), ink.Width(), Px(4));
    EXPECT_GE(needed.Height(), ink.Height());
    Rect none;
    CRenderEngine::DrawText(manager.GetPaintDC(), &manager, none, L"", 0xFF000000, -1, DT_CALCRECT);
    EXPECT_EQ(none, Rect{});
}

TEST_P(Label, TheRenderEngineDrawsOnAnyDeviceContext) {
    TestWindow window(Layout(""));
    Render(window, Dpi());
    CPaintManagerUI& manager = window.PaintManager();
    const Size size{Px(200), Px(40)};
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), size.cx, -size.cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const HDC dc = CreateCompatibleDC(nullptr);
    const HBITMAP bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ original = SelectObject(dc, bitmap);
    const auto darkestAfter = [&](DWORD argb) {
        auto* const pixels = static_cast<std::uint32_t*>(bits);
        std::fill_n(pixels, size.cx * size.cy, kWhite);
        Rect place{0, 0, size.cx, size.cy};
        CRenderEngine::DrawText(dc, &manager, place, L"HHHH", argb, 7, DT_SINGLELINE | DT_VCENTER);
        GdiFlush();
        std::uint32_t found = 255;
        for (int i = 0; i < size.cx * size.cy; ++i) {
            found = std::min(found, pixels[i] & 0xFF);
        }
        return static_cast<int>(found);
    };
    EXPECT_EQ(darkestAfter(0xFF000000), 0);
    EXPECT_NEAR(darkestAfter(0x80000000), 127, 2);
    EXPECT_EQ(darkestAfter(0x00000000), 255);
    SelectObject(dc, original);
    DeleteObject(bitmap);
    DeleteDC(dc);
}

TEST(LabelAccess, IsTextWithANameOrNothing) {
    TestWindow window(R"(<Window size="220,120"><VerticalLayout><Label name="a" text="Hello"/><Label name="b"/>
                         <Label name="c" tooltip="Tip"/></VerticalLayout></Window>)");
    EXPECT_EQ(window.Find(L"a").GetAccessibleInfo().name, L"Hello");
    EXPECT_EQ(window.Find(L"a").GetAccessibleInfo().role, ROLE_SYSTEM_STATICTEXT);
    EXPECT_NE(window.Find(L"a").GetAccessibleInfo().state & STATE_SYSTEM_READONLY, 0u);
    EXPECT_EQ(window.Find(L"b").GetAccessibleInfo().role, 0);
    EXPECT_EQ(window.Find(L"c").GetAccessibleInfo().name, L"Tip");
}

}  // namespace
}  // namespace DuiLib::Test
