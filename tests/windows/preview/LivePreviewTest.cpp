// The home page's preview on a graphics system and a camera that keep every rule: what hangs, what is lost, what fails,
// and what the user can do meanwhile.
#include <mfapi.h>

#include <dbt.h>

#include <atomic>
#include <optional>
#include <utility>

#include "preview/CameraThreads.h"
#include "service/KindNotifier.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TopLevelWindows.h"
#include "tests/support/doubles/CameraDouble.h"
#include "tests/support/doubles/Gate.h"
#include "tests/support/doubles/GraphicsDouble.h"
#include "tests/support/doubles/Violations.h"
#include "tests/windows/pages/PageTests.h"

namespace {

using doubles::CameraAnswer;
using doubles::Cameras;
using doubles::CameraScript;
using doubles::CameraType;
using doubles::Gate;
using doubles::Graphics;
using doubles::GraphicsScript;
using doubles::Violations;
using GlobalUtils::OnListenKindInfo;
using GlobalUtils::PowerKind;
using GlobalUtils::ScreenLockKind;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kCameraUnavailable = 5;
constexpr HRESULT kInUse = static_cast<HRESULT>(0xC00D3704);
constexpr char kSourceError[] = "[L4] create device source error!(Preview::CreateDeviceSource)";
constexpr char kLost[] = "[L3] the graphics device is lost(LivePreview::RecoverDevice)";
constexpr char kBack[] = "[L3] the graphics device is back(LivePreview::RecoverDevice)";
constexpr char kStartError[] = "[L4] create device source error!(Preview::Start)";

class LivePreviewTest : public HomePageTest {
  protected:
    void SetUp() override {
        Graphics::Begin();
        Cameras::Begin();
        ChangeCamera([](CameraScript& script) { script.natives = {Yuy2()}; });
        Violations::Take();
        HomePageTest::SetUp();
    }
    void TearDown() override {
        HomePageTest::TearDown();
        Cameras::End();
        EXPECT_THAT(Violations::Take(), IsEmpty());
        EXPECT_EQ(Graphics::Seen().objectsAlive, 0);
        EXPECT_EQ(Graphics::Seen().devicesAlive, 0);
    }

    static CameraType Yuy2() {
        CameraType type;
        type.subtype = MFVideoFormat_YUY2;
        return type;
    }
    static void ChangeCamera(const std::function<void(CameraScript&)>& change) { Cameras::Change(change); }
    static void ChangeGraphics(const std::function<void(GraphicsScript&)>& change) { Graphics::Change(change); }
    template <typename Condition>
    static bool Wait(const Condition& condition) {
        return Input::PumpUntil(condition);
    }

    template <typename Kind>
    static void Publish(std::int32_t channel, Kind kind) {
        KindNotifier<Kind>::GetInstance().Publish(channel, std::move(kind));
    }
    static void Lock() { Publish(GlobalUtils::kScreenLockChannel, ScreenLockKind::kLocked); }
    static void Sleeps() { Publish(GlobalUtils::kPowerChannel, PowerKind::kSuspend); }
    static void WakesUp() { Publish(GlobalUtils::kPowerChannel, PowerKind::kResume); }
    static void Tell(HRESULT code) {
        Publish(GlobalUtils::kOnListenChannel, OnListenKindInfo{static_cast<std::uintptr_t>(code), 0});
    }

    HWND PreviewWindow() {
        const std::vector<HWND> found = harness::OwnedWindows(L"STATIC", Host().GetHWND());
        return found.empty() ? nullptr : found.front();
    }
    DuiLib::CButtonUI& Switch() { return Control<DuiLib::CButtonUI>(L"preview_switch"); }
    bool IsOn() { return Switch().IsChecked() == true; }
    bool CanBeClicked() { return Switch().IsEnabled(); }
    void PressSwitch() {
        Press(L"preview_switch");
        ASSERT_TRUE(Wait([this] { return CanBeClicked(); }));
    }
    void TurnOn() {
        PressSwitch();
        ASSERT_TRUE(IsOn());
        ASSERT_TRUE(FramesCome());
    }
    // The preview is on, and its device hangs until the gate is opened.
    void HangWhileDrawing(Gate& gate) {
        TurnOn();
        ChangeGraphics([&gate](GraphicsScript& script) { script.withinPresent = [&gate] { gate.Pass(); }; });
        ASSERT_TRUE(gate.WaitUntilReached());
    }
    // The preview is being turned on. A click that reaches the page all the same, by whatever way, does not count.
    void ExpectOnlyOthersCanBeClicked() {
        EXPECT_TRUE(IsOn()) << "drawn on at once";
        EXPECT_FALSE(CanBeClicked());
        Press(L"correct_sight_btn");
        EXPECT_TRUE(IsDrawnOn(L"correct_sight_btn")) << "a click of another control";
        Notify(L"preview_switch", L"click");
        Press(L"preview_switch");
        Input::Pump();
        EXPECT_TRUE(IsOn());
    }
    static bool FramesCome() {
        const int goal = Graphics::Seen().presents + 3;
        return Wait([&] { return Graphics::Seen().presents >= goal; });
    }
    static bool IsCameraFree() {
        return Wait([] { return Cameras::Seen().sourcesRunning == 0; });
    }
    void ExpectOff() {
        EXPECT_FALSE(IsOn());
        EXPECT_TRUE(CanBeClicked());
        EXPECT_FALSE(IsWindowVisible(PreviewWindow()));
        EXPECT_TRUE(IsCameraFree());
    }
    std::vector<int> Messages() {
        Input::Pump();
        return Host().Messages();
    }
    bool WaitForMessage() {
        return Wait([this] { return !Host().Messages().empty(); });
    }
    static void ExpectSourceError() {
        Expect(kSourceError);
        Expect(kStartError);
    }
};

// --- looking for the graphics device

class FindingDeviceTest : public LivePreviewTest {
  protected:
    void SetUp() override {
        LivePreviewTest::SetUp();
        ChangeGraphics([this](GraphicsScript& script) { script.withinCreation = [this] { gate_.Pass(); }; });
        Press(L"preview_switch");
        ASSERT_TRUE(gate_.WaitUntilReached());
    }
    // What was looked for comes; it is of no use any more.
    void ExpectItGoesUnused() {
        ChangeGraphics([](GraphicsScript& script) { script.withinCreation = nullptr; });
        gate_.Open();
        EXPECT_TRUE(Wait([] { return Graphics::Seen().objects == 1 && Graphics::Seen().objectsAlive == 0; }));
        EXPECT_EQ(Graphics::Seen().devices, 0);
        EXPECT_EQ(Cameras::Seen().activations, 0);
    }

