#include "preview/ReadPause.h"

#include <gtest/gtest.h>

namespace preview {
namespace {

TEST(ReadPause, TwoAtOnceThenLongerAndLonger) {
    EXPECT_EQ(PauseBeforeReadMs(0), 0);
    EXPECT_EQ(PauseBeforeReadMs(1), 0);
    EXPECT_EQ(PauseBeforeReadMs(2), 0);
    EXPECT_EQ(PauseBeforeReadMs(3), 10);
    EXPECT_EQ(PauseBeforeReadMs(4), 20);
    EXPECT_EQ(PauseBeforeReadMs(11), 90);
    EXPECT_EQ(PauseBeforeReadMs(12), 100);
    EXPECT_EQ(PauseBeforeReadMs(13), 100);
    EXPECT_EQ(PauseBeforeReadMs(1'000'000), 100);
}

}  // namespace
}  // namespace preview
