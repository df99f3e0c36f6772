#include "tools/democamera/FrameEncoder.h"

#include <cstddef>
#include <cstring>

namespace democamera {

namespace {

struct Color {
    int blue;
    int green;
    int red;
};

Color ColorOf(std::uint32_t pixel) {
    return {static_cast<int>(pixel & 0xFF), static_cast<int>(pixel >> 8 & 0xFF), static_cast<int>(pixel >> 16 & 0xFF)};
}

std::uint8_t Luma(const Color& c) {
    return static_cast<std::uint8_t>(((66 * c.red + 129 * c.green + 25 * c.blue + 128) >> 8) + 16);
}
std::uint8_t Cb(const Color& c) {
    return static_cast<std::uint8_t>(((-38 * c.red - 74 * c.green + 112 * c.blue + 128) >> 8) + 128);
}
std::uint8_t Cr(const Color& c) {
    return static_cast<std::uint8_t>(((112 * c.red - 94 * c.green - 18 * c.blue + 128) >> 8) + 128);
}

Color Average(const Color& a, const Color& b) {
    return {(a.blue + b.blue + 1) / 2, (a.green + b.green + 1) / 2, (a.red + b.red + 1) / 2};
}

void EncodeRgb32Row(const std::uint32_t* pixels, std::uint32_t width, std::uint8_t* row) {
    std::memcpy(row, pixels, std::size_t{4} * width);
}

void EncodeRgb24Row(const std::uint32_t* pixels, std::uint32_t width, std::uint8_t* row) {
    for (std::uint32_t x = 0; x < width; ++x) {
        row[3 * x] = static_cast<std::uint8_t>(pixels[x]);
        row[3 * x + 1] = static_cast<std::uint8_t>(pixels[x] >> 8);
        row[3 * x + 2] = static_cast<std::uint8_t>(pixels[x] >> 16);
    }
}

void EncodeYuy2Row(const std::uint32_t* pixels, std::uint32_t width, std::uint8_t* row) {
    for (std::uint32_t x = 0; x < width; x += 2) {
        const Color left = ColorOf(pixels[x]);
        const Color right = x + 1 < width ? ColorOf(pixels[x + 1]) : left;
        const Color both = Average(left, right);
        row[2 * x] = Luma(left);
        row[2 * x + 1] = Cb(both);
        row[2 * x + 2] = Luma(right);
        row[2 * x + 3] = Cr(both);
    }
}

void EncodeLumaRow(const std::uint32_t* pixels, std::uint32_t width, std::uint8_t* row) {
    for (std::uint32_t x = 0; x < width; ++x) {
        row[x] = Luma(ColorOf(pixels[x]));
    }
}

void EncodeChromaRow(const std::uint32_t* upper, const std::uint32_t* lower, std::uint32_t width, std::uint8_t* row) {
    for (std::uint32_t x = 0; x < width; x += 2) {
        const std::uint32_t next = x + 1 < width ? x + 1 : x;
        const Color block =
            Average(Average(ColorOf(upper[x]), ColorOf(upper[next])), Average(ColorOf(lower[x]), ColorOf(lower[next])));
        row[x] = Cb(block);
        row[x + 1] = Cr(block);
    }
}

}  // namespace

void EncodeFrame(const CameraMode& mode, const std::uint32_t* picture, std::uint8_t* frame) {
    const std::ptrdiff_t step = mode.bottomUp ? -static_cast<std::ptrdiff_t>(StrideBytes(mode))
                                              : static_cast<std::ptrdiff_t>(StrideBytes(mode));
    std::uint8_t* row = mode.bottomUp ? frame + (std::size_t{mode.height} - 1) * StrideBytes(mode) : frame;
    const auto encodeRow = mode.format == CameraFormat::kRgb32   ? EncodeRgb32Row
                           : mode.format == CameraFormat::kRgb24 ? EncodeRgb24Row
                           : mode.format == CameraFormat::kYuy2  ? EncodeYuy2Row
                                                                 : EncodeLumaRow;
    for (std::uint32_t y = 0; y < mode.height; ++y) {
        encodeRow(picture + std::size_t{y} * mode.width, mode.width, row);
        row += step;
    }
    if (mode.format != CameraFormat::kNv12) {
        return;
    }
    // The chroma rows lie behind the luma rows in memory, whichever way the rows go.
    const std::size_t firstChromaRow = mode.bottomUp ? MemoryRows(mode) - 1 : mode.height;
    row = frame + firstChromaRow * StrideBytes(mode);
    for (std::uint32_t y = 0; y < mode.height; y += 2) {
        const std::uint32_t* upper = picture + std::size_t{y} * mode.width;
        const std::uint32_t* lower = y + 1 < mode.height ? upper + mode.width : upper;
        EncodeChromaRow(upper, lower, mode.width, row);
        row += step;
    }
}

}  // namespace democamera
