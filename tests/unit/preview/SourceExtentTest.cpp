#include "preview/pixels/SourceExtent.h"

#include <gtest/gtest.h>

namespace preview {
namespace {

void ExpectExtent(const SourceExtent& extent, std::int64_t begin, std::int64_t end) {
    EXPECT_EQ(extent.begin, begin);
    EXPECT_EQ(extent.end, end);
}

TEST(SourceExtent, TopDown) {
    ExpectExtent(ExtentOf(PixelFormat::kRgb32, 2560, 640, 480), 0, 2560 * 480);
    ExpectExtent(ExtentOf(PixelFormat::kRgb24, 2000, 640, 480), 0, 2000 * 479 + 1920);
    ExpectExtent(ExtentOf(PixelFormat::kYuy2, 1280, 640, 480), 0, 1280 * 480);
    ExpectExtent(ExtentOf(PixelFormat::kNv12, 640, 640, 480), 0, 640 * 720);
}

TEST(SourceExtent, BottomUp) {
    ExpectExtent(ExtentOf(PixelFormat::kRgb24, -1920, 640, 480), -1920 * 479, 1920);
    ExpectExtent(ExtentOf(PixelFormat::kNv12, -640, 640, 480), -640 * 719, 640);
}

TEST(SourceExtent, OddSizesCountTheLastPairOnlyWhereTheRowHasRoomForIt) {
    ExpectExtent(ExtentOf(PixelFormat::kYuy2, 14, 7, 1), 0, 14);
    ExpectExtent(ExtentOf(PixelFormat::kYuy2, 15, 7, 1), 0, 14);
    ExpectExtent(ExtentOf(PixelFormat::kYuy2, 16, 7, 1), 0, 16);
    ExpectExtent(ExtentOf(PixelFormat::kNv12, 7, 7, 5), 0, 7 * 8);
    ExpectExtent(ExtentOf(PixelFormat::kNv12, 8, 7, 5), 0, 8 * 8);
}

TEST(SourceExtent, EvenRowsEndWithTheirPixelsHoweverFarApartTheyAre) {
    ExpectExtent(ExtentOf(PixelFormat::kYuy2, 1300, 640, 480), 0, 1300 * 479 + 1280);
    ExpectExtent(ExtentOf(PixelFormat::kNv12, 700, 640, 480), 0, 700 * 719 + 640);
}

TEST(SourceExtent, TheLargestSizesDoNotOverflow) {
    ExpectExtent(ExtentOf(PixelFormat::kNv12, INT32_MIN, kMostSide, kMostSide), -0x80000000LL * (0x8000 + 0x4000 - 1),
                 0x8000);
}

TEST(GaplessStride, RowsFollowEachOtherInTheSystemsUnits) {
    EXPECT_EQ(GaplessStride(PixelFormat::kRgb32, 161), 644);
    EXPECT_EQ(GaplessStride(PixelFormat::kRgb24, 160), 480);
    EXPECT_EQ(GaplessStride(PixelFormat::kRgb24, 161), 484);
    EXPECT_EQ(GaplessStride(PixelFormat::kRgb24, 163), 492);
    EXPECT_EQ(GaplessStride(PixelFormat::kYuy2, 160), 320);
    EXPECT_EQ(GaplessStride(PixelFormat::kYuy2, 161), 324);
    EXPECT_EQ(GaplessStride(PixelFormat::kNv12, 160), 160);
    EXPECT_EQ(GaplessStride(PixelFormat::kRgb32, kMostSide), 0x20000);
}

TEST(PackedRowBytes, HoldNothingButThePixels) {
    EXPECT_EQ(PackedRowBytes(PixelFormat::kRgb32, 161), 644);
    EXPECT_EQ(PackedRowBytes(PixelFormat::kRgb24, 161), 483);
    EXPECT_EQ(PackedRowBytes(PixelFormat::kYuy2, 161), 322);
    EXPECT_EQ(PackedRowBytes(PixelFormat::kNv12, 161), 161);
}

}  // namespace
}  // namespace preview
