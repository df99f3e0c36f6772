#include "suite/common/ProcessStart.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace {

// A file that lies beside this program.
bool FindsByName(const wchar_t* name) {
    const HMODULE library = LoadLibraryW(name);
    return library && FreeLibrary(library);
}

// The state is the process's and cannot be taken back.
TEST(ProcessStartTest, LooksInTheSystemOnlyAndShowsNoBoxes) {
    SetErrorMode(SEM_NOOPENFILEERRORBOX);
    ASSERT_TRUE(FindsByName(L"FalseLibrary.dll"));

    suite::PrepareProcess();

    EXPECT_FALSE(FindsByName(L"FalseLibrary.dll"));
    EXPECT_TRUE(FindsByName(L"oleacc.dll"));
    EXPECT_EQ(GetErrorMode(), UINT{SEM_NOOPENFILEERRORBOX | SEM_FAILCRITICALERRORS});
}

}  // namespace
