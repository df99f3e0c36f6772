#pragma once
// The system's decoders of pictures hang while it lives, on all threads but the test's, until they are let go: a file
// on a share that does not answer, or one that keeps its decoder busy. One at a time. Thread: the test's.
#include <windows.h>

#include <gtest/gtest.h>
#include <wincodec.h>

#include <atomic>

#include "suite/common/Handle.h"
#include "tests/support/ImportHook.h"
#include "tests/support/Wait.h"

class HangingDecoder {
  public:
    HangingDecoder() : hook_(nullptr, "CoCreateInstance", &Create) {
        original = hook_.Original<decltype(original)>();
        uiThread = GetCurrentThreadId();
        ResetEvent(letGo.Get());
    }
    ~HangingDecoder() {
        LetGo();
        EXPECT_TRUE(harness::WaitUntil([] { return inside == 0; }));
    }
    static void LetGo() { SetEvent(letGo.Get()); }
    static int Inside() { return inside; }

  private:
    static HRESULT WINAPI Create(REFCLSID kind, IUnknown* outer, DWORD context, REFIID iid, void** object) {
        if (GetCurrentThreadId() != uiThread && (kind == CLSID_WICImagingFactory || kind == CLSID_WICImagingFactory2)) {
            ++inside;
            WaitForSingleObject(letGo.Get(), 60'000);
            --inside;
        }
        return original(kind, outer, context, iid, object);
    }

    static inline const suite::Handle letGo{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    static inline std::atomic<DWORD> uiThread = 0;
    static inline std::atomic<int> inside = 0;
    static inline decltype(&CoCreateInstance) original = nullptr;

    const harness::ImportHook hook_;
};
