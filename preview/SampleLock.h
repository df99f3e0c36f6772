#pragma once
// The lock under which a picture is drawn, and its guard, which gives up after a time.
//
// Why not a mutex: whoever draws may be held up by the graphics device for long, and the device may send messages to
// the window meanwhile; so the window's thread must neither wait without serving them nor wait without end. The lock
// may be taken again by the thread that holds it. Any thread.
#include <windows.h>

#include <chrono>

#include "preview/ServedWait.h"

namespace preview {

class SampleLock {
  public:
    SampleLock() { InitializeCriticalSection(&section_); }
    ~SampleLock() { DeleteCriticalSection(&section_); }
    SampleLock(const SampleLock&) = delete;
    SampleLock& operator=(const SampleLock&) = delete;

    void Enter() { EnterCriticalSection(&section_); }
    // Serves sent messages while it waits. False: the time is over, and the lock is not held.
    [[nodiscard]] bool EnterWithin(std::chrono::milliseconds atMost);
    void Leave() { LeaveCriticalSection(&section_); }

  private:
    CRITICAL_SECTION section_;
};

class SampleGuard {
  public:
    // For a thread that may wait: that of the reader.
    explicit SampleGuard(SampleLock& lock) : lock_(lock), held_(true) { lock_.Enter(); }
    SampleGuard(SampleLock& lock, std::chrono::milliseconds atMost) : lock_(lock), held_(lock.EnterWithin(atMost)) {}
    ~SampleGuard() {
        if (held_) {
            lock_.Leave();
        }
    }
    SampleGuard(const SampleGuard&) = delete;
    SampleGuard& operator=(const SampleGuard&) = delete;

    bool IsHeld() const { return held_; }

  private:
    SampleLock& lock_;
    const bool held_;
};

}  // namespace preview
