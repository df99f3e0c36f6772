// Hover, capture, focus and keys of a window.
#include "DuiLib/ContainerUI.h"
#include "DuiLib/OptionUI.h"
#include "TestWindow.h"
#include "tests/support/ImportHook.h"

namespace DuiLib::Test {
namespace {

constexpr char kLayout[] = R"(<Window size="400,300" default="ok" cancel="no">
  <VerticalLayout name="root">
    <HorizontalLayout name="row" height="50">
      <Button name="a" width="100" text="A" tooltip="tip of a"/>
      <Button name="b" width="100" text="B"/>
      <Button name="off" width="100" text="Off" enabled="false"/>
    </HorizontalLayout>
    <Container name="item" height="50"><Control name="below"/><Button name="above" text="x"/></Container>
    <HorizontalLayout height="50">
      <Option name="one" group="g" width="80" text="1"/>
      <Option name="two" group="g" width="80" text="2" selected="true"/>
      <Option name="three" group="g" width="80" text="3"/>
    </HorizontalLayout>
    <Slider name="slider" height="30" min="0" max="10" value="5"/>
    <HorizontalLayout height="50">
      <Button name="ok" width="100" text="OK"/>
      <Button name="no" width="100" text="No"/>
    </HorizontalLayout>
    <Control/>
  </VerticalLayout>
</Window>)";

// Notes which of its events come.
class Probe : public CContainerUI {
  public:
    void DoEvent(const TEventUI& event) override {
        events.push_back(event.type);
        CContainerUI::DoEvent(event);
    }
    int Count(EventType type) const { return static_cast<int>(std::count(events.begin(), events.end(), type)); }
    std::vector<EventType> events;
};

class PaintManagerInput : public testing::Test {
  protected:
    TestWindow window{kLayout};
    CPaintManagerUI& manager = window.PaintManager();
};

TEST_F(PaintManagerInput, PressAndReleaseInsideIsOneClick) {
    window.Click(L"a");
    EXPECT_EQ(window.Count(L"click a"), 1);
    EXPECT_EQ(window.Count(L"buttondown a"), 1);
    EXPECT_EQ(manager.GetCapture(), nullptr);
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(PaintManagerInput, ReleaseOutsideIsNoClick) {
    window.Mouse(WM_LBUTTONDOWN, window.CenterOf(L"a"), MK_LBUTTON);
    EXPECT_EQ(manager.GetCapture(), &window.Find(L"a"));
    EXPECT_EQ(GetCapture(), window.GetHWND());
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"b"), MK_LBUTTON);
    EXPECT_EQ(window.Find(L"a").GetState() & kStatePushed, 0u);
    window.Mouse(WM_LBUTTONUP, window.CenterOf(L"b"));
    EXPECT_FALSE(window.Got(L"click a"));
    EXPECT_FALSE(window.Got(L"click b"));
    EXPECT_EQ(manager.GetHot(), &window.Find(L"b"));
}

TEST_F(PaintManagerInput, SecondPressOfADoubleClickCounts) {
    window.Click(L"a");
    const Point px = window.CenterOf(L"a");
    window.Mouse(WM_LBUTTONDBLCLK, px, MK_LBUTTON);
    window.Mouse(WM_LBUTTONUP, px);
    EXPECT_EQ(window.Count(L"click a"), 2);
}

TEST_F(PaintManagerInput, CaptureThatIsTakenAwayIsNoClick) {
    window.Mouse(WM_LBUTTONDOWN, window.CenterOf(L"a"), MK_LBUTTON);
    ::ReleaseCapture();
    EXPECT_EQ(manager.GetCapture(), nullptr);
    EXPECT_EQ(window.Find(L"a").GetState() & (kStatePushed | kStateCaptured), 0u);
    window.Mouse(WM_LBUTTONUP, window.CenterOf(L"a"));
    EXPECT_FALSE(window.Got(L"click a"));
}

