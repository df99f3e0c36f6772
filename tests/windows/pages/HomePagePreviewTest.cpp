// The home page's preview in the test's own process: its window, its switch, and what ends it, with demo cameras.
#include <mferror.h>

#include <chrono>
#include <random>

#include "service/KindNotifier.h"
#include "tests/support/Environment.h"
#include "tests/support/Protocol.h"
#include "tests/support/TopLevelWindows.h"
#include "tests/windows/pages/PageTests.h"
#include "tools/democamera/DemoCameraSystem.h"

namespace {

using democamera::CameraFaults;
using democamera::CameraSettings;
using democamera::DemoCamera;
using namespace GlobalUtils;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kCameraUnavailable = 5;
constexpr HRESULT kDeviceInUse = static_cast<HRESULT>(0xC00D3704);
constexpr char kNoDevice[] = "[L4] can not find any video device!(Preview::SelectDevice)";

// PIXORA_PREVIEW_CYCLES sets another number of cycles, for the long run: 1000.
int Cycles() {
    return FromEnvironment("PIXORA_PREVIEW_CYCLES", 20);
}

class HomePagePreviewTest : public HomePageTest {
  protected:
    void SetUp() override {
        CameraSettings settings;
        settings.modes.front().width = 320;
        settings.modes.front().height = 180;
        settings.modes.front().framesPerSecond = 60;
        camera_ = DemoCamera::Make(settings);
        democamera::SetCameras({camera_});
        HomePageTest::SetUp();
    }
    void TearDown() override {
        HomePageTest::TearDown();
        EXPECT_TRUE(IsCameraFree()) << "the page left the camera open";
        democamera::SetCameras({});
    }

    // Serves messages until the condition holds. False: it did not within the time.
    template <typename Condition>
    static bool Wait(const Condition& condition) {
        return Input::PumpUntil(condition);
    }
    static void Serve() { Input::Pump(); }
    bool FramesCome() {
        const std::int64_t goal = camera_->Seen().frames + 3;
        return Wait([&] { return camera_->Seen().frames >= goal; });
    }

    static void Tell(HRESULT code) {
        KindNotifier<OnListenKindInfo>::GetInstance().Publish(kOnListenChannel,
                                                              OnListenKindInfo{static_cast<std::uintptr_t>(code), 0});
    }
    static void Lock() {
        KindNotifier<ScreenLockKind>::GetInstance().Publish(kScreenLockChannel, ScreenLockKind::kLocked);
    }
    static void PlaceAgain() {
        KindNotifier<PreviewPlaceKind>::GetInstance().Publish(kPreviewPlaceChannel, PreviewPlaceKind::kPlaceAgain);
    }

    std::vector<HWND> PreviewWindows() { return harness::OwnedWindows(L"STATIC", Host().GetHWND()); }
    HWND PreviewWindow() {
        const std::vector<HWND> windows = PreviewWindows();
        return windows.size() == 1 ? windows.front() : nullptr;
    }
    bool IsSwitchOn() {
        const auto& button = Control<DuiLib::CButtonUI>(L"preview_switch");
        const bool on = button.IsChecked() == true;
        const std::wstring image = on ? L"file='drawable/LumiCamera/checked.png' reverse='true'"
                                      : L"file='drawable/LumiCamera/unchecked.png' reverse='true'";
        EXPECT_EQ(button.GetNormalImage(), image);
        EXPECT_EQ(button.GetHotImage(), image);
        return on;
    }
    // While the camera is opened it can not.
    bool CanBeClicked() { return Control(L"preview_switch").IsEnabled(); }
    void PressSwitch() {
        Press(L"preview_switch");
        ASSERT_TRUE(Wait([this] { return CanBeClicked(); }));
    }
    bool IsCameraFree() {
        return Wait([this] { return camera_->Seen().running == 0; });
    }
    void ExpectOff() {
        EXPECT_FALSE(IsSwitchOn());
        EXPECT_TRUE(CanBeClicked());
        EXPECT_FALSE(IsWindowVisible(PreviewWindow()));
        EXPECT_TRUE(IsCameraFree());
    }
    void TurnOn() {
        PressSwitch();
        ASSERT_TRUE(IsSwitchOn());
        ASSERT_TRUE(FramesCome());
    }
    std::vector<int> Messages() {
        Serve();
        return Host().Messages();
    }

