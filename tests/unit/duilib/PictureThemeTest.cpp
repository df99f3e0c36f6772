#include "theme/PictureTheme.h"

#include <gtest/gtest.h>

#include "paint/MaskTint.h"

namespace DuiLib {
namespace {

PictureTheme Example() {
    PictureTheme theme;
    theme.masks = {{L"checked", {1, 2}}, {L"a@2x", {3, 4}}};
    theme.otherMasks = {5, 6};
    theme.upright = {L"checked"};
    return theme;
}

TEST(PictureTheme, PicturesGoByTheirBareName) {
    const PictureTheme theme = Example();
    for (const wchar_t* path : {L"drawable/App/checked.png", L"drawable\\checked.png", L"checked.png", L"checked"}) {
        EXPECT_EQ(theme.ColorsOf(path), (MaskColors{1, 2}));
        EXPECT_TRUE(theme.IsUpright(path));
    }
    EXPECT_EQ(theme.ColorsOf(L"drawable/a@2x.png"), (MaskColors{3, 4}));
    EXPECT_FALSE(theme.IsUpright(L"drawable/a@2x.png"));
}

TEST(PictureTheme, AMaskWithoutColoursOfItsOwnHasTheCommonOnes) {
    const PictureTheme theme = Example();
    for (const wchar_t* path : {L"drawable/unchecked.png", L"checked/other.png", L"checked.png.png", L""}) {
        EXPECT_EQ(theme.ColorsOf(path), (MaskColors{5, 6}));
        EXPECT_FALSE(theme.IsUpright(path));
    }
}

TEST(PictureTheme, IsLightAndPlainAtFirst) {
    const PictureTheme theme;
    EXPECT_EQ(theme.families, std::vector<std::wstring>{L"drawable"});
    EXPECT_TRUE(theme.maskFamily.empty());
    EXPECT_EQ(theme.otherMasks, MaskColors{});
}

constexpr MaskColors kYellowOnBlue{0xFFFFFF00, 0xFF0000FF};

std::uint32_t Tinted(std::uint32_t pixel, const MaskColors& colors = kYellowOnBlue) {
    std::vector<std::uint32_t> pixels{pixel};
    TintMask(pixels, colors);
    return pixels.front();
}

TEST(MaskTint, WhiteAndBlackBecomeTheTwoColours) {
    EXPECT_EQ(Tinted(0xFFFFFFFF), 0xFFFFFF00u);
    EXPECT_EQ(Tinted(0xFF000000), 0xFF0000FFu);
    EXPECT_EQ(Tinted(0x00000000), 0x00000000u);
}

TEST(MaskTint, GreyIsAMixture) {
    EXPECT_EQ(Tinted(0xFF808080), 0xFF80807Fu);
    EXPECT_EQ(Tinted(0xFF404040), 0xFF4040BFu);
}

TEST(MaskTint, WhatIsTranslucentStaysSo) {
    // Premultiplied: half of a white that covers half.
    EXPECT_EQ(Tinted(0x80808080), 0x80808000u);
    EXPECT_EQ(Tinted(0x80000000), 0x80000080u);
    EXPECT_EQ(Tinted(0x80404040), 0x80404040u);
}

TEST(MaskTint, NoColourIsEverLargerThanItsAlpha) {
    for (std::uint32_t alpha = 0; alpha < 256; ++alpha) {
        for (std::uint32_t grey = 0; grey < 256; ++grey) {  // also greys that no premultiplied pixel has
            const std::uint32_t pixel = Tinted(alpha << 24 | grey << 16 | grey << 8 | grey, {0xFFFFFFFF, 0xFF7F8081});
            ASSERT_EQ(pixel >> 24, alpha);
            for (const int shift : {16, 8, 0}) {
                ASSERT_LE((pixel >> shift) & 0xFF, alpha);
            }
        }
    }
}

TEST(MaskTint, EveryPixelIsTinted) {
    std::vector<std::uint32_t> pixels{0xFFFFFFFF, 0xFF000000, 0};
    TintMask(pixels, kYellowOnBlue);
    EXPECT_EQ(pixels, (std::vector<std::uint32_t>{0xFFFFFF00, 0xFF0000FF, 0}));
}

}  // namespace
}  // namespace DuiLib
