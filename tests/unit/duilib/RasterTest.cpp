#include "paint/Raster.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <vector>

using namespace DuiLib;

namespace {

constexpr std::uint32_t kWhite = 0xFFFFFFFF, kBlack = 0xFF000000;

struct Picture {
    Picture(int width, int height, std::uint32_t color = kWhite)
        : size{width, height}, pixels(static_cast<size_t>(width) * static_cast<size_t>(height), color) {}
    PixelView View() { return {pixels.data(), size.cx, size.cy, size.cx}; }
    ConstPixelView ConstView() const { return {pixels.data(), size.cx, size.cy, size.cx, false}; }
    Rect All() const { return {0, 0, size.cx, size.cy}; }
    std::uint32_t At(int x, int y) const { return pixels[static_cast<size_t>(y * size.cx + x)]; }
    Size size;
    std::vector<std::uint32_t> pixels;
};

bool IsInRoundRect(int width, int height, int radius, double x, double y) {
    const double dx = std::max({radius - x, x - (width - radius), 0.0});
    const double dy = std::max({radius - y, y - (height - radius), 0.0});
    return dx * dx + dy * dy <= static_cast<double>(radius) * radius;
}

// Share of the pixel that lies within a rounded rectangle of that radius at 0,0, by many samples.
int SampledCoverage(int width, int height, int radius, int px, int py) {
    const auto inside = [&](double x, double y) { return IsInRoundRect(width, height, radius, x, y) ? 1 : 0; };
    // The shape is convex: a pixel whose corners are all inside is, too.
    if (inside(px, py) + inside(px + 1, py) + inside(px, py + 1) + inside(px + 1, py + 1) == 4) {
        return 255;
    }
    constexpr int kSamples = 64;
    int count = 0;
    for (int sy = 0; sy < kSamples; ++sy) {
        for (int sx = 0; sx < kSamples; ++sx) {
            count += inside(px + (sx + 0.5) / kSamples, py + (sy + 0.5) / kSamples);
        }
    }
    return static_cast<int>(std::lround(255.0 * count / (kSamples * kSamples)));
}

TEST(Raster, FillsExactlyTheRectangleWithinTheClip) {
    Picture picture(10, 8);
    FillRoundRect(picture.View(), {2, 1, 9, 20}, 0, kBlack, {0, 0, 8, 6});
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 10; ++x) {
            const bool inside = x >= 2 && x < 8 && y >= 1 && y < 6;
            EXPECT_EQ(picture.At(x, y), inside ? kBlack : kWhite) << x << "," << y;
        }
    }
}

TEST(Raster, BlendsTranslucentColoursAndKeepsThePixelsOpaque) {
    Picture picture(3, 1, 0xFF204060);
    FillRoundRect(picture.View(), {0, 0, 1, 1}, 0, 0x80FF0000, picture.All());
    FillRoundRect(picture.View(), {1, 0, 2, 1}, 0, 0x00FF0000, picture.All());
    EXPECT_EQ(picture.At(0, 0), 0xFF902030u);  // 32 + (255 - 32) * 128 / 255 = 144, 64 * 127 / 255 = 32, 96 … = 48
    EXPECT_EQ(picture.At(1, 0), 0xFF204060u);
}

TEST(Raster, CornersAreCoveredByTheAreaOfTheCircle) {
    for (const int radius : {1, 2, 3, 5, 8, 16, 33, 66}) {
        const int width = 2 * radius + 4, height = 2 * radius + 3;
        Picture picture(width, height);
        FillRoundRect(picture.View(), picture.All(), radius, kBlack, picture.All());
        int worst = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const int coverage = 255 - static_cast<int>(picture.At(x, y) & 0xFF);
                worst = std::max(worst, std::abs(coverage - SampledCoverage(width, height, radius, x, y)));
            }
        }
        EXPECT_LE(worst, 2) << "radius " << radius;
    }
}

