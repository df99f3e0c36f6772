// Windows of the system: creation, size and shape, modal loops, closing, DPI, what a minimised window keeps.
#include <stdexcept>
#include <thread>

#include "DuiLib/ContainerUI.h"
#include "DuiLib/Theme.h"
#include "DuiLib/UIMainQueue.h"
#include "TestWindow.h"
#include "tests/support/FakeLook.h"

namespace DuiLib::Test {
namespace {

constexpr char kLayout[] = R"(<Window size="300,200" closeonescape="true">
  <VerticalLayout name="root" bkcolor="#FF203040">
    <HorizontalLayout name="title" height="40" IsNcHit="true"><Control name="drag" IsNcHit="true"/>
      <Button name="close" width="40"/></HorizontalLayout>
    <Button name="ok" height="40" text="OK"/>
    <Control name="rest"/>
  </VerticalLayout>
</Window>)";

Size SizeOf(HWND window) {
    RECT r{};
    GetWindowRect(window, &r);
    return {static_cast<int>(r.right - r.left), static_cast<int>(r.bottom - r.top)};
}

Size ClientOf(HWND window) {
    RECT r{};
    GetClientRect(window, &r);
    return {static_cast<int>(r.right), static_cast<int>(r.bottom)};
}

LPARAM ScreenPoint(HWND window, Point px) {
    POINT p{px.x, px.y};
    ClientToScreen(window, &p);
    return MAKELPARAM(p.x, p.y);
}

class Window : public testing::Test {};

TEST_F(Window, HasTheLayoutsSizeAndIsAllClient) {
    for (const DWORD style : {static_cast<DWORD>(WS_POPUP | WS_BORDER | WS_SYSMENU | WS_MINIMIZEBOX),
                              static_cast<DWORD>(WS_OVERLAPPEDWINDOW), static_cast<DWORD>(WS_POPUP | 1)}) {
        TestWindow window(kLayout, style);
        EXPECT_EQ(SizeOf(window.GetHWND()), (Size{300, 200})) << style;
        EXPECT_EQ(ClientOf(window.GetHWND()), (Size{300, 200})) << style;
    }
}

TEST_F(Window, IsDraggedByMarkedControlsOnly) {
    TestWindow window(kLayout);
    const HWND hwnd = window.GetHWND();
    EXPECT_EQ(SendMessageW(hwnd, WM_NCHITTEST, 0, ScreenPoint(hwnd, window.CenterOf(L"drag"))), HTCAPTION);
    EXPECT_EQ(SendMessageW(hwnd, WM_NCHITTEST, 0, ScreenPoint(hwnd, window.CenterOf(L"close"))), HTCLIENT);
    EXPECT_EQ(SendMessageW(hwnd, WM_NCHITTEST, 0, ScreenPoint(hwnd, {1, 199})), HTCLIENT);
}

TEST_F(Window, CanBeSizedWhereTheLayoutGivesLimits) {
    TestWindow fixed(kLayout, WS_OVERLAPPEDWINDOW);
    EXPECT_EQ(GetWindowLongPtrW(fixed.GetHWND(), GWL_STYLE) & (WS_THICKFRAME | WS_MAXIMIZEBOX), 0);
    fixed.ShowWindow();
    for (const WPARAM command : {static_cast<WPARAM>(SC_MAXIMIZE), static_cast<WPARAM>(SC_MAXIMIZE | 2)}) {
        SendMessageW(fixed.GetHWND(), WM_SYSCOMMAND, command, 0);
    }
    SendMessageW(fixed.GetHWND(), WM_NCLBUTTONDBLCLK, HTCAPTION, ScreenPoint(fixed.GetHWND(), fixed.CenterOf(L"drag")));
    EXPECT_FALSE(IsZoomed(fixed.GetHWND()));
    EXPECT_EQ(SizeOf(fixed.GetHWND()), (Size{300, 200}));
    TestWindow window(R"(<Window size="300,200" minsize="200,100"><Control name="c"/></Window>)", WS_OVERLAPPEDWINDOW);
    const HWND hwnd = window.GetHWND();
    EXPECT_EQ(SendMessageW(hwnd, WM_NCHITTEST, 0, ScreenPoint(hwnd, {1, 199})), HTBOTTOMLEFT);
    EXPECT_EQ(SendMessageW(hwnd, WM_NCHITTEST, 0, ScreenPoint(hwnd, {150, 1})), HTTOP);
    EXPECT_EQ(SendMessageW(hwnd, WM_NCHITTEST, 0, ScreenPoint(hwnd, {150, 100})), HTCLIENT);
    SetWindowPos(hwnd, nullptr, 0, 0, 50, 50, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(SizeOf(hwnd), (Size{200, 100}));
    SetWindowPos(hwnd, nullptr, 0, 0, 500, 400, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(window.Find(L"c").GetPos(), (Rect{0, 0, 500, 400}));
    window.ShowWindow();
    SendMessageW(hwnd, WM_SYSCOMMAND, SC_MAXIMIZE, 0);
    EXPECT_TRUE(IsZoomed(hwnd));
    // No edge of it lies off the screen.
    RECT client{};
    GetClientRect(hwnd, &client);
    MapWindowPoints(hwnd, HWND_DESKTOP, reinterpret_cast<POINT*>(&client), 2);
    MONITORINFO info{};
    info.cbSize = sizeof(info);
    GetMonitorInfoW(MonitorFromWindow(hwnd, MONITOR_DEFAULTTONEAREST), &info);
    EXPECT_TRUE(EqualRect(&client, &info.rcWork));
    SendMessageW(hwnd, WM_SYSCOMMAND, SC_RESTORE, 0);
    EXPECT_EQ(SizeOf(hwnd), (Size{500, 400}));
}

TEST_F(Window, AltAloneOpensNoMenu) {
    TestWindow window(kLayout);
    window.ShowWindow();
    PumpPending();
    // A menu would run a loop of its own until something ends it.
    bool menu = false;
    UIMainQueue::getInstance()->dispatch([&] {
        GUITHREADINFO info{};
        info.cbSize = sizeof(info);
        GetGUIThreadInfo(GetCurrentThreadId(), &info);
        menu = (info.flags & GUI_INMENUMODE) != 0;
        SendMessageW(window.GetHWND(), WM_CANCELMODE, 0, 0);
    });
    SendMessageW(window.GetHWND(), WM_SYSCOMMAND, SC_KEYMENU, 0);
    PumpPending();
    EXPECT_FALSE(menu);
}

TEST_F(Window, MissingOrBrokenLayoutLeavesAnEmptyWindowAndALogLine) {
    class Missing : public TestWindow {
      public:
        Missing() : TestWindow("<Window") {}
    };
    LogWatch own;
    Missing window;
    EXPECT_NE(window.GetHWND(), nullptr);
    EXPECT_EQ(window.PaintManager().GetRoot(), nullptr);
    EXPECT_FALSE(own.Failures().empty());
    window.ShowWindow();
    PumpPending();
    window.Mouse(WM_MOUSEMOVE, {5, 5});
    window.Mouse(WM_LBUTTONDOWN, {5, 5});
    window.Key(VK_TAB);
    window.Key(VK_RETURN);
    DestroyWindow(window.GetHWND());
    // More of them may come while it is used.
    own.Failures();
}

TEST_F(Window, DpiChangeMovesToTheSuggestedRectangleAndScales) {
    TestWindow window(kLayout);
    const HWND hwnd = window.GetHWND();
    window.ShowWindow(true, false);
    PumpPending();
    const RECT suggested{100, 120, 100 + 450, 120 + 300};
    SendMessageW(hwnd, WM_DPICHANGED, MAKEWPARAM(144, 144), reinterpret_cast<LPARAM>(&suggested));
    RECT now{};
    GetWindowRect(hwnd, &now);
    EXPECT_TRUE(EqualRect(&now, &suggested));
    EXPECT_EQ(window.PaintManager().GetDPI(), 144);
    EXPECT_EQ(window.Find(L"ok").GetPos(), (Rect{0, 60, 450, 120}));
    SendMessageW(hwnd, WM_DPICHANGED, MAKEWPARAM(96, 96), 0);
    EXPECT_EQ(SizeOf(hwnd), (Size{300, 200}));
    EXPECT_EQ(window.Find(L"ok").GetPos(), (Rect{0, 40, 300, 80}));
}

TEST_F(Window, SetDpiKeepsTheWindowsSize) {
    TestWindow window(kLayout);
    window.PaintManager().SetDPI(192);
    EXPECT_EQ(SizeOf(window.GetHWND()), (Size{300, 200}));
    EXPECT_EQ(window.Find(L"ok").GetPos(), (Rect{0, 80, 300, 160}));
}

TEST_F(Window, MinimisedWindowWakesUpIntact) {
    TestWindow window(kLayout);
    const HWND hwnd = window.GetHWND();
    window.ShowWindow();
    PumpPending();
    const Rect before = window.Find(L"ok").GetPos();
    SendMessageW(hwnd, WM_SYSCOMMAND, SC_MINIMIZE, 0);
    ASSERT_TRUE(IsIconic(hwnd));
    PumpPending();
    window.Find(L"ok").SetText(L"changed while minimised");
    PumpPending();
    EXPECT_EQ(window.Find(L"ok").GetPos(), before);
    SendMessageW(hwnd, WM_SYSCOMMAND, SC_RESTORE, 0);
    PumpPending();
    EXPECT_EQ(SizeOf(hwnd), (Size{300, 200}));
    EXPECT_EQ(window.Find(L"ok").GetPos(), before);
    HDC dc = GetDC(hwnd);
    EXPECT_EQ(GetPixel(dc, 150, 150), RGB(0x20, 0x30, 0x40));
    ReleaseDC(hwnd, dc);
}

TEST_F(Window, AltF4AndEscapeClose) {
    for (const bool escape : {false, true}) {
        TestWindow window(kLayout);
        window.ShowWindow();
        PumpPending();
        if (escape) {
            window.Key(VK_ESCAPE);
        } else {
            window.SendMessage(WM_SYSKEYDOWN, VK_F4, 0x20000001);
        }
        EXPECT_TRUE(PumpUntil([&] { return window.GetHWND() == nullptr; })) << escape;
    }
}

TEST_F(Window, ModalWindowDisablesItsOwnerAndGivesItsResult) {
    TestWindow owner(kLayout);
    owner.ShowWindow();
    PumpPending();
    const HWND ownerHwnd = owner.GetHWND();
    TestWindow box(kLayout, WS_OVERLAPPEDWINDOW, ownerHwnd);
    bool ownerWasEnabled = true;
    UIMainQueue::getInstance()->dispatch([&] {
        ownerWasEnabled = IsWindowEnabled(ownerHwnd) != FALSE;
        box.Click(L"ok");
    });
    box.onNotify = [&](TNotifyUI& msg) {
        if (msg.type == NotifyType::kClick) {
            box.Close(7);
        }
    };
    EXPECT_EQ(box.ShowModal(), 7u);
    EXPECT_FALSE(ownerWasEnabled);
    EXPECT_TRUE(IsWindowEnabled(ownerHwnd));
    EXPECT_EQ(box.GetHWND(), nullptr);
    EXPECT_TRUE(PumpUntil([&] { return GetActiveWindow() == ownerHwnd; }));
}

TEST_F(Window, WhoeverActivatesADisabledOwnerActivatesItsModalWindow) {
    TestWindow owner(kLayout);
    owner.ShowWindow();
    PumpPending();
    const HWND ownerHwnd = owner.GetHWND();
    TestWindow box(kLayout, WS_OVERLAPPEDWINDOW, ownerHwnd);
    HWND active = nullptr;
    HWND popup = nullptr;
    UIMainQueue::getInstance()->dispatch([&] {
        SetForegroundWindow(ownerHwnd);
        active = GetActiveWindow();
        popup = GetLastActivePopup(ownerHwnd);
        box.Close();
    });
    const HWND boxHwnd = box.GetHWND();
    box.ShowModal();
    EXPECT_EQ(active, boxHwnd);
    EXPECT_EQ(popup, boxHwnd);
    // Afterwards it is a window like any other.
    SetActiveWindow(nullptr);
    SetForegroundWindow(ownerHwnd);
    EXPECT_TRUE(PumpUntil([&] { return GetActiveWindow() == ownerHwnd; }));
}

TEST_F(Window, WhoeverActivatesAnOwnerThatTheSystemDisabledActivatesItsDialog) {
    TestWindow owner(kLayout);
    owner.ShowWindow();
    PumpPending();
    const HWND ownerHwnd = owner.GetHWND();
    // What the window owns besides has no menu of the system, or is hidden, disabled, or another's.
    const auto make = [&](DWORD style, HWND parent) {
        return CreateWindowExW(0, L"Static", L"", style, 0, 0, 50, 50, parent, nullptr, nullptr, nullptr);
    };
    TestWindow other(kLayout);
    const HWND strangers = make(WS_POPUP | WS_SYSMENU | WS_VISIBLE, other.GetHWND());
    const HWND dialog = make(WS_POPUP | WS_SYSMENU | WS_VISIBLE, ownerHwnd);
    const HWND question = make(WS_POPUP | WS_SYSMENU | WS_VISIBLE, dialog);
    const HWND hint = make(WS_POPUP | WS_BORDER | WS_VISIBLE, ownerHwnd);
    const HWND hidden = make(WS_POPUP | WS_SYSMENU, ownerHwnd);
    EnableWindow(ownerHwnd, FALSE);
    EnableWindow(dialog, FALSE);
    const auto activated = [&] {
        SetActiveWindow(other.GetHWND());
        SetForegroundWindow(ownerHwnd);
        return GetActiveWindow();
    };
    EXPECT_EQ(activated(), question);
    DestroyWindow(question);
    EXPECT_EQ(activated(), ownerHwnd);
    EnableWindow(dialog, TRUE);
    EXPECT_EQ(activated(), dialog);
    EnableWindow(ownerHwnd, TRUE);
    EXPECT_EQ(activated(), ownerHwnd);
    for (const HWND window : {strangers, dialog, hint, hidden}) {
        DestroyWindow(window);
    }
}

TEST_F(Window, TheSystemsCloseOfAModalWindowPressesItsCancelButton) {
    TestWindow owner(kLayout);
    owner.ShowWindow();
    PumpPending();
    const auto close = [&](TestWindow& box, WPARAM command) {
        UIMainQueue::getInstance()->dispatch([&box, command] {
            box.SendMessage(WM_SYSCOMMAND, command);
            if (box.GetHWND() && !box.Got(L"click no")) {
                box.Close();
            }
        });
        box.onNotify = [&](TNotifyUI& msg) {
            if (msg.type == NotifyType::kClick) {
                box.Close(9);
            }
        };
        return box.ShowModal();
    };
    constexpr char kBox[] = R"(<Window size="200,100" cancel="no"><Button name="no"/></Window>)";
    for (const WPARAM command : {static_cast<WPARAM>(SC_CLOSE), static_cast<WPARAM>(SC_CLOSE | 3)}) {
        TestWindow box(kBox, WS_OVERLAPPEDWINDOW, owner.GetHWND());
        EXPECT_EQ(close(box, command), 9u);
        EXPECT_EQ(box.Count(L"click no"), 1);
    }
    for (const wchar_t* attribute : {L"enabled", L"visible"}) {
        TestWindow box(kBox, WS_OVERLAPPEDWINDOW, owner.GetHWND());
        box.Find(L"no").SetAttribute(attribute, L"false");
        EXPECT_EQ(close(box, SC_CLOSE), 0u) << "closed all the same";
        EXPECT_FALSE(box.Got(L"click no"));
    }
    TestWindow without(R"(<Window size="200,100"><Button name="no"/></Window>)", WS_OVERLAPPEDWINDOW, owner.GetHWND());
    EXPECT_EQ(close(without, SC_CLOSE), 0u);
    EXPECT_FALSE(without.Got(L"click no"));
    TestWindow plain(kBox, WS_OVERLAPPEDWINDOW, owner.GetHWND());
    plain.SendMessage(WM_SYSCOMMAND, SC_CLOSE);
    EXPECT_EQ(plain.GetHWND(), nullptr);
    EXPECT_FALSE(plain.Got(L"click no")) << "not modal";
}

TEST_F(Window, AWindowWithAnOwnerIsNeverMinimisedAlone) {
    TestWindow owner(kLayout);
    EXPECT_TRUE(GetWindowLongPtrW(owner.GetHWND(), GWL_STYLE) & WS_MINIMIZEBOX);
    owner.ShowWindow();
    TestWindow box(kLayout, WS_OVERLAPPEDWINDOW, owner.GetHWND());
    EXPECT_FALSE(GetWindowLongPtrW(box.GetHWND(), GWL_STYLE) & WS_MINIMIZEBOX);
    box.ShowWindow();
    for (const WPARAM command : {static_cast<WPARAM>(SC_MINIMIZE), static_cast<WPARAM>(SC_MINIMIZE | 1)}) {
        box.SendMessage(WM_SYSCOMMAND, command);
        EXPECT_FALSE(IsIconic(box.GetHWND()));
    }
    owner.SendMessage(WM_SYSCOMMAND, SC_MINIMIZE);
    EXPECT_TRUE(IsIconic(owner.GetHWND()));
}

TEST_F(Window, AModalWindowBeginsOnItsDefaultButton) {
    TestWindow owner(kLayout);
    owner.ShowWindow();
    PumpPending();
    constexpr char kBox[] =
        R"(<Window size="200,100" default="yes"><VerticalLayout><Button name="no"/><Button name="yes"/>
        </VerticalLayout></Window>)";
    const auto focused = [](TestWindow& box) {
        std::wstring name;
        UIMainQueue::getInstance()->dispatch([&] {
            const CControlUI* const focus = box.PaintManager().GetFocus();
            name = focus ? focus->GetName() : L"";
            box.Close();
        });
        box.ShowModal();
        return name;
    };
    TestWindow box(kBox, WS_OVERLAPPEDWINDOW, owner.GetHWND());
    EXPECT_EQ(focused(box), L"yes");
    TestWindow chosen(kBox, WS_OVERLAPPEDWINDOW, owner.GetHWND());
    chosen.PaintManager().SetFocus(&chosen.Find(L"no"));
    EXPECT_EQ(focused(chosen), L"no") << "who has the focus keeps it";
}

TEST_F(Window, APaintThatThrowsIsNotAskedForForEver) {
    class Thrower final : public IMessageFilterUI {
      public:
        bool FilterMessage(UINT message, WPARAM, LPARAM, LRESULT&) override {
            if (message == WM_PAINT) {
                ++paints;
                throw std::runtime_error("no paint");
            }
            return false;
        }
        int paints = 0;
    } thrower;
    TestWindow window(kLayout);
    window.ShowWindow();
    PumpPending();
    LogWatch own;
    window.PaintManager().AddMessageFilter(&thrower);
    InvalidateRect(window.GetHWND(), nullptr, FALSE);
    PumpPending();
    MSG msg{};
    EXPECT_FALSE(PeekMessageW(&msg, window.GetHWND(), WM_PAINT, WM_PAINT, PM_NOREMOVE));
    EXPECT_GE(thrower.paints, 1);
    window.PaintManager().RemoveMessageFilter(&thrower);
    EXPECT_TRUE(own.Has("no paint"));
}

TEST_F(Window, HasNoInputMethod) {
    const HMODULE imm = LoadLibraryExW(L"imm32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    ASSERT_NE(imm, nullptr);
    const auto get =
        reinterpret_cast<HIMC(WINAPI*)(HWND)>(reinterpret_cast<void*>(GetProcAddress(imm, "ImmGetContext")));
    const HWND other = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    EXPECT_NE(get(other), nullptr) << "others of the thread keep theirs";
    DestroyWindow(other);
    TestWindow window(kLayout);
    EXPECT_EQ(get(window.GetHWND()), nullptr);
}

TEST_F(Window, ModalWindowsNestAndOpenFromWithinAClick) {
    TestWindow owner(kLayout);
    owner.ShowWindow();
    PumpPending();
    UINT inner = 0;
    UINT outer = 0;
    owner.onNotify = [&](TNotifyUI& msg) {
        if (msg.type != NotifyType::kClick) {
            return;
        }
        // The button that was clicked goes while the modal window is up.
        TestWindow box(kLayout, WS_OVERLAPPEDWINDOW, owner.GetHWND());
        UIMainQueue::getInstance()->dispatch([&] {
            TestWindow second(kLayout, WS_OVERLAPPEDWINDOW, box.GetHWND());
            UIMainQueue::getInstance()->dispatch([&] {
                owner.Find<CContainerUI>(L"root").RemoveAt(1);
                second.Close(2);
            });
            inner = second.ShowModal();
            EXPECT_TRUE(IsWindowEnabled(box.GetHWND()));
            EXPECT_FALSE(IsWindowEnabled(owner.GetHWND()));
            box.Close(1);
        });
        outer = box.ShowModal();
    };
    owner.Click(L"ok");
    EXPECT_EQ(inner, 2u);
    EXPECT_EQ(outer, 1u);
    EXPECT_TRUE(IsWindowEnabled(owner.GetHWND()));
    EXPECT_EQ(owner.PaintManager().FindControl(L"ok"), nullptr);
}

TEST_F(Window, QuitEndsAModalLoopAndReachesTheOuterOne) {
    TestWindow box(kLayout, WS_OVERLAPPEDWINDOW);
    UIMainQueue::getInstance()->dispatch([] { PostQuitMessage(9); });
    EXPECT_EQ(box.ShowModal(), 0u);
    EXPECT_EQ(box.GetHWND(), nullptr);
    EXPECT_EQ(CPaintManagerUI::MessageLoop(), 9);
}

TEST_F(Window, ModalLoopEndsWhenAnotherThreadClosesTheWindow) {
    TestWindow box(kLayout, WS_OVERLAPPEDWINDOW);
    const HWND hwnd = box.GetHWND();
    std::thread closer([hwnd] { SendMessageW(hwnd, WM_SYSCOMMAND, SC_CLOSE, 0); });
    EXPECT_EQ(box.ShowModal(), 0u);
    closer.join();
}

TEST_F(Window, CanBeCreatedAgain) {
    class Again : public TestWindow {
      public:
        using TestWindow::TestWindow;
        void CreateAgain() { Create(nullptr, L"again", WS_POPUP | 1, WS_EX_TOPMOST); }
    };
    Again window(kLayout);
    window.Click(L"ok");
    const HWND first = window.GetHWND();
    window.CreateAgain();
    EXPECT_FALSE(IsWindow(first));
    EXPECT_TRUE(IsWindow(window.GetHWND()));
    window.Click(L"ok");
    EXPECT_EQ(window.Count(L"click ok"), 2);
    DestroyWindow(window.GetHWND());
    window.CreateAgain();
    window.Click(L"ok");
    EXPECT_EQ(window.Count(L"click ok"), 3);
}

TEST_F(Window, TheObjectMayEndItselfWithItsWindow) {
    static bool destroyed = false;
    class SelfMade : public TestWindow {
      public:
        using TestWindow::TestWindow;
        ~SelfMade() override { destroyed = true; }
        void OnFinalMessage(HWND) override { delete this; }
    };
    auto* const window = new SelfMade(kLayout);
    window->onNotify = [window](TNotifyUI& msg) {
        if (msg.type == NotifyType::kClick) {
            DestroyWindow(window->GetHWND());  // while the click is still being handled
            EXPECT_FALSE(destroyed);
        }
    };
    window->Click(L"ok");
    EXPECT_TRUE(destroyed);
}

TEST_F(Window, CentersOnItsOwnerWithinTheWorkArea) {
    TestWindow owner(kLayout);
    SetWindowPos(owner.GetHWND(), nullptr, 700, 500, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    owner.ShowWindow(true, false);
    TestWindow box(R"(<Window size="100,80"><Control/></Window>)", WS_OVERLAPPEDWINDOW, owner.GetHWND());
    box.Center2ParentWindow();
    RECT r{};
    GetWindowRect(box.GetHWND(), &r);
    EXPECT_EQ(r.left, 800);
    EXPECT_EQ(r.top, 560);
    SetWindowPos(owner.GetHWND(), nullptr, -290, -190, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    box.Center2ParentWindow();
    GetWindowRect(box.GetHWND(), &r);
    EXPECT_EQ(r.left, 0);
    EXPECT_EQ(r.top, 0);
    box.CenterWindow();
    GetWindowRect(box.GetHWND(), &r);
    MONITORINFO info{};
    info.cbSize = sizeof(info);
    GetMonitorInfoW(MonitorFromWindow(box.GetHWND(), MONITOR_DEFAULTTONEAREST), &info);
    EXPECT_EQ(r.left, (info.rcWork.left + info.rcWork.right - 100) / 2);
}

TEST_F(Window, AnExceptionInAHandlerIsLogged) {
    TestWindow window(kLayout);
    LogWatch own;
    window.onNotify = [](TNotifyUI&) { throw std::runtime_error("from a handler"); };
    window.Click(L"ok");
    window.onNotify = nullptr;
    EXPECT_TRUE(own.Has("from a handler"));
    window.Click(L"ok");
    EXPECT_TRUE(window.Got(L"click ok"));
}

TEST_F(Window, WhatIsNoExceptionOfTheLibraryIsLoggedToo) {
    TestWindow window(kLayout);
    LogWatch own;
    window.onNotify = [](TNotifyUI&) { throw 7; };
    window.Click(L"ok");
    window.onNotify = nullptr;
    EXPECT_TRUE(own.Has("Unexpected exception in message "));
    window.Click(L"ok");
    EXPECT_TRUE(window.Got(L"click ok"));
}

TEST_F(Window, IdleMeansNoMessages) {
    TestWindow window(kLayout);
    window.ShowWindow();
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"ok"));
    PumpPending();
    UpdateWindow(window.GetHWND());
    EXPECT_FALSE(GetUpdateRect(window.GetHWND(), nullptr, FALSE));
    MSG msg{};
    EXPECT_FALSE(PeekMessageW(&msg, window.GetHWND(), WM_PAINT, WM_PAINT, PM_NOREMOVE));
    EXPECT_FALSE(PeekMessageW(&msg, window.GetHWND(), WM_TIMER, WM_TIMER, PM_NOREMOVE));
}

// --- windows that grow with the user's size of text

constexpr char kBox[] = R"(<Window size="300,100" growwithtext="true"><Font id="0" size="20" default="true"/>
  <VerticalLayout name="root"><Label name="text" text="Some words that stand on more than one line" wordwrap="true"
    height="auto"/><Control name="rest"/></VerticalLayout></Window>)";

class GrowingWindow : public testing::Test {
  protected:
    void Choose(DWORD percent) {
        look.textScaleFactor = percent;
        UITheme::GetInstance()->Reread();
    }
    static RECT PlaceOf(TestWindow& window) {
        RECT place{};
        GetWindowRect(window.GetHWND(), &place);
        return place;
    }
    harness::FakeLook look;
};

TEST_F(GrowingWindow, HasTheLayoutsSizeWithTheUsualText) {
    TestWindow window(kBox);
    EXPECT_EQ(SizeOf(window.GetHWND()), (Size{300, 100}));
    window.Find(L"text").SetFixedHeight(400);
    window.ShowWindow(true, false);
    EXPECT_EQ(SizeOf(window.GetHWND()), (Size{300, 100}));
}

TEST_F(GrowingWindow, IsWiderAndAsHighAsItsContent) {
    Choose(120);
    TestWindow window(kBox);
    EXPECT_EQ(SizeOf(window.GetHWND()).cx, 360);
    EXPECT_EQ(SizeOf(window.GetHWND()).cy, 100);  // has room enough
    Choose(225);
    TestWindow large(kBox);
    EXPECT_EQ(SizeOf(large.GetHWND()).cx, 450);
    EXPECT_GT(SizeOf(large.GetHWND()).cy, 2 * 45);
    EXPECT_EQ(SizeOf(large.GetHWND()).cy, large.Find(L"text").GetPos().Height());
    TestWindow other(R"(<Window size="300,100"><Control/></Window>)");
    EXPECT_EQ(SizeOf(other.GetHWND()), (Size{300, 100}));
}

TEST_F(GrowingWindow, LooksAtItsContentWhenItIsShown) {
    Choose(150);
    TestWindow window(kBox);
    SetWindowPos(window.GetHWND(), nullptr, 500, 400, 0, 0, SWP_NOSIZE);
    const RECT before = PlaceOf(window);
    window.Find(L"text").SetFixedHeight(300);
    EXPECT_LT(SizeOf(window.GetHWND()).cy, 300);
    window.ShowWindow(true, false);
    const RECT after = PlaceOf(window);
    EXPECT_EQ(after.bottom - after.top, 300);
    EXPECT_EQ(after.right - after.left, 450);
    // Around the same middle.
    EXPECT_NEAR(after.top + after.bottom, before.top + before.bottom, 1);
    EXPECT_NEAR(after.left + after.right, before.left + before.right, 1);
}

TEST_F(GrowingWindow, FollowsWhileItIsOpen) {
    TestWindow window(kBox);
    SetWindowPos(window.GetHWND(), nullptr, 500, 400, 0, 0, SWP_NOSIZE);
    window.ShowWindow(true, false);
    Choose(200);
    const RECT place = PlaceOf(window);
    EXPECT_EQ(place.right - place.left, 450);
    EXPECT_EQ(place.left + place.right, 2 * 500 + 300);
    EXPECT_GT(place.bottom - place.top, 100);
    Choose(100);
    EXPECT_EQ(SizeOf(window.GetHWND()), (Size{300, 100}));
}

TEST_F(GrowingWindow, StaysWithinTheWorkArea) {
    Choose(225);
    TestWindow window(kBox);
    MONITORINFO screen{};
    screen.cbSize = sizeof(screen);
    GetMonitorInfoW(MonitorFromWindow(window.GetHWND(), MONITOR_DEFAULTTONEAREST), &screen);
    window.Find(L"text").SetFixedHeight(5000);
    SetWindowPos(window.GetHWND(), nullptr, screen.rcWork.right - 320, screen.rcWork.bottom - 150, 0, 0, SWP_NOSIZE);
    window.ShowWindow(true, false);
    const RECT place = PlaceOf(window);
    EXPECT_EQ(place.top, screen.rcWork.top);
    EXPECT_EQ(place.bottom, screen.rcWork.bottom);
    EXPECT_EQ(place.right, screen.rcWork.right);
}

}  // namespace
}  // namespace DuiLib::Test
