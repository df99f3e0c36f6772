#include "paint/ImageScale.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>

using namespace DuiLib;
using testing::Each;

namespace {

using Pixels = std::vector<std::uint32_t>;

RowReader ReaderOf(const Pixels& pixels, int width) {
    return [&pixels, width](int top, int rows, std::uint32_t* out) {
        std::copy_n(pixels.begin() + static_cast<std::ptrdiff_t>(top) * width,
                    static_cast<std::ptrdiff_t>(rows) * width, out);
        return true;
    };
}

Pixels Scaled(const Pixels& pixels, Size source, Size target) {
    return ScaleRows(ReaderOf(pixels, source.cx), source, target);
}

int Channel(std::uint32_t pixel, int shift) {
    return static_cast<int>((pixel >> shift) & 0xFF);
}

TEST(ImageScale, TheSameSizeIsACopy) {
    const Pixels pixels{0xFF010203, 0x80402010, 0x00000000, 0xFFFFFFFF, 0x01010101, 0xFF000000};
    EXPECT_EQ(Scaled(pixels, {3, 2}, {3, 2}), pixels);
}

TEST(ImageScale, OneColourStaysAtEverySize) {
    const Pixels pixels(37 * 23, 0x80402010);
    for (const Size target : {Size{1, 1}, Size{5, 3}, Size{36, 22}, Size{74, 46}, Size{38, 200}, Size{100, 2}}) {
        const Pixels scaled = Scaled(pixels, {37, 23}, target);
        EXPECT_EQ(scaled.size(), static_cast<size_t>(target.cx) * static_cast<size_t>(target.cy));
        EXPECT_THAT(scaled, Each(0x80402010)) << target.cx << " x " << target.cy;
    }
}

TEST(ImageScale, ARampStaysARamp) {
    Pixels ramp;
    for (int x = 0; x < 256; ++x) {
        ramp.push_back(0xFF000000u | static_cast<std::uint32_t>(x) * 0x010101u);
    }
    for (const int width : {16, 64, 100, 400}) {
        const Pixels scaled = Scaled(ramp, {256, 1}, {width, 1});
        for (int x = 2; x < width - 2; ++x) {
            const double expected = (x + 0.5) * 256.0 / width - 0.5;
            EXPECT_NEAR(Channel(scaled[static_cast<size_t>(x)], 0), expected, 1.0) << width << ": " << x;
        }
    }
}

TEST(ImageScale, ShrinkingAverages) {
    Pixels checks;
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            checks.push_back((x + y) % 2 == 0 ? 0xFFFFFFFF : 0xFF000000);
        }
    }
    for (const std::uint32_t pixel : Scaled(checks, {64, 64}, {8, 8})) {
        EXPECT_NEAR(Channel(pixel, 0), 127, 2);
    }
}

TEST(ImageScale, ColourNeverExceedsAlpha) {
    Pixels edges;
    for (int i = 0; i < 12 * 12; ++i) {
        // Black, white, glass and nothing, in blocks: colours overshoot where the alpha does not.
        constexpr std::uint32_t kKinds[] = {0xFF000000, 0xFFFFFFFF, 0x80808080, 0x00000000, 0x80000000};
        edges.push_back(kKinds[(i / 3 + i / 36 * 2) % 5]);
    }
    for (const Size target : {Size{29, 31}, Size{7, 5}}) {
        for (const std::uint32_t pixel : Scaled(edges, {12, 12}, target)) {
            for (const int shift : {0, 8, 16}) {
                EXPECT_LE(Channel(pixel, shift), Channel(pixel, 24));
            }
        }
    }
}

TEST(ImageScale, MirroredPicturesScaleToMirroredPictures) {
    Pixels pixels;
    for (int i = 0; i < 50 * 30; ++i) {
        pixels.push_back(0xFF000000u | static_cast<std::uint32_t>(std::rand()) % 0x1000000u);
    }
    Pixels mirrored = pixels;
    MirrorRows(mirrored, {50, 30});
    for (const Size target : {Size{20, 11}, Size{77, 60}}) {
        Pixels expected = Scaled(pixels, {50, 30}, target);
        MirrorRows(expected, target);
        const Pixels actual = Scaled(mirrored, {50, 30}, target);
        for (size_t i = 0; i < actual.size(); ++i) {
            EXPECT_NEAR(Channel(actual[i], 8), Channel(expected[i], 8), 1);
        }
    }
}

TEST(ImageScale, LargePicturesAreReadInBands) {
    int largest = 0, next = 0;
    const Size source{2000, 1500};
    const auto read = [&](int top, int rows, std::uint32_t* out) {
        EXPECT_EQ(top, next);
        next = top + rows;
        largest = std::max(largest, rows);
        std::fill_n(out, static_cast<size_t>(rows) * 2000, 0xFF336699);
        return true;
    };
    EXPECT_THAT(ScaleRows(read, source, {52, 32}), Each(0xFF336699));
    EXPECT_EQ(next, 1500);
    EXPECT_LT(largest, 100);
}

TEST(ImageScale, GivesNothingForWhatCannotBeRead) {
    int calls = 0;
    const auto failing = [&](int, int, std::uint32_t*) { return ++calls < 2; };
    EXPECT_TRUE(ScaleRows(failing, {2000, 1500}, {10, 10}).empty());
    EXPECT_EQ(calls, 2);
    EXPECT_TRUE(ScaleRows(failing, {0, 5}, {10, 10}).empty());
    EXPECT_TRUE(ScaleRows(failing, {5, 5}, {10, 0}).empty());
}

TEST(ImageScale, PartsStayWithinTheirRectangles) {
    Pixels source(10 * 10, 0xFF00FF00);
    for (int y = 2; y < 5; ++y) {
        for (int x = 3; x < 7; ++x) {
            source[static_cast<size_t>(y * 10 + x)] = 0xFFFF0000;
        }
    }
    Pixels target(20 * 20, 0xFF0000FF);
    ScalePart({source.data(), 10, 10, 10}, {3, 2, 7, 5}, {target.data(), 20, 20, 20}, {5, 6, 15, 16});
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 20; ++x) {
            const bool inside = Rect{5, 6, 15, 16}.Contains({x, y});
            EXPECT_EQ(target[static_cast<size_t>(y * 20 + x)], inside ? 0xFFFF0000 : 0xFF0000FF);
        }
    }
}

}  // namespace