TEST(Raster, AShapeIsTheSameWhenItIsPaintedInPieces) {
    Picture whole(40, 40), pieces(40, 40);
    const Rect rect{3, 4, 37, 35};
    FillRoundRect(whole.View(), rect, 9, 0x90205080, whole.All());
    StrokeRoundRect(whole.View(), rect, 9, 3, 0xFF102030, whole.All());
    for (int y = 0; y < 40; y += 7) {
        for (int x = 0; x < 40; x += 11) {
            const Rect clip{x, y, x + 11, y + 7};
            FillRoundRect(pieces.View(), rect, 9, 0x90205080, clip);
            StrokeRoundRect(pieces.View(), rect, 9, 3, 0xFF102030, clip);
        }
    }
    EXPECT_EQ(whole.pixels, pieces.pixels);
}

TEST(Raster, ALineIsTheDifferenceOfTwoShapes) {
    Picture picture(30, 20);
    StrokeRoundRect(picture.View(), picture.All(), 8, 2, kBlack, picture.All());
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 30; ++x) {
            const int outer = SampledCoverage(30, 20, 8, x, y);
            const bool innerRoom = x >= 2 && y >= 2 && x < 28 && y < 18;
            const int inner = innerRoom ? SampledCoverage(26, 16, 6, x - 2, y - 2) : 0;
            const int coverage = 255 - static_cast<int>(picture.At(x, y) & 0xFF);
            EXPECT_NEAR(coverage, outer - inner, 3) << x << "," << y;
        }
    }
}

TEST(Raster, AThickLineFillsAndAThinOneHasAHole) {
    Picture thick(6, 6), square(6, 6);
    StrokeRoundRect(thick.View(), thick.All(), 0, 3, kBlack, thick.All());
    EXPECT_THAT(thick.pixels, testing::Each(kBlack));
    StrokeRoundRect(square.View(), square.All(), 0, 1, kBlack, square.All());
    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 6; ++x) {
            const bool edge = x == 0 || y == 0 || x == 5 || y == 5;
            EXPECT_EQ(square.At(x, y), edge ? kBlack : kWhite);
        }
    }
}

TEST(Raster, ARadiusIsLimitedToHalfTheShorterSide) {
    Picture limited(12, 6), large(12, 6);
    FillRoundRect(limited.View(), limited.All(), 3, kBlack, limited.All());
    FillRoundRect(large.View(), large.All(), 1000, kBlack, large.All());
    EXPECT_EQ(limited.pixels, large.pixels);
}

TEST(Raster, BlendsAnImageByItsAlpha) {
    Picture target(4, 1, 0xFF646464);
    Picture image(4, 1);
    image.pixels = {0xFF123456, 0x00000000, 0x80800000, 0x80800000};
    BlendImage(target.View(), target.All(), image.ConstView(), 255, 0, {0, 0, 3, 1});
    EXPECT_EQ(target.At(0, 0), 0xFF123456u);
    EXPECT_EQ(target.At(1, 0), 0xFF646464u);
    EXPECT_EQ(target.At(2, 0), 0xFFB23232u);  // 128 + 100 * 127 / 255 = 178, 100 * 127 / 255 = 50
    EXPECT_EQ(target.At(3, 0), 0xFF646464u);  // clipped
}

TEST(Raster, AnImageFadesAndIsCutToRoundCorners) {
    Picture faded(1, 1, kBlack), image(1, 1, kWhite);
    BlendImage(faded.View(), faded.All(), image.ConstView(), 51, 0, faded.All());
    EXPECT_EQ(faded.At(0, 0), 0xFF333333u);

    Picture target(20, 20), black(20, 20, kBlack), shape(20, 20);
    BlendImage(target.View(), target.All(), black.ConstView(), 255, 6, target.All());
    FillRoundRect(shape.View(), shape.All(), 6, kBlack, shape.All());
    EXPECT_EQ(target.pixels, shape.pixels);
}

