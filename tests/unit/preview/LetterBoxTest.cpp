#include "preview/pixels/LetterBox.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>

namespace preview {
namespace {

constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();

void ExpectBox(PictureSize size, const PictureRect& target, const PictureRect& expected) {
    const PictureRect box = LetterBox(size, target);
    EXPECT_EQ(box.left, expected.left);
    EXPECT_EQ(box.top, expected.top);
    EXPECT_EQ(box.right, expected.right);
    EXPECT_EQ(box.bottom, expected.bottom);
}

TEST(ScaleRounded, RoundsHalvesAwayFromZero) {
    EXPECT_EQ(ScaleRounded(5, 1, 2), 3);
    EXPECT_EQ(ScaleRounded(-5, 1, 2), -3);
    EXPECT_EQ(ScaleRounded(5, -1, 2), -3);
    EXPECT_EQ(ScaleRounded(5, 1, -2), -3);
    EXPECT_EQ(ScaleRounded(-5, 1, -2), 3);
    EXPECT_EQ(ScaleRounded(4, 1, 3), 1);
    EXPECT_EQ(ScaleRounded(5, 1, 3), 2);
    EXPECT_EQ(ScaleRounded(0, 7, 3), 0);
}

TEST(ScaleRounded, GivesMinusOneWhenThereIsNoResult) {
    EXPECT_EQ(ScaleRounded(1, 1, 0), -1);
    EXPECT_EQ(ScaleRounded(kMax, 2, 1), -1);
    EXPECT_EQ(ScaleRounded(kMin, 2, 1), -1);
    EXPECT_EQ(ScaleRounded(kMax, kMax, kMax), kMax);
    EXPECT_EQ(ScaleRounded(kMin, kMin, kMin), kMin);
}

TEST(CorrectAspect, SquarePixelsChangeNothing) {
    const PictureSize size = CorrectAspect({640, 480}, 7, 7);
    EXPECT_EQ(size.width, 640);
    EXPECT_EQ(size.height, 480);
}

TEST(CorrectAspect, WidePixelsWidenAndTallPixelsHeighten) {
    PictureSize size = CorrectAspect({640, 480}, 4, 3);
    EXPECT_EQ(size.width, 853);
    EXPECT_EQ(size.height, 480);
    size = CorrectAspect({640, 480}, 3, 4);
    EXPECT_EQ(size.width, 640);
    EXPECT_EQ(size.height, 640);
}

TEST(CorrectAspect, ARatioWithoutMeaningChangesNothing) {
    for (const auto& [numerator, denominator] :
         {std::pair{0U, 0U}, {0U, 1U}, {1U, 0U}, {0xFFFFFFFFU, 1U}, {1U, 0x7FFFFFFFU}, {0xFFFFFFFFU, 0xFFFFFFFEU}}) {
        const PictureSize size = CorrectAspect({640, 480}, numerator, denominator);
        EXPECT_EQ(size.width, 640);
        EXPECT_EQ(size.height, 480);
    }
}

TEST(CorrectAspect, ThePartsMayBeAsLargeAsANumberCanBe) {
    EXPECT_EQ(CorrectAspect({640, 480}, 0x7FFFFFFFU, 0x3FFFFFFFU).width, 1280);
    EXPECT_EQ(CorrectAspect({640, 480}, 0x3FFFFFFFU, 0x7FFFFFFFU).height, 960);
}

TEST(LetterBox, TheSameShapeFillsTheWindow) {
    ExpectBox({1280, 720}, {0, 0, 1920, 1080}, {0, 0, 1920, 1080});
    ExpectBox({1280, 720}, {0, 0, 640, 360}, {0, 0, 640, 360});
}

TEST(LetterBox, AWiderWindowGetsBarsLeftAndRight) {
    ExpectBox({640, 480}, {0, 0, 598, 354}, {63, 0, 535, 354});
    ExpectBox({640, 480}, {0, 0, 599, 354}, {63, 0, 535, 354});  // the odd column is on the right
}

TEST(LetterBox, ATallerWindowGetsBarsAboveAndBelow) {
    ExpectBox({1280, 720}, {0, 0, 400, 400}, {0, 87, 400, 312});
}

TEST(LetterBox, TheTargetNeedNotStartAtZero) {
    ExpectBox({100, 100}, {10, 20, 210, 120}, {60, 20, 160, 120});
}

TEST(LetterBox, AnEmptyWindowGetsAnEmptyBox) {
    ExpectBox({640, 480}, {0, 0, 0, 0}, {0, 0, 0, 0});
}

// Scaled to the window's height it is just as wide; scaled to the width it would be twice as high.
TEST(LetterBox, APictureThatIsRoundedToTheWindowsWidthKeepsTheHeight) {
    ExpectBox({1, 100}, {0, 0, 1, 50}, {0, 0, 1, 50});
}

// A camera may claim pixels of any shape.
TEST(LetterBox, APictureThatIsAsGoodAsALineStaysWithinTheWindow) {
    ExpectBox({2000000000, 19}, {10, 20, 510, 320}, {10, 170, 510, 170});
    ExpectBox({19, 2000000000}, {10, 20, 510, 320}, {260, 20, 260, 320});
}

TEST(LetterBox, TheBoxStaysWithinTheWindowAndIsCentred) {
    for (std::int32_t width = 1; width < 70; ++width) {
        for (std::int32_t height = 1; height < 70; ++height) {
            const PictureRect target = {0, 0, 53, 37};
            const PictureRect box = LetterBox({width, height}, target);
            EXPECT_GE(box.left, 0);
            EXPECT_GE(box.top, 0);
            EXPECT_LE(box.right, 53);
            EXPECT_LE(box.bottom, 37);
            EXPECT_LE(std::abs(box.left - (53 - box.right)), 1);
            EXPECT_LE(std::abs(box.top - (37 - box.bottom)), 1);
            EXPECT_TRUE(box.right - box.left == 53 || box.bottom - box.top == 37);
        }
    }
}

}  // namespace
}  // namespace preview
