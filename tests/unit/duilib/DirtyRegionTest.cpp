#include "paint/DirtyRegion.h"

#include <gtest/gtest.h>

#include <random>

namespace DuiLib {
namespace {

TEST(DirtyRegion, FarApartStaysApart) {
    DirtyRegion region;
    region.Add({0, 0, 10, 10});
    region.Add({500, 400, 510, 410});
    EXPECT_EQ(region.Rects().size(), 2u);
}

TEST(DirtyRegion, OverlapAndNeighboursJoin) {
    DirtyRegion region;
    region.Add({0, 0, 10, 10});
    region.Add({5, 5, 20, 20});
    region.Add({20, 0, 30, 20});
    ASSERT_EQ(region.Rects().size(), 1u);
    EXPECT_EQ(region.Rects().front(), (Rect{0, 0, 30, 20}));
}

TEST(DirtyRegion, EmptyAddsNothing) {
    DirtyRegion region;
    region.Add({5, 5, 5, 20});
    EXPECT_TRUE(region.IsEmpty());
}

TEST(DirtyRegion, TakeEmpties) {
    DirtyRegion region;
    region.Add({0, 0, 10, 10});
    EXPECT_EQ(region.Take().size(), 1u);
    EXPECT_TRUE(region.IsEmpty());
}

TEST(DirtyRegion, EverythingAddedIsCoveredAndNothingTwice) {
    std::mt19937 random(1);
    for (int round = 0; round < 200; ++round) {
        DirtyRegion region;
        std::vector<Rect> added;
        for (int i = 0; i < 40; ++i) {
            const int x = static_cast<int>(random() % 900);
            const int y = static_cast<int>(random() % 600);
            const Rect r{x, y, x + 1 + static_cast<int>(random() % 60), y + 1 + static_cast<int>(random() % 60)};
            region.Add(r);
            added.push_back(r);
            ASSERT_LE(region.Rects().size(), DirtyRegion::kMaxRects);
        }
        const auto& rects = region.Rects();
        for (const Rect& r : added) {
            // Rectangles that overlap are joined, so each lies wholly in one.
            bool covered = false;
            for (const Rect& d : rects) {
                covered = covered || d.Union(r) == d;
            }
            ASSERT_TRUE(covered);
        }
        for (std::size_t i = 0; i < rects.size(); ++i) {
            for (std::size_t j = i + 1; j < rects.size(); ++j) {
                ASSERT_TRUE(rects[i].Intersect(rects[j]).IsEmpty());
            }
        }
    }
}

}  // namespace
}  // namespace DuiLib
