// Progress bars and sliders: what is filled, where the thumb is, and what mouse, wheel and keys do.
#include "DuiLib/SliderUI.h"

#include <oleacc.h>

#include <cstdlib>

#include "DuiLib/RenderEngine.h"
#include "Rendering.h"

namespace DuiLib::Test {
namespace {

constexpr std::uint32_t kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF, kYellow = 0xFFFFFF00;

class Bars : public testing::TestWithParam<int> {
  protected:
    Bars() {
        WriteImage(L"thumb.png", {4, 4}, std::vector<std::uint32_t>(16, kBlue));
        WriteImage(L"thumbhot.png", {4, 4}, std::vector<std::uint32_t>(16, kYellow));
    }
    int Dpi() const { return GetParam(); }
    int Px(int dip) const { return DipToPx(dip, Dpi()); }
    TestWindow window{R"(<Window size="260,120" bkcolor="#FFFFFFFF"><VerticalLayout inset="10,0,10,0">
        <Progress name="p" height="20" barcolor="#FFFF0000" forecolor="#FF00FF00" barheight="8"/>
        <Slider name="s" height="40" barcolor="#FFFF0000" forecolor="#FF00FF00" barheight="4" thumbimage="thumb.png"
                thumbhotimage="thumbhot.png"/></VerticalLayout></Window>)"};

