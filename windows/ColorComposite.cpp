#include "windows/ColorComposite.h"

#include <initializer_list>

namespace {

float Channel(std::uint32_t color, int shift) {
    return static_cast<float>((color >> shift) & 0xFF) / 255.0F;
}

}  // namespace

std::uint32_t CompositeColor(std::uint32_t base, std::uint32_t overlay) {
    const float a = Channel(base, 24);
    const float b = Channel(overlay, 24);
    std::uint32_t result = static_cast<std::uint32_t>((a + b - a * b) * 255.0F) << 24;

    const float p = a / 255.0F;
    const float q = b / 255.0F;
    const float weight = p + q - p * q;
    for (const int shift : {16, 8, 0}) {
        const float channel =
            weight == 0.0F ? 0.0F : (Channel(base, shift) * p * (1.0F - q) + Channel(overlay, shift) * q) / weight;
        result |= static_cast<std::uint32_t>(channel * 255.0F) << shift;
    }
    return result;
}
