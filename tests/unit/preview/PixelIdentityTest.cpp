// The 16-bit form of the pixel formulas that the faster levels compute with, written here in plain integers that wrap
// and saturate as the processor's do: over all 2^24 triples of Y, Cb and Cr it is the 32-bit formula, clip included.
// The converters themselves are compared in PixelExhaustiveTest; this proves the arithmetic on any processor.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace preview {
namespace {

int SaturateSigned(int value) {
    return std::clamp(value, -32768, 32767);
}
int SaturateUnsigned(int value) {
    return std::clamp(value, 0, 65535);
}
int Clip(int value) {
    return std::clamp(value, 0, 255);
}
// The upper half of a product of two unsigned words.
int High(int a, int b) {
    return static_cast<int>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b) >> 16);
}
// No step may leave the 16 bits that it is kept in, but for those that saturate.
int Word(int value) {
    EXPECT_EQ(value, SaturateSigned(value));
    return value;
}

int Red16(int y, int cr) {
    const int chroma = (High(cr << 8, 409 << 7) + 32768 - 26176 - 2320) & 0xFFFF;
    const int sum = SaturateUnsigned(High(y << 8, 149 << 8) + chroma);
    return SaturateUnsigned(sum - 0x8000) >> 7;
}
int Half16(int y) {
    return Word(High(y << 8, 149 << 7) - 1160);
}
int Blue16(int y, int cb) {
    return Clip(SaturateSigned(Half16(y) + Word(129 * (cb - 128))) >> 6);
}

TEST(PixelIdentity, RedAndBlueIn16BitsAreTheFormula) {
    for (int y = 0; y < 256; ++y) {
        for (int chroma = 0; chroma < 256; ++chroma) {
            ASSERT_EQ(Red16(y, chroma), Clip((298 * (y - 16) + 409 * (chroma - 128) + 128) >> 8)) << y << "," << chroma;
            ASSERT_EQ(Blue16(y, chroma), Clip((298 * (y - 16) + 516 * (chroma - 128) + 128) >> 8))
                << y << "," << chroma;
        }
    }
}

// Red does not depend on Cb nor blue on Cr: with the test above these are all 2^24 triples.
TEST(PixelIdentity, GreenIn16BitsIsTheFormulaForAllTriples) {
    for (int y = 0; y < 256; ++y) {
        const int half = Half16(y);
        for (int cb = 0; cb < 256; ++cb) {
            int wrong = 0;
            for (int cr = 0; cr < 256; ++cr) {
                const int chroma = 25 * (cb - 128) + 52 * (cr - 128);
                const int sum = half - chroma;
                wrong += sum < -32768 || sum > 32767 || chroma < -32768 || chroma > 32767;
                wrong += Clip(sum >> 6) != Clip((298 * (y - 16) - 100 * (cb - 128) - 208 * (cr - 128) + 128) >> 8);
            }
            ASSERT_EQ(wrong, 0) << y << "," << cb;
        }
    }
}

// What lets the sums be halved: floor(n / 256) is floor(floor(n / 2) / 128).
TEST(PixelIdentity, HalvingFirstLosesNothing) {
    for (int n = -200'000; n <= 200'000; ++n) {
        ASSERT_EQ(n >> 8, (n >> 1) >> 7);
    }
}

}  // namespace
}  // namespace preview
