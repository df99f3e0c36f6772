// The preview for a long time, and turned on and off many times: the program holds no more of the system than before,
// and the picture never stops. The program is the variant with the demo camera, at its usual 1280x720 and 30 a second.
// PIXORA_PREVIEW_SECONDS says how long it stays on (an hour for the record: 3600), PIXORA_PREVIEW_CYCLES how many times
// it is turned on and off (for the record: 1000). A line with what the program holds is printed each minute, or each
// twentieth cycle, for whoever draws the curve.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <utility>

#include "tests/e2e/support/Machine.h"
#include "tests/e2e/support/ProcessFootprint.h"
#include "tests/e2e/support/Program.h"
#include "tests/support/Environment.h"
#include "tools/probe/ScreenMotion.h"

namespace e2e {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::seconds;

constexpr DWORD kMotionMs = 20000;

// What may be added after the warming up, however long it takes: a pool or a cache that holds one thing more.
constexpr std::size_t kMoreBytes = 24u << 20;
constexpr int kMoreHandles = 24;
constexpr int kMoreThreads = 6;
constexpr int kMoreGdiObjects = 8;
// Wine's reader loses about 860 bytes a frame for good; a frame of the demo camera has more than a megabyte.
constexpr std::size_t kReaderBytesPerFrame = 1024;
constexpr std::size_t kFramesPerSecond = 30;

class PreviewEnduranceTest : public testing::Test {
  protected:
    void SetUp() override {
        Machine::UseProgram(L"PixoraDemo");
        Machine::ResetToInstalled();
        // Wine without a thread for the graphics commands keeps 6 MB of each thread that has ever drawn, and a reader's
        // threads come and go. Nothing else looks at this variable.
        SetEnvironmentVariableW(L"WINE_D3D_CONFIG", L"csmt=0x1");
        program_.emplace();
        ASSERT_TRUE(program_->WaitForWindow());
    }
    void TearDown() override {
        SetEnvironmentVariableW(L"WINE_D3D_CONFIG", nullptr);
        if (program_ && program_->Runs() && !HasFailure()) {
            program_->Click(L"closebtn");
            EXPECT_EQ(program_->WaitForEnd(), 0U);
        }
    }

    bool PictureMoves() const {
        const auto area = program_->Find(L"preview_wnd");
        return area && WaitForMotion(area->screenPx, kMotionMs);
    }
    bool IsOn() const {
        const auto found = program_->Find(L"preview_switch");
        return found && (found->state & STATE_SYSTEM_CHECKED) != 0;
    }
    void TurnOnAndOff() {
        program_->Click(L"preview_switch");
        ASSERT_TRUE(PictureMoves());
        program_->Click(L"preview_switch");
        ASSERT_TRUE(WaitUntil([this] { return !IsOn(); }));
    }
    // What was dropped is released a while later, and its threads go with it. How many stay is the system's business:
    // it is over when a second brings no change, or after a few.
    void LetReadersGo() const {
        int before = -1;
        WaitUntil(
            [&] {
                const int now = FootprintOf(program_->Process(), program_->ProcessId()).threads;
                Sleep(1000);
                return std::exchange(before, now) == now;
            },
            seconds(8));
    }
    ProcessFootprint Now(const std::string& when) const {
        const ProcessFootprint now = FootprintOf(program_->Process(), program_->ProcessId());
        std::cout << when << ": " << now.Text() << std::endl;
        return now;
    }
    static void ExpectFlat(const ProcessFootprint& warm, const ProcessFootprint& last, std::size_t moreBytes) {
        EXPECT_GT(last.handles, 0);
        EXPECT_GT(last.residentBytes, 0u);
        EXPECT_LE(last.residentBytes, warm.residentBytes + moreBytes);
        EXPECT_LE(last.handles, warm.handles + kMoreHandles);
        EXPECT_LE(last.threads, warm.threads + kMoreThreads);
        EXPECT_LE(last.gdiObjects + last.regions, warm.gdiObjects + warm.regions + kMoreGdiObjects);
    }

    std::optional<Program> program_;
};

TEST_F(PreviewEnduranceTest, StaysOnWithoutGrowing) {
    const seconds duration(FromEnvironment("PIXORA_PREVIEW_SECONDS", 12));
    const seconds step = std::clamp(duration / 8, seconds(1), seconds(60));
    program_->Click(L"preview_switch");
    ASSERT_TRUE(PictureMoves());
    const auto begin = Clock::now();
    std::optional<ProcessFootprint> warm;
    for (auto next = begin + step; next <= begin + duration; next += step) {
        // A pause between looks, and not a wait for something.
        Sleep(static_cast<DWORD>(std::max<std::int64_t>(
            0, std::chrono::duration_cast<std::chrono::milliseconds>(next - Clock::now()).count())));
        ASSERT_TRUE(program_->Runs());
        ASSERT_TRUE(PictureMoves());
        ASSERT_TRUE(IsOn());
        const auto elapsed = std::chrono::duration_cast<seconds>(Clock::now() - begin);
        const ProcessFootprint now = Now("after " + std::to_string(elapsed.count()) + " s");
        if (!warm && elapsed >= std::min(duration / 4, 2 * step))
            warm = now;
    }
    ASSERT_TRUE(warm);
    const auto frames = static_cast<std::size_t>(duration.count()) * kFramesPerSecond;
    ExpectFlat(*warm, Now("at the end"), kMoreBytes + frames * kReaderBytesPerFrame);
}

// What a busy machine keeps for later makes one block of cycles end higher than the one before; a leak does so in each.
TEST_F(PreviewEnduranceTest, TurnedOnAndOffWithoutGrowing) {
    constexpr int kBlocks = 4;
    constexpr int kWarmUp = 5;
    constexpr int kLine = 20;
    const int cycles = FromEnvironment("PIXORA_PREVIEW_CYCLES", 8);
    for (int i = 0; i < kWarmUp; ++i)
        ASSERT_NO_FATAL_FAILURE(TurnOnAndOff());
    LetReadersGo();
    ProcessFootprint warm = Now("warm");
    ProcessFootprint last = warm;
    for (int block = 1; block <= kBlocks; ++block) {
        warm = last;
        for (int i = 1; i <= cycles; ++i) {
            ASSERT_NO_FATAL_FAILURE(TurnOnAndOff()) << "cycle " << i;
            if (i % kLine == 0)
                Now("after " + std::to_string(i) + " cycles");
        }
        LetReadersGo();
        last = Now("at the end");
        if (last.residentBytes <= warm.residentBytes + kMoreBytes)
            break;
    }
    ExpectFlat(warm, last, kMoreBytes);
}

}  // namespace
}  // namespace e2e