    // How many units of the bar's middle row have that colour.
    int Length(const wchar_t* name, std::uint32_t color) {
        const Picture picture = Render(window, Dpi());
        const Rect& px = window.Find(name).GetPos();
        const int middle = (px.top + px.bottom) / 2;
        return PxToDip(picture.CountOf({px.left, middle, px.right, middle + 1}, color), Dpi());
    }
    // Where the thumb's left edge is, in units from the slider's left edge.
    int ThumbAt(std::uint32_t color = kBlue) {
        const Picture picture = Render(window, Dpi());
        const Rect& px = window.Find(L"s").GetPos();
        for (int x = px.left; x < px.right; ++x) {
            if (picture.At({x, (px.top + px.bottom) / 2}) == color) {
                return PxToDip(x - px.left, Dpi());
            }
        }
        return -1;
    }
};

INSTANTIATE_TEST_SUITE_P(Scales, Bars, testing::Values(96, 144, 192), testing::PrintToStringParamName());

TEST_P(Bars, AreFilledInProportion) {
    auto& progress = window.Find<CProgressUI>(L"p");
    for (const int value : {0, 25, 50, 100}) {
        progress.SetValue(value);
        EXPECT_NEAR(Length(L"p", kGreen), 2.4 * value, 4);
        EXPECT_NEAR(Length(L"p", kRed), 240 - 2.4 * value, 8);
    }
    // The value is kept; only the drawing stops at the ends.
    progress.SetValue(250);
    EXPECT_EQ(progress.GetValue(), 250);
    EXPECT_NEAR(Length(L"p", kGreen), 240, 2);
    progress.SetValue(-3);
    EXPECT_EQ(progress.GetValue(), -3);
    EXPECT_EQ(Length(L"p", kGreen), 0);
}

TEST_P(Bars, HaveTheirThickness) {
    const Picture picture = Render(window, Dpi());
    const Rect& px = window.Find(L"p").GetPos();
    const int middle = (px.left + px.right) / 2;
    const Rect ink = picture.InkWithin({middle, px.top, middle + 1, px.bottom}, 0xFFFFFFFF);
    EXPECT_EQ(ink.Height(), Px(8));
    EXPECT_NEAR(ink.top - px.top, Px(6), 1);
}

TEST_P(Bars, AnEmptyRangeIsEmpty) {
    window.Find(L"p").SetAttribute(L"max", L"0");
    window.Find<CProgressUI>(L"p").SetValue(5);
    EXPECT_EQ(Length(L"p", kGreen), 0);
}

TEST_P(Bars, TheThumbStandsAtTheValue) {
    auto& slider = window.Find<CSliderUI>(L"s");
    EXPECT_EQ(ThumbAt(), 0);
    slider.SetValue(50);
    EXPECT_NEAR(ThumbAt(), 110, 1);
    EXPECT_NEAR(Length(L"s", kGreen), 110, 3);
    slider.SetValue(100);
    EXPECT_EQ(ThumbAt(), 220);
    slider.SetValue(1000);
    EXPECT_EQ(slider.GetValue(), 1000);
    EXPECT_EQ(ThumbAt(), 220);
}

TEST_P(Bars, TheLeastValueFillsNothingBesideTheThumb) {
    WriteImage(L"clear.png", {4, 4}, std::vector<std::uint32_t>(16, 0));
    auto& slider = window.Find<CSliderUI>(L"s");
    slider.SetAttribute(L"thumbimage", L"clear.png");
    for (const bool rightToLeft : {false, true}) {
        const Direction direction(rightToLeft);
        for (const int least : {0, -100}) {
            slider.SetValue(least);
            EXPECT_EQ(Length(L"s", kGreen), 0);
        }
        slider.SetValue(1);
        EXPECT_NEAR(Length(L"s", kGreen), 12, 3);
    }
}

TEST_P(Bars, TheThumbStandsInTheMiddleOfItsHeight) {
    const Picture picture = Render(window, Dpi());
    const Rect& px = window.Find(L"s").GetPos();
    int top = px.top, bottom = px.bottom;
    while (top < bottom && picture.At({px.left + 1, top}) != kBlue) {
        ++top;
    }
    while (top < bottom && picture.At({px.left + 1, bottom - 1}) != kBlue) {
        --bottom;
    }
    ASSERT_LT(top, bottom);
    EXPECT_NEAR(top - px.top, px.bottom - bottom, 1);
}

TEST_P(Bars, AThumbThatIsPressedHasALookOfItsOwnOrTheOneUnderThePointer) {
    Render(window, Dpi());
    const Point at{window.Find(L"s").GetPos().left + 2, window.CenterOf(L"s").y};
    const auto press = [&] {
        window.Mouse(WM_MOUSEMOVE, at);
        window.Mouse(WM_LBUTTONDOWN, at, MK_LBUTTON);
    };
    press();
    EXPECT_NE(ThumbAt(kYellow), -1) << "without one of its own";
    window.Mouse(WM_LBUTTONUP, at);
    WriteImage(L"thumbpushed.png", {4, 4}, std::vector<std::uint32_t>(16, 0xFF404040));
    window.Find(L"s").SetAttribute(L"thumbpushedimage", L"thumbpushed.png");
    EXPECT_NE(ThumbAt(kYellow), -1) << "not pressed";
    press();
    EXPECT_NE(ThumbAt(0xFF404040), -1);
    window.Mouse(WM_LBUTTONUP, at);
}

TEST_P(Bars, RightToLeftTheLowEndIsOnTheRight) {
    const Direction direction(true);
    auto& slider = window.Find<CSliderUI>(L"s");
    slider.SetValue(25);
    EXPECT_NEAR(ThumbAt(), 165, 1);
    window.Find<CProgressUI>(L"p").SetValue(25);
    const Picture picture = Render(window, Dpi());
    const Rect& px = window.Find(L"p").GetPos();
    EXPECT_EQ(picture.At({px.right - Px(20), (px.top + px.bottom) / 2}), kGreen);
    EXPECT_EQ(picture.At({px.left + Px(20), (px.top + px.bottom) / 2}), kRed);
    window.PaintManager().SetFocus(&slider, true);
    window.Key(VK_LEFT);
    EXPECT_EQ(slider.GetValue(), 26);
    const Point left{slider.GetPos().left + Px(10), window.CenterOf(L"s").y};
    window.Mouse(WM_LBUTTONDOWN, left, MK_LBUTTON);
    window.Mouse(WM_LBUTTONUP, left);
    EXPECT_EQ(slider.GetValue(), 100);
}

TEST_P(Bars, DraggingFollowsThePointer) {
    auto& slider = window.Find<CSliderUI>(L"s");
    Render(window, Dpi());
    std::vector<std::wstring> seen;
    window.onNotify = [&](TNotifyUI& msg) {
        if (msg.type.ends_with(L"valuechanged")) {
            EXPECT_EQ(static_cast<int>(msg.wParam), slider.GetValue());
            seen.push_back(msg.type + L" " + std::to_wstring(msg.wParam));
        }
    };
    const Rect px = slider.GetPos();
    const int y = window.CenterOf(L"s").y;
    const auto at = [&](int dip) { return Point{px.left + Px(dip), y}; };
    window.Mouse(WM_MOUSEMOVE, at(6));
    window.Mouse(WM_LBUTTONDOWN, at(6), MK_LBUTTON);  // on the thumb, left of its middle
    EXPECT_EQ(slider.GetValue(), 0);
    window.Mouse(WM_MOUSEMOVE, at(6 + 55), MK_LBUTTON);
    EXPECT_EQ(slider.GetValue(), 25);
    slider.SetValue(80);  // the hand wins
    EXPECT_EQ(slider.GetValue(), 25);
    window.Mouse(WM_MOUSEMOVE, {px.left + Px(6 + 110), y + Px(300)}, MK_LBUTTON);
    EXPECT_EQ(slider.GetValue(), 50);
    window.Mouse(WM_MOUSEMOVE, at(5000), MK_LBUTTON);
    window.Mouse(WM_LBUTTONUP, at(5000));
    EXPECT_EQ(seen, (std::vector<std::wstring>{L"movevaluechanged 25", L"movevaluechanged 50", L"movevaluechanged 100",
                                               L"valuechanged 100"}));
    EXPECT_EQ(window.PaintManager().GetCapture(), nullptr);
    slider.SetValue(80);
    EXPECT_EQ(slider.GetValue(), 80);
    EXPECT_EQ(seen.size(), 4u);
}

TEST_P(Bars, APressBesideTheThumbMovesItThere) {
    auto& slider = window.Find<CSliderUI>(L"s");
    Render(window, Dpi());
    window.Click(L"s");
    EXPECT_NEAR(slider.GetValue(), 50, 1);
    EXPECT_EQ(window.Count(L"movevaluechanged s"), 1);
    EXPECT_EQ(window.Count(L"valuechanged s"), 1);
    window.Click(L"s");  // now on the thumb: nothing moves
    EXPECT_EQ(window.Count(L"valuechanged s"), 1);
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"s"));
    EXPECT_GT(ThumbAt(kYellow), 0);
}

