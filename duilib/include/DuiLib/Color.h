#pragma once
// A colour as a layout or the program gives it: a number, or a name of the theme's table (see Theme.h), which each
// theme gives a value of its own. Says nothing of the value that is painted: UITheme resolves it. Pure logic.
#include <cstdint>

namespace DuiLib {

class Color {
  public:
    constexpr Color() = default;                          // none
    constexpr Color(std::uint32_t argb) : argb_(argb) {}  // 0xAARRGGBB; 0 is none. NOLINT(google-explicit-constructor)
    // A row of the theme's table; only the table gives those numbers.
    static constexpr Color OfRow(int row) {
        Color color;
        color.row_ = row;
        return color;
    }

    constexpr bool IsNone() const { return row_ < 0 && argb_ == 0; }
    constexpr bool IsNamed() const { return row_ >= 0; }
    constexpr std::uint32_t Number() const { return argb_; }  // 0 for a name
    constexpr int Row() const { return row_; }                // -1 for a number
    constexpr bool operator==(const Color&) const = default;

  private:
    std::uint32_t argb_ = 0;
    int row_ = -1;
};

enum class ThemeKind { kLight, kDark, kContrast };

// What a colour is used for. In a contrast theme no number reaches the screen: the system's colour for that use does.
enum class ColorUse { kGround, kText, kLink, kLine, kFill };

}  // namespace DuiLib
