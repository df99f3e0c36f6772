// Buttons and options: looks by state, mouse and keyboard, selection.
#include "DuiLib/ButtonUI.h"

#include <oleacc.h>

#include "DuiLib/ContainerUI.h"
#include "DuiLib/OptionUI.h"
#include "DuiLib/UIMainQueue.h"
#include "Rendering.h"

namespace DuiLib::Test {
namespace {

using testing::PrintToStringParamName;

constexpr std::uint32_t kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF, kYellow = 0xFFFFFF00,
                        kGrey = 0xFF808080, kWhite = 0xFFFFFFFF;

void WriteColours() {
    const Size size{4, 4};
    const auto write = [&](const wchar_t* name, std::uint32_t color) {
        WriteImage(name, size, std::vector<std::uint32_t>(16, color));
    };
    write(L"red.png", kRed);
    write(L"green.png", kGreen);
    write(L"blue.png", kBlue);
    write(L"yellow.png", kYellow);
    write(L"grey.png", kGrey);
}

class Buttons : public testing::TestWithParam<int> {
  protected:
    Buttons() { WriteColours(); }
    int Dpi() const { return GetParam(); }
    // The colour at the middle of a control.
    std::uint32_t Look(TestWindow& window, const wchar_t* name) {
        const Picture picture = Render(window, Dpi());
        return picture.CenterOf(window.Find(name).GetPos());
    }
};

INSTANTIATE_TEST_SUITE_P(Scales, Buttons, testing::Values(96, 144, 192), PrintToStringParamName());

constexpr char kImageButton[] =
    R"(<Window size="200,100" bkcolor="#FFFFFFFF"><VerticalLayout><Button name="b" height="40"
    normalimage="red.png" hotimage="green.png" pushedimage="blue.png" disabledimage="grey.png"/>
    <Control/></VerticalLayout></Window>)";

TEST_P(Buttons, ShowTheImageOfTheirState) {
    TestWindow window(kImageButton);
    EXPECT_EQ(Look(window, L"b"), kRed);
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"b"));
    EXPECT_EQ(Look(window, L"b"), kGreen);
    window.Mouse(WM_LBUTTONDOWN, window.CenterOf(L"b"), MK_LBUTTON);
    EXPECT_EQ(Look(window, L"b"), kBlue);
    const Point outside{10, DipToPx(80, Dpi())};
    window.Mouse(WM_MOUSEMOVE, outside, MK_LBUTTON);
    EXPECT_EQ(Look(window, L"b"), kRed);
    EXPECT_NE(window.Find(L"b").GetState() & kStateCaptured, 0u);
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"b"), MK_LBUTTON);
    EXPECT_EQ(Look(window, L"b"), kBlue);
    window.Mouse(WM_LBUTTONUP, window.CenterOf(L"b"));
    EXPECT_EQ(Look(window, L"b"), kGreen);
    window.Mouse(WM_MOUSEMOVE, outside);
    EXPECT_EQ(Look(window, L"b"), kRed);
    window.Find(L"b").SetEnabled(false);
    EXPECT_EQ(Look(window, L"b"), kGrey);
}

TEST_P(Buttons, ImagesMayBeExchanged) {
    TestWindow window(kImageButton);
    auto& button = window.Find<CButtonUI>(L"b");
    EXPECT_EQ(Look(window, L"b"), kRed);
    button.SetNormalImage(L"file='yellow.png' reverse='true'");
    EXPECT_EQ(Look(window, L"b"), kYellow);
    EXPECT_EQ(button.GetNormalImage(), L"file='yellow.png' reverse='true'");
    button.SetNormalImage(L"");
    EXPECT_EQ(Look(window, L"b"), kWhite);
    button.SetPushedImage(L"grey.png");
    window.Mouse(WM_LBUTTONDOWN, window.CenterOf(L"b"), MK_LBUTTON);
    EXPECT_EQ(Look(window, L"b"), kGrey);
    window.Mouse(WM_LBUTTONUP, window.CenterOf(L"b"));
}