TEST_P(Bars, StepsAreKept) {
    auto& slider = window.Find<CSliderUI>(L"s");
    slider.SetAttribute(L"step", L"30");
    Render(window, Dpi());
    window.Click(L"s");
    EXPECT_EQ(slider.GetValue(), 60);
    slider.SetAttribute(L"min", L"10");
    const Point end{slider.GetPos().right - 1, window.CenterOf(L"s").y};
    window.Mouse(WM_LBUTTONDOWN, end, MK_LBUTTON);
    window.Mouse(WM_LBUTTONUP, end);
    EXPECT_EQ(slider.GetValue(), 100);  // the end can be reached although it is no whole step
}

TEST_P(Bars, LosingTheCaptureEndsADrag) {
    auto& slider = window.Find<CSliderUI>(L"s");
    Render(window, Dpi());
    window.Mouse(WM_LBUTTONDOWN, window.CenterOf(L"s"), MK_LBUTTON);
    slider.SetEnabled(false);
    EXPECT_EQ(window.PaintManager().GetCapture(), nullptr);
    EXPECT_EQ(window.Count(L"valuechanged s"), 1);
    window.Mouse(WM_MOUSEMOVE, {slider.GetPos().left, window.CenterOf(L"s").y}, MK_LBUTTON);
    EXPECT_NEAR(slider.GetValue(), 50, 1);
}

TEST_P(Bars, KeysAndWheelStep) {
    auto& slider = window.Find<CSliderUI>(L"s");
    Render(window, Dpi());
    window.PaintManager().SetFocus(&slider, true);
    const auto expectAfter = [&](WORD key, int value) {
        window.Key(key);
        EXPECT_EQ(slider.GetValue(), value) << "key " << key;
    };
    expectAfter(VK_LEFT, 0);
    EXPECT_FALSE(window.Got(L"valuechanged s"));
    expectAfter(VK_RIGHT, 1);
    expectAfter(VK_UP, 2);
    expectAfter(VK_DOWN, 1);
    expectAfter(VK_PRIOR, 11);
    expectAfter(VK_NEXT, 1);
    expectAfter(VK_END, 100);
    expectAfter(VK_RIGHT, 100);
    expectAfter(VK_HOME, 0);
    EXPECT_EQ(window.Count(L"valuechanged s"), 7);
    slider.SetValue(500);
    expectAfter(VK_LEFT, 99);
    POINT screen{window.CenterOf(L"s").x, window.CenterOf(L"s").y};
    ClientToScreen(window.GetHWND(), &screen);
    window.SendMessage(WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(-WHEEL_DELTA)), MAKELPARAM(screen.x, screen.y));
    EXPECT_EQ(slider.GetValue(), 98);
    // A fine wheel: two halves of a notch.
    window.SendMessage(WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA / 2), MAKELPARAM(screen.x, screen.y));
    EXPECT_EQ(slider.GetValue(), 98);
    window.SendMessage(WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA / 2), MAKELPARAM(screen.x, screen.y));
    EXPECT_EQ(slider.GetValue(), 99);
}

