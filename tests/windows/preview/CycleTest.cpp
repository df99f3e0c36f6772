// Turning the preview on and off again and again: nothing may be left behind, and nothing may hang.
#include <windows.h>

#include <psapi.h>
#include <tlhelp32.h>

#include <cstdio>
#include <cstdlib>
#include <random>

#include "tests/windows/preview/CaptureSupport.h"

using democamera::CameraFaults;
using democamera::CameraFormat;
using democamera::CameraSettings;

namespace preview_test {
namespace {

// PIXORA_PREVIEW_CYCLES sets another number of cycles, for the long run: 1000.
int Cycles() {
    const char* text = std::getenv("PIXORA_PREVIEW_CYCLES");
    const int cycles = text != nullptr ? std::atoi(text) : 0;
    return cycles > 0 ? cycles : 50;
}

struct Usage {
    long long privateBytes = 0;
    long handles = 0;
    long gdiObjects = 0;
    long userObjects = 0;
    long threads = 0;
};

long CountThreads() {
    long threads = 0;
    HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
        threads += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    }
    CloseHandle(snapshot);
    return threads;
}

Usage UsageNow() {
    Usage usage;
    PROCESS_MEMORY_COUNTERS_EX memory = {};
    memory.cb = sizeof memory;
    EXPECT_TRUE(
        GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&memory), sizeof memory));
    usage.privateBytes = static_cast<long long>(memory.PrivateUsage);
    DWORD handles = 0;
    EXPECT_TRUE(GetProcessHandleCount(GetCurrentProcess(), &handles));
    usage.handles = static_cast<long>(handles);
    usage.gdiObjects = static_cast<long>(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS));
    usage.userObjects = static_cast<long>(GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS));
    usage.threads = CountThreads();
    return usage;
}

void Print(const char* when, const Usage& usage) {
    std::printf("%-10s %8lld KiB, %ld handles, %ld GDI objects, %ld user objects, %ld threads\n", when,
                usage.privateBytes / 1024, usage.handles, usage.gdiObjects, usage.userObjects, usage.threads);
}

class CycleTest : public CaptureTest {
  protected:
    bool WaitForRelease();

    // What the page does: make, start, see a frame, close, destroy the renderer, give the object back.
    void RunOnce() {
        RunningPreview preview(window_);
        ASSERT_TRUE(preview->Start(0));
        const ULONGLONG started = preview->LastFrameTickMs();
        ASSERT_TRUE(WaitForFrames(2));
        ASSERT_GE(preview->LastFrameTickMs(), started);
        preview.Finish();
    }
};

// Readers are released a while after closing, and with them their sources.
bool CycleTest::WaitForRelease() {
    return Wait([&] { return cameras_[0]->Seen().alive == 0; });
}

TEST_F(CycleTest, NothingIsLeftBehind) {
    CameraSettings settings = SmallCamera(CameraFormat::kNv12);
    settings.modes.front().width = 640;  // a leaked frame would show
    settings.modes.front().height = 480;
    UseCamera(settings);
    // The first cycles fill the platform's caches and thread pools.
    constexpr int kWarmUp = 15;
    for (int i = 0; i < kWarmUp; ++i) {
        ASSERT_NO_FATAL_FAILURE(RunOnce());
    }
    ASSERT_TRUE(WaitForRelease());
    const Usage before = UsageNow();
    Print("before", before);
    for (int i = 0; i < Cycles(); ++i) {
        ASSERT_NO_FATAL_FAILURE(RunOnce());
    }
    ASSERT_TRUE(WaitForRelease());
    Usage after = UsageNow();
    // A thread that has ended is gone from the counts a moment later.
    Wait(
        [&] {
            after = UsageNow();
            return after.threads <= before.threads && after.handles <= before.handles;
        },
        std::chrono::seconds(3));
    Print("after", after);
    // Not per cycle: a pool may hold one thing more or less at any time.
    EXPECT_LE(after.privateBytes, before.privateBytes + 8 * 1024 * 1024);
    EXPECT_LE(after.handles, before.handles + 12);
    EXPECT_LE(after.gdiObjects, before.gdiObjects + 4);
    EXPECT_LE(after.userObjects, before.userObjects + 4);
    EXPECT_LE(after.threads, before.threads + 3);
    EXPECT_EQ(cameras_[0]->Seen().opened, kWarmUp + Cycles());
    EXPECT_EQ(cameras_[0]->Seen().running, 0);
    EXPECT_EQ(cameras_[0]->Seen().alive, 0);
}

TEST_F(CycleTest, StartingAndClosingAtAnyMomentNeitherHangsNorDraws) {
    CameraSettings settings = SmallCamera();
    settings.modes.front().framesPerSecond = 400;
    UseCamera(settings);
    std::minstd_rand random(7);
    const auto pause = [&] {
        const auto until = std::chrono::steady_clock::now() + std::chrono::microseconds(random() % 12000);
        Wait([&] { return std::chrono::steady_clock::now() >= until; });
    };
    for (int object = 0; object < Cycles() / 5; ++object) {
        RunningPreview preview(window_);
        for (int step = 0; step < 12; ++step) {
            switch (random() % 4) {
                case 0:
                case 1:
                    ASSERT_TRUE(preview->Start(0));
                    EXPECT_EQ(cameras_[0]->Seen().running, 1);
                    break;
                case 2: {
                    preview->Close();
                    EXPECT_EQ(cameras_[0]->Seen().running, 0);
                    const ULONGLONG last = preview->LastFrameTickMs();
                    pause();
                    EXPECT_EQ(preview->LastFrameTickMs(), last) << "a frame was drawn after closing";
                    break;
                }
                default:
                    break;
            }
            pause();
        }
        preview.Finish();
    }
    EXPECT_THAT(window_.Events(), testing::IsEmpty());
}

TEST_F(CycleTest, FaultsAtAnyMomentNeitherHangNorLeak) {
    std::minstd_rand random(11);
    const auto camera = UseCamera(SmallCamera());
    for (int i = 0; i < Cycles() / 2; ++i) {
        CameraFaults faults;
        const std::int64_t after = random() % 4;
        switch (random() % 6) {
            case 0:
                faults.errorAfter = after;
                break;
            case 1:
                faults.silentAfter = after;
                break;
            case 2:
                faults.unpluggedAfter = after;
                break;
            case 3:
                faults.endAfter = after;
                break;
            case 4:
                faults.emptyAfter = after;
                break;
            default:
                faults.shortAfter = after;
                break;
        }
        camera->SetFaults(faults);
        camera->PlugIn();
        RunningPreview preview(window_);
        ASSERT_TRUE(preview->Start(0));
        const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(random() % 80);
        Wait([&] { return std::chrono::steady_clock::now() >= until; });
        preview.Finish();
    }
}

}  // namespace
}  // namespace preview_test
