// Every combination of Y, Cb and Cr through every processor level, compared with the formula. With the sanitizers,
// which make it too slow for that, every Y with a part of the chroma values; the optimised build takes all 2^24.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "preview/pixels/PixelConverter.h"

namespace preview {
namespace {

constexpr int kValues = 256;

std::uint32_t Formula(int y, int cb, int cr) {
    const auto clip = [](int value) { return static_cast<std::uint32_t>(std::clamp(value, 0, 255)); };
    const int c = y - 16, d = cb - 128, e = cr - 128;
    return clip((298 * c + 516 * d + 128) >> 8) | clip((298 * c - 100 * d - 208 * e + 128) >> 8) << 8 |
           clip((298 * c + 409 * e + 128) >> 8) << 16;
}

std::vector<int> CrValues() {
    std::vector<int> values;
#ifdef __SANITIZE_ADDRESS__
    constexpr int kStep = 17;
#else
    constexpr int kStep = 1;
#endif
    for (int value = 0; value < kValues; value += kStep) {
        values.push_back(value);
    }
    for (const int value : {1, 127, 128, 129, 254, 255}) {
        values.push_back(value);
    }
    return values;
}

// One picture for each Cr: 512 columns are the 256 values of Y twice, the row pairs are the values of Cb.
constexpr int kWidth = 2 * kValues;

void FillNv12(std::vector<std::uint8_t>& frame, int cr) {
    const int height = 2 * kValues;
    for (int row = 0; row < height; ++row) {
        for (int x = 0; x < kWidth; ++x) {
            // Both rows and both columns of a block get every Y.
            frame[std::size_t(row) * kWidth + x] = static_cast<std::uint8_t>(row % 2 == 0 ? x / 2 : x);
        }
    }
    for (int cb = 0; cb < kValues; ++cb) {
        for (int x = 0; x < kWidth; x += 2) {
            frame[std::size_t(height + cb) * kWidth + x] = static_cast<std::uint8_t>(cb);
            frame[std::size_t(height + cb) * kWidth + x + 1] = static_cast<std::uint8_t>(cr);
        }
    }
}

void FillYuy2(std::vector<std::uint8_t>& frame, int cr) {
    for (int cb = 0; cb < kValues; ++cb) {
        std::uint8_t* row = frame.data() + std::size_t(cb) * 2 * kWidth;
        for (int x = 0; x < kWidth; ++x) {
            row[2 * x] = static_cast<std::uint8_t>(x);
            row[2 * x + 1] = static_cast<std::uint8_t>(x % 2 == 0 ? cb : cr);
        }
    }
}

class PixelExhaustive : public testing::TestWithParam<CpuLevel> {
  protected:
    void SetUp() override {
        if (GetParam() > BestCpuLevel()) {
            GTEST_SKIP() << "this processor does not have the instructions";
        }
        formula_.resize(kValues * kValues);
    }

    void MakeFormulaTable(int cr) {
        for (int cb = 0; cb < kValues; ++cb) {
            for (int y = 0; y < kValues; ++y) {
                formula_[cb * kValues + y] = Formula(y, cb, cr);
            }
        }
    }

    std::vector<std::uint32_t> formula_;  // of one Cr, by Cb and Y
};

TEST_P(PixelExhaustive, Nv12) {
    std::vector<std::uint8_t> frame(std::size_t{kWidth} * kValues * 3);
    std::vector<std::uint32_t> pixels(std::size_t{kWidth} * kValues * 2);
    const PixelConverter convert = ConvertersFor(PixelFormat::kNv12, GetParam()).mirrored;
    for (const int cr : CrValues()) {
        MakeFormulaTable(cr);
        FillNv12(frame, cr);
        convert(reinterpret_cast<std::uint8_t*>(pixels.data()), 4 * kWidth, frame.data(), kWidth, kWidth, 2 * kValues);
        for (int row = 0; row < 2 * kValues; ++row) {
            const std::uint32_t* line = pixels.data() + std::size_t(row) * kWidth;
            const std::uint32_t* expected = formula_.data() + (row / 2) * kValues;
            int wrong = 0;
            for (int x = 0; x < kWidth; ++x) {
                const int y = row % 2 == 0 ? x / 2 : x % kValues;
                wrong += line[kWidth - 1 - x] != expected[y];
            }
            ASSERT_EQ(wrong, 0) << "Cb " << row / 2 << ", Cr " << cr;
        }
    }
}

TEST_P(PixelExhaustive, Yuy2) {
    std::vector<std::uint8_t> frame(std::size_t{2} * kWidth * kValues);
    std::vector<std::uint32_t> pixels(std::size_t{kWidth} * kValues);
    const PixelConverter convert = ConvertersFor(PixelFormat::kYuy2, GetParam()).plain;
    for (const int cr : CrValues()) {
        MakeFormulaTable(cr);
        FillYuy2(frame, cr);
        convert(reinterpret_cast<std::uint8_t*>(pixels.data()), 4 * kWidth, frame.data(), 2 * kWidth, kWidth, kValues);
        for (int cb = 0; cb < kValues; ++cb) {
            const std::uint32_t* line = pixels.data() + std::size_t(cb) * kWidth;
            const std::uint32_t* expected = formula_.data() + cb * kValues;
            const bool right = std::equal(expected, expected + kValues, line) &&
                               std::equal(expected, expected + kValues, line + kValues);
            ASSERT_TRUE(right) << "Cb " << cb << ", Cr " << cr;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, PixelExhaustive,
                         testing::Values(CpuLevel::kScalar, CpuLevel::kSsse3, CpuLevel::kAvx2));

TEST(PixelFormula, KnownColours) {
    const auto convert = [](int y, int cb, int cr) {
        const std::uint8_t pair[] = {static_cast<std::uint8_t>(y), static_cast<std::uint8_t>(cb),
                                     static_cast<std::uint8_t>(y), static_cast<std::uint8_t>(cr)};
        std::uint32_t pixels[2] = {};
        ConvertersFor(PixelFormat::kYuy2, CpuLevel::kScalar)
            .plain(reinterpret_cast<std::uint8_t*>(pixels), 8, pair, 4, 2, 1);
        EXPECT_EQ(pixels[0], pixels[1]);
        return pixels[0];
    };
    EXPECT_EQ(convert(16, 128, 128), 0x000000U);
    EXPECT_EQ(convert(235, 128, 128), 0xFFFFFFU);
    EXPECT_EQ(convert(126, 128, 128), 0x808080U);
    EXPECT_EQ(convert(81, 90, 240), 0xFF0000U);
    EXPECT_EQ(convert(0, 0, 0), 0x008700U);
    EXPECT_EQ(convert(255, 255, 255), 0xFF7DFFU);
}

}  // namespace
}  // namespace preview
