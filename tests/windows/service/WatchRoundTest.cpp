// One round of watching the settings key.
#include <atomic>
#include <future>
#include <mutex>
#include <thread>

#include "DuiLib/UIMainQueue.h"
#include "service/KindNotifier.h"
#include "tests/windows/service/ServiceTest.h"

namespace {

using GlobalUtils::MessageBoxKind;

// While this is held unsignalled, a round waits for a change.
class WatchRoundTest : public ServiceTest {
  protected:
    void SetUp() override {
        ServiceTest::SetUp();
        DuiLib::UIMainQueue::getInstance()->bindToCurrentThread();
        MakeEmptyKey();
        hubId_ = Hub().Subscribe(0, [this](MessageBoxKind& kind) {
            const std::scoped_lock lock(mutex_);
            kinds_.emplace_back(kind, GetCurrentThreadId());
        });
    }
    void TearDown() override {
        Hub().Unsubscribe(0, hubId_);
        ServiceTest::TearDown();
    }

    static KindNotifier<MessageBoxKind>& Hub() { return KindNotifier<MessageBoxKind>::GetInstance(); }

    // What a round leaves behind; it outlives the test with a round that never ends.
    struct Outcome {
        std::promise<bool> noticed;
        std::atomic<int> refreshes = 0;
        std::atomic<DWORD> refreshThread = 0;
        std::atomic<DWORD> workerThread = 0;
    };

    // One round on a thread of its own, ended by writing until it ends, for it cannot be seen when it is armed.
    bool Round() {
        auto outcome = std::make_shared<Outcome>();
        auto future = outcome->noticed.get_future();
        std::thread([outcome] {
            outcome->workerThread = GetCurrentThreadId();
            outcome->noticed.set_value(HomeService::WatchSettingsOnce([outcome] {
                ++outcome->refreshes;
                outcome->refreshThread = GetCurrentThreadId();
            }));
        }).detach();
        int value = 0;
        const bool ended = PumpUntil([&] {
            Write(L"changes", ++value);
            return future.wait_for(std::chrono::milliseconds(1)) == std::future_status::ready;
        });
        if (!ended) {
            SetEvent(held_.Get());
            ADD_FAILURE() << "the round does not end";
            return false;
        }
        const bool noticed = future.get();
        EXPECT_TRUE(PumpUntil([&] { return outcome->refreshes == (noticed ? 1 : 0); }));
        refreshes_ += outcome->refreshes;
        refreshThread_ = outcome->refreshThread;
        workerThread_ = outcome->workerThread;
        return noticed;
    }
    std::vector<std::pair<MessageBoxKind, DWORD>> Kinds() {
        const std::scoped_lock lock(mutex_);
        return kinds_;
    }

    int refreshes_ = 0;
    DWORD refreshThread_ = 0;
    DWORD workerThread_ = 0;

  private:
    const suite::Handle held_{CreateEventW(nullptr, FALSE, FALSE, SettingNames::kChangedEventName)};
    std::mutex mutex_;
    std::vector<std::pair<MessageBoxKind, DWORD>> kinds_;  // guarded by mutex_
    std::int64_t hubId_ = 0;
};

TEST_F(WatchRoundTest, AChangeRefreshesOnTheUiThread) {
    EXPECT_TRUE(Round());
    EXPECT_EQ(refreshes_, 1);
    EXPECT_EQ(refreshThread_, GetCurrentThreadId());
    EXPECT_TRUE(Kinds().empty());
}

TEST_F(WatchRoundTest, AnAlgorithmThatIsNotReadyIsToldOnTheWorkersThread) {
    Write(L"init_algorithm", 0);
    EXPECT_TRUE(Round());
    EXPECT_EQ(refreshes_, 1);
    const std::vector<std::pair<MessageBoxKind, DWORD>> expected{{MessageBoxKind(9), workerThread_}};
    EXPECT_EQ(Kinds(), expected);
}

TEST_F(WatchRoundTest, AnyOtherAlgorithmStateIsFine) {
    for (const int state : {1, 2, -1}) {
        Write(L"init_algorithm", state);
        EXPECT_TRUE(Round());
    }
    Write(L"init_algorithm", std::wstring(L"0"));
    EXPECT_TRUE(Round());
    EXPECT_TRUE(Kinds().empty());
}

TEST_F(WatchRoundTest, WithoutAKeyTheRoundEndsAtOnce) {
    DeleteKey();
    EXPECT_FALSE(HomeService::WatchSettingsOnce([this] { ++refreshes_; }));
    bool later = false;
    DuiLib::UIMainQueue::getInstance()->dispatch([&later] { later = true; });
    EXPECT_TRUE(PumpUntil([&later] { return later; }));
    EXPECT_EQ(refreshes_, 0);
}

TEST_F(WatchRoundTest, KeepsNoHandle) {
    Round();
    DWORD before = 0;
    GetProcessHandleCount(GetCurrentProcess(), &before);
    for (int i = 0; i < 20; ++i) {
        Round();
    }
    DWORD after = 0;
    GetProcessHandleCount(GetCurrentProcess(), &after);
    EXPECT_LT(after, before + 10);
}

}  // namespace
