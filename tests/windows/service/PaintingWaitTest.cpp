// Waiting for a computation while the window paints.
#include "service/pictures/PaintingWait.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <atomic>
#include <stdexcept>

#include "suite/common/Handle.h"
#include "tests/support/ImportHook.h"
#include "tests/support/NoThreads.h"
#include "tests/support/TestLog.h"
#include "tests/support/Wait.h"

namespace {

using pictures::RunWhilePainting;

DWORD WINAPI WaitFails(DWORD, const HANDLE*, DWORD, DWORD, DWORD) {
    return WAIT_FAILED;
}

TEST(PaintingWaitTest, TheWorksAnswerIsTheResult) {
    EXPECT_TRUE(RunWhilePainting([] { return true; }));
    EXPECT_FALSE(RunWhilePainting([] { return false; }));
}

// The work uses what lives as long as the call.
TEST(PaintingWaitTest, AWaitThatFailsStillWaits) {
    const harness::ImportHook hook(nullptr, "MsgWaitForMultipleObjectsEx", &WaitFails);
    const suite::Handle never(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    std::atomic<bool> done = false;
    EXPECT_TRUE(RunWhilePainting([&] {
        WaitForSingleObject(never.Get(), 100);
        done = true;
        return true;
    }));
    EXPECT_TRUE(done);
}

TEST(PaintingWaitTest, AWaitThatFailsKeepsItsLimit) {
    harness::TestLog::Expect("[L4] The work takes too long(RunWhilePainting)");
    const harness::ImportHook hook(nullptr, "MsgWaitForMultipleObjectsEx", &WaitFails);
    const auto go = std::make_shared<suite::Handle>(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const auto ended = std::make_shared<std::atomic<bool>>(false);
    EXPECT_FALSE(RunWhilePainting(
        [go, ended] {
            WaitForSingleObject(go->Get(), INFINITE);
            *ended = true;
            return true;
        },
        std::chrono::milliseconds(20)));
    SetEvent(go->Get());
    EXPECT_TRUE(harness::WaitUntil([&] { return ended->load(); }));
}

TEST(PaintingWaitTest, FourAreLeftBehindAtMost) {
    harness::TestLog::Expect("[L4] The work takes too long(RunWhilePainting)");
    harness::TestLog::Expect("[L4] The work is not begun: too much is left from before(RunWhilePainting)");
    const auto go = std::make_shared<suite::Handle>(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const auto begun = std::make_shared<std::atomic<int>>(0);
    const auto hang = [go, begun] {
        ++*begun;
        WaitForSingleObject(go->Get(), INFINITE);
        return true;
    };
    for (int i = 0; i < 6; ++i) {
        EXPECT_FALSE(RunWhilePainting(hang, std::chrono::milliseconds(20)));
    }
    EXPECT_TRUE(harness::WaitUntil([&] { return *begun == pictures::kMostLeftBehind; }));
    EXPECT_TRUE(RunWhilePainting([] { return true; })) << "what has no limit is never left behind";
    SetEvent(go->Get());
    EXPECT_TRUE(harness::WaitUntil([] { return RunWhilePainting([] { return true; }, std::chrono::seconds(10)); }))
        << "they have made room";
    EXPECT_EQ(*begun, 4);
}

int g_peeks = 0;
const harness::ImportHook* g_peek = nullptr;

BOOL WINAPI CountPeeks(MSG* message, HWND window, UINT first, UINT last, UINT remove) {
    ++g_peeks;
    return g_peek->Original<decltype(&PeekMessageW)>()(message, window, first, last, remove);
}

// Else the system takes the window for one that hangs.
TEST(PaintingWaitTest, MessagesAreLookedAtAllTheTime) {
    const harness::ImportHook hook(nullptr, "PeekMessageW", &CountPeeks);
    g_peek = &hook;
    g_peeks = 0;
    const suite::Handle never(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    EXPECT_TRUE(RunWhilePainting([&] { return WaitForSingleObject(never.Get(), 2500) == WAIT_TIMEOUT; }));
    EXPECT_GE(g_peeks, 2);
}

TEST(PaintingWaitTest, WithoutAThreadTheWorkIsNotDone) {
    harness::TestLog::Expect(
        testing::AllOf(testing::StartsWith("[L4] No thread for the work: "), testing::EndsWith("(RunWhilePainting)")));
    const harness::NoThreads none;
    bool ran = false;
    EXPECT_FALSE(RunWhilePainting([&] { return ran = true; }));
    EXPECT_FALSE(ran);
}

TEST(PaintingWaitTest, WorkThatThrowsHasFailed) {
    harness::TestLog::Expect("[L4] The work ended with an exception: on purpose(RunWhilePainting)");
    EXPECT_FALSE(RunWhilePainting([]() -> bool { throw std::runtime_error("on purpose"); }));
}

}  // namespace
