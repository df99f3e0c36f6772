#include "preview/DeviceLoss.h"

#include <gtest/gtest.h>

namespace preview {
namespace {

// The n-th try of a loss, one each second.
void TryTimes(DeviceLoss& loss, int tries) {
    for (int i = 0; i < tries; ++i) {
        ASSERT_TRUE(loss.BeginTry(1'000'000 + 1000ULL * static_cast<unsigned>(i)));
    }
}

TEST(DeviceLoss, IsNoticedAndFound) {
    DeviceLoss loss;
    EXPECT_FALSE(loss.IsLost());
    loss.Notice();
    EXPECT_TRUE(loss.IsLost());
    loss.Find();
    EXPECT_FALSE(loss.IsLost());
    loss.Notice();
    loss.Present();
    EXPECT_FALSE(loss.IsLost());
}

TEST(DeviceLoss, ATryASecond) {
    DeviceLoss loss;
    EXPECT_TRUE(loss.BeginTry(0)) << "the first at once";
    EXPECT_FALSE(loss.BeginTry(0));
    EXPECT_FALSE(loss.BeginTry(999));
    EXPECT_TRUE(loss.BeginTry(1000));
    EXPECT_FALSE(loss.BeginTry(1999));
    EXPECT_TRUE(loss.BeginTry(5000));
    loss.Present();
    EXPECT_TRUE(loss.BeginTry(5001)) << "of the next loss";
}

TEST(DeviceLoss, EachFiveSecondsTheObjectIsNew) {
    for (int tries = 1; tries <= 30; ++tries) {
        DeviceLoss loss;
        TryTimes(loss, tries);
        EXPECT_EQ(loss.WantsNewObject(), tries > 1 && tries % 5 == 1) << tries;
    }
}

TEST(DeviceLoss, HalfAMinuteAtMost) {
    DeviceLoss loss;
    TryTimes(loss, 30);
    EXPECT_FALSE(loss.IsLastTry());
    EXPECT_TRUE(loss.BeginTry(2'000'000));
    EXPECT_TRUE(loss.IsLastTry());
    EXPECT_FALSE(loss.IsOver());
    loss.Find();
    EXPECT_TRUE(loss.BeginTry(3'000'000));
    EXPECT_TRUE(loss.IsOver()) << "found, and no frame came to the screen";
    loss.Present();
    EXPECT_TRUE(loss.BeginTry(4'000'000));
    EXPECT_FALSE(loss.IsLastTry());
    EXPECT_FALSE(loss.IsOver());
}

}  // namespace
}  // namespace preview
