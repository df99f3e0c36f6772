// Progress bars and sliders: what is filled, where the thumb is, and what mouse, wheel and keys do.
#include "DuiLib/SliderUI.h"

#include <oleacc.h>

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

}  // namespace
}  // namespace DuiLib::Test