TEST_F(PaintManagerInput, AControlThatIsDisabledWhileItIsPressedIsNotClicked) {
    window.Mouse(WM_LBUTTONDOWN, window.CenterOf(L"a"), MK_LBUTTON);
    window.Find(L"row").SetEnabled(false);
    window.Mouse(WM_LBUTTONUP, window.CenterOf(L"a"));
    EXPECT_FALSE(window.Got(L"click a"));
    EXPECT_EQ(window.Find(L"a").GetState() & (kStatePushed | kStateCaptured), 0u);
    EXPECT_EQ(manager.GetCapture(), nullptr);
}

TEST_F(PaintManagerInput, AWindowThatGoesLeavesNothingPressedOrHot) {
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"a"));
    window.Mouse(WM_LBUTTONDOWN, window.CenterOf(L"a"), MK_LBUTTON);
    DestroyWindow(window.GetHWND());
    EXPECT_EQ(manager.GetCapture(), nullptr);
    EXPECT_EQ(manager.GetHot(), nullptr);
}

TEST_F(PaintManagerInput, EscapeEndsADragBeforeItClosesAnything) {
    window.Mouse(WM_LBUTTONDOWN, window.CenterOf(L"a"), MK_LBUTTON);
    window.Key(VK_ESCAPE);
    EXPECT_EQ(manager.GetCapture(), nullptr);
    EXPECT_FALSE(window.Got(L"click no"));
    window.Key(VK_ESCAPE);
    EXPECT_TRUE(window.Got(L"click no"));
}

TEST_F(PaintManagerInput, DisabledControlsGetNoButtonsNorDoTheirDescendants) {
    window.Click(L"off");
    EXPECT_FALSE(window.Got(L"click off"));
    window.Find(L"row").SetEnabled(false);
    window.Click(L"a");
    EXPECT_FALSE(window.Got(L"click a"));
}

TEST_F(PaintManagerInput, EnterAndLeaveComeOncePerStay) {
    auto owned = std::make_unique<Probe>();
    Probe& probe = *owned;
    auto& root = window.Find<CContainerUI>(L"root");
    owned->SetFixedHeight(40);
    auto inner = std::make_unique<CControlUI>();
    inner->SetName(L"inner");
    inner->SetFixedWidth(50);
    owned->Add(std::move(inner));
    root.AddAt(std::move(owned), 0);
    const Rect px = (manager.UpdateLayout(), probe.GetPos());
    window.Mouse(WM_MOUSEMOVE, {px.left + 5, px.top + 5});   // onto the child
    window.Mouse(WM_MOUSEMOVE, {px.right - 5, px.top + 5});  // beside the child, still within
    EXPECT_EQ(probe.Count(EventType::kMouseEnter), 1);
    EXPECT_EQ(probe.Count(EventType::kMouseLeave), 0);
    window.Mouse(WM_MOUSEMOVE, {px.left + 5, px.bottom + 5});
    EXPECT_EQ(probe.Count(EventType::kMouseLeave), 1);
    window.Mouse(WM_MOUSEMOVE, {px.left + 5, px.top + 5});
    window.SendMessage(WM_MOUSELEAVE);
    EXPECT_EQ(probe.Count(EventType::kMouseEnter), 2);
    EXPECT_EQ(probe.Count(EventType::kMouseLeave), 2);
    EXPECT_EQ(manager.GetHot(), nullptr);
}

TEST_F(PaintManagerInput, WhatAppearsUnderARestingPointerIsHovered) {
    window.ShowWindow(true, false);
    PumpPending();
    window.Find(L"above").SetVisible(false);
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"item"));
    EXPECT_EQ(manager.GetHot(), &window.Find(L"below"));
    window.Find(L"above").SetVisible(true);
    EXPECT_TRUE(PumpUntil([&] { return manager.GetHot() == manager.FindControl(L"above"); }));
}

