#include "pages/GalleryRows.h"

#include <gtest/gtest.h>

namespace {

void ExpectHeights(int count, int group, int section) {
    const auto height = GalleryHeightFor(count);
    ASSERT_TRUE(height) << count;
    EXPECT_EQ(height->groupMinHeight, group) << count;
    EXPECT_EQ(height->sectionHeight, section) << count;
}

TEST(GalleryRows, TheBuiltInEntriesFillThreeRows) {
    ExpectHeights(15, 160, 220);
}

TEST(GalleryRows, ANewRowBeginsWithTheSixthEntry) {
    ExpectHeights(1, 64, 124);
    ExpectHeights(6, 112, 172);
    ExpectHeights(16, 208, 268);
}

TEST(GalleryRows, ARowThatHasJustClosedNeedsNoNextOne) {
    ExpectHeights(0, 16, 76);
    ExpectHeights(5, 64, 124);
    ExpectHeights(20, 208, 268);
}

TEST(GalleryRows, WithinARowTheHeightStays) {
    for (int count = 0; count < 60; ++count) {
        const bool atAnEnd = count % 5 <= 1;
        EXPECT_EQ(GalleryHeightFor(count).has_value(), atAnEnd) << count;
    }
}

TEST(GalleryRows, AddingAndRemovingGiveTheSameHeightsAtARowsEnds) {
    // One more entry than full rows is as high as one row more that is full.
    for (int rows = 0; rows < 10; ++rows) {
        const auto begun = GalleryHeightFor(rows * 5 + 1);
        const auto closed = GalleryHeightFor((rows + 1) * 5);
        ASSERT_TRUE(begun && closed);
        EXPECT_EQ(begun->groupMinHeight, closed->groupMinHeight);
        EXPECT_EQ(begun->sectionHeight, closed->sectionHeight);
    }
}

TEST(GalleryRows, AllCustomBackgrounds) {
    ExpectHeights(46, 496, 556);  // the one with which the tenth row begins
    EXPECT_FALSE(GalleryHeightFor(15 + 32));
}

}  // namespace
