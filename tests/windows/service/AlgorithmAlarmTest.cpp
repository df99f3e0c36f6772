// When the failure of the camera service's algorithm is told, and when it is left to others.
#include "service/AlgorithmAlarm.h"

#include "service/GlobalUtils.h"
#include "service/KindNotifier.h"
#include "tests/windows/service/ServiceTest.h"

namespace {

using GlobalUtils::MessageBoxKind;

class AlgorithmAlarmTest : public ServiceTest {
  protected:
    void SetUp() override {
        ServiceTest::SetUp();
        SetReady(true);
        id_ = Hub().Subscribe(GlobalUtils::kMessageBoxChannel, [this](const MessageBoxKind& kind) {
            told_ += kind == MessageBoxKind::kAlgorithmNotReady ? 1 : 0;
        });
    }
    void TearDown() override {
        Hub().Unsubscribe(GlobalUtils::kMessageBoxChannel, id_);
        ServiceTest::TearDown();
    }

    static KindNotifier<MessageBoxKind>& Hub() { return KindNotifier<MessageBoxKind>::GetInstance(); }
    static void Publish(MessageBoxKind kind) { Hub().Publish(GlobalUtils::kMessageBoxChannel, MessageBoxKind(kind)); }
    static void SetReady(bool ready) { Write(L"init_algorithm", ready ? 1 : 0); }

    int told_ = 0;

  private:
    std::int64_t id_ = 0;
};

TEST_F(AlgorithmAlarmTest, AFailureIsToldOnceUntilItIsOver) {
    AlgorithmAlarm alarm;
    alarm.Check();
    EXPECT_EQ(told_, 0);
    SetReady(false);
    alarm.Check();
    EXPECT_EQ(told_, 1);
    alarm.Check();
    EXPECT_EQ(told_, 1);
    SetReady(true);
    alarm.Check();
    SetReady(false);
    alarm.Check();
    EXPECT_EQ(told_, 2);
}

TEST_F(AlgorithmAlarmTest, WhatOthersHaveToldIsNotToldAgain) {
    AlgorithmAlarm alarm;
    SetReady(false);
    Publish(MessageBoxKind::kAlgorithmNotReady);
    ASSERT_EQ(told_, 1);
    alarm.Check();
    EXPECT_EQ(told_, 1);
}

TEST_F(AlgorithmAlarmTest, AnotherMessageDoesNotStandForIt) {
    AlgorithmAlarm alarm;
    SetReady(false);
    Publish(MessageBoxKind::kBackgroundGone);
    alarm.Check();
    EXPECT_EQ(told_, 1);
}

TEST_F(AlgorithmAlarmTest, WhatWasSoFromTheStartIsNotTold) {
    SetReady(false);
    AlgorithmAlarm alarm;
    alarm.Check();
    EXPECT_EQ(told_, 0);
}

}  // namespace
