// The settings window on the screens that people have: everything can be reached, and the picture of the camera lies
// over its place.
#include "DuiLib/ContainerUI.h"
#include "tests/support/FakeScreens.h"
#include "tests/support/TopLevelWindows.h"
#include "tests/windows/windows/WindowTests.h"
#include "windows/DelButtonToolTip.h"
#include "windows/SimpleMessageBox.h"
#include "windows/ToolTipWnd.h"

namespace {

using DuiLib::Rect;
using GlobalUtils::WndMoveKind;
using testing::ElementsAre;

struct Example {
    int width, height, taskBar;
    UINT dpi;
    int fitting;
    RECT picture;  // of the camera, from the window's corner
};

// Multiplied before they are divided, and cut: at 120 DPI 598·120/96 is 747. A rounded region ends a pixel before its
// right and lower edge.
constexpr Example kExamples[] = {
    {1366, 768, 50, 120, 108, {90, 90, 671, 398}},    {1920, 1080, 80, 192, 156, {130, 130, 970, 575}},
    {1280, 720, 60, 144, 96, {80, 80, 597, 354}},     {3840, 2160, 120, 288, 288, {240, 240, 1793, 1064}},
    {1920, 1080, 50, 120, 120, {100, 100, 746, 442}}, {640, 480, 40, 96, 72, {60, 60, 447, 265}}};

harness::FakeScreens::Screen ScreenOf(const Example& example) {
    return {
        {0, 0, example.width, example.height}, {0, 0, example.width, example.height - example.taskBar}, example.dpi};
}

class MainWindowOnScreen : public MainWindowTest, public testing::WithParamInterface<Example> {
  protected:
    // The part of the camera's window that is seen, from the main window's corner.
    static RECT PictureShown() {
        const std::vector<HWND> found = harness::OwnedWindows(L"STATIC", Window().GetHWND());
        const HWND preview = found.empty() ? nullptr : found.front();
        RECT place{};
        GetWindowRect(preview, &place);
        RECT region{};
        EXPECT_NE(GetWindowRgnBox(preview, &region), ERROR);
        OffsetRect(&region, place.left, place.top);
        RECT window{};
        GetWindowRect(Window().GetHWND(), &window);
        OffsetRect(&region, -window.left, -window.top);
        return region;
    }

    const harness::FakeScreens screens_{{ScreenOf(GetParam())}};
};

TEST_P(MainWindowOnScreen, EverythingCanBeReached) {
    EXPECT_EQ(Manager().GetDPI(), GetParam().fitting);
    RECT window{};
    GetWindowRect(Window().GetHWND(), &window);
    const RECT& work = screens_.screens[0].work;
    EXPECT_GE(window.left, work.left);
    EXPECT_GE(window.top, work.top);
    EXPECT_LE(window.bottom, work.bottom);
    EXPECT_LE(window.right, std::max<LONG>(work.right, 780));  // which is the least width
    Write(L"lumi_camera_beauty_person", 1);
    HomeService::GetInstance()->NotifyStatus();
    Manager().UpdateLayout();
    RECT client{};
    GetClientRect(Window().GetHWND(), &client);
    const Rect seen{0, 0, static_cast<int>(client.right), static_cast<int>(client.bottom)};
    Manager().GetRoot()->Visit([&](DuiLib::CControlUI& control) {
        if (control.IsShown() && control.CanHaveFocus()) {
            control.GetParent()->EnsureVisible(control);
            Manager().UpdateLayout();
            Rect clip = seen;
            for (const DuiLib::CControlUI* parent = control.GetParent(); parent; parent = parent->GetParent()) {
                clip = clip.Intersect(parent->GetPos());
            }
            const Rect px = control.GetPos();
            EXPECT_EQ(px.Intersect(clip), px) << std::string(control.GetName().begin(), control.GetName().end());
        }
        return true;
    });
}

TEST_P(MainWindowOnScreen, ThePictureLiesOverItsPlace) {
    ASSERT_EQ(Home().OnCreate(Window().GetHWND()), 1);
    const RECT picture = PictureShown();
    EXPECT_TRUE(EqualRect(&picture, &GetParam().picture))
        << picture.left << "," << picture.top << "," << picture.right << "," << picture.bottom;
    const Rect place = Control(L"preview_wnd").GetPos();
    EXPECT_EQ(place.left, picture.left);
    EXPECT_EQ(place.top, picture.top);
    // Its place is rounded where the picture is cut, and has the pixel that regions leave out.
    EXPECT_GE(place.right, picture.right);
    EXPECT_LE(place.right, picture.right + 2);
    EXPECT_GE(place.bottom, picture.bottom);
    EXPECT_LE(place.bottom, picture.bottom + 2);
}

INSTANTIATE_TEST_SUITE_P(Usual, MainWindowOnScreen, testing::ValuesIn(kExamples), [](const auto& example) {
    return std::to_string(example.param.width) + "at" + std::to_string(example.param.dpi);
});

// --- while it is open

class MainWindowScreenTest : public MainWindowTest {
  protected:
    static LRESULT TellDpi(int dpi, HWND window) {
        const RECT place{30, 20, 30 + MulDiv(1040, dpi, 96), 20 + MulDiv(604, dpi, 96)};
        return SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&place));
    }
    static void ShowHint(ToolTipWnd& hint) {
        hint.SetAnchor(&Control(L"minbtn"));
        hint.SetToolTipText(L"Minimize");
        hint.SetPosition(5, 7);
        hint.Show(true);
        ASSERT_TRUE(IsWindowVisible(hint.GetHWND()));
    }

    harness::FakeScreens screens_{{{{0, 0, 2560, 1600}, {0, 0, 2560, 1600}, 96}}};
};

