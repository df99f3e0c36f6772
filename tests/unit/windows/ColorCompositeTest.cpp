// The shades were computed by hand, in single precision, from the rule that the suite's windows share.
#include "windows/ColorComposite.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>

namespace {

constexpr std::uint32_t kHover = 0x0C000000;
constexpr std::uint32_t kPressed = 0x1A000000;

TEST(ColorComposite, HoverAndPressOfTheAccentButtons) {
    EXPECT_EQ(CompositeColor(0xFF0A59F7, kHover), 0xFF0954EBU);
    EXPECT_EQ(CompositeColor(0xFF0954EB, kPressed), 0xFF084CD5U);
}

TEST(ColorComposite, ThePressedShadeIsLighterThanATextbookOne) {
    // Source-over would give 0xFF084FDD.
    EXPECT_EQ(CompositeColor(0xFF0A59F7, kPressed), 0xFF0950E0U);
}

TEST(ColorComposite, HoverAndPressOfTheCancelButton) {
    EXPECT_EQ(CompositeColor(0x0C000000, kHover), 0x17000000U);
    EXPECT_EQ(CompositeColor(0x0C000000, kPressed), 0x24000000U);
}

TEST(ColorComposite, BothTranslucent) {
    EXPECT_EQ(CompositeColor(0x80FF8040, 0x80204060), 0xBF8F5F50U);
}

TEST(ColorComposite, AnOpaqueOverlayStillLetsTheBaseThrough) {
    // The weights are divided twice, so that neither colour covers the other.
    EXPECT_EQ(CompositeColor(0xFF102030, 0xFFA0B0C0), 0xFF586878U);
    EXPECT_EQ(CompositeColor(0xFFFF0080, 0xFF00FF00), 0xFF7F7F3FU) << "in equal shares";
}

TEST(ColorComposite, NothingOverNothing) {
    EXPECT_EQ(CompositeColor(0, 0), 0U);
    EXPECT_EQ(CompositeColor(0x00FFFFFF, 0x00FFFFFF), 0U);
}

TEST(ColorComposite, OverNothingTheOverlayStays) {
    EXPECT_EQ(CompositeColor(0, kHover), kHover);
    EXPECT_EQ(CompositeColor(0, 0xFF123456), 0xFF123456U);
}

TEST(ColorComposite, ATransparentOverlayChangesNothing) {
    for (const std::uint32_t base : {0xFFFFFFFFU, 0xFF0A59F7U, 0xFF000000U})
        EXPECT_EQ(CompositeColor(base, 0), base);
}

TEST(ColorComposite, EachChannelGoesItsOwnWay) {
    const std::uint32_t red = CompositeColor(0xFFC00000, kPressed) >> 16 & 0xFF;
    const std::uint32_t green = CompositeColor(0xFF00C000, kPressed) >> 8 & 0xFF;
    const std::uint32_t blue = CompositeColor(0xFF0000C0, kPressed) & 0xFF;
    EXPECT_EQ(CompositeColor(0xFFC0C0C0, kPressed), 0xFF000000 | red << 16 | green << 8 | blue);
    EXPECT_EQ(red, green);
    EXPECT_EQ(green, blue);
}

}  // namespace
