// When the client looks for a server again.
#include "suite/ipc/RetrySchedule.h"

#include <gmock/gmock.h>

namespace {

using suite::RetrySchedule;
using Ending = RetrySchedule::Ending;

// The delays of `count` endings in a row, each of a connection that lasted `lasted`.
std::vector<RetrySchedule::TimeMs> DelaysOf(RetrySchedule& schedule, Ending ending, RetrySchedule::TimeMs lasted,
                                            int count) {
    std::vector<RetrySchedule::TimeMs> delays;
    RetrySchedule::TimeMs now = 1000000;
    for (int i = 0; i < count; ++i) {
        schedule.Connected(now);
        now += lasted;
        schedule.Ended(now, ending);
        delays.push_back(schedule.NextTry() - now);
        now = schedule.NextTry();
    }
    return delays;
}

TEST(RetrySchedule, FirstTryIsDueAtOnce) {
    RetrySchedule schedule;
    EXPECT_EQ(schedule.NextTry(), 0u);
    EXPECT_TRUE(schedule.MayTryForMessage(0));
}

TEST(RetrySchedule, AbsentServerIsFoundWithinTwoSeconds) {
    RetrySchedule schedule;
    std::vector<RetrySchedule::TimeMs> delays;
    RetrySchedule::TimeMs now = 500;
    for (int i = 0; i < 8; ++i) {
        schedule.TryFailed(now);
        delays.push_back(schedule.NextTry() - now);
        EXPECT_TRUE(schedule.MayTryForMessage(now)) << "a message looks at once";
        now = schedule.NextTry();
    }
    EXPECT_THAT(delays, testing::ElementsAre(50, 100, 200, 400, 800, 1600, 2000, 2000));
}

TEST(RetrySchedule, LostConnectionThatLastedIsTriedAtOnceAgain) {
    RetrySchedule schedule;
    EXPECT_THAT(DelaysOf(schedule, Ending::kByServer, RetrySchedule::kSettledMs, 3), testing::ElementsAre(50, 50, 50));
    EXPECT_TRUE(schedule.Settled());
}

TEST(RetrySchedule, ShortConnectionsAreTriedMoreAndMoreRarely) {
    RetrySchedule schedule;
    EXPECT_THAT(DelaysOf(schedule, Ending::kByServer, 10, 7), testing::ElementsAre(50, 100, 200, 400, 800, 1600, 2000));
    EXPECT_FALSE(schedule.Settled());
}

TEST(RetrySchedule, MisbehavingServerIsLeftAlone) {
    RetrySchedule schedule;
    EXPECT_THAT(DelaysOf(schedule, Ending::kMisbehaved, 10, 7),
                testing::ElementsAre(1000, 2000, 4000, 8000, 16000, 30000, 30000));
    EXPECT_FALSE(schedule.MayTryForMessage(schedule.NextTry() - 1));
    EXPECT_TRUE(schedule.MayTryForMessage(schedule.NextTry()));
    schedule.TryFailed(schedule.NextTry());
    EXPECT_TRUE(schedule.MayTryForMessage(0)) << "it is gone, another may come";
}

TEST(RetrySchedule, ConnectionThatLastedForgivesTheServer) {
    RetrySchedule schedule;
    DelaysOf(schedule, Ending::kMisbehaved, 10, 5);
    EXPECT_THAT(DelaysOf(schedule, Ending::kMisbehaved, RetrySchedule::kSettledMs, 1), testing::ElementsAre(1000));
}

}  // namespace
