#include "pages/SnapshotRelay.h"

#include <windows.h>

#include <mutex>
#include <optional>
#include <utility>

#include "DuiLib/UIMainQueue.h"

class SnapshotRelay::State {
  public:
    explicit State(Show show) : show_(std::move(show)) {}

    void Hand(Snapshot snapshot, const std::shared_ptr<State>& self) {
        const std::scoped_lock lock(mutex_);
        if (!waiting_) {
            const ULONGLONG now = GetTickCount64();
            const auto delayMs = static_cast<unsigned>(nextTick_ > now ? nextTick_ - now : 0);
            DuiLib::UIMainQueue::getInstance()->dispatchAfter(delayMs, [state = std::weak_ptr<State>(self)] {
                if (const auto alive = state.lock()) {
                    alive->Deliver();
                }
            });
        }
        waiting_ = std::move(snapshot);
    }

  private:
    void Deliver() {
        std::optional<Snapshot> snapshot;
        {
            const std::scoped_lock lock(mutex_);
            snapshot.swap(waiting_);
            nextTick_ = GetTickCount64() + kApartMs;
        }
        show_(*snapshot);
    }

    const Show show_;

    std::mutex mutex_;
    // Guarded by mutex_.
    std::optional<Snapshot> waiting_;  // a task is under way while there is one
    ULONGLONG nextTick_ = 0;
};

SnapshotRelay::SnapshotRelay(Show show) : state_(std::make_shared<State>(std::move(show))) {}

SnapshotRelay::~SnapshotRelay() = default;

void SnapshotRelay::Hand(Snapshot snapshot) {
    state_->Hand(std::move(snapshot), state_);
}