TEST_P(Bars, ScreenReadersReadAndSetTheValue) {
    auto& slider = window.Find<CSliderUI>(L"s");
    slider.SetValue(30);
    EXPECT_EQ(slider.GetAccessibleInfo().role, ROLE_SYSTEM_SLIDER);
    EXPECT_EQ(slider.GetAccessibleInfo().value, L"30");
    EXPECT_TRUE(slider.SetAccessibleValue(L"70"));
    EXPECT_EQ(slider.GetValue(), 70);
    EXPECT_EQ(window.Count(L"valuechanged s"), 1);
    for (const wchar_t* bad : {L"", L"x", L"101", L"-1", L"7.5"}) {
        EXPECT_FALSE(slider.SetAccessibleValue(bad));
    }
    EXPECT_EQ(slider.GetValue(), 70);
    EXPECT_EQ(window.Find(L"p").GetAccessibleInfo().role, ROLE_SYSTEM_PROGRESSBAR);
    EXPECT_FALSE(window.Find(L"p").SetAccessibleValue(L"3"));
}

TEST_P(Bars, TheNameHasTheValueThatIsSeen) {
    auto& slider = window.Find<CSliderUI>(L"s");
    slider.SetValue(30);
    slider.SetAttribute(L"showvalue", L"true");
    EXPECT_EQ(slider.GetAccessibleInfo().name, L"");
    slider.SetAttribute(L"accname", L"Strength");
    EXPECT_EQ(slider.GetAccessibleInfo().name, L"Strength 30");
    slider.SetValue(31);
    EXPECT_EQ(slider.GetAccessibleInfo().name, L"Strength 31");
    slider.SetAttribute(L"showvalue", L"false");
    EXPECT_EQ(slider.GetAccessibleInfo().name, L"Strength");
}

// A slider of 0 to 10 that shows its value and goes back to 5, 240 units wide.
class Levels : public testing::TestWithParam<int> {
  protected:
    Levels() { WriteImage(L"thumb.png", {4, 4}, std::vector<std::uint32_t>(16, kBlue)); }
    int Dpi() const { return GetParam(); }
    int Px(int dip) const { return DipToPx(dip, Dpi()); }
    CSliderUI& Slider() { return window.Find<CSliderUI>(L"s"); }
    // How wide the widest number is, in pixels.
    int NumberPx() {
        Rect rect;
        CRenderEngine::DrawText(window.PaintManager().GetPaintDC(), &window.PaintManager(), rect, L"10", 0, -1,
                                DT_CALCRECT);
        return rect.Width();
    }
    // The end of the slider that belongs to the number, with the gaps on both of its sides.
    int EndPx() { return Px(12) + NumberPx() + Px(6); }
    // What is drawn there.
    Rect Ink(bool atLeft = false) {
        const Picture picture = Render(window, Dpi());
        const Rect& px = Slider().GetPos();
        const Rect part = atLeft ? Rect{px.left, px.top, px.left + EndPx(), px.bottom}
                                 : Rect{px.right - EndPx(), px.top, px.right, px.bottom};
        return picture.InkWithin(part, 0xFFFFFFFF);
    }
    void DoubleClick(Point px) {
        window.Mouse(WM_LBUTTONDOWN, px, MK_LBUTTON);
        window.Mouse(WM_LBUTTONUP, px);
        window.Mouse(WM_LBUTTONDBLCLK, px, MK_LBUTTON);
        window.Mouse(WM_LBUTTONUP, px);
    }
    TestWindow window{R"(<Window size="260,60" bkcolor="#FFFFFFFF"><VerticalLayout inset="10,0,10,0">
        <Slider name="s" height="40" min="0" max="10" barcolor="#FFFF0000" forecolor="#FF00FF00" barheight="4"
                thumbimage="thumb.png" showvalue="true" resetvalue="5"/></VerticalLayout></Window>)"};
};

INSTANTIATE_TEST_SUITE_P(Scales, Levels, testing::Values(96, 144), testing::PrintToStringParamName());

TEST_P(Levels, StandAsNumbersBesideTheBar) {
    Slider().SetValue(10);
    const Picture picture = Render(window, Dpi());
    const Rect& px = Slider().GetPos();
    const int end = px.right - EndPx();
    // The thumb ends where the number's room begins.
    EXPECT_EQ(picture.At({end - 2, (px.top + px.bottom) / 2}), kBlue);
    EXPECT_EQ(picture.At({end + 1, (px.top + px.bottom) / 2}), 0xFFFFFFFFu);
    const Rect ten = Ink();
    EXPECT_NEAR(ten.right, px.right - Px(6), Px(3));
    EXPECT_LE(ten.right, px.right - Px(6));  // the focus ring has room
    EXPECT_GE(ten.left, end + Px(10));
    EXPECT_LE(std::abs((ten.top + ten.bottom) / 2 - (px.top + px.bottom) / 2), Px(3));
    Slider().SetValue(0);
    EXPECT_GT(Ink().left, ten.left + NumberPx() / 4);  // one digit, at the end
    Slider().SetAttribute(L"showvalue", L"false");
    Slider().SetValue(10);
    EXPECT_EQ(Render(window, Dpi()).At({px.right - 2, (px.top + px.bottom) / 2}), kBlue);
}