TEST_F(PaintManagerInput, TabGoesInLayoutOrderAndGroupsAreOneStop) {
    std::vector<std::wstring> order;
    for (int i = 0; i < 8; ++i) {
        window.Key(VK_TAB);
        order.push_back(manager.GetFocus()->GetName());
    }
    EXPECT_EQ(order, (std::vector<std::wstring>{L"a", L"b", L"above", L"two", L"slider", L"ok", L"no", L"a"}));
    EXPECT_TRUE(manager.IsFocusRingShown());
    EXPECT_TRUE(manager.SetNextTabControl(false));
    EXPECT_EQ(manager.GetFocus(), &window.Find(L"no"));
}

TEST_F(PaintManagerInput, TabGoesOnFromWhereAHiddenControlWas) {
    window.ShowWindow(true, false);
    manager.SetFocus(&window.Find(L"above"), true);
    ASSERT_EQ(manager.GetFocus(), &window.Find(L"above"));
    window.Find(L"item").SetVisible(false);
    EXPECT_TRUE(PumpUntil([&] { return manager.GetFocus() == nullptr; }));
    window.Key(VK_TAB);
    EXPECT_EQ(manager.GetFocus(), &window.Find(L"two"));
}

TEST_F(PaintManagerInput, FocusRingOnlyByKeyboard) {
    window.Key(VK_TAB);
    EXPECT_TRUE(manager.IsFocusRingShown());
    window.Click(L"b");
    EXPECT_EQ(manager.GetFocus(), &window.Find(L"b"));
    EXPECT_FALSE(manager.IsFocusRingShown());
}

TEST_F(PaintManagerInput, WhoWantsToSeeTheFocusSeesItFromTheStart) {
    BOOL former = FALSE;
    SystemParametersInfoW(SPI_GETKEYBOARDCUES, 0, &former, 0);
    const auto set = [](bool always) {
        SystemParametersInfoW(SPI_SETKEYBOARDCUES, 0, reinterpret_cast<void*>(static_cast<INT_PTR>(always)), 0);
    };
    set(true);
    TestWindow other(kLayout);
    EXPECT_TRUE(other.PaintManager().IsFocusRingShown());
    other.Click(L"b");
    EXPECT_TRUE(other.PaintManager().IsFocusRingShown());
    EXPECT_FALSE(manager.IsFocusRingShown()) << "made before";
    window.SendMessage(WM_SETTINGCHANGE, SPI_SETKEYBOARDCUES);
    EXPECT_TRUE(manager.IsFocusRingShown());
    set(false);
    window.SendMessage(WM_SETTINGCHANGE, 0);  // rarely names the setting
    EXPECT_FALSE(manager.IsFocusRingShown());
    set(former != FALSE);
}

TEST_F(PaintManagerInput, ALiftedFingerIsNowhere) {
    window.Click(L"a");
    EXPECT_EQ(manager.GetHot(), &window.Find(L"a"));
    for (const LPARAM extra : {static_cast<LPARAM>(0xFF515700), static_cast<LPARAM>(0xFF515780)}) {
        SetMessageExtraInfo(extra);
        window.Click(L"a");
        EXPECT_EQ(manager.GetHot(), nullptr);
    }
    EXPECT_EQ(window.Count(L"click a"), 3);
    SetMessageExtraInfo(0);
    window.Click(L"b");
    EXPECT_EQ(manager.GetHot(), &window.Find(L"b"));
}

// --- a finger

class Pan : public testing::Test {
  protected:
    // 200 high with a content of 600; the inner one is 100 high with a content of 300.
    Pan() { current_ = this; }
    ~Pan() override { current_ = nullptr; }