TEST_F(MainWindowScreenTest, AWorkAreaThatShrinksIsOneMove) {
    const HubRecorder<WndMoveKind> moves(4);
    screens_.screens[0].work = {0, 0, 1000, 700};
    Window().SendMessage(WM_SETTINGCHANGE, SPI_SETWORKAREA);
    EXPECT_EQ(Manager().GetDPI(), 84);
    EXPECT_THAT(moves.Kinds(), ElementsAre(WndMoveKind(0)));
    Manager().UpdateLayout();
    EXPECT_EQ(Control(L"title_bar").GetPos().Height(), 42);
}

// Widths that follow a text are those of the new scale.
TEST_F(MainWindowScreenTest, ThePagesMeasureAnewWhereTheScaleFollowsTheScreen) {
    auto& text = Control(L"preview_text");
    text.SetFixedWidth(7);
    screens_.screens[0].work = {0, 0, 1000, 700};
    Window().SendMessage(WM_DISPLAYCHANGE, 32, MAKELPARAM(1000, 700));
    EXPECT_GT(text.GetWidth().value, 20);
}

TEST_F(MainWindowScreenTest, HintsGoWhenTheScaleChanges) {
    ToolTipWnd& hint = ToolTipWnd::GetInstance(&Manager());
    ShowHint(hint);
    TellDpi(144, Window().GetHWND());
    EXPECT_FALSE(IsWindowVisible(hint.GetHWND()));
    DelButtonToolTip& remove = DelButtonToolTip::GetInstance(&Manager());
    ShowHint(remove);
    TellDpi(96, Window().GetHWND());
    EXPECT_FALSE(IsWindowVisible(remove.GetHWND()));
}

// It has the scale of the window that it belongs to, and is told of the screen's like every window.
TEST_F(MainWindowScreenTest, AShownHintKeepsItsPlaceAndScale) {
    ToolTipWnd& hint = ToolTipWnd::GetInstance(&Manager());
    ShowHint(hint);
    RECT before{};
    GetWindowRect(hint.GetHWND(), &before);
    EXPECT_EQ(TellDpi(192, hint.GetHWND()), 0);
    RECT after{};
    GetWindowRect(hint.GetHWND(), &after);
    EXPECT_TRUE(EqualRect(&before, &after));
    EXPECT_EQ(hint.PaintManager().GetDPI(), 96);
    EXPECT_TRUE(IsWindowVisible(hint.GetHWND()));
    hint.Show(false);
}

TEST_F(MainWindowScreenTest, ABoxIsMadeAtTheScaleOfItsOwnersScreen) {
    screens_.screens.push_back({{1300, 0, 2560, 1600}, {1300, 0, 2560, 1600}, 192});
    screens_.screens[0].all.right = screens_.screens[0].work.right = 1300;
    SetWindowPos(Window().GetHWND(), nullptr, 1310, 10, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    ASSERT_EQ(Manager().GetDPI(), 108);
    SimpleMessageBox box(&Manager());
    EXPECT_EQ(box.PaintManager().GetDPI(), 192);
    RECT owner{}, place{};
    GetWindowRect(Window().GetHWND(), &owner);
    GetWindowRect(box.GetHWND(), &place);
    EXPECT_NEAR(place.left + place.right, owner.left + owner.right, 2);
    EXPECT_NEAR(place.top + place.bottom, owner.top + owner.bottom, 2);
}

}  // namespace
