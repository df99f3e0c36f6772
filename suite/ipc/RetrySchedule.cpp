#include "suite/ipc/RetrySchedule.h"

#include <algorithm>

namespace suite {

void RetrySchedule::PlanAbsent(TimeMs now) {
    nextTry_ = now + delay_;
    delay_ = std::min(delay_ * 2, kLongestDelayMs);
    leaveAlone_ = false;
}

void RetrySchedule::TryFailed(TimeMs now) {
    PlanAbsent(now);
}

void RetrySchedule::Connected(TimeMs now) {
    connectedAt_ = now;
}

void RetrySchedule::Ended(TimeMs now, Ending ending) {
    settled_ = now - connectedAt_ >= kSettledMs;
    if (settled_) {
        delay_ = kFirstDelayMs;
        penalty_ = kFirstPenaltyMs;
    }
    if (ending == Ending::kByServer) {
        PlanAbsent(now);
        return;
    }
    nextTry_ = now + penalty_;
    penalty_ = std::min(penalty_ * 2, kLongestPenaltyMs);
    leaveAlone_ = true;
}

}  // namespace suite
