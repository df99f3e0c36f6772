#include "preview/pixels/MirrorPicture.h"

#include <gtest/gtest.h>

#include <vector>

namespace preview {
namespace {

std::vector<std::uint8_t> Numbered(std::size_t bytes) {
    std::vector<std::uint8_t> picture(bytes);
    for (std::size_t i = 0; i < bytes; ++i) {
        picture[i] = static_cast<std::uint8_t>(i * 7 + i / 251);
    }
    return picture;
}

// The rule in its plainest form: byte r*P + c*b + k changes places with byte r*P + P - (c+1)*b - q + k.
std::vector<std::uint8_t> Expected(std::vector<std::uint8_t> picture, unsigned pitch, unsigned width, unsigned height) {
    const unsigned pixel = pitch / width;
    const unsigned padding = pitch % width;
    for (unsigned r = 0; r < height; ++r) {
        for (unsigned c = 0; c < width / 2; ++c) {
            for (unsigned k = 0; k < pixel; ++k) {
                std::swap(picture[r * pitch + c * pixel + k],
                          picture[r * pitch + pitch - (c + 1) * pixel - padding + k]);
            }
        }
    }
    return picture;
}

TEST(MirrorPicture, SwapsTheFirstPixelWithTheLast) {
    std::vector<std::uint8_t> picture = Numbered(2560 * 2);
    const std::vector<std::uint8_t> before = picture;
    MirrorPicture(picture.data(), 2560, 640, 2);
    for (unsigned k = 0; k < 4; ++k) {
        EXPECT_EQ(picture[k], before[639 * 4 + k]);
        EXPECT_EQ(picture[639 * 4 + k], before[k]);
        EXPECT_EQ(picture[2560 + k], before[2560 + 639 * 4 + k]);
    }
}

TEST(MirrorPicture, LeavesTheRestOfTheRowAlone) {
    std::vector<std::uint8_t> picture = Numbered(2816 * 3);
    const std::vector<std::uint8_t> before = picture;
    MirrorPicture(picture.data(), 2816, 640, 3);
    for (unsigned row = 0; row < 3; ++row) {
        for (unsigned i = 2560; i < 2816; ++i) {
            EXPECT_EQ(picture[row * 2816 + i], before[row * 2816 + i]);
        }
        for (unsigned k = 0; k < 4; ++k) {
            EXPECT_EQ(picture[row * 2816 + k], before[row * 2816 + 639 * 4 + k]);
        }
    }
}

TEST(MirrorPicture, FollowsTheRuleForEveryPitch) {
    for (unsigned width = 1; width <= 9; ++width) {
        for (unsigned pitch = 1; pitch <= 64; ++pitch) {
            const std::vector<std::uint8_t> before = Numbered(std::size_t{pitch} * 3);
            std::vector<std::uint8_t> picture = before;
            MirrorPicture(picture.data(), pitch, width, 3);
            EXPECT_EQ(picture, Expected(before, pitch, width, 3)) << "pitch " << pitch << ", width " << width;
        }
    }
}

TEST(MirrorPicture, NothingToDoWithoutPixels) {
    std::vector<std::uint8_t> picture = Numbered(64);
    const std::vector<std::uint8_t> before = picture;
    MirrorPicture(picture.data(), 64, 0, 1);
    MirrorPicture(picture.data(), 64, 65, 1);
    MirrorPicture(picture.data(), 64, 8, 0);
    EXPECT_EQ(picture, before);
    EXPECT_EQ(BytesPerPixel(64, 0), 0U);
}

}  // namespace
}  // namespace preview
