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

}  // namespace suite
