// How long the home page's preview has patience, to the second, and without waiting so long: its timer's ticks, its
// tasks for later and the time of day are the test's. On a graphics system and a camera that keep every rule.
#include <mfapi.h>
#include <mfidl.h>
#include <mfreadwrite.h>

#include <atomic>
#include <functional>
#include <utility>
#include <vector>

#include "DuiLib/UIMainQueue.h"
#include "service/KindNotifier.h"
#include "tests/support/ImportHook.h"
#include "tests/support/doubles/CameraDouble.h"
#include "tests/support/doubles/Gate.h"
#include "tests/support/doubles/GraphicsDouble.h"
#include "tests/support/doubles/Violations.h"
#include "tests/windows/pages/PageTests.h"

namespace {

using doubles::CameraAnswer;
using doubles::Cameras;
using doubles::CameraScript;
using doubles::Graphics;
using doubles::GraphicsScript;
using doubles::Violations;
using GlobalUtils::PowerKind;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kCameraUnavailable = 5;

// --- the timer

HWND g_tickWindow = nullptr;
UINT_PTR g_tickTimer = 0;
UINT g_betweenTicksMs = 0;

UINT_PTR WINAPI NoTicks(HWND window, UINT_PTR timer, UINT ms, TIMERPROC) {
    g_tickWindow = window;
    g_tickTimer = timer;
    g_betweenTicksMs = ms;
    return timer;
}

// --- what is to be done later

struct LaterTask {
    unsigned delayMs;
    std::function<void()> run;
};
std::vector<LaterTask> g_later;
const harness::ImportHook* g_dispatchAfter = nullptr;

// As a member function of UIMainQueue. What comes sooner than in a second is none of the preview's.
void KeepForLater(DuiLib::UIMainQueue* self, unsigned delayMs, std::function<void()> task) {
    if (delayMs >= 1000) {
        g_later.push_back({delayMs, std::move(task)});
    } else {
        g_dispatchAfter->Original<decltype(&KeepForLater)>()(self, delayMs, std::move(task));
    }
}

// --- the time

std::atomic<ULONGLONG> g_tick = 0;  // the threads that read ask too

ULONGLONG WINAPI Tick() {
    return g_tick;
}

class PreviewTimesTest : public HomePageTest {
  protected:
    void SetUp() override {
        Graphics::Begin();
        Cameras::Begin();
        ChangeCamera([](CameraScript& script) { script.natives.front().subtype = MFVideoFormat_YUY2; });
        Violations::Take();
        HomePageTest::SetUp();
    }
    void TearDown() override {
        HomePageTest::TearDown();
        g_later.clear();
        Cameras::End();
        EXPECT_THAT(Violations::Take(), IsEmpty());
    }

