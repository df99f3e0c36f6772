#include "service/ReportWorkers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <stdexcept>

#include "tests/support/ImportHook.h"
#include "tests/windows/service/ServiceTest.h"

namespace {

// Counts the runs of a report and holds them back while it is closed.
class Gate {
  public:
    void Run() {
        std::unique_lock lock(mutex_);
        ++begun_;
        most_ = std::max(most_, ++inside_);
        changed_.notify_all();
        changed_.wait(lock, [this] { return open_; });
        --inside_;
        ++ended_;
        changed_.notify_all();
    }
    void SetOpen(bool open) {
        const std::scoped_lock lock(mutex_);
        open_ = open;
        changed_.notify_all();
    }
    bool WaitForBegun(int count) {
        return Wait([this, count] { return begun_ >= count; });
    }
    bool WaitForEnded(int count) {
        return Wait([this, count] { return ended_ >= count && inside_ == 0; });
    }
    int Begun() {
        const std::scoped_lock lock(mutex_);
        return begun_;
    }
    int Ended() {
        const std::scoped_lock lock(mutex_);
        return ended_;
    }
    int MostAtOnce() {
        const std::scoped_lock lock(mutex_);
        return most_;
    }

  private:
    template <typename Predicate>
    bool Wait(Predicate predicate) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, kDeadline, predicate);
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    // Guarded by mutex_.
    bool open_ = true;
    int begun_ = 0;
    int inside_ = 0;
    int most_ = 0;
    int ended_ = 0;
};

class ReportWorkersTest : public ServiceTest {};

constexpr int kMax = 8;

TEST_F(ReportWorkersTest, RunsOnceForEachRequest) {
    const auto gate = std::make_shared<Gate>();
    ReportWorkers workers([gate] { gate->Run(); });
    for (int n = 1; n <= 20; ++n) {
        ASSERT_TRUE(workers.Start());
        ASSERT_TRUE(gate->WaitForEnded(n));
    }
    EXPECT_EQ(gate->Begun(), 20);
}

TEST_F(ReportWorkersTest, RunsSeveralAtOnceAndDoesNotWaitForThem) {
    const auto gate = std::make_shared<Gate>();
    gate->SetOpen(false);
    ReportWorkers workers([gate] { gate->Run(); });
    ASSERT_TRUE(workers.Start());
    ASSERT_TRUE(workers.Start());
    EXPECT_TRUE(gate->WaitForBegun(2));
    gate->SetOpen(true);
    EXPECT_TRUE(gate->WaitForEnded(2));
}

TEST_F(ReportWorkersTest, AHangingReportCostsAFewThreadsAndOneMoreRun) {
    const auto gate = std::make_shared<Gate>();
    gate->SetOpen(false);
    ReportWorkers workers([gate] { gate->Run(); });
    for (int n = 0; n < 10000; ++n) {
        ASSERT_TRUE(workers.Start());
    }
    ASSERT_TRUE(gate->WaitForBegun(kMax));
    gate->SetOpen(true);
    EXPECT_TRUE(gate->WaitForEnded(kMax + 1));
    EXPECT_EQ(gate->Begun(), kMax + 1);
    EXPECT_EQ(gate->MostAtOnce(), kMax);
    ASSERT_TRUE(workers.Start());
    EXPECT_TRUE(gate->WaitForEnded(kMax + 2));
}

TEST_F(ReportWorkersTest, AReportThatThrowsEndsLikeAnyOther) {
    Expect("a report failed: no reporting here(ReportWorkers::ThreadEntry)");
    const auto gate = std::make_shared<Gate>();
    ReportWorkers workers([gate] {
        gate->Run();
        throw std::runtime_error("no reporting here");
    });
    for (int n = 1; n <= 3 * kMax; ++n) {
        ASSERT_TRUE(workers.Start());
        ASSERT_TRUE(gate->WaitForEnded(n));
    }
}

TEST_F(ReportWorkersTest, EndsWhileAReportHangs) {
    const auto gate = std::make_shared<Gate>();
    gate->SetOpen(false);
    {
        ReportWorkers workers([gate] { gate->Run(); });
        ASSERT_TRUE(workers.Start());
        ASSERT_TRUE(gate->WaitForBegun(1));
    }
    gate->SetOpen(true);
    EXPECT_TRUE(gate->WaitForEnded(1));
}

// The report goes on when its thread is waited for, and not before.
TEST_F(ReportWorkersTest, AReportThatRunsIsWaitedForAtTheEnd) {
    static std::shared_ptr<Gate> gate;
    static decltype(&WaitForSingleObject) original;
    DWORD(WINAPI* const wait)
    (HANDLE, DWORD) = [](HANDLE object, DWORD time) -> DWORD {
        if (time == 0 || time > 200) {
            return original(object, time);
        }
        gate->SetOpen(true);
        return original(object, 60'000);
    };
    gate = std::make_shared<Gate>();
    gate->SetOpen(false);
    auto workers = std::make_unique<ReportWorkers>([] { gate->Run(); });
    ASSERT_TRUE(workers->Start());
    ASSERT_TRUE(gate->WaitForBegun(1));
    {
        const harness::ImportHook hook(nullptr, "WaitForSingleObject", reinterpret_cast<void*>(wait));
        original = hook.Original<decltype(original)>();
        workers.reset();
    }
    EXPECT_EQ(gate->Ended(), 1);
    gate->SetOpen(true);
    EXPECT_TRUE(gate->WaitForEnded(1));
}

TEST_F(ReportWorkersTest, TheHandleOfAThreadThatHasEndedGoesWithTheNextStart) {
    static HANDLE made;
    static std::atomic<bool> isClosed;
    static decltype(&CreateThread) make;
    static decltype(&CloseHandle) close;
    HANDLE(WINAPI* const noteThread)
    (SECURITY_ATTRIBUTES*, SIZE_T, LPTHREAD_START_ROUTINE, void*, DWORD,
     DWORD*) = [](SECURITY_ATTRIBUTES* security, SIZE_T stack, LPTHREAD_START_ROUTINE entry, void* parameter,
                  DWORD flags, DWORD* id) -> HANDLE {
        const HANDLE thread = make(security, stack, entry, parameter, flags, id);
        return made ? thread : made = thread;
    };
    BOOL(WINAPI* const noteClosing)
    (HANDLE) = [](HANDLE handle) -> BOOL {
        if (handle == made) {
            isClosed = true;
        }
        return close(handle);
    };
    const harness::ImportHook threads(nullptr, "CreateThread", reinterpret_cast<void*>(noteThread));
    const harness::ImportHook closing(nullptr, "CloseHandle", reinterpret_cast<void*>(noteClosing));
    make = threads.Original<decltype(make)>();
    close = closing.Original<decltype(close)>();
    made = nullptr;
    isClosed = false;
    ReportWorkers workers([] {});
    ASSERT_TRUE(workers.Start());
    ASSERT_EQ(WaitForSingleObject(made, 60'000), WAIT_OBJECT_0);
    EXPECT_FALSE(isClosed);
    ASSERT_TRUE(workers.Start());
    EXPECT_TRUE(isClosed);
}

TEST_F(ReportWorkersTest, EndsWhenTheReportsHaveFinished) {
    const auto gate = std::make_shared<Gate>();
    {
        ReportWorkers workers([gate] { gate->Run(); });
        ASSERT_TRUE(workers.Start());
    }
    EXPECT_TRUE(gate->WaitForEnded(1));
}

}  // namespace
