#include <atomic>
#include <stdexcept>
#include <thread>

#include "DuiLib/UIMainQueue.h"
#include "TestWindow.h"

namespace DuiLib::Test {
namespace {

class MainQueue : public testing::Test {
  protected:
    MainQueue() { queue.bindToCurrentThread(); }
    UIMainQueue& queue = *UIMainQueue::getInstance();
};

TEST_F(MainQueue, RunsInOrderOnTheUiThread) {
    std::vector<int> order;
    const DWORD uiThread = GetCurrentThreadId();
    bool onUiThread = true;
    std::thread other([&] {
        for (int i = 0; i < 1000; ++i) {
            queue.dispatch([&, i] {
                order.push_back(i);
                onUiThread = onUiThread && GetCurrentThreadId() == uiThread;
            });
        }
    });
    EXPECT_TRUE(PumpUntil([&] { return order.size() == 1000; }));
    other.join();
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_TRUE(onUiThread);
}

TEST_F(MainQueue, NeverRunsWithinDispatch) {
    bool ran = false;
    queue.dispatch([&] { ran = true; });
    EXPECT_FALSE(ran);
    EXPECT_TRUE(PumpUntil([&] { return ran; }));
}

TEST_F(MainQueue, ManyMoreTasksThanAMessageQueueHolds) {
    int count = 0;
    for (int i = 0; i < 12000; ++i) {
        queue.dispatch([&] { ++count; });
    }
    EXPECT_TRUE(PumpUntil([&] { return count == 12000; }));
}

TEST_F(MainQueue, ExceptionIsLoggedAndTheNextTaskRuns) {
    LogWatch log;
    bool ran = false;
    queue.dispatch([] { throw std::runtime_error("from a task"); });
    queue.dispatch([&] { ran = true; });
    EXPECT_TRUE(PumpUntil([&] { return ran; }));
    EXPECT_TRUE(log.Has("from a task"));
}

TEST_F(MainQueue, WhatIsNoExceptionOfTheLibraryIsLoggedToo) {
    LogWatch log;
    bool ran = false;
    queue.dispatch([] { throw 7; });
    queue.dispatch([&] { ran = true; });
    EXPECT_TRUE(PumpUntil([&] { return ran; }));
    EXPECT_TRUE(log.Has("A task ended with an exception(UIMainQueue::Run)"));
}

TEST_F(MainQueue, ATaskWithALoopOfItsOwnDoesNotHoldUpOthers) {
    bool innerRan = false;
    bool outerSawInner = false;
    queue.dispatch([&] { outerSawInner = PumpUntil([&] { return innerRan; }); });
    queue.dispatch([&] { innerRan = true; });
    EXPECT_TRUE(PumpUntil([&] { return outerSawInner; }));
}

TEST_F(MainQueue, InputIsNotStarvedByTasksThatKeepComing) {
    TestWindow window(R"(<Window size="200,100"><Button name="b"/></Window>)");
    SetWindowPos(window.GetHWND(), HWND_TOPMOST, 100, 100, 0, 0, SWP_NOSIZE);
    window.ShowWindow();
    PumpPending();
    bool stop = false;
    std::function<void()> again = [&] {
        if (!stop) {
            queue.dispatch(again);
        }
    };
    SetCursorPos(20, 20);
    PumpPending();
    again();
    SetCursorPos(150, 150);
    EXPECT_TRUE(PumpUntil([&] { return window.Got(L"mouseenter b"); }));
    stop = true;
    bool last = false;
    queue.dispatch([&] { last = true; });
    EXPECT_TRUE(PumpUntil([&] { return last; }));
}

TEST_F(MainQueue, DelayedTasksRunInTheOrderOfTheirTime) {
    std::vector<int> order;
    const auto start = std::chrono::steady_clock::now();
    std::chrono::milliseconds second{};
    queue.dispatchAfter(60, [&] {
        order.push_back(2);
        second = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    });
    queue.dispatchAfter(10, [&] { order.push_back(1); });
    queue.dispatchAfter(60, [&] { order.push_back(3); });
    EXPECT_TRUE(PumpUntil([&] { return order.size() == 3; }));
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
    EXPECT_GE(second.count(), 40);  // the system's tick is 16 ms
}

TEST_F(MainQueue, FollowsTheThreadThatBindsIt) {
    DWORD ranOn = 0;
    DWORD bound = 0;
    std::thread other([&] {
        queue.bindToCurrentThread();
        bound = GetCurrentThreadId();
        queue.dispatch([&] { ranOn = GetCurrentThreadId(); });
        PumpUntil([&] { return ranOn != 0; });
    });
    other.join();
    EXPECT_EQ(ranOn, bound);
    queue.bindToCurrentThread();
    bool back = false;
    queue.dispatch([&] { back = true; });
    EXPECT_TRUE(PumpUntil([&] { return back; }));
}

}  // namespace
}  // namespace DuiLib::Test
