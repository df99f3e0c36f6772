#pragma once
// While it lives, time stands still for the test's thread but for its waits for messages: those end at once, and their
// time has passed then. So a limit of many seconds is over in a moment, and is known to the millisecond.
//
// What is waited for must not come by itself meanwhile. A wait that has no end within two minutes is a real one from
// then on, and `giveUp` is called before. One at a time. Thread: the test's; others have the time as it is.
#include <windows.h>

#include <chrono>
#include <functional>
#include <utility>

#include "tests/support/ImportHook.h"

class TimeOfWaits {
  public:
    explicit TimeOfWaits(std::function<void()> giveUp) {
        thread_ = GetCurrentThreadId();
        now_ = begin_ = std::chrono::steady_clock::now();
        giveUp_ = std::move(giveUp);
        originalNow_ = clock_.Original<decltype(originalNow_)>();
        originalWait_ = wait_.Original<decltype(originalWait_)>();
    }
    TimeOfWaits(const TimeOfWaits&) = delete;
    TimeOfWaits& operator=(const TimeOfWaits&) = delete;

    // Since the last call.
    static std::chrono::milliseconds Passed() {
        return std::chrono::duration_cast<std::chrono::milliseconds>(now_ - std::exchange(begin_, now_));
    }

  private:
    using TimePoint = std::chrono::steady_clock::time_point;

    static TimePoint Now() { return GetCurrentThreadId() == thread_ ? now_ : originalNow_(); }
    static DWORD WINAPI Wait(DWORD count, const HANDLE* handles, DWORD ms, DWORD mask, DWORD flags) {
        if (GetCurrentThreadId() != thread_) {
            return originalWait_(count, handles, ms, mask, flags);
        }
        if (now_ - begin_ > std::chrono::minutes(2)) {
            giveUp_();
            return originalWait_(count, handles, ms, mask, flags);
        }
        now_ += std::chrono::milliseconds(ms);
        return WAIT_TIMEOUT;
    }

    static inline DWORD thread_ = 0;
    static inline TimePoint begin_, now_;
    static inline std::function<void()> giveUp_;
    static inline TimePoint (*originalNow_)() = nullptr;
    static inline decltype(&MsgWaitForMultipleObjectsEx) originalWait_ = nullptr;

    const harness::ImportHook clock_{nullptr, "_ZNSt6chrono3_V212steady_clock3nowEv", &Now};
    const harness::ImportHook wait_{nullptr, "MsgWaitForMultipleObjectsEx", &Wait};
};
