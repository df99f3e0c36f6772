#include "tools/proof/ForegroundRight.h"

#include <gtest/gtest.h>

namespace proof {
namespace {

DWORD Timeout() {
    DWORD milliseconds = 1;
    EXPECT_TRUE(SystemParametersInfoW(SPI_GETFOREGROUNDLOCKTIMEOUT, 0, &milliseconds, 0));
    return milliseconds;
}

void SetTimeout(DWORD milliseconds) {
    EXPECT_TRUE(
        SystemParametersInfoW(SPI_SETFOREGROUNDLOCKTIMEOUT, 0, reinterpret_cast<void*>(ULONG_PTR{milliseconds}), 0));
}

TEST(ForegroundRight, IsGivenBack) {
    const DWORD before = Timeout();
    SetTimeout(4321);
    {
        const ForegroundRight right;
        EXPECT_EQ(Timeout(), 0U);
    }
    EXPECT_EQ(Timeout(), 4321U);
    SetTimeout(before);
}

}  // namespace
}  // namespace proof
