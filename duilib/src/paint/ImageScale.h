#pragma once
// Scales pictures of premultiplied 32-bit pixels with a cubic filter, as sharp as it may be without rings. Pure logic.
//
// Why our own: the system's imaging component scales well on one system and by nearest neighbour on another. A large
// picture is read in bands of rows and is never in memory as a whole. Reduced by more than three, blocks of pixels are
// averaged first, which costs a fraction and looks the same.
// Thread: any.
#include <cstdint>
#include <functional>
#include <vector>

#include "DuiLib/Geometry.h"
#include "paint/Raster.h"

namespace DuiLib {

// Writes `rows` rows of a picture, from row `top`, each as wide as the picture and without gaps. False: unreadable.
using RowReader = std::function<bool(int top, int rows, std::uint32_t* pixels)>;

// The picture as `targetPx` pixels, rows without gaps. Empty when a size is empty or a row cannot be read.
std::vector<std::uint32_t> ScaleRows(const RowReader& read, Size sourcePx, Size targetPx);
// The part of a picture in memory, over the rectangle of the target; both are within their pictures. Nothing where
// one of them is empty.
void ScalePart(const ConstPixelView& source, const Rect& part, const PixelView& target, const Rect& rect);
// Left and right exchanged.
void MirrorRows(std::vector<std::uint32_t>& pixels, Size sizePx);

}  // namespace DuiLib
