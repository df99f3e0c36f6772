// The moment in which the preview starts: the wait for its first frames, and what a capture error does while it is off.
#include "DuiLib/ButtonUI.h"
#include "service/KindNotifier.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TopLevelWindows.h"
#include "tests/windows/pages/PageTests.h"
#include "tools/democamera/DemoCameraSystem.h"

namespace {

using democamera::DemoCamera;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr HRESULT kDeviceInUse = static_cast<HRESULT>(0xC00D3704);
constexpr char kNoDevice[] = "[L4] can not find any video device!(Preview::SelectDevice)";

std::function<void(DWORD)> g_atWait;

decltype(&MsgWaitForMultipleObjectsEx) g_wait;

// Waits that serve what other threads send and nothing else, and for nothing but the time, are over at once.
DWORD WINAPI Wait(DWORD handles, const HANDLE* handle, DWORD timeMs, DWORD kinds, DWORD flags) {
    if (handles != 0 || kinds != QS_SENDMESSAGE) {
        return g_wait(handles, handle, timeMs, kinds, flags);
    }
    g_atWait(timeMs);
    return WAIT_TIMEOUT;
}

decltype(&CreateWindowExW) g_createWindow;

// No window of the preview's kind can be made.
HWND WINAPI RefuseWindow(DWORD exStyle, LPCWSTR kind, LPCWSTR title, DWORD style, int x, int y, int width, int height,
                         HWND parent, HMENU menu, HINSTANCE instance, LPVOID extra) {
    if (!IS_INTRESOURCE(kind) && std::wstring_view(kind) == L"STATIC") {
        return nullptr;
    }
    return g_createWindow(exStyle, kind, title, style, x, y, width, height, parent, menu, instance, extra);
}

class PreviewStartTest : public HomePageTest {
  protected:
    void SetUp() override {
        democamera::CameraSettings settings;
        settings.modes.front().width = 64;
        settings.modes.front().height = 48;
        camera_ = DemoCamera::Make(settings);
        democamera::SetCameras({camera_});
        HomePageTest::SetUp();
        g_atWait = [this](DWORD timeMs) { NoteWait(timeMs); };
    }
    void TearDown() override {
        HomePageTest::TearDown();
        democamera::SetCameras({});
        g_atWait = {};
    }

    // A press of the switch, until it can be pressed again; the waits of it are in waits_.
    void PressSwitch() {
        waits_.clear();
        const harness::ImportHook hook(nullptr, "MsgWaitForMultipleObjectsEx", &Wait);
        g_wait = hook.Original<decltype(&MsgWaitForMultipleObjectsEx)>();
        Press(L"preview_switch");
        EXPECT_TRUE(Input::PumpUntil([this] { return Switch().IsEnabled(); }));
    }
    // Not the looks at a picture that is being drawn, a millisecond each.
    void NoteWait(DWORD timeMs) {
        if (timeMs > 1) {
            waits_.push_back(timeMs);
        }
    }
    HWND PreviewWindow() {
        const std::vector<HWND> found = harness::OwnedWindows(L"STATIC", Host().GetHWND());
        return found.empty() ? nullptr : found.front();
    }
    DuiLib::CButtonUI& Switch() { return Control<DuiLib::CButtonUI>(L"preview_switch"); }
    static void Tell(HRESULT code) {
        KindNotifier<GlobalUtils::OnListenKindInfo>::GetInstance().Publish(
            GlobalUtils::kOnListenChannel, GlobalUtils::OnListenKindInfo{static_cast<std::uintptr_t>(code), 0});
    }

    std::shared_ptr<DemoCamera> camera_;
    std::vector<DWORD> waits_;
};

TEST_F(PreviewStartTest, ItWaitsForTheFirstFramesWhenItsWindowIsShown) {
    g_atWait = [this](DWORD timeMs) {
        NoteWait(timeMs);
        if (waits_.size() != 1) {
            return;
        }
        EXPECT_EQ(camera_->Seen().running, 1) << "started before";
        EXPECT_TRUE(IsWindowVisible(PreviewWindow()));
        BYTE alpha = 0;
        EXPECT_TRUE(GetLayeredWindowAttributes(PreviewWindow(), nullptr, &alpha, nullptr));
        EXPECT_EQ(alpha, 255);
        EXPECT_EQ(Switch().IsChecked(), true);
        EXPECT_FALSE(Switch().IsEnabled()) << "until the wait is over";
    };
    PressSwitch();
    EXPECT_THAT(waits_, ElementsAre(400U));
    EXPECT_TRUE(Switch().IsEnabled());
    PressSwitch();
    EXPECT_THAT(waits_, IsEmpty()) << "turned off it waits for nothing";
}

TEST_F(PreviewStartTest, AStartThatFailsWaitsForNothing) {
    Expect(kNoDevice);
    democamera::SetCameras({});
    PressSwitch();
    EXPECT_THAT(waits_, IsEmpty());
    EXPECT_TRUE(Switch().IsEnabled());
    EXPECT_THAT(Host().Messages(), ElementsAre(5));
}

TEST_F(PreviewStartTest, WithoutAWindowForThePictureTheClickIsLogged) {
    constexpr char kNoWindow[] = "[L4] video null !(HomePage::OnCreate)";
    constexpr char kNoPreview[] = "[L4] Init g_pPreview error(HomePage::ClickPreview)";
    Expect(kNoWindow);
    Expect(kNoPreview);
    {
        const harness::ImportHook hook(nullptr, "CreateWindowExW", &RefuseWindow);
        g_createWindow = hook.Original<decltype(&CreateWindowExW)>();
        PressSwitch();
    }
    EXPECT_EQ(harness::TestLog::Count(kNoWindow), 1);
    EXPECT_EQ(harness::TestLog::Count(kNoPreview), 1);
    EXPECT_NE(Switch().IsChecked(), true);
    EXPECT_EQ(camera_->Seen().opened, 0);
    PressSwitch();
    EXPECT_EQ(Switch().IsChecked(), true) << "a later click works";
    PressSwitch();
}

TEST_F(PreviewStartTest, ACameraInUseTurnsTheSwitchOffWhateverWasKnown) {
    PressSwitch();
    PressSwitch();
    // As if somebody had left it so.
    const auto spoil = [this] {
        Switch().SetChecked(true);
        Switch().SetEnabled(false);
        ShowWindow(PreviewWindow(), SW_SHOWNOACTIVATE);
    };
    spoil();
    Tell(E_FAIL);
    EXPECT_EQ(Switch().IsChecked(), true) << "another error of a preview that is off is told only";
    EXPECT_FALSE(Switch().IsEnabled());
    EXPECT_TRUE(IsWindowVisible(PreviewWindow()));
    Tell(kDeviceInUse);
    EXPECT_EQ(Switch().IsChecked(), false);
    EXPECT_TRUE(Switch().IsEnabled());
    EXPECT_FALSE(IsWindowVisible(PreviewWindow()));
    EXPECT_EQ(Switch().GetNormalImage(), L"file='drawable/LumiCamera/unchecked.png' reverse='true'");
    EXPECT_THAT(Host().Messages(), ElementsAre(5, 5));
    Tell(S_OK);
    EXPECT_THAT(Host().Messages(), ElementsAre(5, 5));
}

}  // namespace
