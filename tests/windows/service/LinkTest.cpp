// The model and the camera service's stand-in on a real pipe.
#include <atomic>
#include <condition_variable>
#include <future>
#include <mutex>
#include <thread>

#include "service/KindNotifier.h"
#include "service/link/ServiceLink.h"
#include "tests/windows/service/ServiceTest.h"

namespace {

using GlobalUtils::FeatureStatusTuple;
using GlobalUtils::MessageBoxKind;
using PipeFrame::Frame;
namespace Protocol = harness::Protocol;

Frame Ping() {
    Frame frame;
    frame.kind = PipeFrame::Kind::kMessage;
    frame.slot = {Protocol::kCameraServiceId, -1, Protocol::kSettingsChangedCode, 0, -1, 0, 2};
    frame.payload = {'1', 0};
    return frame;
}

Frame SwitchState(std::uint8_t value) {
    Frame frame;
    frame.kind = PipeFrame::Kind::kMessage;
    frame.slot = {Protocol::kSwitchStateReceiverId, -1, Protocol::kSwitchStateCode, -1, -1, 0, 40};
    frame.payload = {1,   0, 0,   0, 0,   0, 0xCD, 0, 12,  0, 0,   0, 'L', 0, 'u', 0, 'm',   0, 'i', 0,
                     'C', 0, 'a', 0, 'm', 0, 'e',  0, 'r', 0, 'a', 0, 'U', 0, 'I', 0, value, 0, 0,   0};
    return frame;
}

class LinkTest : public ServiceTest {
  protected:
    void SetUp() override {
        ServiceTest::SetUp();
        StartServer(server_);
        model_ = MakeModel();
        ASSERT_TRUE(WaitForModel(server_));
    }

    Frame Next() {
        const auto frame = NextMessage(server_);
        EXPECT_TRUE(frame) << "no message came";
        return frame.value_or(Frame{});
    }
    // The service's messages before this call have been delivered when it returns.
    void WaitUntilDelivered() {
        std::promise<void> came;
        auto once = std::make_shared<std::once_flag>();
        model_->SetServiceResetObserver([&came, once] { std::call_once(*once, [&came] { came.set_value(); }); });
        server_.Send(Protocol::FromService(Protocol::kNotificationCode, Protocol::kResetSubCode));
        EXPECT_EQ(came.get_future().wait_for(kDeadline), std::future_status::ready);
        model_->SetServiceResetObserver({});
    }

