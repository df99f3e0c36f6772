#include "service/WatchPacing.h"

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;
using WatchPacing::WaitAfterRound;

TEST(WatchPacingTest, GoesOnSoonAfterAChange) {
    EXPECT_EQ(WaitAfterRound(true, 5ms), WatchPacing::kSettle);
    EXPECT_EQ(WaitAfterRound(true, 48h), WatchPacing::kSettle);
}

TEST(WatchPacingTest, BacksOffWhenARoundEndsAtOnce) {
    EXPECT_EQ(WaitAfterRound(true, 0ns), WatchPacing::kBackOff);
    EXPECT_EQ(WaitAfterRound(true, 4999us), WatchPacing::kBackOff);
}

TEST(WatchPacingTest, BacksOffWhenARoundFails) {
    EXPECT_EQ(WaitAfterRound(false, 0ns), WatchPacing::kBackOff);
    EXPECT_EQ(WaitAfterRound(false, 1h), WatchPacing::kBackOff);
}

}  // namespace
