#include "theme/ColorTable.h"

#include <algorithm>
#include <iterator>

namespace DuiLib {
namespace {

struct NamedSystemColor {
    std::string_view name;
    SystemColor color;
    SystemColor other;
};

constexpr NamedSystemColor kSystemColors[] = {
    {"none", SystemColor::kNone, SystemColor::kNone},
    {"window", SystemColor::kWindow, SystemColor::kWindowText},
    {"windowtext", SystemColor::kWindowText, SystemColor::kWindow},
    {"hotlight", SystemColor::kHotLight, SystemColor::kWindow},
    {"graytext", SystemColor::kGrayText, SystemColor::kWindow},
    {"btnface", SystemColor::kBtnFace, SystemColor::kBtnText},
    {"btntext", SystemColor::kBtnText, SystemColor::kBtnFace},
    {"highlight", SystemColor::kHighlight, SystemColor::kHighlightText},
    {"highlighttext", SystemColor::kHighlightText, SystemColor::kHighlight},
};

struct BuiltIn {
    std::wstring_view name;
    std::uint32_t light;
    SystemColor contrast;
};

// tests/house/art.py holds them to the values of res/themes.xml.
constexpr BuiltIn kBuiltIn[] = {
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

// The system's colour for a number. A translucent ground is a tint of what lies below it, which keeps its colour.
SystemColor StandsFor(std::uint32_t argb, ColorUse use) {
    const std::uint32_t alpha = argb >> 24;
    if (alpha == 0) {
        return SystemColor::kNone;
    }
    switch (use) {
        case ColorUse::kGround:
            return alpha == 255 ? SystemColor::kWindow : SystemColor::kNone;
        case ColorUse::kLink:
            return SystemColor::kHotLight;
        case ColorUse::kFill:
            return SystemColor::kHighlight;
        case ColorUse::kText:
        case ColorUse::kLine:
            break;
    }
    return SystemColor::kWindowText;
}

}  // namespace

std::optional<SystemColor> SystemColorOf(std::string_view name) {
    for (const NamedSystemColor& each : kSystemColors) {
        if (each.name == name) {
            return each.color;
        }
    }
    return std::nullopt;
}

SystemColor OtherOfPair(SystemColor color) {
    for (const NamedSystemColor& each : kSystemColors) {
        if (each.color == color) {
            return each.other;
        }
    }
    return SystemColor::kNone;
}

ColorTable::ColorTable() {
    for (const BuiltIn& each : kBuiltIn) {
        rows_.push_back({std::wstring(each.name), {}, false});
    }
    Restart();
}

void ColorTable::Restart() {
    for (Row& row : rows_) {
        row.values = {};
        row.touched = false;
    }
    std::size_t at = 0;
    for (const BuiltIn& each : kBuiltIn) {
        rows_[at++].values = {each.light, each.light, each.contrast};
    }
}

std::optional<Color> ColorTable::Find(std::wstring_view name) const {
    const auto row = std::find_if(rows_.begin(), rows_.end(), [name](const Row& each) { return each.name == name; });
    return row == rows_.end() ? std::nullopt : std::optional(Color::OfRow(static_cast<int>(row - rows_.begin())));
}

void ColorTable::Set(const std::wstring& name, const Values& values) {
    if (const std::optional<Color> known = Find(name)) {
        rows_[static_cast<std::size_t>(known->Row())] = {name, values, true};
    } else {
        rows_.push_back({name, values, true});
    }
}

std::vector<std::wstring> ColorTable::Untouched() const {
    std::vector<std::wstring> names;
    for (std::size_t at = 0; at < std::size(kBuiltIn); ++at) {
        if (!rows_[at].touched) {
            names.push_back(rows_[at].name);
        }
    }
    return names;
}

std::uint32_t ColorTable::Painted(const Color& color, ColorUse use, ThemeKind kind, const SystemColors& system) const {
    if (kind != ThemeKind::kContrast) {
        return Number(color, kind == ThemeKind::kDark);
    }
    const SystemColor stands =
        color.IsNamed() ? rows_[static_cast<std::size_t>(color.Row())].values.contrast : StandsFor(color.Number(), use);
    return system[static_cast<std::size_t>(stands)];
}

std::uint32_t ColorTable::Number(const Color& color, bool dark) const {
    if (!color.IsNamed()) {
        return color.Number();
    }
    const Values& values = rows_[static_cast<std::size_t>(color.Row())].values;
    return dark ? values.dark : values.light;
}

}  // namespace DuiLib