    PipeServer server_;
    HomeServiceTestAccess::Model model_;
};

TEST_F(LinkTest, ThePingIsTheSameWhateverChanged) {
    model_->SetCorrectSight(1);
    EXPECT_EQ(Next(), Ping());
    model_->SetFocusPerson(0);
    EXPECT_EQ(Next(), Ping());
    model_->SelectBackground(L"img_two_background_btn");
    EXPECT_EQ(Next(), Ping());
    model_->SendSignal();
    EXPECT_EQ(Next(), Ping());
}

TEST_F(LinkTest, TheCameraSwitchIsToldBeforeThePing) {
    model_->SetCameraSwitch(1);
    EXPECT_EQ(Next(), SwitchState(1));
    EXPECT_EQ(Next(), Ping());
    model_->SetCameraSwitch(0);
    EXPECT_EQ(Next(), SwitchState(0));
    EXPECT_EQ(Next(), Ping());
}

TEST_F(LinkTest, AnythingButOneIsOff) {
    model_->SetCameraSwitch(2);
    EXPECT_EQ(Next(), SwitchState(0));
    EXPECT_EQ(Next(), Ping());
    EXPECT_EQ(Read(L"lumi_camera_switch"), Value(2));
}

TEST_F(LinkTest, AnyValueCanBePosted) {
    model_->PostDialogValue(0x7F);
    EXPECT_EQ(Next(), SwitchState(0x7F));
}

TEST_F(LinkTest, BeautyAndUnknownControlsAreNotTold) {
    model_->SetBeautyPerson(1);
    model_->SetBeautySmooth(1);
    model_->SetBeautyWhite(1);
    model_->SetBeautyEye(1);
    model_->SetBeautyThin(1);
    model_->SelectBackground(L"nobody_btn");
    model_->PostDialogValue(9);
    EXPECT_EQ(Next(), SwitchState(9));
}

TEST_F(LinkTest, TheRegistryIsWrittenBeforeTheServiceIsTold) {
    for (int round = 0; round < 50; ++round) {
        const int value = round % 2;
        model_->SetFocusPerson(value);
        EXPECT_EQ(Next(), Ping());
        EXPECT_EQ(Read(L"lumi_camera_person_track"), Value(value));
    }
}

TEST_F(LinkTest, AChangeOfTheServiceGivesTheObserverASnapshotOnThePipeThread) {
    std::promise<std::pair<FeatureStatusTuple, DWORD>> seen;
    model_->SetStatusObserver([&seen](const FeatureStatusTuple& status) {
        seen.set_value({status, GetCurrentThreadId()});
    });
    Write(L"lumi_camera_person_track", 1);
    server_.Send(Protocol::FromService(Protocol::kSettingsChangedCode));
    auto future = seen.get_future();
    ASSERT_EQ(future.wait_for(kDeadline), std::future_status::ready);
    const auto [status, thread] = future.get();
    EXPECT_EQ(std::get<0>(status).at(L"focus_person_btn"), GlobalUtils::FeatureStatus::kOn);
    EXPECT_NE(thread, GetCurrentThreadId());
}

TEST_F(LinkTest, AChangeBeforeThereIsAnObserverIsIgnored) {
    server_.Send(Protocol::FromService(Protocol::kSettingsChangedCode));
    WaitUntilDelivered();
    EXPECT_FALSE(HomeServiceTestAccess::HasTakenASnapshot(*model_));
}

TEST_F(LinkTest, OnlyTheResetSubCodeResets) {
    std::mutex mutex;
    std::condition_variable changed;
    int resets = 0;
    int snapshots = 0;
    model_->SetServiceResetObserver([&] {
        const std::scoped_lock lock(mutex);
        ++resets;
    });
    model_->SetStatusObserver([&](const FeatureStatusTuple&) {
        const std::scoped_lock lock(mutex);
        ++snapshots;
        changed.notify_all();
    });
    for (const int subCode : {-1, 0, 1, 0x40001, 0x400000, -0x40000}) {
        server_.Send(Protocol::FromService(Protocol::kNotificationCode, subCode));
    }
    server_.Send(Protocol::FromService(Protocol::kSwitchStateCode));
    server_.Send(Protocol::FromService(12345));
    server_.Send(Protocol::FromService(Protocol::kNotificationCode, Protocol::kResetSubCode));
    server_.Send(Protocol::FromService(Protocol::kSettingsChangedCode));
    std::unique_lock lock(mutex);
    EXPECT_TRUE(changed.wait_for(lock, kDeadline, [&] { return snapshots > 0; }));
    EXPECT_EQ(resets, 1);
    EXPECT_EQ(snapshots, 1);
}

TEST_F(LinkTest, AResetWithoutAnObserverIsIgnored) {
    server_.Send(Protocol::FromService(Protocol::kNotificationCode, Protocol::kResetSubCode));
    // The observer that comes later hears of later ones only, and the link goes on.
    std::atomic<int> resets = 0;
    std::promise<void> later;
    model_->SetStatusObserver([&later](const FeatureStatusTuple&) { later.set_value(); });
    server_.Send(Protocol::FromService(Protocol::kSettingsChangedCode));
    ASSERT_EQ(later.get_future().wait_for(kDeadline), std::future_status::ready);
    model_->SetStatusObserver({});
    model_->SetServiceResetObserver([&resets] { ++resets; });
    model_->SendSignal();
    EXPECT_EQ(Next(), Ping());
    EXPECT_EQ(resets, 0);
    server_.Send(Protocol::FromService(Protocol::kNotificationCode, Protocol::kResetSubCode));
    EXPECT_TRUE(harness::WaitUntil([&] { return resets == 1; }));
    model_->SetServiceResetObserver({});
}

TEST_F(LinkTest, TheBackgroundIsGoneWhenTheServiceSaysSo) {
    std::vector<MessageBoxKind> kinds;
    auto& hub = KindNotifier<MessageBoxKind>::GetInstance();
    const auto id = hub.Subscribe(0, [&kinds](MessageBoxKind& kind) { kinds.push_back(kind); });
    // The pipe delivers registered codes only, and this is none of them.
    server_.Send(Protocol::FromService(Protocol::kBackgroundGoneCode));
    WaitUntilDelivered();
    EXPECT_TRUE(kinds.empty());
    TagIPCMessageItem item = Protocol::FromService(Protocol::kBackgroundGoneCode);
    model_->ServiceMessageHandler(item);
    EXPECT_EQ(kinds, std::vector{MessageBoxKind(1)});
    hub.Unsubscribe(0, id);
}

TEST_F(LinkTest, ManyMessagesWhileTheObserverComesAndGoes) {
    for (int round = 0; round < 100; ++round) {
        server_.Send(Protocol::FromService(Protocol::kSettingsChangedCode));
        auto alive = std::make_unique<int>(0);
        // The observer uses what dies right after it was taken away.
        model_->SetStatusObserver([counter = alive.get()](const FeatureStatusTuple&) { ++*counter; });
        server_.Send(Protocol::FromService(Protocol::kSettingsChangedCode));
        model_->SetStatusObserver({});
    }
    WaitUntilDelivered();
}

TEST_F(LinkTest, TheModelEndsWhileMessagesArrive) {
    for (int round = 0; round < 20; ++round) {
        std::promise<void> inside;
        std::atomic<int> begun = 0;
        std::atomic<int> running = 0;
        model_->SetStatusObserver([&](const FeatureStatusTuple&) {
            ++running;
            if (++begun == 1) {
                inside.set_value();
            }
            SwitchToThread();
            --running;
        });
        for (int i = 0; i < 50; ++i) {
            server_.Send(Protocol::FromService(Protocol::kSettingsChangedCode));
        }
        ASSERT_EQ(inside.get_future().wait_for(kDeadline), std::future_status::ready);
        model_.reset();
        EXPECT_EQ(running, 0);
        const int before = begun;
        model_ = MakeModel();
        ASSERT_TRUE(WaitForModel(server_));
        EXPECT_EQ(begun, before) << "nothing comes to a model that has ended";
    }
}

TEST_F(LinkTest, SnapshotsOnTwoThreadsAtOnce) {
    std::promise<void> done;
    int seen = 0;
    model_->SetStatusObserver([&](const FeatureStatusTuple&) {
        if (++seen == 100) {
            done.set_value();
        }
    });
    for (int i = 0; i < 100; ++i) {
        server_.Send(Protocol::FromService(Protocol::kSettingsChangedCode));
        Write(L"lumi_camera_background_replacement", 100 + i);
        EXPECT_EQ(std::get<2>(model_->GetFeatureStatus()).btnName, L"");
    }
    EXPECT_EQ(done.get_future().wait_for(kDeadline), std::future_status::ready);
}

TEST_F(LinkTest, WithoutAConnectionNothingIsSent) {
    const service::ServiceLink link(service::ServiceLink::Callbacks{});
    link.SendPing();
    link.SendSwitchState(1);
    EXPECT_EQ(FailedPings(), 0);
    // The first thing that the service hears comes from the model, which is connected.
    model_->SendSignal();
    EXPECT_EQ(Next(), Ping());
}

// Nobody posts: the link looks for the service by itself.
TEST_F(LinkTest, AServiceThatWasRestartedIsHeardWithoutAWordFromHere) {
    std::promise<void> seen;
    auto once = std::make_shared<std::once_flag>();
    model_->SetStatusObserver(
        [&seen, once](const FeatureStatusTuple&) { std::call_once(*once, [&seen] { seen.set_value(); }); });
    server_.Stop();
    StartServer(server_);
    ASSERT_TRUE(WaitForModel(server_));
    server_.Send(Protocol::FromService(Protocol::kSettingsChangedCode));
    EXPECT_EQ(seen.get_future().wait_for(kDeadline), std::future_status::ready);
    model_->SetStatusObserver({});
}

TEST_F(LinkTest, AServiceThatComesLaterIsFound) {
    Expect("ipcclient send message");
    server_.Stop();
    while (server_.WaitForEvent()) {
    }
    const int before = FailedPings();
    // The client may not have seen the end of the pipe yet.
    EXPECT_TRUE(harness::WaitUntil([&] {
        model_->SetCorrectSight(1);
        return FailedPings() > before;
    }));
    StartServer(server_);
    ASSERT_TRUE(WaitForModel(server_));
    model_->SetCorrectSight(0);
    EXPECT_EQ(Next(), Ping());
}

}  // namespace
