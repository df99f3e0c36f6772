#include "tests/support/Wait.h"

#include <gtest/gtest.h>

namespace harness {
namespace {

using std::chrono::milliseconds;

// Asks for a message of this thread when it is asked so often.
struct Asked {
    int times = 0;
    bool operator()(int until) { return ++times >= until; }
};

TEST(WaitTest, LooksAtOnceAndUntilItHolds) {
    Asked asked;
    EXPECT_TRUE(WaitUntil([&] { return asked(1); }, milliseconds(0)));
    EXPECT_EQ(asked.times, 1);
    asked = {};
    EXPECT_TRUE(WaitUntil([&] { return asked(4); }));
    EXPECT_EQ(asked.times, 4);
    asked = {};
    EXPECT_TRUE(PumpUntil([&] { return asked(4); }));
    EXPECT_EQ(asked.times, 4);
}

TEST(WaitTest, EndsWithTheTimeAndLooksOnceMore) {
    EXPECT_FALSE(WaitUntil([] { return false; }, milliseconds(1)));
    EXPECT_FALSE(PumpUntil([] { return false; }, milliseconds(1)));
    // It comes true while the time ends.
    Asked asked;
    EXPECT_TRUE(WaitUntil(
        [&] {
            Sleep(2);
            return asked(2);
        },
        milliseconds(1)));
}

TEST(WaitTest, OnlyPumpUntilRunsMessages) {
    static int ticks;
    ticks = 0;
    const UINT_PTR timer = SetTimer(nullptr, 0, 1, [](HWND, UINT, UINT_PTR, DWORD) { ++ticks; });
    Asked asked;
    EXPECT_TRUE(WaitUntil([&] { return asked(5); }));
    EXPECT_EQ(ticks, 0);
    EXPECT_TRUE(PumpUntil([] { return ticks > 0; }));
    KillTimer(nullptr, timer);
}

// The next message may undo what the condition waits for.
TEST(WaitTest, LooksAfterEachMessage) {
    constexpr UINT kFirst = WM_APP + 7;
    for (UINT i = 0; i < 3; ++i) {
        PostThreadMessageW(GetCurrentThreadId(), kFirst + i, 0, 0);
    }
    MSG next;
    EXPECT_TRUE(PumpUntil(
        [&] { return PeekMessageW(&next, nullptr, kFirst, kFirst + 2, PM_NOREMOVE) && next.message == kFirst + 1; }));
    Pump();
    EXPECT_FALSE(PeekMessageW(&next, nullptr, kFirst, kFirst + 2, PM_NOREMOVE));
}

TEST(WaitTest, TheEndOfALoopIsKeptForTheTest) {
    EXPECT_FALSE(TakeQuit());
    PostQuitMessage(0);
    EXPECT_TRUE(PumpUntil([asked = Asked()]() mutable { return asked(3); }));
    EXPECT_TRUE(TakeQuit());
    EXPECT_FALSE(TakeQuit());
}

TEST(WaitTest, WithinALoopItsEndIsTheLoops) {
    PostQuitMessage(0);
    {
        const WithinLoop loop;
        Pump();
    }
    MSG message;
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_FALSE(TakeQuit());
}

}  // namespace
}  // namespace harness
