#include "service/pictures/ThumbnailMaker.h"

#include <gmock/gmock.h>

using pictures::ThumbnailMaker;

namespace {

using testing::Each;

struct Shape {
    std::size_t width, height, thumbnailWidth, thumbnailHeight;
};

TEST(ThumbnailMaker, EveryShapeBecomesACell) {
    for (const Shape& shape : {Shape{4096, 4096, 156, 96},
                               {4096, 10, 16, 10},
                               {10, 4096, 10, 6},
                               {1, 1, 1, 1},
                               {157, 97, 156, 96},
                               {156, 96, 156, 96},
                               {320, 200, 156, 96}}) {
        ThumbnailMaker maker(shape.width, shape.height);
        EXPECT_EQ(maker.Width(), shape.thumbnailWidth) << shape.width << " x " << shape.height;
        EXPECT_EQ(maker.Height(), shape.thumbnailHeight) << shape.width << " x " << shape.height;
        const std::vector<std::uint32_t> band(shape.width * 7, 0x00336699);
        for (std::size_t top = 0; top < shape.height; top += 7)
            maker.AddRows(top, std::min<std::size_t>(7, shape.height - top), band.data());
        EXPECT_EQ(maker.Pixels().size(), maker.Width() * maker.Height());
        EXPECT_THAT(maker.Pixels(), Each(0xFF336699));
    }
}

TEST(ThumbnailMaker, TheSidesOfAWidePictureAreLeftOut) {
    // Black sides, white middle.
    ThumbnailMaker maker(600, 96);
    std::vector<std::uint32_t> row(600, 0xFF000000);
    std::fill(row.begin() + 222, row.begin() + 378, 0xFFFFFFFF);
    for (std::size_t y = 0; y < 96; ++y)
        maker.AddRows(y, 1, row.data());
    EXPECT_THAT(maker.Pixels(), Each(0xFFFFFFFF));
}

TEST(ThumbnailMaker, APixelIsTheMeanOfThoseItStandsFor) {
    ThumbnailMaker maker(312, 192);
    std::vector<std::uint32_t> rows(312 * 2);
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i] = i % 2 == 0 ? 0x00204060 : 0x00406080;
    for (std::size_t y = 0; y < 192; y += 2)
        maker.AddRows(y, 2, rows.data());
    EXPECT_THAT(maker.Pixels(), Each(0xFF305070));
}

}  // namespace
