// Which converters a processor gets: one that it lacks an instruction for would end the program.
#include <cpuid.h>
#include <gtest/gtest.h>

#include "preview/pixels/PixelConverter.h"

namespace preview {
namespace {

TEST(CpuLevelTest, EachProcessorGetsWhatItHas) {
    EXPECT_EQ(CpuLevelWith(false, false), CpuLevel::kScalar);
    EXPECT_EQ(CpuLevelWith(true, false), CpuLevel::kSsse3);
    EXPECT_EQ(CpuLevelWith(true, true), CpuLevel::kAvx2);
}

TEST(CpuLevelTest, ThisOneIsAskedItself) {
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    ASSERT_NE(__get_cpuid(1, &a, &b, &c, &d), 0);
    const bool ssse3 = (c & bit_SSSE3) != 0;
    const bool avx2 = __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & bit_AVX2) != 0;
    EXPECT_EQ(BestCpuLevel(), CpuLevelWith(ssse3, avx2));
}

}  // namespace
}  // namespace preview
