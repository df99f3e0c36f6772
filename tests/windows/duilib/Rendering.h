#pragma once
// Pictures of windows for the pixel tests: a window is painted into a bitmap at any DPI, and its pixels are read by
// control. With DUILIB_SHOTS set to a folder every picture is also saved there as PNG, to be looked at.
#include <wincodec.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "DuiLib/Geometry.h"
#include "DuiLib/UICulture.h"
#include "TestWindow.h"

namespace DuiLib::Test {

// Writes pixels (straight 0xAARRGGBB) as a PNG file.
void WritePng(const std::wstring& path, Size sizePx, const std::vector<std::uint32_t>& pixels);
// The same below the resource folder.
void WriteImage(const std::wstring& name, Size sizePx, const std::vector<std::uint32_t>& pixels);

struct Picture {
    Size sizePx;
    std::vector<std::uint32_t> pixels;

    std::uint32_t At(Point px) const { return pixels.at(static_cast<size_t>(px.y * sizePx.cx + px.x)); }
    std::uint32_t CenterOf(const Rect& px) const { return At({(px.left + px.right) / 2, (px.top + px.bottom) / 2}); }
    // The smallest rectangle around what is not of that colour, within `px`; empty when there is nothing.
    Rect InkWithin(const Rect& px, std::uint32_t background) const;
    int CountOf(const Rect& px, std::uint32_t color) const;
    bool HasOnly(const Rect& px, std::uint32_t color) const { return CountOf(px, color) == px.Width() * px.Height(); }
};

// Sets the DPI, sizes the window so that the layout has its size, and paints it. `name`: of the saved picture.
Picture Render(TestWindow& window, int dpi, const std::wstring& name = {});

// A language that is written from right to left (or not), until the end of the scope.
class Direction {
  public:
    explicit Direction(bool rightToLeft);
    ~Direction();
};

}  // namespace DuiLib::Test
