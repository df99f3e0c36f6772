#pragma once
// Brings snapshots of the settings from any thread to the UI thread, the newest one only and ten a second at most.
//
// Why: a camera service may say "changed" as often as it likes, and each snapshot that is shown costs drawing. One that
// has not been shown yet is replaced by the next; they come by a timer, which waits for painting and input, so that a
// flood of them neither freezes the window nor takes memory. What waits when the relay ends is dropped.
// Threads: Hand from any; all else on the UI thread.
#include <functional>
#include <memory>

#include "service/GlobalUtils.h"

class SnapshotRelay {
  public:
    using Snapshot = GlobalUtils::FeatureStatusTuple;
    using Show = std::function<void(const Snapshot&)>;

    // Between two that are shown.
    static constexpr unsigned kApartMs = 100;

    explicit SnapshotRelay(Show show);
    ~SnapshotRelay();
    SnapshotRelay(const SnapshotRelay&) = delete;
    SnapshotRelay& operator=(const SnapshotRelay&) = delete;

    void Hand(Snapshot snapshot);

  private:
    class State;
    std::shared_ptr<State> state_;  // tasks hold a weak_ptr to it
};
