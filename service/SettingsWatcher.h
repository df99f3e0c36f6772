#pragma once
// Watches the settings key for as long as it lives, and has the model give its observer a snapshot after each change.
//
// Why: one round of HomeService::WatchSettingsOnce tells of one change, may end at once for none, and nothing is told
// of a change that falls between two rounds. This class makes a loop of rounds that sees every change and never spins:
//  - its thread holds the named event itself, unsignalled, and clears it before each round;
//  - a round that fails, or ends sooner than a change explains, is followed by a wait of about a second;
//  - the next round starts when the refresh of the last one has run, so they cannot pile up behind a busy UI thread;
//  - a round also ends when the key is deleted, whatever the system tells of that;
//  - when the next round is armed, one more refresh shows what changed between the two, so the last state always ends
//    up on the screen, and a failure of the algorithm is told.
// While nothing changes, one thread waits for one event, and no timer runs. While the key is missing, it is looked for
// about once a second.
// Threads: the UI thread; the status observer is called there.
#include <memory>
#include <thread>

#include "suite/common/Handle.h"

class HomeService;

class SettingsWatcher {
  public:
    // The model is borrowed and must outlive this object.
    explicit SettingsWatcher(HomeService& model);
    // As Stop.
    ~SettingsWatcher();
    SettingsWatcher(const SettingsWatcher&) = delete;
    SettingsWatcher& operator=(const SettingsWatcher&) = delete;

    // Ends the thread; when it returns the observer is not called from here any more. REQUIRES: no listener of the
    // hub's message-box channel waits for the UI thread.
    void Stop();

  private:
    class Refresher;

    void Run();
    void WatchUntilStopped();
    // True when it noticed a change, whose refresh is then queued.
    bool Round(HANDLE changed);
    bool StopRequested() const;

    // Constant after construction.
    std::shared_ptr<Refresher> refresher_;  // shared with what is queued on the UI thread
    suite::Handle stop_;                    // manual reset
    suite::Handle ended_;                   // manual reset: the thread watches no more
    bool keyExists_ = false;                // the thread; when the last round began
    std::thread thread_;
};
