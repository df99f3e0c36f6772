// The converters against a reference that is written here from the pixel formulas alone, for every processor level,
// size, stride and alignment.
#include "preview/pixels/PixelConverter.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <random>
#include <vector>

#include "preview/pixels/MirrorPicture.h"
#include "preview/pixels/SourceExtent.h"

namespace preview {
namespace {

constexpr PixelFormat kFormats[] = {PixelFormat::kRgb32, PixelFormat::kRgb24, PixelFormat::kYuy2, PixelFormat::kNv12};

std::vector<CpuLevel> Levels() {
    std::vector<CpuLevel> levels = {CpuLevel::kScalar};
    if (BestCpuLevel() >= CpuLevel::kSsse3) {
        levels.push_back(CpuLevel::kSsse3);
    }
    if (BestCpuLevel() >= CpuLevel::kAvx2) {
        levels.push_back(CpuLevel::kAvx2);
    }
    return levels;
}

int Clip(int value) {
    return value < 0 ? 0 : value > 255 ? 255 : value;
}

// Blue, green, red.
std::array<int, 3> FromYCbCr(int y, int cb, int cr) {
    const int c = y - 16, d = cb - 128, e = cr - 128;
    return {Clip((298 * c + 516 * d + 128) >> 8), Clip((298 * c - 100 * d - 208 * e + 128) >> 8),
            Clip((298 * c + 409 * e + 128) >> 8)};
}

int BytesPerPixelOf(PixelFormat format) {
    switch (format) {
        case PixelFormat::kRgb32:
            return 4;
        case PixelFormat::kRgb24:
            return 3;
        case PixelFormat::kYuy2:
            return 2;
        case PixelFormat::kNv12:
            break;
    }
    return 1;
}

std::array<std::uint8_t, 4> Reference(PixelFormat format, const std::uint8_t* source, std::ptrdiff_t stride, int width,
                                      int height, int x, int y) {
    const std::uint8_t* row = source + y * stride;
    const auto bytes = [](const std::array<int, 3>& pixel, int fourth) {
        return std::array<std::uint8_t, 4>{static_cast<std::uint8_t>(pixel[0]), static_cast<std::uint8_t>(pixel[1]),
                                           static_cast<std::uint8_t>(pixel[2]), static_cast<std::uint8_t>(fourth)};
    };
    const bool single = x == width - 1 && width % 2 != 0;
    const int pair = x / 2;
    switch (format) {
        case PixelFormat::kRgb32:
            return {row[4 * x], row[4 * x + 1], row[4 * x + 2], row[4 * x + 3]};
        case PixelFormat::kRgb24:
            return {row[3 * x], row[3 * x + 1], row[3 * x + 2], 255};
        case PixelFormat::kYuy2: {
            const bool missing = single && std::abs(stride) < 2 * (width + 1);
            const int cr = !missing ? row[4 * pair + 3] : pair > 0 ? row[4 * pair - 1] : 128;
            return bytes(FromYCbCr(row[2 * x], row[4 * pair + 1], cr), 0);
        }
        case PixelFormat::kNv12:
            break;
    }
    const std::uint8_t* chroma = source + height * stride + (y / 2) * stride;
    const bool missing = single && std::abs(stride) < width + 1;
    const int cr = !missing ? chroma[2 * pair + 1] : pair > 0 ? chroma[2 * pair - 1] : 128;
    return bytes(FromYCbCr(row[x], chroma[2 * pair], cr), 0);
}

// A frame in a block of memory that is exactly as large as the format needs, so that a byte read or written past it
// is found by the address sanitizer.
struct Frame {
    Frame(PixelFormat format, int width, int height, int extraStride, bool bottomUp, unsigned misalignment,
          std::minstd_rand& random)
        : stride((bottomUp ? -1 : 1) * (BytesPerPixelOf(format) * width + extraStride)) {
        const SourceExtent extent =
            ExtentOf(format, stride, static_cast<unsigned>(width), static_cast<unsigned>(height));
        const auto size = static_cast<std::size_t>(extent.end - extent.begin) + misalignment;
        memory = std::make_unique<std::uint8_t[]>(size);
        for (std::size_t i = 0; i < size; ++i) {
            memory[i] = static_cast<std::uint8_t>(random() >> 8);
        }
        firstRow = memory.get() + misalignment - extent.begin;
    }

