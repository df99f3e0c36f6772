#pragma once
// How long the settings watcher waits between two rounds, so that it neither spins nor floods the page.
//
// Why: a round may fail at once, or be ended by a signal that no change of the key explains, as often as the system
// likes; and a writer may change the key a thousand times a second. Pure functions, any thread.
#include <chrono>

namespace WatchPacing {

// After a change: what follows it at once belongs to the same refresh.
inline constexpr std::chrono::milliseconds kSettle{50};
// After a round that failed or brought nothing that a person could have caused.
inline constexpr std::chrono::milliseconds kBackOff{1000};
// A round that ended sooner than this found a signal waiting, or a program that writes all the time.
inline constexpr std::chrono::milliseconds kShortestRound{5};
// From the start of a round to the refresh that shows what changed before it was armed; 150 ms after the last refresh.
inline constexpr std::chrono::milliseconds kFollowUp{100};

constexpr std::chrono::milliseconds WaitAfterRound(bool noticedChange, std::chrono::nanoseconds roundTook) {
    return noticedChange && roundTook >= kShortestRound ? kSettle : kBackOff;
}

}  // namespace WatchPacing
