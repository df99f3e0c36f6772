#include "service/SettingsWatcher.h"

#include <array>
#include <atomic>
#include <chrono>
#include <exception>
#include <utility>

#include "DuiLib/UIMainQueue.h"
#include "service/AlgorithmAlarm.h"
#include "service/HomeService.h"
#include "service/SettingNames.h"
#include "service/WatchPacing.h"
#include "suite/common/RegistryKey.h"
#include "suite/logger/QxLogger.h"
#include "suite/registry/Registry.h"

using std::chrono::milliseconds;

namespace {

suite::Handle MakeEvent(bool manualReset) {
    return suite::Handle(CreateEventW(nullptr, manualReset, FALSE, nullptr));
}

// Opens the event that the rounds wait for; it is made unsignalled when nobody holds it.
suite::Handle HoldChangedEvent() {
    return suite::Handle(CreateEventW(nullptr, FALSE, FALSE, SettingNames::kChangedEventName));
}

// Signals the event when the settings key is deleted or made. Not every system tells that to who watches the key
// itself, and a round would wait for a key that is gone for good. A key is deleted before its parent, so this catches
// it all. Closing the result signals the event too, if that did not happen before.
suite::RegistryKey GuardKey(HANDLE event) {
    HKEY parent = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, SettingNames::kSystemParentPath, 0, KEY_NOTIFY, &parent) != ERROR_SUCCESS) {
        return {};
    }
    RegNotifyChangeKeyValue(parent, FALSE, REG_NOTIFY_CHANGE_NAME, event, TRUE);
    return suite::RegistryKey(parent);
}

bool KeyExists() {
    return DE::Registry(HKEY_CURRENT_USER).KeyExists(SettingNames::kKeyPath);
}

DWORD WaitMs(milliseconds time) {
    return static_cast<DWORD>(time.count());
}

}  // namespace

// The refreshing side, on the UI thread. Outlives the watcher as long as something of it is queued there.
class SettingsWatcher::Refresher : public std::enable_shared_from_this<Refresher> {
  public:
    explicit Refresher(HomeService& model) : model_(model), done_(MakeEvent(false)) {}

    // Any thread: from here on nothing is refreshed.
    void Stop() { stopped_ = true; }

    // Automatic reset: Refresh has run.
    HANDLE Done() const { return done_.Get(); }

    // UI thread.
    void Refresh() {
        if (!stopped_) {
            model_.NotifyStatus();
        }
    }
    void SignalDone() const { SetEvent(done_.Get()); }

    // UI thread: a refresh a moment after the last call. One timer serves all calls.
    void RefreshLater() {
        ++lastCall_;
        if (!std::exchange(timerRuns_, true)) {
            StartTimer();
        }
    }

  private:
    void StartTimer() {
        DuiLib::UIMainQueue::getInstance()->dispatchAfter(
            WaitMs(WatchPacing::kFollowUp), [self = shared_from_this(), call = lastCall_] { self->OnTimer(call); });
    }
    void OnTimer(unsigned call) {
        if (stopped_) {
            return;
        }
        if (call != lastCall_) {
            StartTimer();
            return;
        }
        timerRuns_ = false;
        model_.NotifyStatus();
        if (!stopped_) {
            alarm_.Check();
        }
    }

    HomeService& model_;  // borrowed; not used once stopped
    const suite::Handle done_;
    std::atomic<bool> stopped_ = false;
    // UI thread.
    AlgorithmAlarm alarm_;
    unsigned lastCall_ = 0;
    bool timerRuns_ = false;
};

SettingsWatcher::SettingsWatcher(HomeService& model)
    : refresher_(std::make_shared<Refresher>(model)), stop_(MakeEvent(true)), ended_(MakeEvent(true)) {
    if (!stop_ || !ended_ || !refresher_->Done()) {
        LogLine(LogLevel::kError, L"SettingsWatcher::SettingsWatcher", L"no event: ", GetLastError());
        return;
    }
    try {
        thread_ = std::thread([this] { Run(); });
    } catch (const std::exception& error) {
        LogLine(LogLevel::kError, L"SettingsWatcher::SettingsWatcher", L"no thread: ", error.what());
    }
}

SettingsWatcher::~SettingsWatcher() {
    Stop();
}

void SettingsWatcher::Stop() {
    refresher_->Stop();
    if (!thread_.joinable()) {
        return;
    }
    SetEvent(stop_.Get());
    // Again and again, for arming a round may clear the event, and another program's wait may take the signal.
    constexpr DWORD kAgainMs = 20;
    const suite::Handle changed = HoldChangedEvent();
    do {
        SetEvent(changed.Get());
    } while (WaitForSingleObject(ended_.Get(), kAgainMs) == WAIT_TIMEOUT);
    thread_.join();
}

bool SettingsWatcher::StopRequested() const {
    return WaitForSingleObject(stop_.Get(), 0) == WAIT_OBJECT_0;
}

void SettingsWatcher::Run() {
    // A round that throws (no memory) ends the loop; it begins anew after a wait.
    while (!StopRequested()) {
        try {
            WatchUntilStopped();
        } catch (const std::exception& error) {
            LogLine(LogLevel::kError, L"SettingsWatcher::Run", L"watching failed: ", error.what());
            WaitForSingleObject(stop_.Get(), WaitMs(WatchPacing::kBackOff));
        } catch (...) {
            LogLine(LogLevel::kError, L"SettingsWatcher::Run", L"watching failed");
            WaitForSingleObject(stop_.Get(), WaitMs(WatchPacing::kBackOff));
        }
    }
    SetEvent(ended_.Get());
}

void SettingsWatcher::WatchUntilStopped() {
    suite::Handle changed;
    for (;;) {
        if (!changed) {
            changed = HoldChangedEvent();
        }
        // What signalled the event until now belongs to a round that is over.
        ResetEvent(changed.Get());
        if (StopRequested()) {
            return;
        }
        const auto start = std::chrono::steady_clock::now();
        const bool noticed = changed && Round(changed.Get());
        const auto took = std::chrono::steady_clock::now() - start;
        if (noticed) {
            const std::array<HANDLE, 2> either{stop_.Get(), refresher_->Done()};
            WaitForMultipleObjects(either.size(), either.data(), FALSE, INFINITE);
        }
        WaitForSingleObject(stop_.Get(), WaitMs(WatchPacing::WaitAfterRound(noticed, took)));
    }
}

bool SettingsWatcher::Round(HANDLE changed) {
    const suite::RegistryKey guard = GuardKey(changed);
    const bool existed = std::exchange(keyExists_, KeyExists());
    if (existed || keyExists_) {
        // For what changed since the last refresh while no round was armed.
        DuiLib::UIMainQueue::getInstance()->dispatch([refresher = refresher_] { refresher->RefreshLater(); });
    }
    return HomeService::WatchSettingsOnce([refresher = refresher_] {
        // Also when the refresh throws, else no change would be noticed any more.
        struct Signal {
            const Refresher& of;
            ~Signal() { of.SignalDone(); }
        } const signal{*refresher};
        refresher->Refresh();
    });
}
