#pragma once
// The one way in which a test waits: for what it expects, with a deadline, never for a time.
//
// Why: a fixed pause is too short on a busy machine and too long on every other. WaitUntil leaves the thread's messages
// alone, for tests of another process and for moments in which no window may act; PumpUntil runs them, for tests whose
// windows live on the test's own thread. Thread: the caller's; the state of message loops is that of the test's thread.
#include <windows.h>

#include <chrono>
#include <functional>

namespace harness {

// How long a test waits for something that has to happen. Only a failing test waits so long.
inline constexpr std::chrono::milliseconds kPatience{30'000};

// Looks at the condition until it holds or the time is over; the last answer.
bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds atMost = kPatience);
// As WaitUntil, and runs messages of this thread, one between two looks: the next one may undo what the condition
// waits for.
bool PumpUntil(const std::function<bool()>& condition, std::chrono::milliseconds atMost = kPatience);

// Runs the messages that are there, and those that come of them.
void Pump();
// Runs messages for that long: the random moment of a test that acts at random moments.
void PumpFor(std::chrono::microseconds time);
// Whether a message loop of this thread would have ended since the last call.
bool TakeQuit();

// While one lives, the test acts from within a message loop of the program: that loop gets the message that ends it.
class WithinLoop {
  public:
    WithinLoop();
    ~WithinLoop();
    WithinLoop(const WithinLoop&) = delete;
    WithinLoop& operator=(const WithinLoop&) = delete;
};

}  // namespace harness
