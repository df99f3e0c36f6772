#pragma once
// Tells the message-box channel that the camera service's algorithm failed, when nobody else told it.
//
// Why: a round of HomeService::WatchSettingsOnce tells it when it notices a change; a failure that is written between
// two rounds is noticed by none. What was so from the start is not told: the start of the program judges that.
// Threads: UI thread. What is told elsewhere meanwhile is taken note of on any thread.
#include <atomic>
#include <cstdint>
#include <memory>

class AlgorithmAlarm {
  public:
    AlgorithmAlarm();
    ~AlgorithmAlarm();
    AlgorithmAlarm(const AlgorithmAlarm&) = delete;
    AlgorithmAlarm& operator=(const AlgorithmAlarm&) = delete;

    // Looks at the settings key. Publishes a failure once, until it is over.
    void Check();

  private:
    const std::shared_ptr<std::atomic<bool>> told_;  // shared with the listener, which may outlive this object
    std::int64_t listener_ = 0;
};
