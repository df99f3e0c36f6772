#include "service/ReportWorkers.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <stdexcept>

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
    int MostAtOnce() {
        const std::scoped_lock lock(mutex_);
        return most_;
    }

  private:
    template <typename Predicate>
    bool Wait(Predicate predicate) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(30), predicate);
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

constexpr int kMax = static_cast<int>(ReportWorkers::kMaxWorkers);

TEST(ReportWorkersTest, RunsOnceForEachRequest) {
    const auto gate = std::make_shared<Gate>();
    ReportWorkers workers([gate] { gate->Run(); });
    for (int n = 1; n <= 20; ++n) {
        ASSERT_TRUE(workers.Start());
        ASSERT_TRUE(gate->WaitForEnded(n));
    }
    EXPECT_EQ(gate->Begun(), 20);
}

TEST(ReportWorkersTest, RunsSeveralAtOnceAndDoesNotWaitForThem) {
    const auto gate = std::make_shared<Gate>();
    gate->SetOpen(false);
    ReportWorkers workers([gate] { gate->Run(); });
    ASSERT_TRUE(workers.Start());
    ASSERT_TRUE(workers.Start());
    EXPECT_TRUE(gate->WaitForBegun(2));
    gate->SetOpen(true);
    EXPECT_TRUE(gate->WaitForEnded(2));
}

TEST(ReportWorkersTest, AHangingReportCostsAFewThreadsAndOneMoreRun) {
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

TEST(ReportWorkersTest, AReportThatThrowsEndsLikeAnyOther) {
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

TEST(ReportWorkersTest, EndsWhileAReportHangs) {
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

TEST(ReportWorkersTest, EndsWhenTheReportsHaveFinished) {
    const auto gate = std::make_shared<Gate>();
    {
        ReportWorkers workers([gate] { gate->Run(); });
        ASSERT_TRUE(workers.Start());
    }
    EXPECT_TRUE(gate->WaitForEnded(1));
}

}  // namespace