    bool Gesture(DWORD id, DWORD flags, Point clientPx) {
        POINT screen{clientPx.x, clientPx.y};
        ClientToScreen(window.GetHWND(), &screen);
        info_.dwID = id;
        info_.dwFlags = flags;
        info_.ptsLocation = {static_cast<SHORT>(screen.x), static_cast<SHORT>(screen.y)};
        closed_ = 0;
        LRESULT result = 1;
        return manager.MessageHandler(WM_GESTURE, 0, kHandle, result);
    }
    int TopOf(const wchar_t* name) { return window.Find<CContainerUI>(name).GetScrollPos().y; }

    static constexpr LPARAM kHandle = 77;
    TestWindow window{
        R"(<Window size="300,200"><VerticalLayout name="outer" vscrollbar="true"><VerticalLayout name="inner" height="100"
        vscrollbar="true"><Button name="b0" height="300"/></VerticalLayout><Button name="b1" height="500"/></VerticalLayout></Window>)"};
    CPaintManagerUI& manager = window.PaintManager();
    int closed_ = 0;
    bool refuses_ = false;
    std::vector<GESTURECONFIG> asked_;

  private:
    static BOOL WINAPI Info(HGESTUREINFO handle, PGESTUREINFO info) {
        EXPECT_EQ(reinterpret_cast<LPARAM>(handle), kHandle);
        EXPECT_EQ(info->cbSize, sizeof(GESTUREINFO));
        *info = current_->info_;
        return !current_->refuses_;
    }
    static BOOL WINAPI Close(HGESTUREINFO) { return ++current_->closed_; }
    static BOOL WINAPI Configure(HWND, DWORD, UINT count, PGESTURECONFIG config, UINT size) {
        EXPECT_EQ(size, sizeof(GESTURECONFIG));
        current_->asked_.assign(config, config + count);
        return TRUE;
    }

    static inline Pan* current_ = nullptr;
    GESTUREINFO info_{};
    const HMODULE library_ = GetModuleHandleW(L"DuiLib.dll");
    const harness::ImportHook get_{library_, "GetGestureInfo", &Info};
    const harness::ImportHook close_{library_, "CloseGestureInfoHandle", &Close};
    const harness::ImportHook configure_{library_, "SetGestureConfig", &Configure};
};

TEST_F(Pan, ScrollsWhatIsUnderTheFinger) {
    manager.UpdateLayout();
    EXPECT_TRUE(Gesture(GID_PAN, GF_BEGIN, {50, 180}));
    EXPECT_EQ(closed_, 1) << "its owner closes it";
    EXPECT_TRUE(Gesture(GID_PAN, 0, {50, 150}));
    EXPECT_EQ(closed_, 1);
    EXPECT_EQ(TopOf(L"outer"), 30);
    EXPECT_TRUE(Gesture(GID_PAN, GF_INERTIA, {50, 140}));
    EXPECT_TRUE(Gesture(GID_PAN, GF_END, {50, 145}));
    EXPECT_EQ(TopOf(L"outer"), 35);
    EXPECT_EQ(TopOf(L"inner"), 0);
}

TEST_F(Pan, GoesOnToTheOuterListAtTheEnd) {
    manager.UpdateLayout();
    Gesture(GID_PAN, GF_BEGIN, {50, 90});
    Gesture(GID_PAN, 0, {50, 40});
    EXPECT_EQ(TopOf(L"inner"), 50);
    EXPECT_EQ(TopOf(L"outer"), 0);
    Gesture(GID_PAN, 0, {50, -400});
    EXPECT_EQ(TopOf(L"inner"), 200);
    Gesture(GID_PAN, 0, {50, -420});
    EXPECT_EQ(TopOf(L"outer"), 20);
}

TEST_F(Pan, GivesThePressUp) {
    manager.UpdateLayout();
    window.Mouse(WM_LBUTTONDOWN, {50, 180}, MK_LBUTTON);
    ASSERT_EQ(manager.GetCapture(), &window.Find(L"b1"));
    Gesture(GID_PAN, GF_BEGIN, {50, 180});
    EXPECT_EQ(manager.GetCapture(), nullptr);
    window.Mouse(WM_LBUTTONUP, {50, 180});
    EXPECT_FALSE(window.Got(L"click b1"));
}

