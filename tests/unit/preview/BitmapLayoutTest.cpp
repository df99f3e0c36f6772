#include "preview/BitmapLayout.h"

#include <gtest/gtest.h>

namespace preview {
namespace {

TEST(BitmapLayout, TheStoredDepthFollowsTheDisplay) {
    EXPECT_EQ(StoredDepth(0), 1);
    EXPECT_EQ(StoredDepth(1), 1);
    EXPECT_EQ(StoredDepth(2), 4);
    EXPECT_EQ(StoredDepth(4), 4);
    EXPECT_EQ(StoredDepth(5), 8);
    EXPECT_EQ(StoredDepth(8), 8);
    EXPECT_EQ(StoredDepth(16), 24);
    EXPECT_EQ(StoredDepth(32), 24);
}

TEST(BitmapLayout, RowsEndAtFourBytes) {
    EXPECT_EQ(StoredPixelBytes(100, 50, 24), 15000u);
    EXPECT_EQ(StoredPixelBytes(1, 1, 24), 4u);
    EXPECT_EQ(StoredPixelBytes(33, 2, 1), 16u);
    EXPECT_EQ(StoredPixelBytes(9, 3, 4), 24u);
    EXPECT_EQ(StoredPixelBytes(0xFFFFFFFF, 1, 24), 12884901888u);
}

}  // namespace
}  // namespace preview