TEST(Raster, TheSmallerOfImageAndRectangleCounts) {
    Picture target(6, 6), image(3, 2, kBlack);
    BlendImage(target.View(), {1, 1, 6, 6}, image.ConstView(), 255, 0, target.All());
    int black = 0;
    for (const std::uint32_t pixel : target.pixels) {
        black += pixel == kBlack ? 1 : 0;
    }
    EXPECT_EQ(black, 6);
    EXPECT_EQ(target.At(1, 1), kBlack);
    EXPECT_EQ(target.At(3, 2), kBlack);
}

TEST(Raster, AnOpaqueImageIsCopied) {
    Picture target(20, 20), blended(20, 20), image(20, 20, 0xFF336699);
    ConstPixelView view = image.ConstView();
    BlendImage(blended.View(), blended.All(), view, 255, 5, {2, 3, 20, 20});
    view.opaque = true;
    BlendImage(target.View(), target.All(), view, 255, 5, {2, 3, 20, 20});
    EXPECT_EQ(target.pixels, blended.pixels);
    EXPECT_EQ(target.At(10, 10), 0xFF336699u);
    EXPECT_EQ(target.At(1, 10), kWhite);
}

TEST(Raster, EveryPremultipliedPixelBlendsExactly) {
    for (std::uint32_t alpha = 0; alpha < 256; ++alpha) {
        for (std::uint32_t color = 0; color <= alpha; color += 5) {
            for (std::uint32_t below = 0; below < 256; below += 15) {
                Picture target(1, 1, 0xFF000000 | below * 0x010101), image(1, 1, alpha << 24 | color * 0x010101);
                BlendImage(target.View(), target.All(), image.ConstView(), 255, 0, target.All());
                const auto expected = static_cast<std::uint32_t>(std::lround(color + below * (255 - alpha) / 255.0));
                ASSERT_EQ(target.At(0, 0), 0xFF000000 | expected * 0x010101) << alpha << " " << color << " " << below;
            }
        }
    }
}

TEST(Raster, AMaskHasACoverageForEachColour) {
    Picture target(3, 1, kWhite), mask(3, 1);
    mask.pixels = {0x00FF8000, 0x00000000, 0x00FFFFFF};
    BlendMask(target.View(), target.All(), mask.ConstView(), 0xFF000000, target.All());
    EXPECT_EQ(target.At(0, 0), 0xFF007FFFu);
    EXPECT_EQ(target.At(1, 0), kWhite);
    EXPECT_EQ(target.At(2, 0), kBlack);
    Picture half(1, 1, kWhite);
    mask.pixels = {0x00FFFFFF, 0, 0};
    BlendMask(half.View(), half.All(), mask.ConstView(), 0x80000000, half.All());
    EXPECT_EQ(half.At(0, 0), 0xFF7F7F7Fu);
}

TEST(Raster, MakesARectangleOpaque) {
    Picture target(3, 2, 0x00112233);
    MakeOpaque(target.View(), {1, -5, 9, 1});
    EXPECT_THAT(target.pixels,
                testing::ElementsAre(0x00112233, 0xFF112233, 0xFF112233, 0x00112233, 0x00112233, 0x00112233));
}

TEST(Raster, NothingIsDrawnOutsideTheViewOrForEmptyRectangles) {
    Picture target(4, 4);
    const Rect wide{-1000, -1000, 1000, 1000};
    FillRoundRect(target.View(), {-20, -20, -1, -1}, 4, kBlack, wide);
    FillRoundRect(target.View(), {2, 2, 2, 4}, 4, kBlack, wide);
    FillRoundRect(target.View(), {3, 3, 1, 1}, 4, kBlack, wide);
    StrokeRoundRect(target.View(), {4, 0, 9, 9}, 2, 2, kBlack, wide);
    BlendImage(target.View(), {0, 0, 4, 4}, ConstPixelView{}, 255, 2, wide);
    EXPECT_THAT(target.pixels, testing::Each(kWhite));
    FillRoundRect(target.View(), {-50, -50, 50, 50}, 10, kBlack, wide);
    EXPECT_THAT(target.pixels, testing::Each(kBlack));
}

}  // namespace
