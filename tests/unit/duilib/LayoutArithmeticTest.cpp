#include "layout/LayoutArithmetic.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <limits>
#include <random>

namespace DuiLib {
namespace {

using testing::ElementsAre;

LineItem Fixed(int px) {
    return {.wantedPx = px};
}

LineItem Fill(int minPx = 0, int maxPx = kUnlimitedPx) {
    return {.fill = true, .minPx = minPx, .maxPx = maxPx};
}

std::vector<LineSpan> Share(std::vector<LineItem> items, int room, int gap = 0) {
    return ShareLine(items, room, gap);
}

TEST(ShareLine, NothingInNothingOut) {
    EXPECT_THAT(Share({}, 100, 8), ElementsAre());
}

TEST(ShareLine, FillTakesWhatTheOthersLeave) {
    EXPECT_THAT(Share({Fixed(20), Fill(), Fixed(30)}, 100),
                ElementsAre(LineSpan{0, 20}, LineSpan{20, 50}, LineSpan{70, 30}));
}

TEST(ShareLine, GapsAndPaddingAreTakenOffFirst) {
    LineItem padded = Fill();
    padded.beforePx = 3;
    padded.afterPx = 4;
    EXPECT_THAT(Share({Fixed(20), padded, Fixed(30)}, 100, 5),
                ElementsAre(LineSpan{0, 20}, LineSpan{28, 33}, LineSpan{70, 30}));
}

TEST(ShareLine, EqualSharesToThePixel) {
    EXPECT_THAT(Share({Fill(), Fill(), Fill()}, 100), ElementsAre(LineSpan{0, 34}, LineSpan{34, 33}, LineSpan{67, 33}));
}

TEST(ShareLine, AMaximumGivesTheRestToTheOthers) {
    EXPECT_THAT(Share({Fill(0, 10), Fill(), Fill()}, 100),
                ElementsAre(LineSpan{0, 10}, LineSpan{10, 45}, LineSpan{55, 45}));
}

TEST(ShareLine, AMinimumIsTakenFromTheOthers) {
    EXPECT_THAT(Share({Fill(60), Fill(), Fill()}, 100),
                ElementsAre(LineSpan{0, 60}, LineSpan{60, 20}, LineSpan{80, 20}));
}

TEST(ShareLine, MinimaAndMaximaTogether) {
    // A share of 50: the minimum of 80 weighs 30, the maximum of 40 only 10, and after the minimum nobody reaches it.
    EXPECT_THAT(Share({Fill(80), Fill(0, 40)}, 100), ElementsAre(LineSpan{0, 80}, LineSpan{80, 20}));
}

TEST(ShareLine, TheMaximumIsStrongerThanTheMinimum) {
    EXPECT_THAT(Share({Fill(50, 0), Fill()}, 100), ElementsAre(LineSpan{0, 0}, LineSpan{0, 100}));
}

TEST(ShareLine, WhatDoesNotFitSticksOut) {
    EXPECT_THAT(Share({Fixed(80), Fill(), Fixed(80)}, 100),
                ElementsAre(LineSpan{0, 80}, LineSpan{80, 0}, LineSpan{80, 80}));
}

TEST(ShareLine, AnyNumbersGiveSpansWithinBounds) {
    std::mt19937 random(7);
    const auto number = [&] {
        static constexpr int kEdges[] = {0, 1, -1, 100, -100, 1'000'000, -1'000'000, kUnlimitedPx, 5'000'000};
        return kEdges[random() % std::size(kEdges)] + static_cast<int>(random() % 7) - 3;
    };
    for (int round = 0; round < 20'000; ++round) {
        std::vector<LineItem> items(random() % 9);
        for (LineItem& item : items) {
            item = {number(), random() % 2 == 0, number(), number(), number(), number()};
        }
        const int room = number();
        const int gap = number();
        const std::vector<LineSpan> spans = ShareLine(items, room, gap);
        ASSERT_EQ(spans.size(), items.size());
        for (std::size_t i = 0; i < spans.size(); ++i) {
            ASSERT_GE(spans[i].sizePx, 0);
            ASSERT_LE(spans[i].sizePx, std::max(0, items[i].maxPx));
            ASSERT_LE(std::abs(spans[i].startPx), kUnlimitedPx);
        }
        ASSERT_GE(LineLength(items, gap), 0);
    }
}

// Where there is room and nothing limits the fill items, not a pixel is left over.
TEST(ShareLine, FillItemsUseAllRoom) {
    for (int room = 0; room < 200; ++room) {
        for (int count = 1; count < 8; ++count) {
            const std::vector<LineItem> items(static_cast<std::size_t>(count), Fill());
            const std::vector<LineSpan> spans = ShareLine(items, room, 0);
            ASSERT_EQ(spans.back().startPx + spans.back().sizePx, room);
        }
    }
}

TEST(LineLength, CountsPaddingGapsAndLimits) {
    std::vector<LineItem> items{Fixed(20), Fixed(30)};
    items[0].beforePx = 2;
    items[1].afterPx = 3;
    items[1].maxPx = 25;
    EXPECT_EQ(LineLength(items, 5), 2 + 20 + 5 + 25 + 3);
    EXPECT_EQ(LineLength({}, 5), 0);
}

TEST(Tile, AsManyColumnsAsFit) {
    EXPECT_EQ(TileColumns(300, 60, 0, 0), 5);
    EXPECT_EQ(TileColumns(299, 60, 0, 0), 4);
    EXPECT_EQ(TileColumns(340, 60, 10, 0), 5);
    EXPECT_EQ(TileColumns(10, 60, 10, 0), 1);
    EXPECT_EQ(TileColumns(10, 0, 0, 0), 1);
    EXPECT_EQ(TileColumns(300, 60, 0, 3), 3);
}

TEST(Tile, RowsAreStarted) {
    EXPECT_EQ(TileRows(0, 5), 0);
    EXPECT_EQ(TileRows(1, 5), 1);
    EXPECT_EQ(TileRows(5, 5), 1);
    EXPECT_EQ(TileRows(6, 5), 2);
}

TEST(Tile, CellsInReadingOrder) {
    EXPECT_EQ(TileCell(0, 5, {60, 48}, 4, 2), (Rect{0, 0, 60, 48}));
    EXPECT_EQ(TileCell(6, 5, {60, 48}, 4, 2), (Rect{64, 50, 124, 98}));
    EXPECT_EQ(TileLength(3, 60, 4), 188);
    EXPECT_EQ(TileLength(0, 60, 4), 0);
}

TEST(Thumb, IsInProportion) {
    EXPECT_EQ(ThumbSpan(100, 400, 100, 0, 10), (LineSpan{0, 25}));
    EXPECT_EQ(ThumbSpan(100, 400, 100, 300, 10), (LineSpan{75, 25}));
    EXPECT_EQ(ThumbSpan(100, 400, 100, 150, 10), (LineSpan{38, 25}));
    EXPECT_EQ(ThumbSpan(100, 100'000, 100, 0, 24), (LineSpan{0, 24}));
    EXPECT_EQ(ThumbSpan(10, 400, 100, 300, 24), (LineSpan{0, 10}));
}

TEST(Thumb, DraggingToTheEndsReachesTheEnds) {
    EXPECT_EQ(ScrollAtThumb(-5, 100, 400, 100, 10), 0);
    EXPECT_EQ(ScrollAtThumb(75, 100, 400, 100, 10), 300);
    EXPECT_EQ(ScrollAtThumb(500, 100, 400, 100, 10), 300);
    EXPECT_EQ(ScrollAtThumb(5, 10, 400, 100, 24), 0) << "a track without a way";
}

TEST(Thumb, AnyNumbersStayWithinTheTrack) {
    constexpr int kMost = std::numeric_limits<int>::max(), kLeast = std::numeric_limits<int>::min();
    EXPECT_EQ(ThumbSpan(100, kMost, kLeast, 5, 10), (LineSpan{0, 10})) << "a page of less than nothing";
    EXPECT_EQ(ThumbSpan(100, kMost, kLeast, kMost, kLeast), (LineSpan{100, 0})) << "no thumb at the end";
    EXPECT_EQ(ThumbSpan(kMost, 100, -1, 0, -5).sizePx, 0);
    EXPECT_EQ(ScrollAtThumb(90, 100, kMost, kLeast, 10), kUnlimitedPx);
    EXPECT_EQ(ScrollAtThumb(kMost, 100, kLeast, kMost, 10), 0);
}

TEST(ScrollToSee, MovesAsLittleAsItCan) {
    EXPECT_EQ(ScrollToSee(50, 100, 60, 20), 50) << "in view";
    EXPECT_EQ(ScrollToSee(50, 100, 30, 20), 30) << "above";
    EXPECT_EQ(ScrollToSee(50, 100, 140, 20), 60) << "below";
    EXPECT_EQ(ScrollToSee(50, 100, 70, 200), 70) << "larger than the page: its start";
}

TEST(FittingDpi, IsTheScreensWhereTheWindowFits) {
    EXPECT_EQ(FittingDpi({1040, 604}, {1920, 1040}, 96), 96);
    EXPECT_EQ(FittingDpi({1040, 604}, {3840, 2040}, 288), 288);
    EXPECT_EQ(FittingDpi({1040, 604}, {1300, 755}, 120), 120) << "to the pixel";
    EXPECT_EQ(FittingDpi({1040, 604}, {5000, 5000}, 101), 101) << "a scale that the user typed";
}

TEST(FittingDpi, IsTheLargestSmallerStepElsewhere) {
    EXPECT_EQ(FittingDpi({1040, 604}, {1366, 718}, 120), 108);
    EXPECT_EQ(FittingDpi({1040, 604}, {1920, 1000}, 192), 156);
    EXPECT_EQ(FittingDpi({1040, 604}, {1280, 660}, 144), 96);
    EXPECT_EQ(FittingDpi({1040, 604}, {1299, 755}, 120), 108) << "a pixel too narrow";
    EXPECT_EQ(FittingDpi({1040, 604}, {1300, 754}, 120), 108) << "a pixel too low";
    EXPECT_EQ(FittingDpi({1040, 604}, {1200, 2000}, 113), 108);
}

TEST(FittingDpi, IsNotBelowSeventyTwo) {
    EXPECT_EQ(FittingDpi({1040, 604}, {640, 440}, 96), 72);
    EXPECT_EQ(FittingDpi({1040, 604}, {780, 453}, 288), 72);
    EXPECT_EQ(FittingDpi({1040, 604}, {0, 0}, 79), 72);
    EXPECT_EQ(FittingDpi({1040, 604}, {640, 440}, 64), 64) << "the screen's own is never made larger";
}

}  // namespace
}  // namespace DuiLib
