#pragma once
// Gives a mask its two colours: its grey says how much of each, its alpha how much it covers. Pure logic.
#include <cstdint>
#include <vector>

#include "theme/PictureTheme.h"

namespace DuiLib {

// Premultiplied pixels of black, white and what lies between become premultiplied pixels of the two colours.
void TintMask(std::vector<std::uint32_t>& pixels, const MaskColors& colors);

}  // namespace DuiLib