TEST_P(Levels, RightToLeftTheNumberStandsAtTheLeft) {
    const Direction direction(true);
    Slider().SetValue(10);
    const Picture picture = Render(window, Dpi());
    const Rect& px = Slider().GetPos();
    EXPECT_EQ(picture.At({px.left + EndPx() + 1, (px.top + px.bottom) / 2}), kBlue);
    EXPECT_GE(Ink(true).left, px.left + Px(6));
    EXPECT_NEAR(Ink(true).left, px.left + Px(6), Px(3));
    Slider().SetValue(0);
    EXPECT_EQ(Render(window, Dpi()).At({px.right - 2, (px.top + px.bottom) / 2}), kBlue);
}

TEST_P(Levels, TheNumberHasTheTextsColourAndRoom) {
    Slider().SetAttribute(L"textcolor", L"#FFFF00FF");
    Slider().SetAttribute(L"height", L"auto");
    const Picture picture = Render(window, Dpi());
    const Rect& px = Slider().GetPos();
    EXPECT_GT(picture.CountOf({px.right - NumberPx(), px.top, px.right, px.bottom}, 0xFFFF00FF), 0);
    EXPECT_EQ(px.Height(), Px(20));  // the thumb's
    Slider().SetAttribute(L"thumbsize", L"4,4");
    Render(window, Dpi());
    EXPECT_GE(Slider().GetPos().Height(), Px(14));  // the number's
    EXPECT_LT(Slider().GetPos().Height(), Px(20));
}

TEST_P(Levels, ADoubleClickBringsTheUsualValueBack) {
    Slider().SetValue(9);
    Render(window, Dpi());
    const Rect& px = Slider().GetPos();
    const Point beside{px.left + Px(40), (px.top + px.bottom) / 2};
    DoubleClick(beside);
    EXPECT_EQ(Slider().GetValue(), 5);
    EXPECT_EQ(window.notifications.back(), L"valuechanged s");
    EXPECT_EQ(window.PaintManager().GetCapture(), nullptr);
    const auto told = window.notifications.size();
    Slider().SetValue(5);
    window.Mouse(WM_LBUTTONDBLCLK, beside, MK_LBUTTON);
    window.Mouse(WM_LBUTTONUP, beside);
    EXPECT_EQ(window.notifications.size(), told);  // nothing changed
    Slider().SetValue(9);
    Slider().SetEnabled(false);
    window.Mouse(WM_LBUTTONDBLCLK, beside, MK_LBUTTON);
    EXPECT_EQ(Slider().GetValue(), 9);
}

TEST_P(Levels, OnTheNumberOnlyADoubleClickDoesSomething) {
    Slider().SetValue(7);
    Render(window, Dpi());
    const Rect& px = Slider().GetPos();
    const Point number{px.right - Px(4), (px.top + px.bottom) / 2};
    window.Mouse(WM_LBUTTONDOWN, number, MK_LBUTTON);
    EXPECT_EQ(Slider().GetValue(), 7);
    EXPECT_EQ(window.PaintManager().GetCapture(), nullptr);
    window.Mouse(WM_LBUTTONUP, number);
    window.Mouse(WM_LBUTTONDBLCLK, number, MK_LBUTTON);
    EXPECT_EQ(Slider().GetValue(), 5);
}

TEST_P(Bars, WithoutAUsualValueTheSecondPressIsOneMore) {
    Render(window, Dpi());
    window.Click(L"s");
    EXPECT_NEAR(window.Find<CSliderUI>(L"s").GetValue(), 50, 1);
    const Rect& px = window.Find(L"s").GetPos();
    const Point end{px.right - 1, (px.top + px.bottom) / 2};
    window.Mouse(WM_LBUTTONDBLCLK, end, MK_LBUTTON);
    window.Mouse(WM_LBUTTONUP, end);
    EXPECT_EQ(window.Find<CSliderUI>(L"s").GetValue(), 100);
}

}  // namespace
}  // namespace DuiLib::Test
