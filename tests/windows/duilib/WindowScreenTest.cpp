// A window and its screen: scale and size that fit the work area, at start and when scale, area or screen change.
#include "DuiLib/UIMainQueue.h"
#include "TestWindow.h"
#include "tests/support/FakeScreens.h"

namespace DuiLib::Test {
namespace {

using harness::FakeScreens;

constexpr char kLarge[] = R"(<Window size="1040,604"><VerticalLayout name="root"><Control name="top" height="100"/>
  <Control name="rest"/></VerticalLayout></Window>)";
constexpr char kSmall[] = R"(<Window size="100,80"><Control/></Window>)";

FakeScreens::Screen ScreenAt(int left, int top, int width, int height, int taskBar, UINT dpi) {
    return {{left, top, left + width, top + height}, {left, top, left + width, top + height - taskBar}, dpi};
}

RECT PlaceOf(CWindowWnd& window) {
    RECT place{};
    GetWindowRect(window.GetHWND(), &place);
    return place;
}

Size SizeOf(CWindowWnd& window) {
    const RECT place = PlaceOf(window);
    return {static_cast<int>(place.right - place.left), static_cast<int>(place.bottom - place.top)};
}

bool IsWithin(const RECT& inner, const RECT& outer) {
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

void MoveTo(CWindowWnd& window, int x, int y) {
    SetWindowPos(window.GetHWND(), nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

LRESULT TellDpi(CWindowWnd& window, int dpi, const RECT& place) {
    return window.SendMessage(WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&place));
}

// Counts what a window says of having followed its screen.
class FittingWindow : public TestWindow {
  public:
    using TestWindow::TestWindow;
    int fitted = 0;
    int movesWithin = 0;  // messages of a move or size while it was being fitted

  protected:
    void OnFitted() override {
        EXPECT_FALSE(IsFitting());
        ++fitted;
    }
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        movesWithin += (message == WM_SIZE || message == WM_MOVE) && IsFitting() ? 1 : 0;
        return TestWindow::HandleMessage(message, wParam, lParam);
    }
};

struct Example {
    int width, height, taskBar;
    UINT dpi;
    int fitting;
    Size sizePx;
};

class WindowOnScreen : public testing::TestWithParam<Example> {};

TEST_P(WindowOnScreen, FitsItAtStart) {
    const Example& example = GetParam();
    const FakeScreens screens({ScreenAt(0, 0, example.width, example.height, example.taskBar, example.dpi)});
    TestWindow window(kLarge);
    window.CenterWindow();
    EXPECT_EQ(window.PaintManager().GetDPI(), example.fitting);
    EXPECT_EQ(SizeOf(window), example.sizePx);
    EXPECT_TRUE(IsWithin(PlaceOf(window), screens.screens[0].work));
    EXPECT_EQ(window.Find(L"top").GetPos().Height(), DipToPx(100, example.fitting));
}

TEST_P(WindowOnScreen, FitsItAfterAChangeOfScale) {
    const Example& example = GetParam();
    FakeScreens screens({ScreenAt(0, 0, example.width, example.height, example.taskBar, 72)});
    TestWindow window(kLarge);
    window.CenterWindow();
    ASSERT_EQ(window.PaintManager().GetDPI(), 72);
    const RECT before = PlaceOf(window);
    screens.screens[0].dpi = example.dpi;
    // What the system suggests: the same corner, and a size in proportion.
    const int dpi = static_cast<int>(example.dpi);
    EXPECT_EQ(TellDpi(window, dpi,
                      {before.left, before.top, before.left + MulDiv(780, dpi, 72), before.top + MulDiv(453, dpi, 72)}),
              0);
    EXPECT_EQ(window.PaintManager().GetDPI(), example.fitting);
    EXPECT_EQ(SizeOf(window), example.sizePx);
    EXPECT_TRUE(IsWithin(PlaceOf(window), screens.screens[0].work));
}

INSTANTIATE_TEST_SUITE_P(
    Usual, WindowOnScreen,
    testing::Values(Example{1366, 768, 50, 120, 108, {1170, 680}}, Example{1920, 1080, 80, 192, 156, {1690, 982}},
                    Example{1280, 720, 60, 144, 96, {1040, 604}}, Example{2560, 1600, 60, 144, 144, {1560, 906}},
                    Example{3840, 2160, 120, 288, 288, {3120, 1812}}, Example{800, 440, 40, 96, 72, {780, 400}}),
    [](const auto& example) { return std::to_string(example.param.width) + "at" + std::to_string(example.param.dpi); });

// --- work area and resolution

TEST(WindowScreen, FollowsTheWorkArea) {
    FakeScreens screens({ScreenAt(0, 0, 1366, 768, 0, 96)});
    FittingWindow window(kLarge);
    MoveTo(window, 200, 160);
    screens.screens[0].work = {60, 40, 1366, 600};
    window.SendMessage(WM_SETTINGCHANGE, SPI_SETWORKAREA);
    EXPECT_EQ(window.PaintManager().GetDPI(), 84);
    EXPECT_EQ(SizeOf(window), (Size{910, 529}));
    EXPECT_EQ(PlaceOf(window).left, 200);
    EXPECT_EQ(PlaceOf(window).top, 71);
    EXPECT_EQ(window.fitted, 1);
    EXPECT_GT(window.movesWithin, 0);
    window.SendMessage(WM_SETTINGCHANGE, SPI_SETWORKAREA);
    EXPECT_EQ(window.fitted, 1) << "nothing was changed";
    screens.screens[0].work = screens.screens[0].all;
    window.SendMessage(WM_SETTINGCHANGE, SPI_SETMOUSE);
    EXPECT_EQ(window.fitted, 1) << "another setting";
    window.SendMessage(WM_SETTINGCHANGE, SPI_SETWORKAREA);
    EXPECT_EQ(window.PaintManager().GetDPI(), 96);
    EXPECT_EQ(SizeOf(window), (Size{1040, 604}));
}

TEST(WindowScreen, MovesOutOfTheWayOfATaskBar) {
    FakeScreens screens({ScreenAt(0, 0, 1366, 768, 0, 96)});
    FittingWindow window(kLarge);
    MoveTo(window, 200, 160);
    screens.screens[0].work.bottom = 700;
    window.SendMessage(WM_SETTINGCHANGE, SPI_SETWORKAREA);
    EXPECT_EQ(SizeOf(window), (Size{1040, 604}));
    EXPECT_EQ(PlaceOf(window).top, 96);
    EXPECT_EQ(window.fitted, 1);
}

TEST(WindowScreen, FollowsTheResolution) {
    FakeScreens screens({ScreenAt(0, 0, 2560, 1600, 0, 192)});
    FittingWindow window(kLarge);
    MoveTo(window, 400, 300);
    screens.screens[0] = ScreenAt(0, 0, 1280, 800, 40, 192);
    window.SendMessage(WM_DISPLAYCHANGE, 32, MAKELPARAM(1280, 800));
    EXPECT_EQ(window.PaintManager().GetDPI(), 108);
    EXPECT_EQ(SizeOf(window), (Size{1170, 680}));
    EXPECT_TRUE(IsWithin(PlaceOf(window), screens.screens[0].work));
    EXPECT_EQ(window.fitted, 1);
}

TEST(WindowScreen, AMinimisedWindowFollowsWhenItComesBack) {
    FakeScreens screens({ScreenAt(0, 0, 1366, 768, 0, 96)});
    FittingWindow window(kLarge);
    window.ShowWindow();
    ::ShowWindow(window.GetHWND(), SW_MINIMIZE);
    ASSERT_TRUE(IsIconic(window.GetHWND()));
    screens.screens[0].work.bottom = 600;
    window.SendMessage(WM_SETTINGCHANGE, SPI_SETWORKAREA);
    EXPECT_EQ(window.PaintManager().GetDPI(), 96);
    ::ShowWindow(window.GetHWND(), SW_RESTORE);
    EXPECT_EQ(window.PaintManager().GetDPI(), 84);
    EXPECT_EQ(SizeOf(window), (Size{910, 529}));
    EXPECT_EQ(window.fitted, 1);
    ::ShowWindow(window.GetHWND(), SW_HIDE);
    ::ShowWindow(window.GetHWND(), SW_SHOW);
    EXPECT_EQ(window.fitted, 1);
}

TEST(WindowScreen, AWindowThatTheUserSizesKeepsItsSize) {
    FakeScreens screens({ScreenAt(0, 0, 1366, 768, 0, 96)});
    FittingWindow window(R"(<Window size="1040,604" minsize="100,100"><Control/></Window>)", WS_POPUP | WS_THICKFRAME);
    screens.screens[0].work.bottom = 600;
    window.SendMessage(WM_SETTINGCHANGE, SPI_SETWORKAREA);
    EXPECT_EQ(SizeOf(window), (Size{1040, 604}));
    const RECT suggested{10, 20, 1570, 926};
    TellDpi(window, 144, suggested);
    EXPECT_EQ(window.PaintManager().GetDPI(), 144);
    const RECT place = PlaceOf(window);
    EXPECT_TRUE(EqualRect(&place, &suggested));
    EXPECT_EQ(window.fitted, 1);
}

// --- two screens: 96 DPI to the left, 192 to the right

class TwoScreens : public testing::Test {
  protected:
    FakeScreens screens_{{ScreenAt(0, 0, 1300, 1000, 0, 96), ScreenAt(1300, 0, 1100, 1000, 40, 192)}};
};

TEST_F(TwoScreens, AWindowWithoutAnOwnerIsMadeWhereThePointerIs) {
    screens_.cursor = POINT{2000, 500};
    TestWindow right(kLarge);
    EXPECT_EQ(PlaceOf(right).left, 1301);
    EXPECT_EQ(right.PaintManager().GetDPI(), 96);  // of 192, what fits
    EXPECT_EQ(SizeOf(right), (Size{1040, 604}));
    screens_.cursor = POINT{20, 500};
    TestWindow left(kSmall);
    EXPECT_EQ(PlaceOf(left).left, 1);
    EXPECT_EQ(left.PaintManager().GetDPI(), 96);
}

TEST_F(TwoScreens, OrOnTheScreenWhoseTaskBarStartedTheProgram) {
    screens_.cursor = POINT{20, 500};
    screens_.start.hStdOutput = FakeScreens::Handle(1);
    TestWindow right(kSmall);
    EXPECT_EQ(PlaceOf(right).left, 1301);
    EXPECT_EQ(right.PaintManager().GetDPI(), 192);
    screens_.start.dwFlags = STARTF_USESTDHANDLES;  // it is a file then
    TestWindow left(kSmall);
    EXPECT_EQ(PlaceOf(left).left, 1);
    screens_.start.dwFlags = 0;
    screens_.start.hStdOutput = FakeScreens::Handle(2);  // not there any more
    TestWindow again(kSmall);
    EXPECT_EQ(PlaceOf(again).left, 1);
}

TEST_F(TwoScreens, ABoxIsMadeOnItsOwnersScreen) {
    screens_.cursor = POINT{20, 500};
    screens_.start.hStdOutput = FakeScreens::Handle(0);
    TestWindow owner(kLarge);
    MoveTo(owner, 1310, 20);
    TestWindow box(kSmall, WS_OVERLAPPEDWINDOW, owner.GetHWND());
    EXPECT_EQ(PlaceOf(box).left, 1301);
    EXPECT_EQ(PlaceOf(box).top, 1);
    EXPECT_EQ(box.PaintManager().GetDPI(), 192);
    EXPECT_EQ(SizeOf(box), (Size{200, 160}));
}

TEST_F(TwoScreens, AWindowFollowsWhereItIsPut) {
    screens_.cursor = POINT{20, 500};
    FittingWindow window(kSmall);
    EXPECT_EQ(SizeOf(window), (Size{100, 80}));
    MoveTo(window, 1500, 100);
    EXPECT_EQ(window.PaintManager().GetDPI(), 192);
    EXPECT_EQ(SizeOf(window), (Size{200, 160}));
    EXPECT_EQ(PlaceOf(window).left, 1500);
    EXPECT_EQ(window.fitted, 1);
    MoveTo(window, 1600, 100);
    EXPECT_EQ(window.fitted, 1);
    MoveTo(window, 100, 100);
    EXPECT_EQ(SizeOf(window), (Size{100, 80}));
    EXPECT_EQ(window.fitted, 2);
}

TEST_F(TwoScreens, OneThatFitsBothStaysBetweenThem) {
    screens_.screens[1].dpi = 96;
    screens_.cursor = POINT{20, 500};
    FittingWindow window(kSmall);
    MoveTo(window, 1280, 960);
    EXPECT_EQ(PlaceOf(window).left, 1280);
    EXPECT_EQ(PlaceOf(window).top, 960);
    EXPECT_EQ(window.fitted, 0);
}

TEST_F(TwoScreens, DraggedItFollowsWhenItIsLetGo) {
    screens_.screens[1] = ScreenAt(1300, 0, 900, 500, 0, 96);
    screens_.cursor = POINT{20, 500};
    FittingWindow window(kLarge);
    window.SendMessage(WM_ENTERSIZEMOVE);
    MoveTo(window, 1200, 300);
    EXPECT_EQ(SizeOf(window), (Size{1040, 604}));
    EXPECT_EQ(PlaceOf(window).left, 1200);
    window.SendMessage(WM_EXITSIZEMOVE);
    EXPECT_EQ(window.PaintManager().GetDPI(), 72);
    EXPECT_EQ(SizeOf(window), (Size{780, 453}));
    EXPECT_EQ(PlaceOf(window).left, 1300);
    EXPECT_EQ(PlaceOf(window).top, 47);
    EXPECT_EQ(window.fitted, 1);
}

TEST_F(TwoScreens, DraggedToAnotherScaleItStaysUnderThePointer) {
    screens_.cursor = POINT{20, 500};
    FittingWindow window(kSmall);
    window.SendMessage(WM_ENTERSIZEMOVE);
    TellDpi(window, 192, {1250, 950, 1450, 1110});
    EXPECT_EQ(PlaceOf(window).left, 1250);
    EXPECT_EQ(PlaceOf(window).top, 950);
    EXPECT_EQ(SizeOf(window), (Size{200, 160}));
    window.SendMessage(WM_EXITSIZEMOVE);
    EXPECT_EQ(PlaceOf(window).left, 1250);
    EXPECT_EQ(window.fitted, 1);
}

TEST_F(TwoScreens, TheSizeOfAnotherScaleIsThatWhichFits) {
    screens_.cursor = POINT{20, 500};
    TestWindow window(kLarge);
    MoveTo(window, 1310, 20);
    SIZE size{};
    EXPECT_EQ(window.SendMessage(WM_GETDPISCALEDSIZE, 192, reinterpret_cast<LPARAM>(&size)), TRUE);
    EXPECT_EQ(size.cx, 1040);
    EXPECT_EQ(size.cy, 604);
    EXPECT_EQ(window.SendMessage(WM_GETDPISCALEDSIZE, 84, reinterpret_cast<LPARAM>(&size)), TRUE);
    EXPECT_EQ(size.cx, 910);
    screens_.screens[1].work.bottom = 300;
    EXPECT_EQ(window.SendMessage(WM_GETDPISCALEDSIZE, 96, reinterpret_cast<LPARAM>(&size)), TRUE);
    EXPECT_EQ(size.cx, 780);
    EXPECT_EQ(size.cy, 300);
    TestWindow sized(R"(<Window size="100,80" minsize="10,10"><Control/></Window>)", WS_POPUP | WS_THICKFRAME);
    EXPECT_EQ(sized.SendMessage(WM_GETDPISCALEDSIZE, 192, reinterpret_cast<LPARAM>(&size)), FALSE);
}

TEST_F(TwoScreens, AnOpenBoxStaysOverItsOwner) {
    screens_.cursor = POINT{20, 500};
    TestWindow owner(R"(<Window size="400,300"><Control/></Window>)");
    MoveTo(owner, 1400, 100);
    owner.ShowWindow(true, false);
    ASSERT_EQ(SizeOf(owner), (Size{800, 600}));
    TestWindow box(kSmall, WS_OVERLAPPEDWINDOW, owner.GetHWND());
    UIMainQueue::getInstance()->dispatch([&] {
        TellDpi(box, 192, {1300, 0, 1500, 160});
        EXPECT_EQ(PlaceOf(box).left, 1700);
        EXPECT_EQ(PlaceOf(box).top, 320);
        box.Close();
    });
    box.ShowModal();
    EXPECT_EQ(box.GetHWND(), nullptr);
}

}  // namespace
}  // namespace DuiLib::Test