TEST_F(Pan, OtherGesturesAreTheSystems) {
    manager.UpdateLayout();
    for (const DWORD id : {GID_BEGIN, GID_END, GID_ZOOM, GID_TWOFINGERTAP}) {
        EXPECT_FALSE(Gesture(id, GF_BEGIN, {50, 180}));
        EXPECT_EQ(closed_, 0);
    }
    refuses_ = true;
    EXPECT_FALSE(Gesture(GID_PAN, GF_BEGIN, {50, 180}));
}

TEST_F(Pan, SurvivesTheEndOfWhatItScrolls) {
    manager.UpdateLayout();
    Gesture(GID_PAN, GF_BEGIN, {50, 50});
    window.Find<CContainerUI>(L"outer").RemoveAll();
    EXPECT_TRUE(Gesture(GID_PAN, 0, {50, 20}));
}

TEST_F(Pan, IsAskedForUpAndDownOnly) {
    LRESULT result = 0;
    EXPECT_FALSE(manager.MessageHandler(WM_GESTURENOTIFY, 0, 0, result)) << "the system answers too";
    ASSERT_EQ(asked_.size(), 1u);
    EXPECT_EQ(asked_[0].dwID, static_cast<DWORD>(GID_PAN));
    EXPECT_EQ(asked_[0].dwWant, static_cast<DWORD>(GC_PAN | GC_PAN_WITH_SINGLE_FINGER_VERTICALLY | GC_PAN_WITH_GUTTER |
                                                   GC_PAN_WITH_INERTIA));
    EXPECT_EQ(asked_[0].dwBlock, static_cast<DWORD>(GC_PAN_WITH_SINGLE_FINGER_HORIZONTALLY));
}

TEST_F(PaintManagerInput, EnterPressesTheFocusedButtonElseTheDefaultOne) {
    window.Key(VK_RETURN);
    EXPECT_EQ(window.Count(L"click ok"), 1);
    manager.SetFocus(&window.Find(L"slider"), true);
    window.Key(VK_RETURN);
    EXPECT_EQ(window.Count(L"click ok"), 2);
    manager.SetFocus(&window.Find(L"b"), true);
    window.Key(VK_RETURN);
    EXPECT_EQ(window.Count(L"click ok"), 2);
    EXPECT_EQ(window.Count(L"click b"), 1);
    window.SendMessage(WM_KEYDOWN, VK_RETURN, 0x40000001);  // held
    EXPECT_EQ(window.Count(L"click b"), 1);
}

TEST_F(PaintManagerInput, SpacePressesOnRelease) {
    manager.SetFocus(&window.Find(L"a"), true);
    window.SendMessage(WM_KEYDOWN, VK_SPACE, 1);
    EXPECT_FALSE(window.Got(L"click a"));
    window.SendMessage(WM_KEYUP, VK_SPACE, static_cast<LPARAM>(0xC0000001));
    EXPECT_EQ(window.Count(L"click a"), 1);
}

TEST_F(PaintManagerInput, ArrowsWalkAGroupAndMoveASlider) {
    manager.SetFocus(&window.Find(L"two"), true);
    window.Key(VK_RIGHT);
    EXPECT_EQ(manager.GetFocus(), &window.Find(L"three"));
    EXPECT_TRUE(PumpUntil([&] { return window.Find<COptionUI>(L"three").IsSelected(); }));
    EXPECT_FALSE(window.Find<COptionUI>(L"two").IsSelected());
    EXPECT_TRUE(manager.IsFocusRingShown());
    manager.SetFocus(&window.Find(L"slider"), true);
    window.Key(VK_RIGHT);
    EXPECT_EQ(window.Count(L"valuechanged slider"), 1);
}

