#pragma once
// Lets a long computation run beside the calling thread, which meanwhile paints its windows.
//
// Why: what the user is adding has to be finished before the caller can go on, but the window that a dialog has just
// uncovered must not stay blank until then. Input and posted messages wait in their queue, unless a WaitWatch lives:
// then the window is used as ever, may show that work is under way, and may be closed.
// Threads: called on the UI thread, or on one without windows; the work runs on a thread of its own with a COM
// apartment of its own, so it must not touch what the calling thread owns.
#include <chrono>
#include <functional>

namespace pictures {

// Without end: the work may use what lives as long as the call.
inline constexpr std::chrono::milliseconds kWithoutEnd{-1};

// How many works may be left to themselves at a time.
inline constexpr int kMostLeftBehind = 4;

// False when the work says so, when it threw or could not be started, which is logged, or when the time is over: the
// work is then left to itself, so with a limit it must own whatever it uses. Where four are left already, one with a
// limit is not begun.
bool RunWhilePainting(std::function<bool()> work, std::chrono::milliseconds atMost = kWithoutEnd);

// While one lives, the waits of its thread take every message; one at a time. Whoever has it must stand that anything
// that the user can do is done within a wait. Where the program is asked to end meanwhile, a work with a limit is left
// to itself at once.
class WaitWatch {
  public:
    static constexpr std::chrono::milliseconds kBeforeFirstTick{500};
    static constexpr std::chrono::milliseconds kBetweenTicks{80};

    // `tick` is called within waits, from half a second after the first of them began. May throw nothing.
    explicit WaitWatch(std::function<void()> tick);
    ~WaitWatch();
    WaitWatch(const WaitWatch&) = delete;
    WaitWatch& operator=(const WaitWatch&) = delete;

    // A wait found that the program is to end: nobody is there any more to be told how the work ended.
    bool IsEnding() const { return isEnding_; }

  private:
    friend class Wait;

    const std::function<void()> tick_;
    std::chrono::steady_clock::time_point nextTick_{};  // zero: no wait has begun
    bool isEnding_ = false;
};

}  // namespace pictures