TEST_P(Buttons, BackgroundsFollowTheState) {
    TestWindow window(R"(<Window size="200,100" bkcolor="#FFFFFFFF"><VerticalLayout><Button name="b" height="40"
        borderround="10" bkcolor="#FFFF0000" hotbkcolor="#FF00FF00" pushedbkcolor="#FF0000FF" disabledbkcolor="#FF808080"/>
        <Button name="plain" height="40" bkcolor="#FFFFFF00"/></VerticalLayout></Window>)");
    EXPECT_EQ(Look(window, L"b"), kRed);
    const Rect px = window.Find(L"b").GetPos();
    EXPECT_EQ(Render(window, Dpi()).At({px.left, px.top}), kWhite);  // the corner is round
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"b"));
    EXPECT_EQ(Look(window, L"b"), kGreen);
    window.Mouse(WM_LBUTTONDOWN, window.CenterOf(L"b"), MK_LBUTTON);
    EXPECT_EQ(Look(window, L"b"), kBlue);
    window.Mouse(WM_LBUTTONUP, window.CenterOf(L"b"));
    window.Find(L"b").SetEnabled(false);
    EXPECT_EQ(Look(window, L"b"), kGrey);
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"plain"));
    window.Mouse(WM_LBUTTONDOWN, window.CenterOf(L"plain"), MK_LBUTTON);
    EXPECT_EQ(Look(window, L"plain"), kYellow);
    window.Mouse(WM_LBUTTONUP, window.CenterOf(L"plain"));
}

TEST_P(Buttons, OptionsShowThatTheyAreSelected) {
    TestWindow window(R"(<Window size="200,140" bkcolor="#FFFFFFFF"><VerticalLayout>
        <Option name="i" height="40" normalimage="red.png" selectedimage="green.png" selectedhotimage="blue.png"/>
        <Option name="c" height="40" bkcolor="#FFFF0000" selectedbkcolor="#FF00FF00" hotbkcolor="#FF0000FF"/>
        <Option name="f" height="40" normalimage="red.png" foreimage="yellow.png"/></VerticalLayout></Window>)");
    EXPECT_EQ(Look(window, L"i"), kRed);
    window.Find<COptionUI>(L"i").SetSelected(true);
    EXPECT_EQ(Look(window, L"i"), kGreen);
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"i"));
    EXPECT_EQ(Look(window, L"i"), kBlue);
    EXPECT_EQ(Look(window, L"c"), kRed);
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"c"));
    EXPECT_EQ(Look(window, L"c"), kBlue);
    window.Find<COptionUI>(L"c").SetSelected(true);
    EXPECT_EQ(Look(window, L"c"), kGreen);
    EXPECT_EQ(Look(window, L"f"), kYellow);
}

class ButtonInput : public testing::Test {
  protected:
    TestWindow window{
        R"(<Window size="300,200"><VerticalLayout><Button name="b" height="40"/><Button name="other" height="40"/>
        <Option name="switch" height="20"/>
        <Option name="o1" group="g" height="20" selected="true"/><Option name="o2" group="g" height="20"/>
        <Option name="o3" group="g" height="20" enabled="false"/><Option name="o4" group="g" height="20"/>
        </VerticalLayout></Window>)"};
    bool Selected(const wchar_t* name) { return window.Find<COptionUI>(name).IsSelected(); }
    // Runs messages until what was due by then has run.
    static void RunUntilAfter(unsigned ms) {
        bool ran = false;
        UIMainQueue::getInstance()->dispatchAfter(ms, [&] { ran = true; });
        EXPECT_TRUE(PumpUntil([&] { return ran; }));
    }
    // As this thread knows the keyboard.
    static void SetHeld(WORD key, bool held) {
        BYTE keys[256]{};
        GetKeyboardState(keys);
        keys[key] = held ? 0x80 : 0;
        SetKeyboardState(keys);
    }
};

TEST_F(ButtonInput, AClickSendsDownAndClick) {
    window.Click(L"b");
    EXPECT_EQ(window.Count(L"mouseenter b"), 1);
    EXPECT_EQ(window.Count(L"buttondown b"), 1);
    EXPECT_EQ(window.Count(L"click b"), 1);
    EXPECT_EQ(window.Find(L"b").GetState() & (kStatePushed | kStateCaptured), 0u);
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"other"));
    EXPECT_EQ(window.Count(L"mouseleave b"), 1);
}

