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

// One of the thread's own, and no window's.
class PostedMessage {
  public:
    PostedMessage() { PostThreadMessageW(GetCurrentThreadId(), WM_APP, 0, 0); }
    ~PostedMessage() {
        MSG message;
        while (PeekMessageW(&message, nullptr, WM_APP, WM_APP, PM_REMOVE)) {
        }
    }
    static bool IsWaiting() {
        MSG message;
        return PeekMessageW(&message, nullptr, WM_APP, WM_APP, PM_NOREMOVE) != FALSE;
    }
};

TEST(PaintingWaitTest, WithoutAWatchPostedMessagesWait) {
    const PostedMessage posted;
    EXPECT_TRUE(RunWhilePainting([] { return true; }));
    const suite::Handle never(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    EXPECT_TRUE(RunWhilePainting([&] { return WaitForSingleObject(never.Get(), 100) == WAIT_TIMEOUT; }));
    EXPECT_TRUE(PostedMessage::IsWaiting());
}

TEST(PaintingWaitTest, WithAWatchEveryMessageIsTakenAndTheTimeTold) {
    const suite::Handle go(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    std::atomic<int> ticks = 0;
    std::chrono::steady_clock::time_point first;
    pictures::WaitWatch watch([&] {
        if (++ticks == 1) {
            first = std::chrono::steady_clock::now();
        }
        if (ticks == 3) {
            SetEvent(go.Get());
        }
    });
    const PostedMessage posted;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(RunWhilePainting([&] { return WaitForSingleObject(go.Get(), 60'000) == WAIT_OBJECT_0; }));
    EXPECT_GE(ticks, 3);
    EXPECT_GE(first - begin, std::chrono::milliseconds(500)) << "what is there soon shows nothing";
    EXPECT_FALSE(PostedMessage::IsWaiting());
    EXPECT_FALSE(watch.IsEnding());
    // Of the same watch: half a second has passed already.
    const int before = ticks;
    EXPECT_TRUE(
        RunWhilePainting([&] { return harness::WaitUntil([&] { return ticks > before; }); }, std::chrono::minutes(1)));
}

TEST(PaintingWaitTest, AWatchEndsWithItsLife) {
    int ticks = 0;
    {
        const pictures::WaitWatch watch([&] { ++ticks; });
    }
    const suite::Handle never(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    EXPECT_TRUE(RunWhilePainting([&] { return WaitForSingleObject(never.Get(), 700) == WAIT_TIMEOUT; }));
    EXPECT_EQ(ticks, 0);
}

TEST(PaintingWaitTest, AnEndOfTheProgramLeavesAWorkWithALimit) {
    const auto go = std::make_shared<suite::Handle>(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const auto ended = std::make_shared<std::atomic<int>>(0);
    const auto hang = [go, ended] {
        WaitForSingleObject(go->Get(), 60'000);
        ++*ended;
        return true;
    };
    pictures::WaitWatch watch([] {});
    PostQuitMessage(7);
    EXPECT_FALSE(RunWhilePainting(hang, std::chrono::minutes(1)));
    EXPECT_EQ(*ended, 0);
    EXPECT_TRUE(watch.IsEnding());
    EXPECT_FALSE(RunWhilePainting(hang, std::chrono::minutes(1))) << "the next as well";
    EXPECT_EQ(*ended, 0);
    EXPECT_EQ(harness::TestLog::Count("[L3] The program ends before the work(RunWhilePainting)"), 2);
    MSG message;
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "for the loop around it";
    EXPECT_EQ(message.wParam, 7u);
    SetEvent(go->Get());
    EXPECT_TRUE(harness::WaitUntil([&] { return *ended == 2; }));
}

TEST(PaintingWaitTest, AnEndOfTheProgramWaitsForAWorkWithoutALimit) {
    std::atomic<bool> ended = false;
    pictures::WaitWatch watch([] {});
    PostQuitMessage(7);
    const suite::Handle never(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    EXPECT_TRUE(RunWhilePainting([&] {
        WaitForSingleObject(never.Get(), 100);
        ended = true;
        return true;
    }));
    EXPECT_TRUE(ended);
    MSG message;
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
}

}  // namespace
