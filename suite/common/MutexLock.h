#pragma once
// Holds a mutex of the system for the length of a scope, waiting for it no longer than told. One thread.
//
// A mutex whose owner ended inside the lock is taken all the same: what it guards must stand that.
#include <windows.h>

namespace suite {

class MutexLock {
  public:
    // `mutex`: borrowed.
    MutexLock(HANDLE mutex, DWORD waitMs) : mutex_(mutex) {
        const DWORD result = WaitForSingleObject(mutex_, waitMs);
        held_ = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
    }
    ~MutexLock() {
        if (held_) {
            ReleaseMutex(mutex_);
        }
    }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

    // False: the wait was in vain.
    bool IsHeld() const { return held_; }

  private:
    const HANDLE mutex_;
    bool held_ = false;
};

}  // namespace suite