TEST_F(PaintManagerInput, FocusComesBackWithTheWindow) {
    manager.SetFocus(&window.Find(L"a"), true);
    EXPECT_TRUE(window.Find(L"a").IsFocused());
    window.SendMessage(WM_KILLFOCUS);
    EXPECT_FALSE(window.Find(L"a").IsFocused());
    EXPECT_FALSE(manager.IsFocusRingShown());
    window.SendMessage(WM_SETFOCUS);
    EXPECT_TRUE(window.Find(L"a").IsFocused());
    EXPECT_EQ(manager.GetFocus(), &window.Find(L"a"));
}

TEST_F(PaintManagerInput, DisabledFocusKeepsItsPlaceAndGetsNoKeys) {
    manager.SetFocus(&window.Find(L"a"), true);
    window.Find(L"a").SetEnabled(false);
    window.Key(VK_SPACE);
    EXPECT_FALSE(window.Got(L"click a"));
    window.Find(L"a").SetEnabled(true);
    window.Key(VK_SPACE);
    EXPECT_EQ(window.Count(L"click a"), 1);
}

TEST_F(PaintManagerInput, AControlMayBeRemovedByTheAnswerToItsOwnEvents) {
    for (const wchar_t* type : {L"mouseenter", L"buttondown", L"click", L"mouseleave", L"setfocus"}) {
        TestWindow other(kLayout);
        other.onNotify = [&](TNotifyUI& msg) {
            if (msg.type == type && msg.sender->GetName() == L"a") {
                msg.sender->GetParent()->Remove(msg.sender);
            }
        };
        const Point px = other.CenterOf(L"a");
        other.Mouse(WM_MOUSEMOVE, px);
        other.Mouse(WM_LBUTTONDOWN, px, MK_LBUTTON);
        other.Mouse(WM_LBUTTONUP, px);
        other.Mouse(WM_MOUSEMOVE, other.CenterOf(L"ok"));
        EXPECT_EQ(other.PaintManager().FindControl(L"a"), nullptr);
        EXPECT_EQ(other.PaintManager().GetCapture(), nullptr);
        EXPECT_EQ(GetCapture(), nullptr);
    }
}

TEST_F(PaintManagerInput, ARemovedControlLivesUntilItsEventIsOver) {
    static bool destroyed = false;
    static bool destroyedTooEarly = false;
    class Doomed : public CControlUI {
      public:
        ~Doomed() override { destroyed = true; }
        void DoEvent(const TEventUI& event) override {
            if (event.type == EventType::kButtonDown) {
                GetParent()->Remove(this);
                destroyedTooEarly = destroyed;
            }
        }
    };
    auto owned = std::make_unique<Doomed>();
    owned->SetFixedHeight(40);
    owned->SetName(L"doomed");
    window.Find<CContainerUI>(L"root").AddAt(std::move(owned), 0);
    window.Mouse(WM_LBUTTONDOWN, window.CenterOf(L"doomed"), MK_LBUTTON);
    EXPECT_FALSE(destroyedTooEarly);
    EXPECT_TRUE(destroyed);
}

TEST_F(PaintManagerInput, AnItemMayBeRemovedByAClickWithinIt) {
    window.onNotify = [&](TNotifyUI& msg) {
        if (msg.type == NotifyType::kClick) {
            CContainerUI* const item = msg.sender->GetParent();
            item->GetParent()->Remove(item);
        }
    };
    window.Click(L"above");
    EXPECT_EQ(manager.FindControl(L"item"), nullptr);
    window.Mouse(WM_MOUSEMOVE, {10, 10});
}

TEST_F(PaintManagerInput, TheWindowMayBeDestroyedByAClick) {
    window.onNotify = [&](TNotifyUI& msg) {
        if (msg.type == NotifyType::kClick) {
            DestroyWindow(window.GetHWND());
        }
    };
    window.Click(L"a");
    EXPECT_EQ(window.GetHWND(), nullptr);
}

