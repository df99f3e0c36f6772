#pragma once
// The notification hub: one process-wide instance for each kind of GlobalUtils.h, with listeners by channel.
//
// Why: windows, pages and the model tell each other of events without knowing each other.
// Threads: listeners run on the publishing thread, in the order of subscription. Subscribing and publishing may happen
// on different threads at once; the lock covers the lists only and is never held while a listener runs, so a listener
// may publish and subscribe. Listeners that belong to an object end with Unsubscribe on the thread that publishes.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "service/GlobalUtils.h"

template <typename Kind>
class KindNotifier {
  public:
    using Listener = std::function<void(Kind&)>;

    static KindNotifier& GetInstance() {
        static KindNotifier instance;
        return instance;
    }

    // Appends the listener to the channel's list. The result names it for Unsubscribe.
    std::int64_t Subscribe(std::int32_t channel, Listener listener) {
        const std::scoped_lock lock(mutex_);
        channels_[channel].push_back({++lastId_, std::make_shared<Listener>(std::move(listener))});
        return lastId_;
    }

    // Nothing happens when there is no such listener. A Publish that is under way on another thread may still call it.
    void Unsubscribe(std::int32_t channel, std::int64_t id) {
        const std::scoped_lock lock(mutex_);
        const auto found = channels_.find(channel);
        if (found != channels_.end()) {
            std::erase_if(found->second, [id](const Entry& entry) { return entry.id == id; });
        }
    }

    // Calls every listener of the channel with the kind. Nothing happens on a channel without listeners.
    void Publish(std::int32_t channel, Kind& kind) {
        for (const Entry& entry : ListenersOf(channel)) {
            (*entry.listener)(kind);
        }
    }
    void Publish(std::int32_t channel, Kind&& kind) { Publish(channel, kind); }

    // The channels that have a list.
    std::size_t ChannelCount() const {
        const std::scoped_lock lock(mutex_);
        return channels_.size();
    }

    KindNotifier(const KindNotifier&) = delete;
    KindNotifier& operator=(const KindNotifier&) = delete;

  private:
    struct Entry {
        std::int64_t id;
        std::shared_ptr<Listener> listener;
    };

    KindNotifier() = default;
    ~KindNotifier() = default;

    std::vector<Entry> ListenersOf(std::int32_t channel) const {
        const std::scoped_lock lock(mutex_);
        const auto found = channels_.find(channel);
        return found == channels_.end() ? std::vector<Entry>{} : found->second;
    }

    mutable std::mutex mutex_;
    // Guarded by mutex_.
    std::map<std::int32_t, std::vector<Entry>> channels_;
    std::int64_t lastId_ = 0;
};

// Asks whoever shows message boxes for one of that kind.
inline void PublishMessage(GlobalUtils::MessageBoxKind kind) {
    KindNotifier<GlobalUtils::MessageBoxKind>::GetInstance().Publish(GlobalUtils::kMessageBoxChannel, kind);
}
