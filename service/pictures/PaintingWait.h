#pragma once
// Lets a long computation run beside the calling thread, which meanwhile paints its windows and does nothing else.
//
// Why: what the user is adding has to be finished before anything else may happen, but the window that a dialog has
// just uncovered must not stay blank until then. Input and posted messages wait in their queue.
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

}  // namespace pictures
