#pragma once
// Holds a slim lock of the system for the length of a scope. One thread.
//
// Why not std::mutex: where a process ends, a lock that a stopped thread has kept must be found out without waiting,
// and a condition variable must need no clean-up.
#include <windows.h>

namespace suite {

class SlimLock {
  public:
    // `lock`: borrowed.
    explicit SlimLock(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
    ~SlimLock() { ReleaseSRWLockExclusive(&lock_); }
    SlimLock(const SlimLock&) = delete;
    SlimLock& operator=(const SlimLock&) = delete;

  private:
    SRWLOCK& lock_;
};

// Sleeps until `isSo`, which is looked at with the lock held each time the variable wakes; false when the time was over
// before. REQUIRES: the calling thread holds the lock.
template <typename Predicate>
bool SleepUntil(CONDITION_VARIABLE& variable, SRWLOCK& lock, DWORD atMostMs, Predicate isSo) {
    const ULONGLONG end = GetTickCount64() + atMostMs;
    while (!isSo()) {
        const ULONGLONG now = GetTickCount64();
        if (now >= end || !SleepConditionVariableSRW(&variable, &lock, static_cast<DWORD>(end - now), 0)) {
            return isSo();
        }
    }
    return true;
}

}  // namespace suite
