// The loop of rounds around the settings key.
#include "service/SettingsWatcher.h"

#include <atomic>
#include <stdexcept>

#include "DuiLib/UIMainQueue.h"
#include "service/KindNotifier.h"
#include "tests/support/ImportHook.h"
#include "tests/support/NoThreads.h"
#include "tests/support/Wait.h"
#include "tests/windows/service/ServiceTest.h"

namespace {

using GlobalUtils::FeatureStatusTuple;
using GlobalUtils::MessageBoxKind;

class SettingsWatcherTest : public ServiceTest {
  protected:
    void SetUp() override {
        ServiceTest::SetUp();
        DuiLib::UIMainQueue::getInstance()->bindToCurrentThread();
        model_ = MakeModel();
        model_->SetStatusObserver([this](const FeatureStatusTuple& status) {
            EXPECT_EQ(GetCurrentThreadId(), uiThread_);
            ++refreshes_;
            smooth_ = std::get<1>(status).at(L"slider_smooth");
            if (whileRefreshing_) {
                whileRefreshing_();
            }
        });
    }
    void TearDown() override {
        model_.reset();
        ServiceTest::TearDown();
    }

    static void SetSmooth(int level) { Write(L"lumi_camera_beauty_smooth", level); }
    bool WaitForSmooth(int level) {
        return PumpUntil([&] { return smooth_ == level; });
    }
    bool WaitForRefresh() {
        return PumpUntil([this, before = refreshes_] { return refreshes_ > before; });
    }
    // The first round is armed: the refresh that follows each arming has come.
    void WaitUntilWatching() { ASSERT_TRUE(WaitForRefresh()); }

    const DWORD uiThread_ = GetCurrentThreadId();
    HomeServiceTestAccess::Model model_;
    int refreshes_ = 0;
    int smooth_ = -1;
    std::function<void()> whileRefreshing_;
};

// Counts the rounds that told of a change: each publishes a kind while the algorithm is not ready.
class RoundCounter {
  public:
    RoundCounter() : id_(Hub().Subscribe(0, [this](MessageBoxKind&) { ++rounds_; })) {}
    ~RoundCounter() { Hub().Unsubscribe(0, id_); }
    RoundCounter(const RoundCounter&) = delete;
    RoundCounter& operator=(const RoundCounter&) = delete;
    int Count() const { return rounds_; }

  private:
    static KindNotifier<MessageBoxKind>& Hub() { return KindNotifier<MessageBoxKind>::GetInstance(); }

