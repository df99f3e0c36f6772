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
    ExpectExtent(ExtentOf(PixelFormat::kYuy2, 16, 7, 1), 0, 16);
    ExpectExtent(ExtentOf(PixelFormat::kNv12, 7, 7, 5), 0, 7 * 8);
    ExpectExtent(ExtentOf(PixelFormat::kNv12, 8, 7, 5), 0, 8 * 8);
}

TEST(SourceExtent, TheLargestSizesDoNotOverflow) {
    ExpectExtent(ExtentOf(PixelFormat::kNv12, INT32_MIN, kMostSide, kMostSide), -0x80000000LL * (0x8000 + 0x4000 - 1),
                 0x8000);
    EXPECT_EQ(PackedFrameBytes(PixelFormat::kRgb32, kMostSide, kMostSide), 0x100000000LL);
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

TEST(PackedFrameBytes, OfTheUsualSizes) {
    EXPECT_EQ(PackedFrameBytes(PixelFormat::kRgb32, 1280, 720), 3686400);
    EXPECT_EQ(PackedFrameBytes(PixelFormat::kRgb24, 1280, 720), 2764800);
    EXPECT_EQ(PackedFrameBytes(PixelFormat::kYuy2, 1280, 720), 1843200);
    EXPECT_EQ(PackedFrameBytes(PixelFormat::kNv12, 1280, 720), 1382400);
}

}  // namespace
}  // namespace preview
