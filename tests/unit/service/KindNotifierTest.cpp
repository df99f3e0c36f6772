#include "service/KindNotifier.h"

#include <gtest/gtest.h>

#include <future>
#include <string>
#include <thread>

#include "service/GlobalUtils.h"

namespace {

// Each test has a kind of its own, and so a hub of its own.
template <int N>
struct Kind {
    int value = 0;
};

TEST(KindNotifierTest, OneInstanceForEachKind) {
    EXPECT_EQ(&KindNotifier<Kind<0>>::GetInstance(), &KindNotifier<Kind<0>>::GetInstance());
    EXPECT_NE(static_cast<void*>(&KindNotifier<GlobalUtils::WndMoveKind>::GetInstance()),
              static_cast<void*>(&KindNotifier<GlobalUtils::BeautyKind>::GetInstance()));
}

TEST(KindNotifierTest, CallsListenersInTheOrderOfSubscriptionWithTheSameKind) {
    auto& hub = KindNotifier<Kind<1>>::GetInstance();
    std::string calls;
    hub.Subscribe(4, [&calls](Kind<1>& kind) { calls += static_cast<char>('a' + kind.value++); });
    hub.Subscribe(4, [&calls](Kind<1>& kind) { calls += static_cast<char>('a' + kind.value++); });
    hub.Subscribe(5, [&calls](Kind<1>&) { calls += '!'; });
    Kind<1> kind{2};
    hub.Publish(4, kind);
    EXPECT_EQ(calls, "cd");
    EXPECT_EQ(kind.value, 4);
}

TEST(KindNotifierTest, RunsOnThePublishingThread) {
    auto& hub = KindNotifier<Kind<2>>::GetInstance();
    std::thread::id ranOn;
    hub.Subscribe(0, [&ranOn](Kind<2>&) { ranOn = std::this_thread::get_id(); });
    std::thread::id publisher;
    std::thread thread([&] {
        publisher = std::this_thread::get_id();
        hub.Publish(0, {});
    });
    thread.join();
    EXPECT_EQ(ranOn, publisher);
}

TEST(KindNotifierTest, PublishingOnAChannelWithoutListenersMakesNoList) {
    auto& hub = KindNotifier<Kind<3>>::GetInstance();
    hub.Publish(7, {});
    EXPECT_EQ(hub.ChannelCount(), 0u);
    hub.Subscribe(7, [](Kind<3>&) {});
    EXPECT_EQ(hub.ChannelCount(), 1u);
}

TEST(KindNotifierTest, UnsubscribeTakesThatListenerOnly) {
    auto& hub = KindNotifier<Kind<4>>::GetInstance();
    std::string calls;
    hub.Subscribe(0, [&calls](Kind<4>&) { calls += 'a'; });
    const std::int64_t second = hub.Subscribe(0, [&calls](Kind<4>&) { calls += 'b'; });
    hub.Subscribe(0, [&calls](Kind<4>&) { calls += 'c'; });
    hub.Unsubscribe(0, second);
    hub.Unsubscribe(0, second);
    hub.Unsubscribe(9, second);
    hub.Publish(0, {});
    EXPECT_EQ(calls, "ac");
}

TEST(KindNotifierTest, AListenerMayPublishAndSubscribe) {
    auto& hub = KindNotifier<Kind<5>>::GetInstance();
    std::string calls;
    hub.Subscribe(1, [&calls](Kind<5>&) { calls += 'b'; });
    hub.Subscribe(0, [&](Kind<5>&) {
        hub.Subscribe(0, [&calls](Kind<5>&) { calls += 'c'; });
        hub.Publish(1, {});
        calls += 'a';
    });
    hub.Publish(0, {});
    EXPECT_EQ(calls, "ba");
}

TEST(KindNotifierTest, SubscribingWhileAnotherThreadPublishesIsSafe) {
    auto& hub = KindNotifier<Kind<6>>::GetInstance();
    std::promise<void> started;
    std::promise<void> stop;
    std::thread publisher([&hub, &started, stopped = stop.get_future()] {
        hub.Publish(0, {});
        started.set_value();
        while (stopped.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
            hub.Publish(0, {});
        }
    });
    started.get_future().wait();
    for (int i = 0; i < 200; ++i) {
        hub.Unsubscribe(0, hub.Subscribe(0, [](Kind<6>& kind) { ++kind.value; }));
    }
    stop.set_value();
    publisher.join();
    EXPECT_EQ(hub.ChannelCount(), 1u);
}

}  // namespace
