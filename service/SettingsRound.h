#pragma once
// One round of watching the settings key. Threads: a worker's, never the UI thread; it waits without end.
#include <functional>

namespace service {

// Waits for the next change, hands the callback to the UI thread, and publishes kAlgorithmNotReady on this thread when
// that is what the key says. True when it waited and the callback was handed over. Does not tell changes between two
// rounds, and may return at once for none: SettingsWatcher makes a sound loop of it.
bool WatchSettingsRound(const std::function<void()>& callback);

}  // namespace service