TEST_F(ButtonInput, ReleasedElsewhereItIsNoClick) {
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"b"));
    window.Mouse(WM_LBUTTONDOWN, window.CenterOf(L"b"), MK_LBUTTON);
    window.Mouse(WM_LBUTTONUP, window.CenterOf(L"other"));
    EXPECT_FALSE(window.Got(L"click b"));
    EXPECT_FALSE(window.Got(L"click other"));
    EXPECT_EQ(window.PaintManager().GetCapture(), nullptr);
}

TEST_F(ButtonInput, DisablingEndsAPress) {
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"b"));
    window.Mouse(WM_LBUTTONDOWN, window.CenterOf(L"b"), MK_LBUTTON);
    window.Find(L"b").SetEnabled(false);
    EXPECT_EQ(window.PaintManager().GetCapture(), nullptr);
    EXPECT_EQ(window.Find(L"b").GetState() & (kStatePushed | kStateCaptured | kStateHot), 0u);
    window.Mouse(WM_LBUTTONUP, window.CenterOf(L"b"));
    window.Click(L"b");
    EXPECT_FALSE(window.Got(L"click b"));
    window.Find<CButtonUI>(L"b").Activate();
    EXPECT_FALSE(window.Got(L"click b"));
}

TEST_F(ButtonInput, SpaceAndEnterPress) {
    window.PaintManager().SetFocus(&window.Find(L"b"), true);
    window.SendMessage(WM_KEYDOWN, VK_SPACE, 1);
    EXPECT_NE(window.Find(L"b").GetState() & kStatePushed, 0u);
    EXPECT_FALSE(window.Got(L"click b"));
    window.SendMessage(WM_KEYUP, VK_SPACE, static_cast<LPARAM>(0xC0000001));
    EXPECT_EQ(window.Count(L"click b"), 1);
    EXPECT_EQ(window.Find(L"b").GetState() & kStatePushed, 0u);
    window.SendMessage(WM_KEYUP, VK_SPACE, static_cast<LPARAM>(0xC0000001));
    EXPECT_EQ(window.Count(L"click b"), 1) << "let go here, pressed elsewhere";
    window.Key(VK_RETURN);
    EXPECT_EQ(window.Count(L"click b"), 2);
}

TEST_F(ButtonInput, ASwitchTurnsAndThenClicks) {
    std::vector<std::wstring> seen;
    window.onNotify = [&](TNotifyUI& msg) {
        if (msg.type == NotifyType::kSelectChanged || msg.type == NotifyType::kClick) {
            seen.push_back(msg.type + std::to_wstring(msg.wParam));
        }
    };
    window.Click(L"switch");
    EXPECT_TRUE(Selected(L"switch"));
    window.Click(L"switch");
    EXPECT_FALSE(Selected(L"switch"));
    EXPECT_EQ(seen, (std::vector<std::wstring>{L"selectchanged1", L"click0", L"selectchanged0", L"click0"}));
}

TEST_F(ButtonInput, OneOptionOfAGroupIsSelected) {
    window.Click(L"o2");
    EXPECT_FALSE(Selected(L"o1"));
    EXPECT_TRUE(Selected(L"o2"));
    EXPECT_EQ(window.Count(L"selectchanged o1"), 1);
    EXPECT_EQ(window.Count(L"selectchanged o2"), 1);
    window.Click(L"o2");
    EXPECT_EQ(window.Count(L"selectchanged o2"), 1);
    EXPECT_EQ(window.Count(L"click o2"), 2);
    window.Find<COptionUI>(L"o4").SetSelected(true);
    EXPECT_FALSE(Selected(L"o2"));
    EXPECT_FALSE(window.Got(L"click o4"));
}

TEST_F(ButtonInput, ArrowsWalkAGroup) {
    const auto walksTo = [&](WORD key, const wchar_t* name) {
        window.Key(key);
        EXPECT_EQ(window.PaintManager().GetFocus(), &window.Find(name));
        EXPECT_TRUE(PumpUntil([&] { return Selected(name); }));
    };
    window.PaintManager().SetFocus(&window.Find(L"o1"), true);
    walksTo(VK_DOWN, L"o2");
    EXPECT_EQ(window.Count(L"click o2"), 1);
    walksTo(VK_RIGHT, L"o4");  // the disabled one is passed over
    walksTo(VK_RIGHT, L"o1");
    walksTo(VK_LEFT, L"o4");
    walksTo(VK_UP, L"o2");
}

