#pragma once
// Soft-edged shapes for the demo camera's pictures: signed distances, coverage, and layers that they are painted on.
//
// A distance is negative within the shape. Coordinates are the figure's or the room's own units; a layer knows where
// their origin is and how many pixels a unit has. Pure code, any thread.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace democamera {

struct Rgb {
    float r = 0;
    float g = 0;
    float b = 0;
};

constexpr Rgb FromHex(std::uint32_t hex) {
    return {static_cast<float>(hex >> 16 & 0xFF), static_cast<float>(hex >> 8 & 0xFF), static_cast<float>(hex & 0xFF)};
}
constexpr float Mix(float a, float b, float t) {
    return a + (b - a) * t;
}
constexpr Rgb Mix(const Rgb& a, const Rgb& b, float t) {
    return {Mix(a.r, b.r, t), Mix(a.g, b.g, t), Mix(a.b, b.b, t)};
}
constexpr float Clamp01(float value) {
    return std::clamp(value, 0.0F, 1.0F);
}
// 0 at `from`, 1 at `to`, smooth in between.
constexpr float Smooth(float from, float to, float value) {
    const float t = Clamp01((value - from) / (to - from));
    return t * t * (3 - 2 * t);
}

inline float EllipseDistance(float x, float y, float radiusX, float radiusY) {
    const float length = std::hypot(x / radiusX, y / radiusY);
    const float slope = std::hypot(x / (radiusX * radiusX), y / (radiusY * radiusY));
    return slope > 0 ? length * (length - 1) / slope : -std::min(radiusX, radiusY);
}
inline float BoxDistance(float x, float y, float halfWidth, float halfHeight, float corner) {
    const float dx = std::abs(x) - halfWidth + corner;
    const float dy = std::abs(y) - halfHeight + corner;
    return std::hypot(std::max(dx, 0.0F), std::max(dy, 0.0F)) + std::min(std::max(dx, dy), 0.0F) - corner;
}
// A line with round ends.
inline float LineDistance(float x, float y, float ax, float ay, float bx, float by, float halfWidth) {
    const float dx = bx - ax;
    const float dy = by - ay;
    const float t = Clamp01(((x - ax) * dx + (y - ay) * dy) / (dx * dx + dy * dy));
    return std::hypot(x - ax - t * dx, y - ay - t * dy) - halfWidth;
}
// Of a pixel whose centre has that distance from the shape, where an edge is `edge` wide.
constexpr float Coverage(float distance, float edge) {
    return Clamp01(0.5F - distance / edge);
}

struct Ink {
    Rgb color;
    float alpha = 0;
};

// Extent in units.
struct Box {
    float left = 0;
    float top = 0;
    float right = 0;
    float bottom = 0;
};

// Pixels are premultiplied 0xAARRGGBB, top row first.
struct Layer {
    int width = 0;
    int height = 0;
    float originX = 0;  // pixel of the units' origin
    float originY = 0;
    float scale = 1;  // pixels a unit
    std::vector<std::uint32_t> pixels;

    // A layer for what lies within the box, with a transparent pixel around it.
    static Layer ForBox(const Box& box, float scale) {
        Layer layer;
        layer.scale = scale;
        layer.originX = std::ceil(-box.left * scale) + 1;
        layer.originY = std::ceil(-box.top * scale) + 1;
        layer.width = static_cast<int>(layer.originX + std::ceil(box.right * scale)) + 1;
        layer.height = static_cast<int>(layer.originY + std::ceil(box.bottom * scale)) + 1;
        layer.pixels.resize(static_cast<std::size_t>(layer.width) * layer.height);
        return layer;
    }
    float Edge() const { return 1 / scale; }  // width of a sharp edge in units
};

// Lays `ink` over a premultiplied pixel.
inline std::uint32_t Over(std::uint32_t under, const Ink& ink) {
    const float keep = 1 - ink.alpha;
    const auto channel = [&](int shift, float over) {
        const float value = static_cast<float>(under >> shift & 0xFF) * keep + over * ink.alpha;
        return static_cast<std::uint32_t>(std::clamp(value + 0.5F, 0.0F, 255.0F)) << shift;
    };
    return channel(24, 255) | channel(16, ink.color.r) | channel(8, ink.color.g) | channel(0, ink.color.b);
}

// Calls ink(x, y) for the centre of each pixel within the box, and lays the result over what `pixels` have there.
// `layer` tells the size of `pixels` and their place; its own are not looked at.
template <typename InkAt>
void PaintOn(std::uint32_t* pixels, const Layer& layer, const Box& box, const InkAt& ink) {
    const auto pixel = [&](float unit, float origin, int end) {
        return std::clamp(static_cast<int>(std::floor(unit * layer.scale + origin)), 0, end);
    };
    const int left = pixel(box.left, layer.originX, layer.width);
    const int right = pixel(box.right + layer.Edge(), layer.originX, layer.width);
    const int top = pixel(box.top, layer.originY, layer.height);
    const int bottom = pixel(box.bottom + layer.Edge(), layer.originY, layer.height);
    for (int row = top; row < bottom; ++row) {
        const float y = (static_cast<float>(row) + 0.5F - layer.originY) / layer.scale;
        std::uint32_t* line = pixels + static_cast<std::size_t>(row) * layer.width;
        for (int column = left; column < right; ++column) {
            const float x = (static_cast<float>(column) + 0.5F - layer.originX) / layer.scale;
            const Ink drop = ink(x, y);
            if (drop.alpha > 0) {
                line[column] = Over(line[column], drop);
            }
        }
    }
}

template <typename InkAt>
void Paint(Layer& layer, const Box& box, const InkAt& ink) {
    PaintOn(layer.pixels.data(), layer, box, ink);
}

}  // namespace democamera
