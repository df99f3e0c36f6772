#pragma once
// The colours that layouts and programs call by name: their values in the light and the dark theme, and the colour of
// the system that stands for each in a contrast theme.
//
// A table begins with the names that the library knows and their light values; a program's own file (ThemeFile.h)
// changes values and adds names. A row keeps its number for the life of the table. Pure logic. Thread: UI thread.
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DuiLib/Color.h"

namespace DuiLib {

// The colours of the system that a contrast theme is made of; None draws nothing.
enum class SystemColor {
    kNone,
    kWindow,
    kWindowText,
    kHotLight,
    kGrayText,
    kBtnFace,
    kBtnText,
    kHighlight,
    kHighlightText
};
inline constexpr std::size_t kSystemColorCount = 9;
// Their values, 0xFFRRGGBB; that of kNone is 0.
using SystemColors = std::array<std::uint32_t, kSystemColorCount>;

// "windowtext" and so on; nothing for another word.
std::optional<SystemColor> SystemColorOf(std::string_view name);
// What lies under that colour, or over it: the other one of its pair.
SystemColor OtherOfPair(SystemColor color);

class ColorTable {
  public:
    struct Values {
        std::uint32_t light = 0, dark = 0;
        SystemColor contrast = SystemColor::kNone;
    };

    ColorTable();
    // The values that the library knows, as at the beginning; names that were added stay, and draw nothing.
    void Restart();

    std::optional<Color> Find(std::wstring_view name) const;
    // Changes a row, or adds one.
    void Set(const std::wstring& name, const Values& values);
    // The library's own names that no Set has changed since the beginning.
    std::vector<std::wstring> Untouched() const;

    // What is painted; 0 paints nothing.
    std::uint32_t Painted(const Color& color, ColorUse use, ThemeKind kind, const SystemColors& system) const;
    // The colour as a number of the light or the dark theme.
    std::uint32_t Number(const Color& color, bool dark) const;

  private:
    struct Row {
        std::wstring name;
        Values values;
        bool touched = false;
    };
    std::vector<Row> rows_;
};

}  // namespace DuiLib
