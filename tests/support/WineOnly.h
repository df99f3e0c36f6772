#pragma once
// For tests that change a machine in a way that only Wine allows, or that would be felt on a person's PC: the machine's
// name, the program that opens links, the scale of the screen, where DLLs come from. Elsewhere they are skipped.
//
// With PIXORA_NO_WINE in the environment they are skipped under Wine too: that shows what a run on a PC is like.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>

namespace harness {

inline bool MayUseWine() {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") && !std::getenv("PIXORA_NO_WINE");
}

}  // namespace harness

// In the body of a test or in its SetUp.
#define PIXORA_WINE_ONLY(why)         \
    do {                              \
        if (!harness::MayUseWine()) { \
            GTEST_SKIP() << (why);    \
        }                             \
    } while (false)