// The window answers the release of a button by itself, as a program may.
class AnsweringWindow : public TestWindow {
  public:
    using TestWindow::TestWindow;
    LRESULT OnLButtonUp(WPARAM, LPARAM lParam, bool& handled) override {
        handled = false;
        const POINT px{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
        CControlUI* control = PaintManager().FindControl(POINT{60, 25});
        if (control != nullptr && (control->GetState() & kStateCaptured) != 0) {
            systemCaptured = ::GetCapture() != nullptr;
            control->SetState(control->GetState() & ~(kStateCaptured | kStatePushed));
            PaintManager().SendNotify(control, NotifyType::kClick);
            handled = true;
        }
        released = px;
        return 0;
    }
    POINT released{};
    bool systemCaptured = true;
};

TEST_F(PaintManagerInput, AReleaseThatTheWindowAnswersEndsTheCapture) {
    AnsweringWindow other(kLayout);
    other.Mouse(WM_LBUTTONDOWN, other.CenterOf(L"a"), MK_LBUTTON);
    other.Mouse(WM_MOUSEMOVE, other.CenterOf(L"ok"), MK_LBUTTON);
    other.Mouse(WM_LBUTTONUP, other.CenterOf(L"ok"));
    EXPECT_EQ(other.Count(L"click a"), 1);
    EXPECT_FALSE(other.systemCaptured);
    EXPECT_EQ(other.PaintManager().GetCapture(), nullptr);
    EXPECT_FALSE(other.Got(L"click ok"));
    other.Click(L"b");
    EXPECT_EQ(other.Count(L"click b"), 1);
}

TEST_F(PaintManagerInput, FiltersSeeMessagesFirst) {
    struct Filter final : IMessageFilterUI {
        bool FilterMessage(UINT message, WPARAM, LPARAM, LRESULT& result) override {
            result = 7;
            return message == WM_LBUTTONDOWN;
        }
    } filter;
    manager.AddMessageFilter(&filter);
    EXPECT_EQ(window.SendMessage(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(50, 25)), 7);
    EXPECT_EQ(manager.GetCapture(), nullptr);
    manager.RemoveMessageFilter(&filter);
    window.Click(L"a");
    EXPECT_TRUE(window.Got(L"click a"));
}

// By the rules of Windows: a request holds until its message is sent, and the last one counts.
HWND g_tracked = nullptr;
int g_requests = 0;

BOOL WINAPI Track(TRACKMOUSEEVENT* event) {
    EXPECT_EQ(event->cbSize, sizeof(TRACKMOUSEEVENT));
    if ((event->dwFlags & TME_QUERY) != 0) {
        *event = {sizeof(*event), g_tracked ? TME_LEAVE : 0ul, g_tracked, 0};
        return TRUE;
    }
    EXPECT_EQ(event->dwFlags, static_cast<DWORD>(TME_LEAVE));
    g_tracked = event->hwndTrack;
    ++g_requests;
    return TRUE;
}

TEST_F(PaintManagerInput, LeavingIsAskedForOnceUntilItIsTold) {
    g_tracked = nullptr;
    g_requests = 0;
    const harness::ImportHook track(GetModuleHandleW(L"DuiLib.dll"), "TrackMouseEvent", &Track);
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"a"));
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"b"));
    EXPECT_EQ(g_tracked, window.GetHWND());
    EXPECT_EQ(g_requests, 1);
    g_tracked = nullptr;
    window.Mouse(WM_MOUSELEAVE, {});
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"a"));
    EXPECT_EQ(g_tracked, window.GetHWND());
    EXPECT_EQ(g_requests, 2);
    // Another window of the thread may have asked for itself meanwhile.
    g_tracked = GetDesktopWindow();
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"b"));
    EXPECT_EQ(g_tracked, window.GetHWND());
    EXPECT_EQ(g_requests, 3);
}

}  // namespace
}  // namespace DuiLib::Test