    std::int32_t stride;
    std::unique_ptr<std::uint8_t[]> memory;
    const std::uint8_t* firstRow;
};

struct Shape {
    int width;
    int height;
    int extraStride;
    bool bottomUp;
    unsigned misalignment;
    int pitchPadding;
};

void Check(PixelFormat format, CpuLevel level, const Shape& shape, std::minstd_rand& random) {
    const Frame frame(format, shape.width, shape.height, shape.extraStride, shape.bottomUp, shape.misalignment, random);
    const int pitch = 4 * shape.width + shape.pitchPadding;
    const ConverterPair converters = ConvertersFor(format, level);
    for (const bool mirrored : {false, true}) {
        constexpr std::uint8_t kUntouched = 0xA5;
        const std::size_t size = std::size_t(pitch) * shape.height + shape.misalignment;
        std::vector<std::uint8_t> pixels(size, kUntouched);
        (mirrored ? converters.mirrored : converters.plain)(pixels.data() + shape.misalignment, pitch, frame.firstRow,
                                                            frame.stride, static_cast<std::uint32_t>(shape.width),
                                                            static_cast<std::uint32_t>(shape.height));
        for (int y = 0; y < shape.height; ++y) {
            const std::uint8_t* row = pixels.data() + shape.misalignment + std::size_t(pitch) * y;
            for (int x = 0; x < shape.width; ++x) {
                const auto expected = Reference(format, frame.firstRow, frame.stride, shape.width, shape.height, x, y);
                const std::uint8_t* pixel = row + 4 * (mirrored ? shape.width - 1 - x : x);
                ASSERT_TRUE(std::equal(expected.begin(), expected.end(), pixel))
                    << "format " << static_cast<int>(format) << " level " << static_cast<int>(level) << " mirrored "
                    << mirrored << " size " << shape.width << "x" << shape.height << " at " << x << "," << y;
            }
            for (int i = 4 * shape.width; i < pitch; ++i) {
                ASSERT_EQ(row[i], kUntouched) << "padding was written";
            }
        }
        for (unsigned i = 0; i < shape.misalignment; ++i) {
            ASSERT_EQ(pixels[i], kUntouched);
        }
    }
}

TEST(PixelConverter, EverySmallSizeInEveryFormat) {
    std::minstd_rand random(1);
    for (const PixelFormat format : kFormats) {
        for (const CpuLevel level : Levels()) {
            for (int width = 1; width <= 67; ++width) {
                for (int height = 1; height <= 4; ++height) {
                    Check(format, level, {width, height, 0, false, 0, 0}, random);
                }
            }
        }
    }
}

TEST(PixelConverter, StridesPaddingAndAlignment) {
    std::minstd_rand random(2);
    for (const PixelFormat format : kFormats) {
        for (const CpuLevel level : Levels()) {
            for (const int width : {1, 2, 3, 7, 8, 15, 16, 17, 31, 33, 40, 63}) {
                for (const int extraStride : {0, 1, 2, 3, 4, 13, 64}) {
                    for (const unsigned misalignment : {0U, 1U, 7U}) {
                        Check(format, level, {width, 5, extraStride, false, misalignment, 12}, random);
                        Check(format, level, {width, 4, extraStride, true, misalignment, 3}, random);
                    }
                }
            }
        }
    }
}

TEST(PixelConverter, ABottomUpDestinationIsWrittenUpward) {
    std::minstd_rand random(3);
    for (const PixelFormat format : kFormats) {
        for (const CpuLevel level : Levels()) {
            const Frame frame(format, 37, 6, 0, false, 0, random);
            const ConverterPair converters = ConvertersFor(format, level);
            std::vector<std::uint8_t> down(37 * 4 * 6), up(37 * 4 * 6);
            converters.mirrored(down.data(), 37 * 4, frame.firstRow, frame.stride, 37, 6);
            converters.mirrored(up.data() + 37 * 4 * 5, -37 * 4, frame.firstRow, frame.stride, 37, 6);
            for (int row = 0; row < 6; ++row) {
                EXPECT_TRUE(
                    std::equal(down.begin() + 148 * row, down.begin() + 148 * (row + 1), up.begin() + 148 * (5 - row)));
            }
        }
    }
}

TEST(PixelConverter, MirroredIsPlainAndThenTheMirrorStep) {
    std::minstd_rand random(4);
    for (const PixelFormat format : kFormats) {
        for (const CpuLevel level : Levels()) {
            for (const unsigned width : {1U, 2U, 5U, 16U, 99U, 320U}) {
                for (const unsigned padding : {0U, width / 2}) {  // a pixel stays four bytes by the pitch rule
                    const Frame frame(format, static_cast<int>(width), 8, 0, false, 0, random);
                    const unsigned pitch = 4 * width + padding;
                    ASSERT_EQ(BytesPerPixel(pitch, width), 4U);
                    std::vector<std::uint8_t> twoSteps(pitch * 8, 9), oneStep(pitch * 8, 9);
                    const ConverterPair converters = ConvertersFor(format, level);
                    converters.plain(twoSteps.data(), static_cast<int>(pitch), frame.firstRow, frame.stride, width, 8);
                    MirrorPicture(twoSteps.data(), pitch, width, 8);
                    converters.mirrored(oneStep.data(), static_cast<int>(pitch), frame.firstRow, frame.stride, width,
                                        8);
                    EXPECT_EQ(oneStep, twoSteps);
                }
            }
        }
    }
}

TEST(PixelConverter, AnEmptyPictureWritesNothing) {
    for (const PixelFormat format : kFormats) {
        for (const CpuLevel level : Levels()) {
            ConvertersFor(format, level).mirrored(nullptr, 0, nullptr, 0, 0, 0);
        }
    }
}

}  // namespace
}  // namespace preview