    Gate gate_;
};

TEST_F(FindingDeviceTest, EverythingElseWorksMeanwhile) {
    EXPECT_EQ(PreviewWindow(), nullptr);
    ExpectOnlyOthersCanBeClicked();
    gate_.Open();
    EXPECT_TRUE(Wait([this] { return CanBeClicked(); }));
    EXPECT_TRUE(FramesCome());
    EXPECT_TRUE(IsWindowVisible(PreviewWindow()));
    EXPECT_EQ(Graphics::Seen().objects, 1) << "the device is made with the one that was found";
    EXPECT_EQ(Cameras::Seen().activations, 1);
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(FindingDeviceTest, TheLockEndsIt) {
    Lock();
    ExpectOff();
    ExpectItGoesUnused();
    EXPECT_THAT(Messages(), IsEmpty());
    TurnOn();
}

TEST_F(FindingDeviceTest, SleepEndsIt) {
    Sleeps();
    ExpectOff();
    ExpectItGoesUnused();
}

TEST_F(FindingDeviceTest, AnErrorEndsIt) {
    WakesUp();  // a capture would be opened again
    Tell(E_FAIL);
    ExpectOff();
    ExpectItGoesUnused();
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
}

// However often it is turned on meanwhile, and ended by something else: nobody looks a second time.
TEST_F(FindingDeviceTest, TheNextStartsGetWhatIsFound) {
    for (int i = 0; i < 6; ++i) {
        Lock();
        EXPECT_FALSE(IsOn());
        Press(L"preview_switch");
        EXPECT_TRUE(IsOn());
        EXPECT_FALSE(CanBeClicked());
    }
    gate_.Open();
    EXPECT_TRUE(Wait([this] { return CanBeClicked(); }));
    EXPECT_TRUE(FramesCome());
    EXPECT_EQ(Graphics::Seen().objects, 1);
    EXPECT_EQ(Cameras::Seen().activations, 1);
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(FindingDeviceTest, ThePageMayGo) {
    DestroyPage();
    ExpectItGoesUnused();
}

TEST_F(FindingDeviceTest, OneThatIsNotFoundInTimeIsGivenUp) {
    Expect("[L4] the camera does not open(LivePreview::GiveUpOpening)");
    const ULONGLONG begin = GetTickCount64();
    EXPECT_TRUE(WaitForMessage());
    EXPECT_GE(GetTickCount64() - begin, 9'000U);
    ExpectOff();
    EXPECT_THAT(
        harness::TestLog::Lines(),
        Contains("[L3] it hangs at: the graphics device; openings 1, waiting for their turn 0, inside 1, closings "
                 "0(LivePreview::GiveUpOpening)"));
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
    ExpectItGoesUnused();
    TurnOn();
}

// A camera is opened by one at a time: when the device is there, somebody else has the turn.
TEST_F(FindingDeviceTest, AnOpeningThatIsEndedBeforeItsTurnOpensNothing) {
    Gate other;
    ASSERT_TRUE(preview::BeginOpening([&] { other.Pass(); }));
    gate_.Open();
    ASSERT_TRUE(harness::WaitUntil(
        [] { return preview::OpeningsUnderWay() == L"openings 1, waiting for their turn 0, inside 1, closings 0"; }));
    ASSERT_TRUE(Wait(
        [] { return preview::OpeningsUnderWay() == L"openings 2, waiting for their turn 1, inside 1, closings 0"; }));
    EXPECT_EQ(Graphics::Seen().devices, 1);
    Lock();
    ExpectOff();
    other.Open();
    EXPECT_TRUE(Wait([] { return preview::OpeningsUnderWay().starts_with(L"openings 0,"); }));
    EXPECT_EQ(Cameras::Seen().activations, 0);
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(LivePreviewTest, WithoutDirect3DItStaysOff) {
    Expect("[L4] Preview::CreateInstance failed.-2147467259(HomePage::CreateMF)");
    Expect("[L4] Init g_pPreview error(HomePage::ClickPreview)");
    ChangeGraphics([](GraphicsScript& script) { script.noDirect3D = true; });
    PressSwitch();
    ExpectOff();
    EXPECT_EQ(Cameras::Seen().activations, 0);
    EXPECT_THAT(Messages(), IsEmpty());
    ChangeGraphics([](GraphicsScript& script) { script.noDirect3D = false; });
    TurnOn();
}

// --- opening

TEST_F(LivePreviewTest, WhileTheCameraOpensEverythingElseWorks) {
    Gate gate;
    ChangeCamera([&](CameraScript& script) { script.withinActivation = [&] { gate.Pass(); }; });
    Press(L"preview_switch");
    ASSERT_TRUE(gate.WaitUntilReached());
    EXPECT_FALSE(IsWindowVisible(PreviewWindow()));
    ExpectOnlyOthersCanBeClicked();
    EXPECT_EQ(Cameras::Seen().activations, 1);
    gate.Open();
    EXPECT_TRUE(Wait([this] { return CanBeClicked(); }));
    EXPECT_TRUE(IsOn());
    EXPECT_TRUE(IsWindowVisible(PreviewWindow()));
    EXPECT_TRUE(FramesCome());
    EXPECT_THAT(Messages(), IsEmpty());
}

// Whatever ends it before the camera is open: the switch can be clicked, and the camera does not stay open.
TEST_F(LivePreviewTest, AnOpeningThatIsNotWantedAnyMoreClosesTheCameraItself) {
    const std::function<void()> endings[] = {[] { Lock(); }, [] { Sleeps(); }, [] { Tell(E_FAIL); }};
    for (const auto& end : endings) {
        Gate gate;
        ChangeCamera([&](CameraScript& script) { script.withinActivation = [&] { gate.Pass(); }; });
        Press(L"preview_switch");
        ASSERT_TRUE(gate.WaitUntilReached());
        end();
        EXPECT_FALSE(IsOn());
        EXPECT_TRUE(CanBeClicked());
        const int sources = Cameras::Seen().sources;
        gate.Open();
        EXPECT_TRUE(Wait([&] { return Cameras::Seen().sources == sources + 1; }));
        EXPECT_TRUE(IsCameraFree());
        EXPECT_EQ(Cameras::Seen().reads, 0);
    }
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable)) << "of the error alone";
    ChangeCamera([](CameraScript& script) { script.withinActivation = nullptr; });
    TurnOn();
}

TEST_F(LivePreviewTest, ThePageMayGoWhileTheCameraOpens) {
    Gate gate;
    ChangeCamera([&](CameraScript& script) { script.withinActivation = [&] { gate.Pass(); }; });
    Press(L"preview_switch");
    ASSERT_TRUE(gate.WaitUntilReached());
    DestroyPage();
    gate.Open();
    EXPECT_TRUE(Wait([] { return Cameras::Seen().sources == 1; }));
    EXPECT_TRUE(IsCameraFree());
}

TEST_F(LivePreviewTest, AnOpeningThatDoesNotEndIsGivenUp) {
    Expect("[L4] the camera does not open(LivePreview::GiveUpOpening)");
    Gate gate;
    ChangeCamera([&](CameraScript& script) {
        script.withinActivation = [&] {
            if (Cameras::Seen().activations == 1) {
                gate.Pass();
            }
        };
    });
    const ULONGLONG begin = GetTickCount64();
    Press(L"preview_switch");
    EXPECT_TRUE(WaitForMessage());
    EXPECT_GE(GetTickCount64() - begin, 9'900U) << "some cameras take five seconds";
    EXPECT_THAT(
        harness::TestLog::Lines(),
        Contains("[L3] it hangs at: opening the camera; openings 1, waiting for their turn 0, inside 1, closings "
                 "0(LivePreview::GiveUpOpening)"));
    EXPECT_FALSE(IsOn());
    EXPECT_TRUE(CanBeClicked());
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
    TurnOn();
    gate.Open();
    EXPECT_TRUE(Wait([] { return Cameras::Seen().sources == 2 && Cameras::Seen().sourcesRunning == 1; }))
        << "what came too late was closed";
    EXPECT_TRUE(IsOn());
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
}

TEST_F(LivePreviewTest, ACameraThatCannotBeOpenedIsToldOnce) {
    for (const HRESULT code : {kInUse, E_ACCESSDENIED, E_FAIL}) {
        ExpectSourceError();
        ChangeCamera([&](CameraScript& script) { script.activate = code; });
        const std::size_t before = Messages().size();
        PressSwitch();
        ExpectOff();
        EXPECT_EQ(Messages().size(), before + 1);
    }
    ChangeCamera([](CameraScript& script) { script.activate = S_OK; });
    TurnOn();
}

TEST_F(LivePreviewTest, ARefusedDeviceIsToldInOneBoxHoweverOftenTheUserClicks) {
    Expect("[L4] Preview::CreateInstance failed.-2005530518(HomePage::CreateMF)");
    Expect("[L4] Init g_pPreview error(HomePage::ClickPreview)");
    int clicks = 0;
    ChangeGraphics([&](GraphicsScript& script) {
        script.createDevice = D3DERR_NOTAVAILABLE;
        script.whileBoxIsShown = [&] {
            for (; clicks < 3; ++clicks) {
                Press(L"preview_switch");
            }
        };
    });
    PressSwitch();
    EXPECT_EQ(clicks, 3);
    EXPECT_EQ(Graphics::Seen().boxes.size(), 1U);
    EXPECT_EQ(harness::TestLog::Count("[L4] Init g_pPreview error(HomePage::ClickPreview)"), 1);
    ExpectOff();
    EXPECT_THAT(Messages(), IsEmpty());
    ChangeGraphics([](GraphicsScript& script) { script.createDevice = S_OK; });
    TurnOn();
}

TEST_F(LivePreviewTest, AMinimisedWindowGetsItsDeviceToo) {
    ShowWindow(Host().GetHWND(), SW_MINIMIZE);
    ASSERT_TRUE(IsIconic(Host().GetHWND()));
    TurnOn();
    EXPECT_EQ(Graphics::Seen().refusals, 0);
    EXPECT_EQ(Graphics::Seen().backBuffer.cx, 596);
    EXPECT_EQ(Graphics::Seen().backBuffer.cy, 352);
    EXPECT_FALSE(IsWindowVisible(PreviewWindow()));
    ShowWindow(Host().GetHWND(), SW_RESTORE);
}

// --- the wait for the first frames

// While it lives, the wait for the first frames is an action of the test, and over with it.
class InsteadOfWait {
  public:
    explicit InsteadOfWait(std::function<void()> action)
        : hook_(nullptr, "MsgWaitForMultipleObjectsEx", &InsteadOfWait::Wait) {
        action_ = std::move(action);
        original_ = hook_.Original<decltype(&MsgWaitForMultipleObjectsEx)>();
    }
    InsteadOfWait(const InsteadOfWait&) = delete;
    InsteadOfWait& operator=(const InsteadOfWait&) = delete;
    bool IsDone() const { return !action_; }

  private:
    static DWORD WINAPI Wait(DWORD handles, const HANDLE* handle, DWORD timeMs, DWORD kinds, DWORD flags) {
        constexpr DWORD kFirstFramesMs = 400;
        if (handles != 0 || kinds != QS_SENDMESSAGE || timeMs != kFirstFramesMs) {
            return original_(handles, handle, timeMs, kinds, flags);
        }
        std::exchange(action_, nullptr)();
        return WAIT_TIMEOUT;
    }
    static inline std::function<void()> action_;
    static inline decltype(&MsgWaitForMultipleObjectsEx) original_ = nullptr;

    const harness::ImportHook hook_;
};

class FirstFramesTest : public LivePreviewTest {
  protected:
    POINT Middle(const std::wstring& control) {
        const DuiLib::Rect& place = Control(control).GetPos();
        POINT middle = {(place.left + place.right) / 2, (place.top + place.bottom) / 2};
        ClientToScreen(Host().GetHWND(), &middle);
        return middle;
    }
    static void ClickAt(POINT screen) {
        SetCursorPos(screen.x, screen.y);
        INPUT inputs[2] = {};
        inputs[0].type = inputs[1].type = INPUT_MOUSE;
        inputs[0].mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
        inputs[1].mi.dwFlags = MOUSEEVENTF_LEFTUP;
        SendInput(2, inputs, sizeof inputs[0]);
    }
    static void PressSpace() {
        INPUT inputs[2] = {};
        inputs[0].type = inputs[1].type = INPUT_KEYBOARD;
        inputs[0].ki.wVk = inputs[1].ki.wVk = VK_SPACE;
        inputs[1].ki.dwFlags = KEYEVENTF_KEYUP;
        SendInput(2, inputs, sizeof inputs[0]);
    }
};

TEST_F(FirstFramesTest, ClicksThatComeMeanwhileCountForOtherControlsOnly) {
    ASSERT_TRUE(Input::Activate(Host().GetHWND()));
    const POINT preview = Middle(L"preview_switch");
    const POINT other = Middle(L"show_detail_btn");
    const InsteadOfWait wait([&] {
        ClickAt(preview);
        ClickAt(other);
        ClickAt(preview);
    });
    Press(L"preview_switch");
    EXPECT_TRUE(Wait([&] { return wait.IsDone() && CanBeClicked(); }));
    EXPECT_THAT(Host().shownPages, ElementsAre(L"IntroductionPage 0"));
    EXPECT_TRUE(IsOn());
    EXPECT_EQ(Cameras::Seen().activations, 1);
    Input::Park();
}

TEST_F(FirstFramesTest, KeysThatComeMeanwhileDoNotTurnItOffAgain) {
    ASSERT_TRUE(Input::Activate(Host().GetHWND()));
    Manager().SetFocus(&Switch(), true);
    const InsteadOfWait wait([] {
        PressSpace();
        PressSpace();
        PressSpace();
    });
    Press(L"preview_switch");
    EXPECT_TRUE(Wait([&] { return wait.IsDone() && CanBeClicked(); }));
    Input::Pump();
    EXPECT_TRUE(IsOn());
    EXPECT_EQ(Cameras::Seen().activations, 1);
    EXPECT_TRUE(Switch().IsFocused()) << "the keyboard is where it was";
    PressSpace();
    EXPECT_TRUE(Wait([this] { return !IsOn(); })) << "the next one counts";
}

TEST_F(FirstFramesTest, AnErrorThatComesMeanwhileEndsIt) {
    const InsteadOfWait wait([this] { SendMessageW(Host().GetHWND(), WM_APP + 1, static_cast<WPARAM>(E_FAIL), 0); });
    Press(L"preview_switch");
    EXPECT_TRUE(Wait([&] { return wait.IsDone(); }));
    Input::Pump();
    ExpectOff();
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
}

// --- what hangs

// Counts, while it lives, the pauses in which this thread waits for the one that draws: each is a millisecond or more.
class DrawingWaits {
  public:
    DrawingWaits() : hook_(nullptr, "MsgWaitForMultipleObjectsEx", &DrawingWaits::Wait) {
        thread_ = GetCurrentThreadId();
        count_ = 0;
        original_ = hook_.Original<decltype(&MsgWaitForMultipleObjectsEx)>();
    }
    DrawingWaits(const DrawingWaits&) = delete;
    DrawingWaits& operator=(const DrawingWaits&) = delete;
    static int Count() { return count_; }

  private:
    static DWORD WINAPI Wait(DWORD handles, const HANDLE* handle, DWORD timeMs, DWORD kinds, DWORD flags) {
        if (handles == 0 && kinds == QS_SENDMESSAGE && timeMs == 1 && GetCurrentThreadId() == thread_) {
            ++count_;
        }
        return original_(handles, handle, timeMs, kinds, flags);
    }
    static inline DWORD thread_ = 0;
    static inline int count_ = 0;
    static inline decltype(&MsgWaitForMultipleObjectsEx) original_ = nullptr;

    const harness::ImportHook hook_;
};

// In each of these the graphics device hangs while it draws, and lets go only at the end; whatever ends the preview
// waits a tenth of a second for it, once.
class HangingDeviceTest : public LivePreviewTest {
  protected:
    void SetUp() override {
        LivePreviewTest::SetUp();
        ASSERT_NO_FATAL_FAILURE(HangWhileDrawing(gate_));
        waits_.emplace();
    }
    void TearDown() override {
        EXPECT_GE(waits_->Count(), 1);
        EXPECT_LE(waits_->Count(), 100);
        waits_.reset();
        EXPECT_EQ(Graphics::Seen().devicesAlive, 1) << "it was taken from the thread that uses it";
        ChangeGraphics([](GraphicsScript& script) { script.withinPresent = nullptr; });
        gate_.Open();
        EXPECT_TRUE(Wait([] { return Graphics::Seen().devicesAlive == 0; })) << "it is released later";
        EXPECT_EQ(Graphics::Seen().devices, 1) << "of two devices the older one's release may never come back";
        LivePreviewTest::TearDown();
    }

    Gate gate_;
    std::optional<DrawingWaits> waits_;
};

TEST_F(HangingDeviceTest, TheSwitchTurnsItOff) {
    Press(L"preview_switch");
    ExpectOff();
    EXPECT_THAT(Log(), Contains("[L3] the graphics device is busy; it is released later(LivePreview::Stop)"));
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(HangingDeviceTest, TheLockFreesTheCamera) {
    Lock();
    EXPECT_TRUE(IsCameraFree());
    ExpectOff();
    EXPECT_NE(PreviewWindow(), nullptr) << "a device must not outlive its window";
}

TEST_F(HangingDeviceTest, TheLockEndsAStartThatWaitsForIt) {
    Press(L"preview_switch");
    Press(L"preview_switch");
    EXPECT_TRUE(IsOn());
    Lock();
    ExpectOff();
}

TEST_F(HangingDeviceTest, AnErrorEndsAStartThatWaitsForIt) {
    Press(L"preview_switch");
    Press(L"preview_switch");
    WakesUp();  // a capture would be opened again
    Tell(E_FAIL);
    ExpectOff();
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
}

TEST_F(HangingDeviceTest, WhileItHangsThereIsNoOther) {
    Press(L"preview_switch");
    Expect("[L4] the graphics device is still busy(HomePage::CreateMF)");
    EXPECT_EQ(Page().CreateMF(PreviewWindow(), Host().GetHWND()), 0);
    EXPECT_EQ(Graphics::Seen().devices, 1);
    EXPECT_FALSE(IsOn());
}

TEST_F(HangingDeviceTest, AStartThatWaitsForTooLongIsGivenUp) {
    Press(L"preview_switch");
    Expect("[L4] the camera does not open(LivePreview::GiveUpOpening)");
    const ULONGLONG begin = GetTickCount64();
    Press(L"preview_switch");
    EXPECT_TRUE(WaitForMessage());
    EXPECT_GE(GetTickCount64() - begin, 9'900U);
    ExpectOff();
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
}

TEST_F(HangingDeviceTest, TheRuleOfTheSilentCameraEndsIt) {
    EXPECT_TRUE(WaitForMessage());
    ExpectOff();
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
}

TEST_F(HangingDeviceTest, AnErrorEndsIt) {
    Tell(E_FAIL);
    ExpectOff();
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
}

TEST_F(HangingDeviceTest, ItsWindowMayGo) {
    DestroyWindow(PreviewWindow());
    EXPECT_TRUE(IsCameraFree());
    EXPECT_TRUE(Input::TakeQuit());
}

TEST_F(LivePreviewTest, TheNextStartWaitsForADeviceThatHangs) {
    Gate gate;
    ASSERT_NO_FATAL_FAILURE(HangWhileDrawing(gate));
    Press(L"preview_switch");
    ChangeGraphics([](GraphicsScript& script) { script.withinPresent = nullptr; });
    Press(L"preview_switch");
    EXPECT_TRUE(IsOn()) << "drawn on at once";
    EXPECT_FALSE(CanBeClicked());
    gate.Open();
    EXPECT_TRUE(Wait([this] { return CanBeClicked(); }));
    EXPECT_TRUE(FramesCome());
    EXPECT_TRUE(IsOn());
    EXPECT_TRUE(IsWindowVisible(PreviewWindow()));
    EXPECT_EQ(Graphics::Seen().devices, 2);
    EXPECT_EQ(Graphics::Seen().devicesAlive, 1);
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(LivePreviewTest, ADeviceThatIsRefusedAfterTheWaitLeavesTheSwitchOff) {
    Gate gate;
    ASSERT_NO_FATAL_FAILURE(HangWhileDrawing(gate));
    Press(L"preview_switch");
    ChangeGraphics([](GraphicsScript& script) {
        script.withinPresent = nullptr;
        script.createDevice = D3DERR_NOTAVAILABLE;
    });
    Press(L"preview_switch");
    Expect("[L4] Preview::CreateInstance failed.-2005530518(HomePage::CreateMF)");
    Expect("[L4] Init g_pPreview error(HomePage::ClickPreview)");
    gate.Open();
    EXPECT_TRUE(Wait([this] { return CanBeClicked(); }));
    ExpectOff();
    EXPECT_EQ(Graphics::Seen().boxes.size(), 1U);
    ChangeGraphics([](GraphicsScript& script) { script.createDevice = S_OK; });
    TurnOn();
}

TEST_F(LivePreviewTest, ThePageMayGoWhileTheDeviceHangs) {
    Gate gate;
    ASSERT_NO_FATAL_FAILURE(HangWhileDrawing(gate));
    DestroyPage();
    EXPECT_TRUE(IsCameraFree());
    gate.Open();
    // Nobody is left to release it: its process ends.
    EXPECT_TRUE(Wait([] { return Cameras::Seen().callbacks == Cameras::Seen().reads; }));
    EXPECT_EQ(Graphics::Seen().devicesAlive, 1);
    Graphics::Forget();
}

TEST_F(LivePreviewTest, ACameraThatHangsWhenItIsClosedIsClosedLater) {
    Gate gate;
    TurnOn();
    ChangeCamera([&](CameraScript& script) { script.withinShutdown = [&] { gate.Pass(); }; });
    Press(L"preview_switch");
    EXPECT_FALSE(IsOn());
    EXPECT_TRUE(CanBeClicked());
    EXPECT_EQ(Cameras::Seen().sourcesRunning, 1);
    ChangeCamera([](CameraScript& script) { script.withinShutdown = nullptr; });
    Press(L"preview_switch");  // waits for the camera, and nobody for it
    EXPECT_TRUE(IsOn());
    gate.Open();
    EXPECT_TRUE(Wait([this] { return CanBeClicked(); }));
    EXPECT_TRUE(FramesCome());
    EXPECT_THAT(Messages(), IsEmpty());
}

// --- what fails while it runs

TEST_F(LivePreviewTest, AnErrorOfTheFirstReadIsToldAtOnce) {
    ChangeCamera([](CameraScript& script) {
        script.answer = [](int) {
            CameraAnswer answer;
            answer.status = kInUse;
            answer.flags = MF_SOURCE_READERF_ERROR;
            return answer;
        };
    });
    Press(L"preview_switch");
    EXPECT_TRUE(WaitForMessage());
    EXPECT_TRUE(Wait([this] { return CanBeClicked(); }));
    ExpectOff();
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
    EXPECT_THAT(Log(), Contains("[L3] the camera preview fails: 0xc00d3704(LivePreview::OnCaptureError)"));
    EXPECT_EQ(Cameras::Seen().reads, 1);
}

TEST_F(LivePreviewTest, WhatTheReadsToldIsTheReasonOfTheSilence) {
    TurnOn();
    ChangeCamera([](CameraScript& script) {
        script.answer = [](int) {
            CameraAnswer answer;
            answer.status = kInUse;
            return answer;
        };
    });
    EXPECT_TRUE(WaitForMessage());
    ExpectOff();
    EXPECT_THAT(Log(), Contains("[L3] the camera preview fails: 0xc00d3704(LivePreview::OnCaptureError)"));
}

TEST_F(LivePreviewTest, SilenceWithoutAReasonIsATimeout) {
    TurnOn();
    ChangeCamera([](CameraScript& script) {
        script.answer = [](int) {
            CameraAnswer answer;
            answer.never = true;
            return answer;
        };
    });
    EXPECT_TRUE(WaitForMessage());
    ExpectOff();
    EXPECT_THAT(Log(), Contains("[L3] the camera preview fails: 0x800705b4(LivePreview::OnCaptureError)"));
}

TEST_F(LivePreviewTest, ALostDeviceIsNoErrorAndThePictureGoesOn) {
    TurnOn();
    Graphics::TakeDesktop();
    EXPECT_TRUE(Wait([] { return Graphics::Seen().levels >= 3; })) << "it is asked for again and again";
    EXPECT_EQ(harness::TestLog::Count(kLost), 1);
    EXPECT_EQ(harness::TestLog::Count(kBack), 0);
    Graphics::GiveDesktopBack();
    EXPECT_TRUE(FramesCome());
    EXPECT_EQ(harness::TestLog::Count(kLost), 1);
    EXPECT_EQ(harness::TestLog::Count(kBack), 1);
    EXPECT_TRUE(IsOn());
    EXPECT_TRUE(CanBeClicked());
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_THAT(Graphics::Seen().boxes, IsEmpty());
}

TEST_F(LivePreviewTest, ADeviceThatStaysLostLongerThanACameraMayBeSilentIsNoError) {
    TurnOn();
    Graphics::TakeDesktop();
    EXPECT_TRUE(Wait([] { return Graphics::Seen().objects >= 2; })) << "after five seconds with a new object";
    EXPECT_TRUE(Wait([] { return Graphics::Seen().refusals >= 3; }));
    EXPECT_TRUE(IsOn());
    Graphics::GiveDesktopBack();
    EXPECT_TRUE(FramesCome());
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_THAT(Graphics::Seen().boxes, IsEmpty());
}

// --- looking for another graphics device, as the one that is lost cannot be reset

class FindingAnotherDeviceTest : public LivePreviewTest {
  protected:
    void SetUp() override {
        LivePreviewTest::SetUp();
        TurnOn();
        ChangeGraphics([this](GraphicsScript& script) {
            script.reset = D3DERR_DRIVERINTERNALERROR;
            script.withinCreation = [this] { gate_.Pass(); };
        });
        Graphics::TakeDesktopFor(1);
        ASSERT_TRUE(gate_.WaitUntilReached());
        EXPECT_EQ(Graphics::Seen().objectsAlive, 0) << "what was lost has gone";
    }
    Gate gate_;
};

TEST_F(FindingAnotherDeviceTest, EverythingElseWorksMeanwhile) {
    EXPECT_TRUE(IsOn());
    EXPECT_TRUE(CanBeClicked());
    Press(L"correct_sight_btn");
    EXPECT_TRUE(IsDrawnOn(L"correct_sight_btn"));
    EXPECT_EQ(harness::TestLog::Count(kLost), 1);
    EXPECT_EQ(harness::TestLog::Count(kBack), 0);
    gate_.Open();
    EXPECT_TRUE(FramesCome());
    EXPECT_EQ(Graphics::Seen().objects, 2);
    EXPECT_EQ(Graphics::Seen().devices, 2);
    EXPECT_EQ(harness::TestLog::Count(kLost), 1);
    EXPECT_EQ(harness::TestLog::Count(kBack), 1);
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_THAT(Graphics::Seen().boxes, IsEmpty());
}

TEST_F(FindingAnotherDeviceTest, TheSwitchTurnsItOff) {
    Press(L"preview_switch");
    ExpectOff();
    gate_.Open();
    EXPECT_TRUE(Wait([] { return Graphics::Seen().objects == 2 && Graphics::Seen().objectsAlive == 0; }));
    EXPECT_EQ(Graphics::Seen().devices, 1);
}

TEST_F(FindingAnotherDeviceTest, TheNextStartGetsWhatIsFound) {
    Press(L"preview_switch");
    ExpectOff();
    Press(L"preview_switch");
    EXPECT_TRUE(IsOn());
    gate_.Open();
    EXPECT_TRUE(FramesCome());
    EXPECT_TRUE(Wait([this] { return CanBeClicked(); }));
    EXPECT_EQ(Graphics::Seen().objects, 2);
}

TEST_F(LivePreviewTest, ADeviceThatNobodyCanLookForIsTold) {
    Expect("[L4] too many openings of a camera hang(CameraThreads::BeginOpening)");
    Expect("[L4] too many openings of a camera hang(CameraThreads::BeginOpening)");
    Expect("[L4] the graphics device does not come back: 0x8876086a(LivePreview::RecoverDevice)");
    TurnOn();
    std::atomic<int> ended = 0;
    Gate hanging;
    for (int i = 0; i < preview::kMostOpenings; ++i) {
        ASSERT_TRUE(preview::BeginOpening([&] {
            hanging.Pass();
            ++ended;
        }));
    }
    ChangeGraphics([](GraphicsScript& script) { script.reset = D3DERR_DRIVERINTERNALERROR; });
    Graphics::TakeDesktopFor(1);
    EXPECT_TRUE(WaitForMessage());
    ExpectOff();
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
    Press(L"preview_switch");
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable, kCameraUnavailable)) << "a start is told at once too";
    ExpectOff();
    hanging.Open();
    EXPECT_TRUE(Wait([&] { return ended == preview::kMostOpenings; }));
}

TEST_F(LivePreviewTest, ADeviceThatFailsWhenThePreviewHasEndedMeanwhileIsNotTold) {
    TurnOn();
    ChangeGraphics([](GraphicsScript& script) {
        script.withinReset = [] { Lock(); };
        script.createSwapChain = D3DERR_OUTOFVIDEOMEMORY;
    });
    Graphics::TakeDesktopFor(1);
    EXPECT_TRUE(Wait([this] { return !IsOn(); }));
    ExpectOff();
    EXPECT_TRUE(Wait([] { return Graphics::Seen().devicesAlive == 0; }));
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(LivePreviewTest, ADeviceThatDoesNotComeBackIsToldOnceAndWithoutABox) {
    Expect("[L4] the graphics device does not come back: 0x8876017c(LivePreview::RecoverDevice)");
    TurnOn();
    ChangeGraphics([](GraphicsScript& script) {
        script.reset = D3DERR_DRIVERINTERNALERROR;
        script.createDevice = D3DERR_OUTOFVIDEOMEMORY;
    });
    Graphics::TakeDesktopFor(1);
    EXPECT_TRUE(WaitForMessage());
    ExpectOff();
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
    EXPECT_THAT(Graphics::Seen().boxes, IsEmpty());
    EXPECT_EQ(harness::TestLog::Count(kLost), 1);
    ChangeGraphics([](GraphicsScript& script) { script = {}; });
    TurnOn();
    // The next loss is one more.
    Graphics::TakeDesktop();
    EXPECT_TRUE(Wait([] { return harness::TestLog::Count(kLost) == 2; }));
    EXPECT_EQ(harness::TestLog::Count(kBack), 0);
    Graphics::GiveDesktopBack();
    EXPECT_TRUE(FramesCome());
    EXPECT_EQ(harness::TestLog::Count(kBack), 1);
}

TEST_F(LivePreviewTest, ACameraThatIsTakenOutIsToldByItsName) {
    TurnOn();
    const auto takeOut = [this](const std::wstring& link, WPARAM event) {
        std::vector<std::uint8_t> bytes(sizeof(DEV_BROADCAST_DEVICEINTERFACE_W) + 2 * link.size());
        auto* device = reinterpret_cast<DEV_BROADCAST_DEVICEINTERFACE_W*>(bytes.data());
        device->dbcc_size = static_cast<DWORD>(bytes.size());
        device->dbcc_devicetype = DBT_DEVTYP_DEVICEINTERFACE;
        memcpy(device->dbcc_name, link.data(), 2 * link.size());
        return SendMessageW(PreviewWindow(), WM_DEVICECHANGE, event, reinterpret_cast<LPARAM>(device));
    };
    const std::wstring own = L"\\\\?\\USB#VID_05C8&PID_0001&MI_00#double#{65e8773d-8f56-11d0-a3b9-00a0c9223196}";
    EXPECT_EQ(takeOut(L"\\\\?\\USB#VID_046D&PID_0825#other#{65e8773d}", DBT_DEVICEREMOVECOMPLETE), TRUE);
    EXPECT_EQ(takeOut(own, DBT_DEVICEARRIVAL), TRUE);
    SendMessageW(PreviewWindow(), WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0);
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_TRUE(IsOn());
    takeOut(own, DBT_DEVICEREMOVECOMPLETE);
    ExpectOff();
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
    EXPECT_THAT(Log(), Contains("[L3] the camera preview fails: 0xc00d3ea2(LivePreview::OnCaptureError)"));
}

// --- sleep

TEST_F(LivePreviewTest, SleepFreesTheCameraAsTheLockDoes) {
    TurnOn();
    Sleeps();
    EXPECT_EQ(PreviewWindow(), nullptr);
    EXPECT_FALSE(IsOn());
    EXPECT_TRUE(IsCameraFree());
    Input::Pump();
    EXPECT_FALSE(Input::TakeQuit());
    WakesUp();
    EXPECT_FALSE(IsOn()) << "the user decides when it is on again";
    TurnOn();
}

TEST_F(LivePreviewTest, AfterSleepACameraThatCannotBeOpenedIsTriedAgain) {
    for (int i = 0; i < 2; ++i) {
        ExpectSourceError();
    }
    WakesUp();
    ChangeCamera([](CameraScript& script) {
        script.activate = E_FAIL;
        script.withinActivation = [] {
            if (Cameras::Seen().activations == 3) {
                ChangeCamera([](CameraScript& later) { later.activate = S_OK; });
            }
        };
    });
    Press(L"preview_switch");
    EXPECT_TRUE(Wait([] { return Cameras::Seen().activations == 2; }));
    EXPECT_TRUE(IsOn());
    EXPECT_FALSE(CanBeClicked());
    EXPECT_TRUE(Wait([this] { return CanBeClicked(); }));
    EXPECT_TRUE(FramesCome());
    EXPECT_TRUE(IsOn());
    EXPECT_EQ(Cameras::Seen().activations, 3);
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(LivePreviewTest, TenSecondsAfterSleepItIsTold) {
    ExpectSourceError();
    WakesUp();
    ChangeCamera([](CameraScript& script) { script.activate = E_FAIL; });
    const ULONGLONG begin = GetTickCount64();
    Press(L"preview_switch");
    EXPECT_TRUE(WaitForMessage());
    EXPECT_GE(GetTickCount64() - begin, 9'500U);
    ExpectOff();
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
}

TEST_F(LivePreviewTest, AfterSleepACameraThatFailsIsOpenedAgain) {
    TurnOn();
    WakesUp();
    Tell(kInUse);
    EXPECT_TRUE(IsOn());
    EXPECT_FALSE(CanBeClicked());
    EXPECT_TRUE(IsCameraFree());
    EXPECT_TRUE(Wait([this] { return CanBeClicked(); }));
    EXPECT_TRUE(IsOn());
    EXPECT_EQ(Cameras::Seen().activations, 2);
    EXPECT_TRUE(FramesCome());
    EXPECT_THAT(Messages(), IsEmpty());
}

// --- the window

TEST_F(LivePreviewTest, AClickOnThePictureLeavesTheKeyboardWhereItWas) {
    TurnOn();
    ASSERT_TRUE(Input::Activate(Host().GetHWND()));
    EXPECT_EQ(SendMessageW(PreviewWindow(), WM_MOUSEACTIVATE, reinterpret_cast<WPARAM>(Host().GetHWND()),
                           MAKELPARAM(HTCAPTION, WM_LBUTTONDOWN)),
              MA_NOACTIVATE);
    EXPECT_EQ(GetFocus(), Host().GetHWND());
}

TEST_F(LivePreviewTest, ThePicturesWindowHasAName) {
    ASSERT_EQ(Page().OnCreate(Host().GetHWND()), 1);
    wchar_t name[100] = {};
    GetWindowTextW(PreviewWindow(), name, 100);
    EXPECT_STRNE(name, L"");
    EXPECT_EQ(name, Control(L"preview_text").GetText());
}

}  // namespace
