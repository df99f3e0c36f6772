#include "paint/MaskTint.h"

#include <algorithm>

namespace DuiLib {

void TintMask(std::vector<std::uint32_t>& pixels, const MaskColors& colors) {
    for (std::uint32_t& pixel : pixels) {
        const std::uint32_t alpha = pixel >> 24;
        const std::uint32_t white = std::min((pixel >> 8) & 0xFF, alpha);  // of grey all channels are the same
        const std::uint32_t black = alpha - white;
        const auto channel = [&](int shift) {
            const std::uint32_t sum =
                ((colors.white >> shift) & 0xFF) * white + ((colors.black >> shift) & 0xFF) * black;
            return (sum + 127) / 255 << shift;
        };
        pixel = alpha << 24 | channel(16) | channel(8) | channel(0);
    }
}

}  // namespace DuiLib
