// How snapshots from other threads come to the UI thread: the newest one, rarely, and after painting.
#include "pages/SnapshotRelay.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <thread>
#include <vector>

#include "DuiLib/UIMainQueue.h"
#include "tests/support/Wait.h"

namespace {

using Snapshot = GlobalUtils::FeatureStatusTuple;

class SnapshotRelayTest : public testing::Test {
  protected:
    SnapshotRelayTest() { DuiLib::UIMainQueue::getInstance()->bindToCurrentThread(); }

    static Snapshot Numbered(int number) { return {{}, {{L"number", number}}, {}}; }
    void Hand(int number) {
        std::thread([&] { relay_.Hand(Numbered(number)); }).join();
    }
    bool WaitForShown(int number) {
        return harness::PumpUntil([&] { return !shown_.empty() && shown_.back() == number; });
    }

    std::vector<int> shown_;
    DWORD shownOn_ = 0;
    SnapshotRelay relay_{[this](const Snapshot& snapshot) {
        shown_.push_back(std::get<1>(snapshot).at(L"number"));
        shownOn_ = GetCurrentThreadId();
    }};
};

TEST_F(SnapshotRelayTest, IsShownOnTheUiThread) {
    Hand(1);
    EXPECT_TRUE(shown_.empty());
    EXPECT_TRUE(WaitForShown(1));
    EXPECT_EQ(shownOn_, GetCurrentThreadId());
    Hand(2);
    EXPECT_TRUE(WaitForShown(2));
    EXPECT_EQ(shown_.size(), 2u);
}

TEST_F(SnapshotRelayTest, OnlyTheNewestOfThoseThatWaitIsShown) {
    for (int number = 1; number <= 1000; ++number) {
        relay_.Hand(Numbered(number));
    }
    EXPECT_TRUE(WaitForShown(1000));
    EXPECT_THAT(shown_, testing::ElementsAre(1000));
}

TEST_F(SnapshotRelayTest, TenASecondAtMostAreShown) {
    const ULONGLONG start = GetTickCount64();
    int number = 0;
    EXPECT_TRUE(harness::PumpUntil([&] {
        Hand(++number);
        return shown_.size() == 6;
    }));
    EXPECT_GE(GetTickCount64() - start, 5 * SnapshotRelay::kApartMs);
    EXPECT_EQ(SnapshotRelay::kApartMs, 100u);
    EXPECT_TRUE(WaitForShown(number)) << "the last one stays";
}

TEST_F(SnapshotRelayTest, PaintingGoesFirst) {
    const HWND window = CreateWindowExW(WS_EX_TOOLWINDOW, L"STATIC", nullptr, WS_POPUP | WS_VISIBLE, 0, 0, 50, 50,
                                        nullptr, nullptr, nullptr, nullptr);
    ASSERT_TRUE(window);
    harness::Pump();
    Hand(1);
    ASSERT_TRUE(InvalidateRect(window, nullptr, FALSE));
    bool painted = false;
    MSG message{};
    EXPECT_TRUE(harness::WaitUntil([&] {
        // A message at a time, as a window's loop takes them.
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            painted = painted || message.message == WM_PAINT;
            EXPECT_TRUE(painted || shown_.empty()) << "shown before the window was painted";
            DispatchMessageW(&message);
        }
        return !shown_.empty();
    }));
    EXPECT_TRUE(painted);
    DestroyWindow(window);
}

TEST_F(SnapshotRelayTest, WhatWaitsWhenItEndsIsDropped) {
    int shown = 0;
    {
        SnapshotRelay relay([&](const Snapshot&) { ++shown; });
        relay.Hand(Numbered(1));
    }
    bool later = false;
    DuiLib::UIMainQueue::getInstance()->dispatchAfter(1, [&] { later = true; });
    EXPECT_TRUE(harness::PumpUntil([&] { return later; }));
    EXPECT_EQ(shown, 0);
}

}  // namespace
