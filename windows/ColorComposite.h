#pragma once
// The shades of a button that is pointed at or pressed: an overlay colour laid over its own. Pure logic.
#include <cstdint>

// Lays `overlay` over `base`, both 0xAARRGGBB, in single precision.
//
// Kept: the alphas that weigh the colour channels are divided by 255 once more than a textbook source-over does, which
// makes the shades slightly different; the suite's windows all have them so.
std::uint32_t CompositeColor(std::uint32_t base, std::uint32_t overlay);
