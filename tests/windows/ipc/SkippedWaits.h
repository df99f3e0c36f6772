#pragma once
// Lets the pipe library's waits for its next try end at once, and puts its clock forward by as much.
//
// Why: for how long it leaves a server alone shows in no state, and the longest is half a minute. The clock stands
// still otherwise, so that the figures are exact. After as many waits as told they are real ones: the client is at
// rest. Thread: the test's; made before the client, destroyed after it.
#include <windows.h>

#include <cstddef>
#include <mutex>
#include <vector>

#include "tests/support/ImportHook.h"
#include "tests/support/Wait.h"

class SkippedWaits {
  public:
    explicit SkippedWaits(std::size_t count) {
        const std::scoped_lock lock(mutex_);
        count_ = count;
        waits_.clear();
        now_ = 1'000'000;
        tries_ = 0;
        atRest_ = false;
        wait_ = waitHook_.Original<decltype(&WaitForSingleObject)>();
        open_ = openHook_.Original<decltype(&CreateFileW)>();
    }

    // The waits that were skipped, in milliseconds, when there are as many as told; fewer when they do not come.
    static std::vector<DWORD> UntilAtRest() {
        harness::WaitUntil([] {
            const std::scoped_lock lock(mutex_);
            return atRest_;
        });
        const std::scoped_lock lock(mutex_);
        return waits_;
    }
    // How often the library has tried to open the pipe.
    static int Tries() {
        const std::scoped_lock lock(mutex_);
        return tries_;
    }

  private:
    static DWORD WINAPI Wait(HANDLE object, DWORD ms) {
        if (ms != 0 && ms != INFINITE) {
            const std::scoped_lock lock(mutex_);
            atRest_ = waits_.size() == count_;
            if (!atRest_) {
                waits_.push_back(ms);
                now_ += ms;
                return WAIT_TIMEOUT;
            }
        }
        return wait_(object, ms);
    }
    static ULONGLONG WINAPI Tick() {
        const std::scoped_lock lock(mutex_);
        return now_;
    }
    static HANDLE WINAPI Open(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD creation,
                              DWORD flags, HANDLE like) {
        {
            const std::scoped_lock lock(mutex_);
            ++tries_;
        }
        return open_(name, access, share, security, creation, flags, like);
    }

    static inline std::mutex mutex_;
    // Guarded by mutex_.
    static inline std::size_t count_ = 0;
    static inline std::vector<DWORD> waits_;
    static inline ULONGLONG now_ = 0;
    static inline int tries_ = 0;
    static inline bool atRest_ = false;

    static inline decltype(&WaitForSingleObject) wait_ = nullptr;
    static inline decltype(&CreateFileW) open_ = nullptr;
    const HMODULE library_ = GetModuleHandleW(L"QxIpc.dll");
    const harness::ImportHook waitHook_{library_, "WaitForSingleObject", &Wait};
    const harness::ImportHook tickHook_{library_, "GetTickCount64", &Tick};
    const harness::ImportHook openHook_{library_, "CreateFileW", &Open};
};
