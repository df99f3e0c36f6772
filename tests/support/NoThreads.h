#pragma once
// While it lives the system has no more threads: std::thread throws, as it does where a process has too many.
//
// In the place of the C++ runtime's own call; what asks the system for a thread itself is hooked by its test. Thread:
// the test's.
#include <windows.h>

#include "tests/support/ImportHook.h"

namespace harness {

class NoThreads {
  private:
    static int Refuse(void*, const void*, void* (*)(void*), void*) {
        constexpr int kTryAgain = 11;  // EAGAIN, as the C++ runtime knows it
        return kTryAgain;
    }

    const ImportHook create_{GetModuleHandleW(L"libstdc++-6.dll"), "pthread_create", &Refuse};
};

}  // namespace harness