    std::shared_ptr<DemoCamera> camera_;
};

TEST_F(HomePagePreviewTest, IsOffAndHasNoWindowAtFirst) {
    EXPECT_THAT(PreviewWindows(), IsEmpty());
    EXPECT_EQ(camera_->Seen().opened, 0);
}

TEST_F(HomePagePreviewTest, TheWindowIsMadeAsItMustBe) {
    ASSERT_EQ(Page().OnCreate(Host().GetHWND()), 1);
    const HWND window = PreviewWindow();
    ASSERT_TRUE(window);
    EXPECT_FALSE(IsWindowVisible(window));
    EXPECT_TRUE(GetWindowLongPtrW(window, GWL_EXSTYLE) & WS_EX_LAYERED);
    BYTE alpha = 1;
    DWORD flags = 0;
    EXPECT_TRUE(GetLayeredWindowAttributes(window, nullptr, &alpha, &flags));
    EXPECT_EQ(alpha, 0);
    EXPECT_EQ(flags, static_cast<DWORD>(LWA_ALPHA));
    EXPECT_EQ(Page().OnCreate(Host().GetHWND()), 1) << "the window is used again";
    EXPECT_EQ(PreviewWindow(), window);
}

TEST_F(HomePagePreviewTest, ItsShapeIsThePreviewArea) {
    ASSERT_EQ(Page().OnCreate(Host().GetHWND()), 1);
    POINT origin = {40, 40};
    ClientToScreen(Host().GetHWND(), &origin);
    RECT place = {};
    GetWindowRect(PreviewWindow(), &place);
    EXPECT_EQ(place.left, origin.x);
    EXPECT_EQ(place.top, origin.y);
    EXPECT_EQ(place.right - place.left, 598);
    EXPECT_EQ(place.bottom - place.top, 354);
    HRGN region = CreateRectRgn(0, 0, 0, 0);
    EXPECT_NE(GetWindowRgn(PreviewWindow(), region), ERROR);
    RECT box = {};
    GetRgnBox(region, &box);
    // A rounded region ends a pixel before the right and the lower edge that it is given.
    const RECT wanted = {40, 40, 557, 314};
    EXPECT_TRUE(EqualRect(&box, &wanted));
    EXPECT_FALSE(PtInRegion(region, 43, 43)) << "the corners are round";
    EXPECT_TRUE(PtInRegion(region, 46, 46));
    EXPECT_FALSE(PtInRegion(region, 553, 310));
    EXPECT_TRUE(PtInRegion(region, 300, 40));
    EXPECT_TRUE(PtInRegion(region, 40, 180));
    DeleteObject(region);
}

TEST_F(HomePagePreviewTest, WithoutAWindowThereIsNoCapture) {
    Expect("[L4] Preview::CreateInstance failed.-2147467261(HomePage::CreateMF)");
    EXPECT_EQ(Page().CreateMF(nullptr, Host().GetHWND()), 0);
}

TEST_F(HomePagePreviewTest, TheSwitchTurnsItOnAndOff) {
    TurnOn();
    EXPECT_TRUE(IsWindowVisible(PreviewWindow()));
    BYTE alpha = 0;
    EXPECT_TRUE(GetLayeredWindowAttributes(PreviewWindow(), nullptr, &alpha, nullptr));
    EXPECT_EQ(alpha, 255);
    Press(L"preview_switch");
    ExpectOff();
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(HomePagePreviewTest, ItsWindowFollowsTheOneThatHasMoved) {
    TurnOn();
    RECT place = {};
    GetWindowRect(Host().GetHWND(), &place);
    SetWindowPos(Host().GetHWND(), nullptr, place.left + 70, place.top + 30, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    PlaceAgain();
    POINT origin = {40, 40};
    ClientToScreen(Host().GetHWND(), &origin);
    GetWindowRect(PreviewWindow(), &place);
    EXPECT_EQ(place.left, origin.x);
    EXPECT_EQ(place.top, origin.y);
}

TEST_F(HomePagePreviewTest, ItsAreaIsNamedByWhatItShows) {
    const auto name = [this] { return Control(L"preview_wnd").GetAccessibleInfo().name; };
    EXPECT_EQ(name(), L"Illustration of the camera");
    TurnOn();
    EXPECT_EQ(name(), L"Camera preview");
    Press(L"preview_switch");
    EXPECT_EQ(name(), L"Illustration of the camera");
    TurnOn();
    EXPECT_EQ(name(), L"Camera preview");
    Lock();
    EXPECT_EQ(name(), L"Illustration of the camera");
}

TEST_F(HomePagePreviewTest, TheSwitchTurnsItOffThoughTheCameraWasLost) {
    TurnOn();
    camera_->Unplug();
    const std::int64_t frames = camera_->Seen().frames;
    Press(L"preview_switch");
    ExpectOff();
    EXPECT_LE(camera_->Seen().frames, frames + 1);
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(HomePagePreviewTest, WithoutACameraItSaysSo) {
    Expect(kNoDevice);
    democamera::SetCameras({});
    PressSwitch();
    ExpectOff();
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
}

TEST_F(HomePagePreviewTest, AnErrorOfTheCaptureEndsItWithOneMessage) {
    for (const HRESULT code : {kDeviceInUse, E_FAIL, static_cast<HRESULT>(MF_E_INVALIDREQUEST)}) {
        TurnOn();
        const std::size_t before = Messages().size();
        Tell(code);
        ExpectOff();
        EXPECT_EQ(Messages().size(), before + 1);
    }
    EXPECT_THAT(Messages(), Each(kCameraUnavailable));
    EXPECT_FALSE(Input::TakeQuit());
}

TEST_F(HomePagePreviewTest, NoErrorIsNoError) {
    TurnOn();
    Tell(S_OK);
    EXPECT_TRUE(IsSwitchOn());
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(HomePagePreviewTest, AnErrorWhileItIsOffIsToldAllTheSame) {
    Tell(E_FAIL);
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
}

TEST_F(HomePagePreviewTest, ASampleWithoutPictureEndsIt) {
    CameraFaults faults;
    faults.emptyAfter = 5;
    camera_->SetFaults(faults);
    Press(L"preview_switch");
    EXPECT_TRUE(Wait([this] { return !Host().Messages().empty(); }));
    ExpectOff();
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
}

TEST_F(HomePagePreviewTest, ASilentCameraIsGivenUp) {
    TurnOn();
    CameraFaults faults;
    faults.silentAfter = 0;
    camera_->SetFaults(faults);
    const ULONGLONG silent = GetTickCount64();
    EXPECT_TRUE(Wait([this] { return !Host().Messages().empty(); }));
    EXPECT_GE(GetTickCount64() - silent, 4000U) << "a camera may stutter";
    ExpectOff();
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
}

TEST_F(HomePagePreviewTest, AnErrorOfACaptureThatHasEndedIsNotTold) {
    TurnOn();
    PostMessageW(Host().GetHWND(), harness::Protocol::kCaptureFailed, static_cast<WPARAM>(E_FAIL), 0);
    Press(L"preview_switch");
    ExpectOff();
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(HomePagePreviewTest, ALockedScreenTakesTheWindowWithoutEndingTheProgram) {
    Lock();
    EXPECT_THAT(PreviewWindows(), IsEmpty());
    TurnOn();
    Lock();
    EXPECT_THAT(PreviewWindows(), IsEmpty());
    EXPECT_FALSE(IsSwitchOn());
    EXPECT_TRUE(IsCameraFree());
    Serve();
    EXPECT_FALSE(Input::TakeQuit());
    TurnOn();
    EXPECT_TRUE(IsWindowVisible(PreviewWindow()));
}

TEST_F(HomePagePreviewTest, AWindowThatIsDestroyedByOthersEndsTheProgramAndFreesTheCamera) {
    TurnOn();
    DestroyWindow(PreviewWindow());
    EXPECT_TRUE(IsCameraFree());
    Serve();
    EXPECT_TRUE(Input::TakeQuit());
}

TEST_F(HomePagePreviewTest, ThePageThatGoesTakesTheCameraWithIt) {
    TurnOn();
    DestroyPage();
    EXPECT_THAT(PreviewWindows(), IsEmpty());
    EXPECT_TRUE(IsCameraFree());
    Serve();
    EXPECT_FALSE(Input::TakeQuit());
}

TEST_F(HomePagePreviewTest, ManyCyclesUseOneWindow) {
    HWND window = nullptr;
    for (int i = 0; i < Cycles(); ++i) {
        TurnOn();
        window = window ? window : PreviewWindow();
        ASSERT_EQ(PreviewWindow(), window);
        Press(L"preview_switch");
        ASSERT_TRUE(IsCameraFree());
    }
    EXPECT_EQ(camera_->Seen().opened, Cycles());
    EXPECT_THAT(Messages(), IsEmpty());
}

// Frames arrive quickly on the reader's thread while the UI thread does what it may do in any order.
TEST_F(HomePagePreviewTest, AnythingAtAnyMomentNeitherHangsNorCrashes) {
    // Pages come and go faster here than a slow system finds a graphics device for each.
    harness::TestLog::Allow("[L4] too many openings of a camera hang(CameraThreads::BeginOpening)");
    CameraSettings settings = camera_->Settings();
    settings.modes.front().framesPerSecond = 300;
    camera_ = DemoCamera::Make(settings);
    democamera::SetCameras({camera_});
    std::minstd_rand random(20);
    RECT place = {};
    GetWindowRect(Host().GetHWND(), &place);
    for (int step = 0; step < 8 * Cycles(); ++step) {
        switch (random() % 9) {
            case 0:
            case 1:
            case 2:
                Press(L"preview_switch");
                break;
            case 3:
                Lock();
                break;
            case 4:
                Tell(random() % 2 ? kDeviceInUse : E_FAIL);
                break;
            case 5:
                SetWindowPos(Host().GetHWND(), nullptr, place.left + static_cast<int>(random() % 200),
                             place.top + static_cast<int>(random() % 100), 0, 0, SWP_NOSIZE | SWP_NOZORDER);
                PlaceAgain();
                break;
            case 6:
                ShowWindow(Host().GetHWND(), random() % 2 ? SW_HIDE : SW_SHOWNOACTIVATE);
                PlaceAgain();
                break;
            case 7:
                MakePageOnly();
                Page().Initialize();
                Manager().UpdateLayout();
                break;
            default:
                Serve();
                break;
        }
        ASSERT_LE(PreviewWindows().size(), 1U);
        ASSERT_LE(camera_->Seen().running, 1);
        if (!IsSwitchOn()) {
            ASSERT_TRUE(IsCameraFree());  // its opening may not know yet that it is not wanted
        }
        harness::PumpFor(std::chrono::milliseconds(random() % 20));
    }
    EXPECT_FALSE(Input::TakeQuit());
    EXPECT_THAT(Messages(), Each(kCameraUnavailable));
}

}  // namespace