TEST_F(ButtonInput, ArrowsThatGoOnClickWhereTheyRest) {
    window.PaintManager().SetFocus(&window.Find(L"o1"), true);
    window.Key(VK_DOWN);
    RunUntilAfter(100);
    EXPECT_FALSE(Selected(L"o2"));
    window.Key(VK_RIGHT);
    RunUntilAfter(150);  // the first key's time is over
    EXPECT_FALSE(window.Got(L"click o2") || window.Got(L"click o4"));
    EXPECT_TRUE(Selected(L"o1"));
    EXPECT_TRUE(PumpUntil([&] { return Selected(L"o4"); }));
    EXPECT_EQ(window.Count(L"click o4"), 1);
    EXPECT_EQ(window.Count(L"click o2"), 0);
    RunUntilAfter(250);
    EXPECT_EQ(window.Count(L"click o4"), 1) << "once";
}

TEST_F(ButtonInput, AHeldArrowClicksWhenItIsLetGo) {
    for (const WORD key : {VK_LEFT, VK_RIGHT, VK_UP, VK_DOWN}) {
        window.PaintManager().SetFocus(&window.Find(L"o1"), true);
        window.Find<COptionUI>(L"o1").SetSelected(true);
        window.notifications.clear();
        SetHeld(key, true);
        window.SendMessage(WM_KEYDOWN, VK_DOWN, 1);
        RunUntilAfter(450);
        EXPECT_FALSE(window.Got(L"click o2"));
        SetHeld(key, false);
        EXPECT_TRUE(PumpUntil([&] { return window.Got(L"click o2"); }));
    }
}

TEST_F(ButtonInput, LeftForAnotherAWalkedOptionIsClickedAtOnce) {
    window.PaintManager().SetFocus(&window.Find(L"o1"), true);
    SetHeld(VK_DOWN, true);  // so that it is not the time that does it
    window.SendMessage(WM_KEYDOWN, VK_DOWN, 1);
    window.PaintManager().SetFocus(&window.Find(L"b"), true);
    EXPECT_FALSE(Selected(L"o2")) << "not within the change of the focus";
    EXPECT_TRUE(PumpUntil([&] { return Selected(L"o2"); }));
    EXPECT_EQ(window.Count(L"click o2"), 1);
    SetHeld(VK_DOWN, false);
}

TEST_F(ButtonInput, AWalkThatHasRestedIsOver) {
    window.PaintManager().SetFocus(&window.Find(L"o1"), true);
    window.Key(VK_DOWN);
    window.Find<COptionUI>(L"o2").SetSelected(true);
    RunUntilAfter(300);
    window.Find<COptionUI>(L"o1").SetSelected(true);
    window.PaintManager().SetFocus(&window.Find(L"b"), true);
    RunUntilAfter(10);
    EXPECT_EQ(window.Count(L"click o2"), 0);
    EXPECT_TRUE(Selected(L"o1"));
}

TEST_F(ButtonInput, AClickEndsAWalk) {
    window.PaintManager().SetFocus(&window.Find(L"o1"), true);
    window.Key(VK_DOWN);
    window.Key(VK_RETURN);
    EXPECT_EQ(window.Count(L"click o2"), 1);
    window.Find<COptionUI>(L"o1").SetSelected(true);
    RunUntilAfter(250);
    EXPECT_EQ(window.Count(L"click o2"), 1);
    EXPECT_TRUE(Selected(L"o1"));
}

TEST_F(ButtonInput, AWalkBackToTheSelectedOptionIsNoClick) {
    window.PaintManager().SetFocus(&window.Find(L"o1"), true);
    window.Find<COptionUI>(L"o1").SetSelected(true);
    window.Key(VK_DOWN);
    window.Key(VK_UP);
    RunUntilAfter(250);
    EXPECT_EQ(window.PaintManager().GetFocus(), &window.Find(L"o1"));
    EXPECT_FALSE(window.Got(L"click o1"));
}

TEST_F(ButtonInput, AWalkEndsWithItsOption) {
    auto* const root = dynamic_cast<CContainerUI*>(window.PaintManager().GetRoot());
    window.PaintManager().SetFocus(&window.Find(L"o1"), true);
    window.Key(VK_DOWN);
    window.Find(L"o2").SetVisible(false);
    RunUntilAfter(250);
    EXPECT_FALSE(window.Got(L"click o2"));
    window.PaintManager().SetFocus(&window.Find(L"o1"), true);
    window.Key(VK_DOWN);
    root->RemoveAll();
    RunUntilAfter(250);
    EXPECT_FALSE(window.Got(L"click o4"));
}

