#include "theme/ColorTable.h"

#include <gmock/gmock.h>

namespace DuiLib {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

constexpr ColorUse kUses[] = {ColorUse::kGround, ColorUse::kText, ColorUse::kLink, ColorUse::kLine, ColorUse::kFill};

// Each colour of the system has another value: its number in the enumeration.
SystemColors Numbered() {
    SystemColors colors{};
    for (std::size_t i = 1; i < colors.size(); ++i) {
        colors[i] = 0xFF000000u + static_cast<std::uint32_t>(i);
    }
    return colors;
}

std::uint32_t NumberOf(SystemColor color) {
    return Numbered()[static_cast<std::size_t>(color)];
}

TEST(Color, IsANumberOrANameOrNone) {
    EXPECT_TRUE(Color().IsNone());
    EXPECT_TRUE(Color(0).IsNone());
    EXPECT_FALSE(Color(0x01000000).IsNone());
    EXPECT_FALSE(Color(0x01000000).IsNamed());
    EXPECT_EQ(Color(0xFF102030).Number(), 0xFF102030u);
    EXPECT_EQ(Color(0xFF102030).Row(), -1);
    EXPECT_TRUE(Color::OfRow(0).IsNamed());
    EXPECT_FALSE(Color::OfRow(0).IsNone());
    EXPECT_EQ(Color::OfRow(7).Row(), 7);
    EXPECT_EQ(Color::OfRow(7).Number(), 0u);
    EXPECT_NE(Color::OfRow(7), Color::OfRow(6));
    EXPECT_NE(Color(1), Color(2));
    EXPECT_EQ(Color(1), Color(1));
}

TEST(ColorTable, NumbersAreThemselvesInLightAndDark) {
    const ColorTable table;
    for (const ColorUse use : kUses) {
        for (const ThemeKind kind : {ThemeKind::kLight, ThemeKind::kDark}) {
            EXPECT_EQ(table.Painted(Color(0x12345678), use, kind, Numbered()), 0x12345678u);
            EXPECT_EQ(table.Painted(Color(), use, kind, Numbered()), 0u);
        }
    }
    EXPECT_EQ(table.Number(Color(0x12345678), true), 0x12345678u);
}

TEST(ColorTable, NoNumberReachesTheScreenInAContrastTheme) {
    const ColorTable table;
    const auto painted = [&](std::uint32_t argb, ColorUse use) {
        return table.Painted(Color(argb), use, ThemeKind::kContrast, Numbered());
    };
    EXPECT_EQ(painted(0xFF123456, ColorUse::kGround), NumberOf(SystemColor::kWindow));
    EXPECT_EQ(painted(0xFE123456, ColorUse::kGround), 0u);  // a tint
    EXPECT_EQ(painted(0x01123456, ColorUse::kText), NumberOf(SystemColor::kWindowText));
    EXPECT_EQ(painted(0xFF123456, ColorUse::kLink), NumberOf(SystemColor::kHotLight));
    EXPECT_EQ(painted(0xFF123456, ColorUse::kLine), NumberOf(SystemColor::kWindowText));
    EXPECT_EQ(painted(0xFF123456, ColorUse::kFill), NumberOf(SystemColor::kHighlight));
    for (const ColorUse use : kUses) {
        EXPECT_EQ(painted(0x00123456, use), 0u);
    }
}

TEST(ColorTable, ANameHasAValueInEachTheme) {
    ColorTable table;
    table.Set(L"mine", {0xFF000001, 0xFF000002, SystemColor::kGrayText});
    const std::optional<Color> mine = table.Find(L"mine");
    ASSERT_TRUE(mine);
    for (const ColorUse use : kUses) {
        EXPECT_EQ(table.Painted(*mine, use, ThemeKind::kLight, Numbered()), 0xFF000001u);
        EXPECT_EQ(table.Painted(*mine, use, ThemeKind::kDark, Numbered()), 0xFF000002u);
        EXPECT_EQ(table.Painted(*mine, use, ThemeKind::kContrast, Numbered()), NumberOf(SystemColor::kGrayText));
    }
    EXPECT_EQ(table.Number(*mine, false), 0xFF000001u);
    EXPECT_EQ(table.Number(*mine, true), 0xFF000002u);
    table.Set(L"mine", {0xFF000003, 0xFF000004, SystemColor::kNone});
    EXPECT_EQ(table.Find(L"mine"), mine);
    EXPECT_EQ(table.Number(*mine, true), 0xFF000004u);
    EXPECT_EQ(table.Painted(*mine, ColorUse::kText, ThemeKind::kContrast, Numbered()), 0u);
}

TEST(ColorTable, KnowsItsOwnNamesFromTheBeginning) {
    const ColorTable table;
    const std::optional<Color> text = table.Find(L"text");
    ASSERT_TRUE(text);
    EXPECT_EQ(table.Number(*text, false), 0xFF1B1F27u);
    EXPECT_EQ(table.Number(*text, true), 0xFF1B1F27u);
    EXPECT_EQ(table.Painted(*text, ColorUse::kText, ThemeKind::kContrast, Numbered()),
              NumberOf(SystemColor::kWindowText));
    EXPECT_EQ(table.Find(L"Text"), std::nullopt);
    EXPECT_EQ(table.Find(L""), std::nullopt);
    EXPECT_EQ(table.Find(L"#FF000000"), std::nullopt);
}

// What the library falls back to where the themes' file is missing.
TEST(ColorTable, EachOfItsNamesHasItsColours) {
    struct Expected {
        const wchar_t* name;
        std::uint32_t light;
        SystemColor contrast;
    };
    constexpr Expected kExpected[] = {
        {L"window", 0xFFF1F3F8, SystemColor::kWindow},
        {L"dialog", 0xFFFFFFFF, SystemColor::kWindow},
        {L"card", 0xFFFFFFFF, SystemColor::kWindow},
        {L"hint", 0xFFFFFFFF, SystemColor::kWindow},
        {L"mask", 0x66000000, SystemColor::kNone},
        {L"placeholder", 0xFFE6EAF2, SystemColor::kWindow},
        {L"windowborder", 0xFFD5DAE3, SystemColor::kWindowText},
        {L"cardborder", 0xFFE1E5EC, SystemColor::kWindowText},
        {L"hintborder", 0xFFC9D0DC, SystemColor::kWindowText},
        {L"controlborder", 0x00000000, SystemColor::kBtnText},
        {L"linkborder", 0x00000000, SystemColor::kWindowText},
        {L"focus", 0xFF0A59F7, SystemColor::kWindowText},
        {L"text", 0xFF1B1F27, SystemColor::kWindowText},
        {L"textsecondary", 0xFF5E6673, SystemColor::kWindowText},
        {L"textdisabled", 0xFF9AA1AD, SystemColor::kGrayText},
        {L"link", 0xFF0A59F7, SystemColor::kHotLight},
        {L"linkhover", 0xFF0847C5, SystemColor::kHotLight},
        {L"accenttext", 0xFF0A59F7, SystemColor::kWindowText},
        {L"accent", 0xFF0A59F7, SystemColor::kHighlight},
        {L"accenthover", 0xFF0950DE, SystemColor::kHighlight},
        {L"accentpressed", 0xFF0847C5, SystemColor::kHighlight},
        {L"onaccent", 0xFFFFFFFF, SystemColor::kHighlightText},
        {L"mark", 0xFF0A59F7, SystemColor::kHighlight},
        {L"track", 0xFFD9DEE7, SystemColor::kWindowText},
        {L"button", 0x0C000000, SystemColor::kBtnFace},
        {L"buttontext", 0xFF1B1F27, SystemColor::kBtnText},
    };
    const ColorTable table;
    EXPECT_EQ(table.Untouched().size(), std::size(kExpected));
    for (const Expected& each : kExpected) {
        const std::optional<Color> color = table.Find(each.name);
        ASSERT_TRUE(color) << each.name;
        EXPECT_EQ(table.Number(*color, false), each.light) << each.name;
        EXPECT_EQ(table.Painted(*color, ColorUse::kText, ThemeKind::kContrast, Numbered()), NumberOf(each.contrast))
            << each.name;
    }
}

TEST(ColorTable, TellsWhichNamesNobodySet) {
    ColorTable table;
    EXPECT_THAT(table.Untouched(), Contains(L"text"));
    table.Set(L"text", {1, 2, SystemColor::kWindow});
    EXPECT_THAT(table.Untouched(), Not(Contains(L"text")));
    EXPECT_THAT(table.Untouched(), Contains(L"window"));
    for (const std::wstring& name : table.Untouched()) {
        table.Set(name, {1, 2, SystemColor::kWindow});
    }
    EXPECT_THAT(table.Untouched(), IsEmpty());
}

TEST(ColorTable, BeginsAgainWithTheRowsThatItGaveOut) {
    ColorTable table;
    table.Set(L"mine", {1, 2, SystemColor::kWindow});
    table.Set(L"text", {1, 2, SystemColor::kWindow});
    const Color mine = *table.Find(L"mine"), text = *table.Find(L"text");
    table.Restart();
    EXPECT_EQ(table.Number(text, false), 0xFF1B1F27u);
    EXPECT_THAT(table.Untouched(), Contains(L"text"));
    EXPECT_EQ(table.Number(mine, false), 0u);
    EXPECT_EQ(table.Painted(mine, ColorUse::kText, ThemeKind::kContrast, Numbered()), 0u);
    EXPECT_THAT(table.Untouched(), Not(Contains(L"mine")));  // nobody else counts on it
    table.Set(L"mine", {3, 4, SystemColor::kWindow});
    EXPECT_EQ(table.Number(mine, false), 3u);
}

TEST(SystemColors, HaveNamesAndPairs) {
    const std::pair<const char*, SystemColor> names[] = {
        {"none", SystemColor::kNone},
        {"window", SystemColor::kWindow},
        {"windowtext", SystemColor::kWindowText},
        {"hotlight", SystemColor::kHotLight},
        {"graytext", SystemColor::kGrayText},
        {"btnface", SystemColor::kBtnFace},
        {"btntext", SystemColor::kBtnText},
        {"highlight", SystemColor::kHighlight},
        {"highlighttext", SystemColor::kHighlightText},
    };
    EXPECT_EQ(std::size(names), kSystemColorCount);
    for (const auto& [name, color] : names) {
        EXPECT_EQ(SystemColorOf(name), color) << name;
    }
    EXPECT_EQ(SystemColorOf("Window"), std::nullopt);
    EXPECT_EQ(SystemColorOf(""), std::nullopt);
    EXPECT_EQ(OtherOfPair(SystemColor::kWindow), SystemColor::kWindowText);
    EXPECT_EQ(OtherOfPair(SystemColor::kWindowText), SystemColor::kWindow);
    EXPECT_EQ(OtherOfPair(SystemColor::kHotLight), SystemColor::kWindow);
    EXPECT_EQ(OtherOfPair(SystemColor::kGrayText), SystemColor::kWindow);
    EXPECT_EQ(OtherOfPair(SystemColor::kBtnFace), SystemColor::kBtnText);
    EXPECT_EQ(OtherOfPair(SystemColor::kBtnText), SystemColor::kBtnFace);
    EXPECT_EQ(OtherOfPair(SystemColor::kHighlight), SystemColor::kHighlightText);
    EXPECT_EQ(OtherOfPair(SystemColor::kHighlightText), SystemColor::kHighlight);
    EXPECT_EQ(OtherOfPair(SystemColor::kNone), SystemColor::kNone);
}

}  // namespace
}  // namespace DuiLib