    std::atomic<int> rounds_ = 0;
    const std::int64_t id_;
};

TEST_F(SettingsWatcherTest, SeesEachOfManyChanges) {
    SettingsWatcher watcher(*model_);
    WaitUntilWatching();
    for (int level = 100; level < 120; ++level) {
        SetSmooth(level);
        ASSERT_TRUE(WaitForSmooth(level)) << level;
    }
}

TEST_F(SettingsWatcherTest, SeesChangesFromTheVeryStart) {
    for (int level = 200; level < 210; ++level) {
        SettingsWatcher watcher(*model_);
        SetSmooth(level);
        ASSERT_TRUE(WaitForSmooth(level)) << level;
    }
}

TEST_F(SettingsWatcherTest, TheLastOfManyChangesAtOnceIsSeen) {
    SettingsWatcher watcher(*model_);
    WaitUntilWatching();
    for (int burst = 1; burst <= 5; ++burst) {
        for (int i = 0; i <= 200; ++i) {
            SetSmooth(burst * 1000 + i);
        }
        ASSERT_TRUE(WaitForSmooth(burst * 1000 + 200)) << burst;
    }
}

TEST_F(SettingsWatcherTest, AChangeWhileThePageRefreshesIsSeen) {
    SettingsWatcher watcher(*model_);
    WaitUntilWatching();
    whileRefreshing_ = [this] {
        whileRefreshing_ = nullptr;
        SetSmooth(301);
    };
    SetSmooth(300);
    EXPECT_TRUE(WaitForSmooth(301));
}

TEST_F(SettingsWatcherTest, RefreshesDoNotPileUpBehindABusyUiThread) {
    Write(L"init_algorithm", 0);
    RoundCounter rounds;
    SettingsWatcher watcher(*model_);
    WaitUntilWatching();
    SetSmooth(400);
    while (rounds.Count() == 0) {
        SwitchToThread();
    }
    // The UI thread does not look at its queue, and the key goes on changing.
    int level = 400;
    const auto change = [&] {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(300);
        while (std::chrono::steady_clock::now() < end) {
            SetSmooth(++level);
            Sleep(30);  // faster ones are taken for those of a program that writes all the time
        }
    };
    change();
    EXPECT_EQ(rounds.Count(), 1);
    EXPECT_TRUE(WaitForSmooth(level));
    // Nor when it is busy once more.
    for (int again = 0; again < 2; ++again) {
        const int before = rounds.Count();
        change();
        EXPECT_LE(rounds.Count(), before + 1);
        EXPECT_TRUE(WaitForSmooth(level));
    }
}

TEST_F(SettingsWatcherTest, SurvivesThatTheKeyIsDeletedWhileItWatches) {
    for (int level = 501; level < 504; ++level) {
        SettingsWatcher watcher(*model_);
        WaitUntilWatching();
        DeleteKey();
        ASSERT_TRUE(WaitForSmooth(5));
        SetSmooth(level);
        ASSERT_TRUE(WaitForSmooth(level));
        SetSmooth(level + 1000);
        ASSERT_TRUE(WaitForSmooth(level + 1000));
    }
}

TEST_F(SettingsWatcherTest, SurvivesThatTheKeyIsDeletedBetweenTwoRounds) {
    SettingsWatcher watcher(*model_);
    WaitUntilWatching();
    whileRefreshing_ = [this] {
        if (smooth_ == 551) {
            DeleteKey();
        }
    };
    SetSmooth(551);
    ASSERT_TRUE(WaitForSmooth(5));
    SetSmooth(552);
    EXPECT_TRUE(WaitForSmooth(552));
}

TEST_F(SettingsWatcherTest, SurvivesThatTheKeyIsReplacedAtOnce) {
    SettingsWatcher watcher(*model_);
    WaitUntilWatching();
    for (int level = 571; level < 581; ++level) {
        DeleteKey();
        SetSmooth(level);
        ASSERT_TRUE(WaitForSmooth(level));
    }
}

TEST_F(SettingsWatcherTest, BeginsWithoutAKey) {
    DeleteKey();
    SettingsWatcher watcher(*model_);
    SetSmooth(601);
    EXPECT_TRUE(WaitForSmooth(601));
}

// Each look at a key that is not there is followed by a rest, and that by another look.
TEST_F(SettingsWatcherTest, WithoutAKeyItRests) {
    static std::atomic<int> rounds;
    static decltype(&ResetEvent) original;
    BOOL(WINAPI* const count)
    (HANDLE) = [](HANDLE event) -> BOOL {
        ++rounds;
        return original(event);
    };
    const harness::ImportHook hook(nullptr, "ResetEvent", reinterpret_cast<void*>(count));
    original = hook.Original<decltype(original)>();
    rounds = 0;
    DeleteKey();
    SettingsWatcher watcher(*model_);
    EXPECT_TRUE(PumpUntil([] { return rounds > 0; }));
    harness::PumpFor(std::chrono::milliseconds(200));
    EXPECT_LE(rounds, 2);
    EXPECT_TRUE(PumpUntil([] { return rounds > 2; }));
    SetSmooth(611);
    EXPECT_TRUE(WaitForSmooth(611));
    watcher.Stop();
}

TEST_F(SettingsWatcherTest, AStraySignalIsOneRoundAndNoMore) {
    Write(L"init_algorithm", 0);
    RoundCounter rounds;
    SettingsWatcher watcher(*model_);
    WaitUntilWatching();
    ASSERT_EQ(rounds.Count(), 0);
    const suite::Handle event(CreateEventW(nullptr, FALSE, FALSE, L"RegEditNotifyChanged"));
    // It brings one refresh, and a second one when the next round is armed: the key is watched as before.
    const int before = refreshes_;
    SetEvent(event.Get());
    ASSERT_TRUE(PumpUntil([&] { return refreshes_ == before + 2; }));
    EXPECT_EQ(rounds.Count(), 1);
    SetSmooth(701);
    ASSERT_TRUE(PumpUntil([&] { return rounds.Count() == 2; }));
    ASSERT_TRUE(WaitForSmooth(701));
    EXPECT_EQ(rounds.Count(), 2);
}

TEST_F(SettingsWatcherTest, TellsThatTheAlgorithmFailed) {
    RoundCounter rounds;
    SettingsWatcher watcher(*model_);
    WaitUntilWatching();
    Write(L"init_algorithm", 0);
    EXPECT_TRUE(PumpUntil([&] { return rounds.Count() == 1; }));
}

TEST_F(SettingsWatcherTest, TellsThatTheAlgorithmFailedBetweenTwoRounds) {
    for (int level = 721; level < 724; ++level) {
        Write(L"init_algorithm", 1);
        RoundCounter rounds;
        SettingsWatcher watcher(*model_);
        WaitUntilWatching();
        // A refresh runs while no round is armed, some time after the round that brought it has looked at the key.
        whileRefreshing_ = [this, level] {
            if (smooth_ == level) {
                Write(L"init_algorithm", 0);
                whileRefreshing_ = nullptr;
            }
        };
        SetSmooth(level);
        EXPECT_TRUE(PumpUntil([&] { return rounds.Count() == 1; }));
    }
}

TEST_F(SettingsWatcherTest, AListenerThatThrowsDoesNotEndIt) {
    Expect("watching failed: no box(SettingsWatcher::Run)");
    auto& hub = KindNotifier<MessageBoxKind>::GetInstance();
    const auto id = hub.Subscribe(0, [](MessageBoxKind&) { throw std::runtime_error("no box"); });
    {
        SettingsWatcher watcher(*model_);
        WaitUntilWatching();
        Write(L"init_algorithm", 0);
        ASSERT_TRUE(PumpUntil([this] { return LogLines("watching failed") == 1; }));
        Write(L"init_algorithm", 1);
        SetSmooth(801);
        EXPECT_TRUE(WaitForSmooth(801));
        SetSmooth(802);
        EXPECT_TRUE(WaitForSmooth(802));
    }
    hub.Unsubscribe(0, id);
}

TEST_F(SettingsWatcherTest, AnObserverThatThrowsDoesNotEndIt) {
    Expect("no page");
    SettingsWatcher watcher(*model_);
    WaitUntilWatching();
    whileRefreshing_ = [this] {
        if (smooth_ == 901) {
            throw std::runtime_error("no page");
        }
    };
    SetSmooth(901);
    EXPECT_TRUE(WaitForSmooth(901));
    SetSmooth(902);
    EXPECT_TRUE(WaitForSmooth(902));
}

TEST_F(SettingsWatcherTest, StopsAtOnceWhateverItIsDoing) {
    for (int i = 0; i < 100; ++i) {
        SettingsWatcher watcher(*model_);
        if (i % 3 == 1) {
            SetSmooth(1000 + i);
        }
        if (i % 10 == 2) {
            WaitUntilWatching();
        }
        watcher.Stop();
        watcher.Stop();
    }
}

TEST_F(SettingsWatcherTest, StopsWithoutAKeyAndWithARefreshQueued) {
    {
        SettingsWatcher watcher(*model_);
        WaitUntilWatching();
        SetSmooth(1201);
    }
    DeleteKey();
    SettingsWatcher watcher(*model_);
    watcher.Stop();
}

TEST_F(SettingsWatcherTest, StopsInsideARefresh) {
    auto watcher = std::make_unique<SettingsWatcher>(*model_);
    WaitUntilWatching();
    whileRefreshing_ = [&watcher] { watcher.reset(); };
    SetSmooth(1301);
    EXPECT_TRUE(PumpUntil([&watcher] { return watcher == nullptr; }));
}

TEST_F(SettingsWatcherTest, NothingComesAfterStop) {
    SettingsWatcher watcher(*model_);
    WaitUntilWatching();
    SetSmooth(1401);
    watcher.Stop();
    const int before = refreshes_;
    model_->SetStatusObserver([this](const FeatureStatusTuple&) { ++refreshes_; });
    // Everything that was queued, the delayed refresh included, has run when this has.
    bool later = false;
    DuiLib::UIMainQueue::getInstance()->dispatchAfter(500, [&later] { later = true; });
    EXPECT_TRUE(PumpUntil([&later] { return later; }));
    EXPECT_EQ(refreshes_, before);
}

TEST_F(SettingsWatcherTest, LeavesNoHandleBehind) {
    { SettingsWatcher watcher(*model_); }
    DWORD before = 0;
    GetProcessHandleCount(GetCurrentProcess(), &before);
    for (int i = 0; i < 30; ++i) {
        SettingsWatcher watcher(*model_);
    }
    bool later = false;
    DuiLib::UIMainQueue::getInstance()->dispatchAfter(300, [&later] { later = true; });
    EXPECT_TRUE(PumpUntil([&later] { return later; }));
    DWORD after = 0;
    GetProcessHandleCount(GetCurrentProcess(), &after);
    EXPECT_LT(after, before + 10);
}

TEST_F(SettingsWatcherTest, WithoutAThreadItIsToldAndNothingIsWatched) {
    harness::TestLog::Expect(testing::AllOf(testing::StartsWith("[L4] no thread: "),
                                            testing::EndsWith("(SettingsWatcher::SettingsWatcher)")));
    const harness::NoThreads none;
    SettingsWatcher watcher(*model_);
    watcher.Stop();
    EXPECT_EQ(refreshes_, 0);
}

}  // namespace
