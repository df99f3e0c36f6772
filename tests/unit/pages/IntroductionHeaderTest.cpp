#include "pages/IntroductionHeader.h"

#include <gtest/gtest.h>

namespace {

TEST(IntroductionHeader, ShortTextsAreCentred) {
    // Tabs 84, 94, 74 and two gaps of 40: 332; the title's block is 100 + 56.
    const IntroductionHeaderLayout layout = LayOutIntroductionHeader({100, 80, 90, 70});
    EXPECT_EQ(layout.titleWidth, 100);
    EXPECT_EQ(layout.groupLeftPadding, (800 - 332) / 2 - 156);
    EXPECT_EQ(layout.firstWidth, 84);
    EXPECT_EQ(layout.secondWidth, 94);
    EXPECT_EQ(layout.thirdWidth, 74);
}

TEST(IntroductionHeader, TheSmallestDistanceThatIsUsedAsComputed) {
    // (800 - 332) / 2 - (T + 56) = 178 - T.
    EXPECT_EQ(LayOutIntroductionHeader({136, 80, 90, 70}).groupLeftPadding, 42);
    EXPECT_EQ(LayOutIntroductionHeader({137, 80, 90, 70}).groupLeftPadding, 41);
    EXPECT_EQ(LayOutIntroductionHeader({138, 80, 90, 70}).groupLeftPadding, 40);
    EXPECT_EQ(LayOutIntroductionHeader({139, 80, 90, 70}).groupLeftPadding, 40);
    EXPECT_EQ(LayOutIntroductionHeader({700, 80, 90, 70}).groupLeftPadding, 40);
}

TEST(IntroductionHeader, OddWidthsAreHalvedDownwards) {
    // Tabs of 333 in all: 467 / 2 is 233.
    EXPECT_EQ(LayOutIntroductionHeader({0, 81, 90, 70}).groupLeftPadding, 233 - 56);
    // Too wide by an odd number: -1 / 2 is 0, far below the least distance.
    EXPECT_EQ(LayOutIntroductionHeader({0, 300, 300, 109}).groupLeftPadding, 40);
}

TEST(IntroductionHeader, UpToTheLimitNothingIsNarrowed) {
    // 200 + 4, 100 + 4, 54 + 4 and 80 make 446.
    const IntroductionHeaderLayout layout = LayOutIntroductionHeader({50, 200, 100, 54});
    EXPECT_EQ(layout.firstWidth, 204);
    EXPECT_EQ(layout.secondWidth, 104);
    EXPECT_EQ(layout.thirdWidth, 58);
}

TEST(IntroductionHeader, BeyondTheLimitTheWidestIsNarrowed) {
    // 10 units more than the limit.
    const IntroductionHeaderLayout layout = LayOutIntroductionHeader({50, 210, 100, 54});
    EXPECT_EQ(layout.firstWidth, 204);
    EXPECT_EQ(layout.secondWidth, 104);
    EXPECT_EQ(layout.thirdWidth, 58);
}

TEST(IntroductionHeader, OthersThatAreAsWideAreNarrowedToo) {
    // 204 + 204 + 58 + 80 = 546, 100 too many.
    const IntroductionHeaderLayout layout = LayOutIntroductionHeader({50, 200, 200, 54});
    EXPECT_EQ(layout.firstWidth, 104);
    EXPECT_EQ(layout.secondWidth, 104);
    EXPECT_EQ(layout.thirdWidth, 58);
}

TEST(IntroductionHeader, NoTextsAtAll) {
    const IntroductionHeaderLayout layout = LayOutIntroductionHeader({});
    EXPECT_EQ(layout.titleWidth, 0);
    EXPECT_EQ(layout.groupLeftPadding, (800 - 92) / 2 - 56);
    EXPECT_EQ(layout.firstWidth, 4);
    EXPECT_EQ(layout.secondWidth, 4);
    EXPECT_EQ(layout.thirdWidth, 4);
}

// 446 in all are still centred.
TEST(IntroductionHeader, LargeTextsThatFitStandAsOthersDo) {
    const IntroductionHeaderLayout layout = LayOutIntroductionHeader({50, 200, 100, 54}, true);
    EXPECT_EQ(layout.groupLeftPadding, (800 - 446) / 2 - 106);
    EXPECT_EQ(layout.firstWidth, 204);
}

TEST(IntroductionHeader, LargeTextsAreNotNarrowedWhileARowHoldsThem) {
    // 1 beyond the limit; then as many as the row's 1000 with a gap behind each hold: 400 + 300 + 168 + 12 + 3 * 40.
    const IntroductionHeaderLayout layout = LayOutIntroductionHeader({50, 201, 100, 54}, true);
    EXPECT_EQ(layout.titleWidth, 50);
    EXPECT_EQ(layout.groupLeftPadding, 40);
    EXPECT_EQ(layout.firstWidth, 205);
    EXPECT_EQ(layout.secondWidth, 104);
    EXPECT_EQ(layout.thirdWidth, 58);
    EXPECT_EQ(LayOutIntroductionHeader({50, 400, 300, 168}, true).firstWidth, 404);
}

TEST(IntroductionHeader, LargeTextsThatNoRowHoldsShareOne) {
    const IntroductionHeaderLayout layout = LayOutIntroductionHeader({50, 400, 300, 169}, true);
    EXPECT_EQ(layout.groupLeftPadding, 40);
    EXPECT_EQ(layout.firstWidth, 1000 / 3 - 40);
    EXPECT_EQ(layout.secondWidth, 1000 / 3 - 40);
    EXPECT_EQ(layout.thirdWidth, 173);
}

}  // namespace
