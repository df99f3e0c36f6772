#pragma once
// Decides when a client of the message pipe tries to reach a server again.
//
// Why: a service that starts late must be found soon (its close message ends the dialog window), an absent one must
// cost nothing that can be measured, and one that misbehaves must not be asked again and again.
//   no server, or none free:        50 ms, doubling to 2 s, then every 2 s (one failing open, about 0.1 ms each)
//   a connection ended by the server: the same delays, begun anew after a connection that lasted kSettledMs
//   the server misbehaved:          1 s, doubling to 30 s; a posted message does not shorten this one
// Times are milliseconds of a monotonic clock that the caller reads. Threads: guarded by the owner.
#include <cstdint>

namespace suite {

class RetrySchedule {
  public:
    using TimeMs = std::uint64_t;

    enum class Ending { kByServer, kMisbehaved };

    static constexpr TimeMs kFirstDelayMs = 50;
    static constexpr TimeMs kLongestDelayMs = 2000;
    static constexpr TimeMs kFirstPenaltyMs = 1000;
    static constexpr TimeMs kLongestPenaltyMs = 30000;
    static constexpr TimeMs kSettledMs = 10000;

    // A planned try found no server.
    void TryFailed(TimeMs now);
    void Connected(TimeMs now);
    // The connection that Connected told of is over.
    void Ended(TimeMs now, Ending ending);

    TimeMs NextTry() const { return nextTry_; }
    // A message to post may try at once, unless the server has to be left alone for a while.
    bool MayTryForMessage(TimeMs now) const { return !leaveAlone_ || now >= nextTry_; }
    // The connection that ended last had lasted at least kSettledMs.
    bool Settled() const { return settled_; }

  private:
    void PlanAbsent(TimeMs now);

    TimeMs delay_ = kFirstDelayMs;
    TimeMs penalty_ = kFirstPenaltyMs;
    TimeMs connectedAt_ = 0;
    TimeMs nextTry_ = 0;
    bool leaveAlone_ = false;
    bool settled_ = false;
};

}  // namespace suite