TEST_F(ButtonInput, AnActionIsWalkedToAndClickedWithoutBeingSelected) {
    auto& action = window.Find<COptionUI>(L"o2");
    action.SetAttribute(L"action", L"true");
    window.Find<COptionUI>(L"o1").SetSelected(true);
    window.PaintManager().SetFocus(&window.Find(L"o1"), true);
    window.Key(VK_DOWN);
    EXPECT_EQ(window.PaintManager().GetFocus(), &action);
    RunUntilAfter(250);
    EXPECT_FALSE(window.Got(L"click o2"));
    window.Key(VK_RETURN);
    EXPECT_EQ(window.Count(L"click o2"), 1);
    window.Click(L"o2");
    EXPECT_EQ(window.Count(L"click o2"), 2);
    EXPECT_FALSE(action.IsSelected());
    EXPECT_TRUE(Selected(L"o1"));
    EXPECT_EQ(action.GetAccessibleInfo().role, ROLE_SYSTEM_PUSHBUTTON);
    EXPECT_EQ(action.GetAccessibleInfo().defaultAction, L"Press");
    // The program may still show it as the chosen one.
    action.SetSelected(true);
    EXPECT_FALSE(Selected(L"o1"));
}

TEST_F(ButtonInput, TabReachesOneOptionOfAGroup) {
    const auto stops = [&](const wchar_t* name) { return window.Find<COptionUI>(name).IsTabStop(); };
    EXPECT_TRUE(stops(L"o1"));
    EXPECT_FALSE(stops(L"o2"));
    window.Find<COptionUI>(L"o2").SetSelected(true);
    EXPECT_FALSE(stops(L"o1"));
    EXPECT_TRUE(stops(L"o2"));
    window.Find<COptionUI>(L"o2").SetSelected(false);
    EXPECT_TRUE(stops(L"o1"));
    EXPECT_FALSE(stops(L"o4"));
    EXPECT_TRUE(stops(L"switch"));
}

TEST_F(ButtonInput, AHandlerMayRemoveEveryOption) {
    auto* const root = dynamic_cast<CContainerUI*>(window.PaintManager().GetRoot());
    ASSERT_NE(root, nullptr);
    window.onNotify = [&](TNotifyUI& msg) {
        if (msg.type == NotifyType::kSelectChanged) {
            root->RemoveAll();
        }
    };
    window.Click(L"o2");
    EXPECT_EQ(window.PaintManager().FindControl(L"o2"), nullptr);
    EXPECT_EQ(window.Count(L"selectchanged o1"), 1);
    EXPECT_FALSE(window.Got(L"selectchanged o2"));
    EXPECT_FALSE(window.Got(L"click o2"));
}

TEST_F(ButtonInput, ScreenReadersAreToldRoleStateAndAction) {
    const auto info = [&](const wchar_t* name) { return window.Find(name).GetAccessibleInfo(); };
    EXPECT_EQ(info(L"b").role, ROLE_SYSTEM_PUSHBUTTON);
    EXPECT_EQ(info(L"b").defaultAction, L"Press");
    EXPECT_EQ(info(L"switch").role, ROLE_SYSTEM_CHECKBUTTON);
    EXPECT_EQ(info(L"switch").defaultAction, L"Check");
    EXPECT_EQ(info(L"o1").role, ROLE_SYSTEM_RADIOBUTTON);
    EXPECT_NE(info(L"o1").state & STATE_SYSTEM_CHECKED, 0);
    EXPECT_EQ(info(L"o2").state & STATE_SYSTEM_CHECKED, 0);
    auto& button = window.Find<CButtonUI>(L"b");
    EXPECT_FALSE(button.IsChecked());
    button.SetChecked(true);
    EXPECT_EQ(info(L"b").role, ROLE_SYSTEM_CHECKBUTTON);
    EXPECT_NE(info(L"b").state & STATE_SYSTEM_CHECKED, 0);
    EXPECT_EQ(info(L"b").defaultAction, L"Uncheck");
    window.Find(L"switch").DoDefaultAction();
    EXPECT_EQ(window.Count(L"click switch"), 1);
}

}  // namespace
}  // namespace DuiLib::Test