    static void ChangeCamera(const std::function<void(CameraScript&)>& change) { Cameras::Change(change); }
    DuiLib::CButtonUI& Switch() { return Control<DuiLib::CButtonUI>(L"preview_switch"); }
    bool IsOn() { return Switch().IsChecked() == true; }
    bool CanBeClicked() { return Switch().IsEnabled(); }
    std::vector<int> Messages() {
        Input::Pump();
        return Host().Messages();
    }
    static void TickTimes(int ticks) {
        for (int i = 0; i < ticks; ++i) {
            SendMessageW(g_tickWindow, WM_TIMER, g_tickTimer, 0);
        }
    }
    // Frames, for long enough that the time of the last one is another.
    static void SendPictures() {
        constexpr ULONGLONG kAnotherTickMs = 50;
        ChangeCamera([](CameraScript& script) { script.answer = nullptr; });
        const ULONGLONG begin = GetTickCount64();
        EXPECT_TRUE(Input::PumpUntil([&] { return GetTickCount64() - begin > kAnotherTickMs; }));
        const int goal = Graphics::Seen().presents + 3;
        EXPECT_TRUE(Input::PumpUntil([&] { return Graphics::Seen().presents >= goal; }));
    }
    // Reads that bring nothing; none that brings a frame is under way any more.
    static void SendNothing() {
        ChangeCamera([](CameraScript& script) {
            script.answer = [](int) {
                CameraAnswer gap;
                gap.flags = MF_SOURCE_READERF_STREAMTICK;
                return gap;
            };
        });
        const int goal = Cameras::Seen().reads + 3;
        EXPECT_TRUE(Input::PumpUntil([&] { return Cameras::Seen().reads >= goal; }));
    }
    static std::vector<unsigned> Delays() {
        std::vector<unsigned> delays;
        for (const LaterTask& task : g_later) {
            delays.push_back(task.delayMs);
        }
        return delays;
    }
};

TEST_F(PreviewTimesTest, FiveSecondsWithoutAFrameAreTooMany) {
    const harness::ImportHook hook(nullptr, "SetTimer", &NoTicks);
    Press(L"preview_switch");
    ASSERT_TRUE(Input::PumpUntil([this] { return CanBeClicked(); }));
    ASSERT_TRUE(IsOn());
    EXPECT_EQ(g_betweenTicksMs, 1000U);
    for (int round = 0; round < 2; ++round) {
        SendPictures();
        SendNothing();
        TickTimes(1 + 4);  // the first one sees the last frame
        EXPECT_THAT(Messages(), IsEmpty()) << "frames begin the count anew";
        EXPECT_TRUE(IsOn());
    }
    TickTimes(1);
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
    EXPECT_FALSE(IsOn());
}

TEST_F(PreviewTimesTest, ADeviceThatIsLookedForInVainHasHalfAMinute) {
    Expect("[L4] the graphics device does not come back: 0x88760868(LivePreview::RecoverDevice)");
    const harness::ImportHook timer(nullptr, "SetTimer", &NoTicks);
    const harness::ImportHook tick(nullptr, "GetTickCount64", &Tick);
    g_tick = 1'000'000;
    Press(L"preview_switch");
    ASSERT_TRUE(Input::PumpUntil([this] { return CanBeClicked(); }));
    doubles::Gate gate;
    std::atomic<int> looks = 0;
    Graphics::Change([&](GraphicsScript& script) {
        script.reset = D3DERR_DRIVERINTERNALERROR;
        script.withinCreation = [&] {
            ++looks;
            gate.Pass();
        };
    });
    Graphics::TakeDesktopFor(1);
    ASSERT_TRUE(gate.WaitUntilReached());
    const auto nextSecond = [] {
        g_tick += 1000;
        const int goal = Cameras::Seen().reads + 2;
        EXPECT_TRUE(Input::PumpUntil([&] { return Cameras::Seen().reads >= goal; })) << "frames come, and are dropped";
        TickTimes(1);
    };
    for (int second = 1; second < 30; ++second) {
        nextSecond();
        ASSERT_THAT(Messages(), IsEmpty()) << second;
    }
    EXPECT_TRUE(IsOn());
    nextSecond();
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
    EXPECT_FALSE(IsOn());
    EXPECT_EQ(looks, 1) << "one looks at a time";
    gate.Open();
    EXPECT_TRUE(Input::PumpUntil([] { return Graphics::Seen().objects == 2 && Graphics::Seen().objectsAlive == 0; }));
}

TEST_F(PreviewTimesTest, AnOpeningHasTenSeconds) {
    Expect("[L4] the camera does not open(LivePreview::GiveUpOpening)");
    const harness::ImportHook hook(nullptr, "UIMainQueue13dispatchAfter", &KeepForLater);
    g_dispatchAfter = &hook;
    doubles::Gate gate;
    ChangeCamera([&](CameraScript& script) { script.withinActivation = [&] { gate.Pass(); }; });
    Press(L"preview_switch");
    ASSERT_TRUE(gate.WaitUntilReached());
    ASSERT_THAT(Delays(), ElementsAre(10'000U, 10'000U)) << "to find the graphics device, and to open the camera";
    EXPECT_TRUE(IsOn());
    g_later.front().run();
    EXPECT_TRUE(IsOn()) << "the device was found";
    g_later.back().run();
    EXPECT_FALSE(IsOn());
    EXPECT_TRUE(CanBeClicked());
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
    gate.Open();
    EXPECT_TRUE(Input::PumpUntil([] { return Cameras::Seen().sources == 1 && Cameras::Seen().sourcesRunning == 0; }));
}

TEST_F(PreviewTimesTest, ForTenSecondsAfterSleepItIsTriedAgainEachSecond) {
    for (int opening = 0; opening < 2; ++opening) {
        Expect("[L4] create device source error!(Preview::CreateDeviceSource)");
        Expect("[L4] create device source error!(Preview::Start)");
    }
    const harness::ImportHook later(nullptr, "UIMainQueue13dispatchAfter", &KeepForLater);
    g_dispatchAfter = &later;
    const harness::ImportHook tick(nullptr, "GetTickCount64", &Tick);
    g_tick = 1'000'000;
    KindNotifier<PowerKind>::GetInstance().Publish(GlobalUtils::kPowerChannel, PowerKind::kResume);
    ChangeCamera([](CameraScript& script) { script.activate = E_FAIL; });
    g_tick += 9'999;
    Press(L"preview_switch");
    EXPECT_TRUE(Input::PumpUntil([] { return g_later.size() == 3; }));
    ASSERT_THAT(Delays(), ElementsAre(10'000U, 10'000U, 1000U)) << "the ends of the opening, and the next one";
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_TRUE(IsOn());
    g_tick += 1;
    const std::function<void()> again = g_later.back().run;
    again();
    EXPECT_TRUE(Input::PumpUntil([this] { return !Host().Messages().empty(); }));
    EXPECT_THAT(Messages(), ElementsAre(kCameraUnavailable));
    EXPECT_FALSE(IsOn());
    EXPECT_EQ(Cameras::Seen().activations, 2);
}

}  // namespace
