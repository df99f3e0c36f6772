#pragma once
// Keeps a library from its shared file's lock while it lives: who made this is refused at once, the library's own
// thread waits until Release. Meanwhile nothing that waits for that thread is waited for: the time it would have taken
// is told.
//
// Why: a lock that somebody keeps is passed over after half a second, so that nothing stays queued for long.
// Thread: the test's.
#include <windows.h>

#include <optional>
#include <vector>

#include "suite/common/Handle.h"
#include "tests/support/ImportHook.h"

class KeptWriter {
  public:
    explicit KeptWriter(const wchar_t* library) : library_(GetModuleHandleW(library)) {
        owner_ = GetCurrentThreadId();
        sleeps_.clear();
        waitHook_.emplace(library_, "WaitForSingleObject", &Wait);
        wait_ = waitHook_->Original<decltype(&WaitForSingleObject)>();
        sleepHook_.emplace(library_, "SleepConditionVariableSRW", &Sleep);
        sleep_ = sleepHook_->Original<decltype(&SleepConditionVariableSRW)>();
        tickHook_.emplace(library_, "GetTickCount64", &Tick);
        ResetEvent(Gate());
    }
    // REQUIRES: after Release, what was queued is written.
    ~KeptWriter() = default;
    KeptWriter(const KeptWriter&) = delete;
    KeptWriter& operator=(const KeptWriter&) = delete;

    void Release() {
        tickHook_.reset();
        sleepHook_.reset();
        SetEvent(Gate());
    }
    // For how many milliseconds each time the owner would have slept.
    static const std::vector<DWORD>& Sleeps() { return sleeps_; }

  private:
    static HANDLE Gate() {
        static const suite::Handle gate(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        return gate.Get();
    }
    static DWORD WINAPI Wait(HANDLE object, DWORD ms) {
        if (ms == 0 || ms == INFINITE) {
            return wait_(object, ms);
        }
        if (GetCurrentThreadId() == owner_) {
            return WAIT_TIMEOUT;
        }
        WaitForSingleObject(Gate(), INFINITE);
        return wait_(object, ms);
    }
    static BOOL WINAPI Sleep(PCONDITION_VARIABLE variable, PSRWLOCK lock, DWORD ms, ULONG flags) {
        if (GetCurrentThreadId() != owner_) {
            return sleep_(variable, lock, ms, flags);
        }
        sleeps_.push_back(ms);
        SetLastError(ERROR_TIMEOUT);
        return FALSE;
    }
    static ULONGLONG WINAPI Tick() { return 1'000'000; }

    static inline DWORD owner_ = 0;
    static inline std::vector<DWORD> sleeps_;
    static inline decltype(&WaitForSingleObject) wait_ = nullptr;
    static inline decltype(&SleepConditionVariableSRW) sleep_ = nullptr;
    const HMODULE library_;
    std::optional<harness::ImportHook> waitHook_;
    std::optional<harness::ImportHook> sleepHook_;
    std::optional<harness::ImportHook> tickHook_;
};
