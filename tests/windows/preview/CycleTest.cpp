// Turning the preview on and off again and again: nothing may be left behind, and nothing may hang.
#include <windows.h>

#include <random>

#include "tests/support/Environment.h"
#include "tests/windows/preview/CaptureSupport.h"
#include "tests/windows/preview/ProcessUsage.h"

using democamera::CameraFaults;
using democamera::CameraFormat;
using democamera::CameraSettings;

namespace preview_test {
namespace {

// Wine's reader loses two commands and what belongs to them for each frame, about 860 bytes in five blocks, for good.
// The smallest frame here has 4608 bytes, and previews and sources are counted one by one, so a leak of ours shows.
constexpr long long kReaderBytesPerFrame = 1024;
constexpr long kReaderBlocksPerFrame = 6;

// PIXORA_PREVIEW_CYCLES sets another number of cycles, for the long run: 1000. Then with WINE_D3D_CONFIG=csmt=0x1:
// without a thread for the graphics commands Wine keeps something of each thread that has drawn and ended.
int Cycles() {
    return FromEnvironment("PIXORA_PREVIEW_CYCLES", 30);
}

class CycleTest : public CaptureTest {
  protected:
    bool WaitForRelease();
    // Once threads that have ended, and what they held, are gone from the counts.
    static ProcessUsage SettledUsage();

    // What the page does: make, start, see a frame, close, destroy the renderer, give the object back.
    void RunOnce() {
        RunningPreview preview(window_);
        ASSERT_TRUE(preview->Start(0));
        const ULONGLONG started = preview->LastFrameTickMs();
        ASSERT_TRUE(WaitForFrames(2));
        ASSERT_TRUE(Wait([&] { return preview->LastFrameTickMs() > started; }));
        preview.Finish();
    }
};

// Readers are released a while after closing, and with them their sources.
bool CycleTest::WaitForRelease() {
    return Wait([&] { return cameras_[0]->Seen().alive == 0; });
}

ProcessUsage CycleTest::SettledUsage() {
    constexpr DWORD kMomentMs = 200;
    ProcessUsage last = ProcessUsage::Now();
    Wait([&] {
        Sleep(kMomentMs);
        const ProcessUsage now = ProcessUsage::Now();
        const bool same = now.heapBytes == last.heapBytes && now.threads == last.threads && now.handles == last.handles;
        last = now;
        return same;
    });
    return last;
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
    ReleaseFinished();
    const ProcessUsage before = SettledUsage();
    const std::int64_t framesBefore = cameras_[0]->Seen().frames;
    before.Print("before");
    for (int i = 0; i < Cycles(); ++i) {
        ASSERT_NO_FATAL_FAILURE(RunOnce());
    }
    ASSERT_TRUE(WaitForRelease());
    ReleaseFinished();
    const ProcessUsage after = SettledUsage();
    after.Print("after");
    const long frames = static_cast<long>(cameras_[0]->Seen().frames - framesBefore);
    // Not per cycle: a pool may hold one thing more or less at any time.
    EXPECT_LE(after.heapBytes, before.heapBytes + kReaderBytesPerFrame * frames + 256 * 1024);
    EXPECT_LE(after.heapBlocks, before.heapBlocks + kReaderBlocksPerFrame * frames + 500);
    EXPECT_LE(after.handles, before.handles + 12);
    EXPECT_LE(after.guiObjects, before.guiObjects + 8);
    EXPECT_LE(after.threads, before.threads + 3);
    EXPECT_EQ(cameras_[0]->Seen().opened, kWarmUp + Cycles());
    EXPECT_EQ(cameras_[0]->Seen().running, 0);
    EXPECT_EQ(cameras_[0]->Seen().alive, 0);
}

// PIXORA_PREVIEW_FRAMES sets another number of frames, for the long run.
TEST_F(CycleTest, FramesLeaveNothingBehind) {
    const int frames = FromEnvironment("PIXORA_PREVIEW_FRAMES", 1500);
    CameraSettings settings = SmallCamera(CameraFormat::kNv12);
    settings.modes.front().framesPerSecond = 1000;
    UseCamera(settings);
    RunningPreview preview(window_);
    ASSERT_TRUE(preview->Start(0));
    ASSERT_TRUE(WaitForFrames(500));
    const ProcessUsage before = ProcessUsage::Now();
    before.Print("before");
    const auto camera = cameras_[0];
    const std::int64_t goal = camera->Seen().frames + frames;
    ASSERT_TRUE(Wait([&] { return camera->Seen().frames >= goal; }, std::chrono::minutes(30)));
    const ProcessUsage after = ProcessUsage::Now();
    after.Print("after");
    EXPECT_LE(after.heapBytes, before.heapBytes + kReaderBytesPerFrame * frames + 1024 * 1024);
    EXPECT_LE(after.heapBlocks, before.heapBlocks + kReaderBlocksPerFrame * frames + 500);
    EXPECT_LE(after.handles, before.handles + 12);
    EXPECT_LE(after.threads, before.threads + 3);
    preview.Finish();
}

TEST_F(CycleTest, StartingAndClosingAtAnyMomentNeitherHangsNorDraws) {
    CameraSettings settings = SmallCamera();
    settings.modes.front().framesPerSecond = 400;
    UseCamera(settings);
    std::minstd_rand random(7);
    const auto pause = [&] { harness::PumpFor(std::chrono::microseconds(random() % 12000)); };
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
    harness::TestLog::Allow("[L4] a buffer does not hold a frame of 64x48(Device::DrawSample)");
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
        harness::PumpFor(std::chrono::milliseconds(random() % 80));
        preview.Finish();
    }
}

}  // namespace
}  // namespace preview_test
