// The settings window: opening, its buttons, its pages, what it drags by.
#include "DuiLib/LabelUI.h"
#include "DuiLib/Layouts.h"
#include "DuiLib/UIMainQueue.h"
#include "pages/IntroductionPage.h"
#include "tests/support/ImportHook.h"
#include "tests/support/Protocol.h"
#include "tests/windows/support/Screen.h"
#include "tests/windows/support/Script.h"
#include "tests/windows/windows/WindowTests.h"

namespace {

LRESULT HitAt(HWND window, POINT client) {
    ClientToScreen(window, &client);
    return SendMessageW(window, WM_NCHITTEST, 0, MAKELPARAM(client.x, client.y));
}

POINT MiddleOf(const DuiLib::CControlUI& control) {
    const DuiLib::Rect& place = control.GetPos();
    return {(place.left + place.right) / 2, (place.top + place.bottom) / 2};
}

TEST_F(MainWindowTest, OpensAsTheSystemShallKnowIt) {
    const HWND window = Window().GetHWND();
    wchar_t text[64] = {};
    GetClassNameW(window, text, 64);
    EXPECT_STREQ(text, L"Camera");
    GetWindowTextW(window, text, 64);
    EXPECT_STREQ(text, L"Pixora");
    EXPECT_EQ(GetWindowLongPtrW(window, GWL_STYLE) & 0x808A0000, 0x808A0000);
    EXPECT_EQ(GetWindowLongPtrW(window, GWL_EXSTYLE) & (WS_EX_TOOLWINDOW | WS_EX_TOPMOST), 0);
    EXPECT_EQ(GetWindow(window, GW_OWNER), nullptr);
    EXPECT_TRUE(IsWindowVisible(window));
    EXPECT_NE(SendMessageW(window, WM_GETICON, ICON_BIG, 0), 0);
    EXPECT_NE(SendMessageW(window, WM_GETICON, ICON_SMALL, 0), 0);
    EXPECT_EQ(FindWindowW(L"Camera", nullptr), window);
}

TEST_F(MainWindowTest, StandsInTheMiddleInTheLayoutsSize) {
    RECT place = {};
    GetWindowRect(Window().GetHWND(), &place);
    EXPECT_EQ(place.right - place.left, 1040);
    EXPECT_EQ(place.bottom - place.top, 604);
    RECT work = {};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    EXPECT_NEAR(place.left - work.left, work.right - place.right, 1);
    EXPECT_NEAR(place.top - work.top, work.bottom - place.bottom, 1);
}

TEST_F(MainWindowTest, ShowsTheHomePageFirst) {
    EXPECT_TRUE(Control(L"home_page").IsShown());
    EXPECT_NE(dynamic_cast<HomePage*>(Window().FindPage(L"HomePage")), nullptr);
    EXPECT_NE(dynamic_cast<IntroductionPage*>(Window().FindPage(L"IntroductionPage")), nullptr);
    EXPECT_EQ(Window().FindPage(L"Camera"), nullptr);
    const Picture picture = PaintedBy(Manager(), L"main-window");
    EXPECT_GT(picture.ColorsIn({0, 0, 1040, 604}), 500);
}

TEST_F(MainWindowTest, LogsNoFailureWhileItOpens) {
    for (const std::string& line : Log())
        EXPECT_FALSE(line.starts_with("[L4]")) << line;
}

TEST_F(MainWindowTest, TheHintIsReadyFromTheStart) {
    const HWND hint = FindWindowW(L"Pixora ToolTip", L"CUSTOM_TOOL_TIP_CLASS");
    ASSERT_NE(hint, nullptr);
    EXPECT_EQ(GetWindow(hint, GW_OWNER), Window().GetHWND());
    EXPECT_FALSE(IsWindowVisible(hint));
    EXPECT_EQ(FindWindowW(L"Pixora ToolTip", L"CUSTOM_DEL_TOOL_TIP_CLASS"), nullptr);
}

TEST_F(MainWindowTest, TheMinimiseButtonMinimises) {
    PassedOnMessages passedOn(Manager());
    Input::Click(Control(L"minbtn"));
    EXPECT_TRUE(IsIconic(Window().GetHWND()));
    EXPECT_EQ(passedOn.Count(WM_SYSCOMMAND, SC_MINIMIZE), 1);
    EXPECT_FALSE(Input::TakeQuit());
    ShowWindow(Window().GetHWND(), SW_RESTORE);
}

TEST_F(MainWindowTest, TheCloseButtonClosesAndEndsTheLoop) {
    PassedOnMessages passedOn(Manager());
    Input::Click(Control(L"closebtn"));
    EXPECT_EQ(passedOn.Count(WM_SYSCOMMAND, SC_CLOSE), 1);
    EXPECT_FALSE(Exists());
    EXPECT_TRUE(Input::TakeQuit());
}

TEST_F(MainWindowTest, TheSystemsOwnCloseEndsTheLoopToo) {
    PostMessageW(Window().GetHWND(), WM_CLOSE, 0, 0);
    EXPECT_TRUE(Input::TakeQuit());
    EXPECT_FALSE(Exists());
}

TEST_F(MainWindowTest, RunEndsWithTheWindow) {
    Destroy();
    MainWindow window;
    Script script;
    script.When(
        "the window is open", [] { return FindThreadWindow(L"Camera") != nullptr; },
        [&] {
            ASSERT_TRUE(Input::Activate(window.GetHWND()));
            Input::Click(*window.PaintManager().FindControl(L"closebtn"));
        });
    script.Run([&] { window.Run(GetModuleHandleW(nullptr)); });
    EXPECT_EQ(window.GetHWND(), nullptr);
}

TEST_F(MainWindowTest, ClicksWithoutASenderAndOfOthersDoNothing) {
    DuiLib::TNotifyUI nobody{DuiLib::NotifyType::kClick, nullptr, 0, 0};
    Window().Notify(nobody);
    DuiLib::CLabelUI stranger;
    for (const wchar_t* name : {L"", L"minbtn2", L"close", L"title_text"}) {
        stranger.SetName(name);
        DuiLib::TNotifyUI click{DuiLib::NotifyType::kClick, &stranger, 0, 0};
        Window().Notify(click);
    }
    EXPECT_TRUE(Exists());
    EXPECT_FALSE(IsIconic(Window().GetHWND()));
    EXPECT_FALSE(Input::TakeQuit());
}

TEST_F(MainWindowTest, ItsButtonsWorkByTheirNameWhoeverTheyAre) {
    DuiLib::CLabelUI button;
    button.SetName(L"closebtn");
    DuiLib::TNotifyUI entered{DuiLib::NotifyType::kMouseEnter, &button, 0, 0};
    Window().Notify(entered);
    EXPECT_TRUE(Exists());
    DuiLib::TNotifyUI click{DuiLib::NotifyType::kClick, &button, 0, 0};
    Window().Notify(click);
    EXPECT_FALSE(Exists());
}

TEST_F(MainWindowTest, IsDraggedByItsTitleBarOnly) {
    const HWND window = Window().GetHWND();
    EXPECT_EQ(HitAt(window, {500, 24}), HTCAPTION);
    EXPECT_EQ(HitAt(window, MiddleOf(Control(L"title_text"))), HTCAPTION);
    EXPECT_EQ(HitAt(window, MiddleOf(Control(L"minbtn"))), HTCLIENT);
    EXPECT_EQ(HitAt(window, MiddleOf(Control(L"closebtn"))), HTCLIENT);
    EXPECT_EQ(HitAt(window, MiddleOf(Control(L"preview_wnd"))), HTCLIENT);
    EXPECT_EQ(HitAt(window, MiddleOf(Control(L"open_camera_btn"))), HTCLIENT);
    EXPECT_EQ(HitAt(window, {-200, -200}), HTCLIENT);
}

TEST_F(MainWindowTest, HasNoSizingBorderForItHasOneSize) {
    const HWND window = Window().GetHWND();
    EXPECT_EQ(HitAt(window, {1, 300}), HTCLIENT);
    EXPECT_EQ(HitAt(window, {1038, 300}), HTCLIENT);
    EXPECT_EQ(HitAt(window, {500, 602}), HTCLIENT);
    EXPECT_EQ(HitAt(window, {500, 1}), HTCAPTION);
}

TEST_F(MainWindowTest, DraggingTheTitleBarMovesIt) {
    RECT before = {};
    GetWindowRect(Window().GetHWND(), &before);
    Input::MoveTo(Manager(), {500, 24});
    Script script;
    // The system's own loop runs until the button is released.
    script
        .When(
            "the drag has begun", [] { return true; }, [&] { SetCursorPos(before.left + 540, before.top + 54); })
        .When(
            "the window follows",
            [&] {
                RECT now = {};
                GetWindowRect(Window().GetHWND(), &now);
                return now.left == before.left + 40 && now.top == before.top + 30;
            },
            [] {
                INPUT up = {};
                up.type = INPUT_MOUSE;
                up.mi.dwFlags = MOUSEEVENTF_LEFTUP;
                SendInput(1, &up, sizeof(up));
            });
    script.Run([] { Input::ButtonDown(); });
}

TEST_F(MainWindowTest, SwitchesBetweenItsPages) {
    Window().ShowPage(L"IntroductionPage", 0);
    EXPECT_TRUE(Control(L"introduction_page").IsVisible());
    EXPECT_FALSE(Control(L"home_page").IsVisible());
    Window().ShowPage(L"Nobody", 0);
    EXPECT_TRUE(Control(L"introduction_page").IsVisible());
    Window().ShowFirstPage();
    EXPECT_TRUE(Control(L"home_page").IsVisible());
    EXPECT_FALSE(Control(L"introduction_page").IsVisible());
    EXPECT_EQ(Control<DuiLib::CTabLayoutUI>(L"wnd_container").GetCount(), 2);
}

TEST_F(MainWindowTest, TheButtonsOfThePagesLeadThereAndBack) {
    Input::Click(Control(L"show_detail_btn"));
    ASSERT_TRUE(Control(L"introduction_page").IsVisible());
    Input::Click(Control(L"back_btn"));
    EXPECT_TRUE(Control(L"home_page").IsVisible());
    Input::Click(Control(L"show_detail_btn"));
    EXPECT_TRUE(Control(L"introduction_page").IsVisible());
    EXPECT_EQ(Control<DuiLib::CTabLayoutUI>(L"wnd_container").GetCount(), 2);
}

TEST_F(MainWindowTest, APageOfTheSameNameTakesTheFormersPlace) {
    Window().ShowPage(L"IntroductionPage", 0);
    Window().AddPage(L"IntroductionPage", std::make_unique<IntroductionPage>(&Manager()));
    Window().ShowFirstPage();
    Window().ShowPage(L"IntroductionPage", 0);
    EXPECT_EQ(Control<DuiLib::CTabLayoutUI>(L"wnd_container").GetCount(), 2);
    EXPECT_EQ(&Control(L"introduction_page"), Window().FindPage(L"IntroductionPage")->GetRoot());
    Manager().UpdateLayout();
    Input::Click(Control(L"correct_sight_option"));
    EXPECT_TRUE(Control(L"correct_sight_underline").IsVisible());
    Input::Click(Control(L"back_btn"));
    EXPECT_TRUE(Control(L"home_page").IsVisible());
}

TEST_F(MainWindowTest, TheServicesResetClosesIt) {
    SendFromService(harness::Protocol::kNotificationCode, harness::Protocol::kResetSubCode + 1);
    SendFromService(harness::Protocol::kSettingsChangedCode, harness::Protocol::kResetSubCode);
    SendFromService(harness::Protocol::kNotificationCode, harness::Protocol::kResetSubCode);
    EXPECT_TRUE(Input::PumpUntil([] { return !Exists(); }));
    EXPECT_TRUE(Input::TakeQuit());
}

TEST_F(MainWindowTest, ClosesFromAnotherThread) {
    std::thread([] { Window().CloseWindow(); }).join();
    EXPECT_TRUE(Exists());
    EXPECT_TRUE(Input::PumpUntil([] { return !Exists(); }));
    EXPECT_TRUE(Input::TakeQuit());
}

int g_quits = 0;
const harness::ImportHook* g_postQuit = nullptr;

void WINAPI CountQuit(int code) {
    ++g_quits;
    g_postQuit->Original<decltype(&PostQuitMessage)>()(code);
}

TEST_F(MainWindowTest, HoweverOftenItIsToldToCloseItClosesOnce) {
    const harness::ImportHook hook(nullptr, "PostQuitMessage", &CountQuit);
    g_postQuit = &hook;
    g_quits = 0;
    std::thread([] {
        for (int i = 0; i < 100; ++i)
            Window().CloseWindow();
    }).join();
    bool later = false;
    DuiLib::UIMainQueue::getInstance()->dispatch([&later] { later = true; });
    EXPECT_TRUE(Input::PumpUntil([&later] { return later; }));
    EXPECT_FALSE(Exists());
    EXPECT_LE(g_quits, 2) << "once for the window's end, once for the loop's";
    EXPECT_GE(g_quits, 1);
    EXPECT_TRUE(Input::TakeQuit());
}

TEST_F(MainWindowTest, IsBroughtToTheFront) {
    const HWND window = Window().GetHWND();
    ShowWindow(window, SW_MINIMIZE);
    ASSERT_TRUE(IsIconic(window));
    Window().ActivateExisting();
    EXPECT_TRUE(Input::PumpUntil([&] { return !IsIconic(window) && GetForegroundWindow() == window; }));
    ShowWindow(window, SW_HIDE);
    Window().ActivateExisting();
    EXPECT_TRUE(Input::PumpUntil([&] { return IsWindowVisible(window) && GetForegroundWindow() == window; }));
}

}  // namespace
