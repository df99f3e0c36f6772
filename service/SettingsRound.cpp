#include "service/SettingsRound.h"

#include <windows.h>

#include "DuiLib/UIMainQueue.h"
#include "service/GlobalUtils.h"
#include "service/KindNotifier.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"
#include "suite/common/Handle.h"

namespace service {

namespace {

class WatchedKey {
  public:
    WatchedKey() {
        if (RegOpenKeyExW(HKEY_CURRENT_USER, SettingNames::kSystemKeyPath, 0, KEY_NOTIFY, &key_) != ERROR_SUCCESS) {
            key_ = nullptr;
        }
    }
    ~WatchedKey() {
        if (key_) {
            RegCloseKey(key_);
        }
    }
    WatchedKey(const WatchedKey&) = delete;
    WatchedKey& operator=(const WatchedKey&) = delete;

    bool Arm(HANDLE event) const {
        constexpr DWORD kFilter = REG_NOTIFY_CHANGE_NAME | REG_NOTIFY_CHANGE_ATTRIBUTES | REG_NOTIFY_CHANGE_LAST_SET;
        return key_ && RegNotifyChangeKeyValue(key_, TRUE, kFilter, event, TRUE) == ERROR_SUCCESS;
    }

  private:
    HKEY key_ = nullptr;
};

}  // namespace

bool WatchSettingsRound(const std::function<void()>& callback) {
    // Kept: signalled from the start, so that without another holder of the name the first wait returns at once, and
    // compared with INVALID_HANDLE_VALUE, which it never is; without an event arming or waiting fails.
    const HANDLE rawEvent = CreateEventW(nullptr, FALSE, TRUE, SettingNames::kChangedEventName);
    if (rawEvent == INVALID_HANDLE_VALUE) {
        CloseHandle(rawEvent);
        return false;
    }
    suite::Handle event(rawEvent);
    const WatchedKey key;
    const bool woken = key.Arm(event.Get()) && WaitForSingleObject(event.Get(), INFINITE) != WAIT_FAILED;
    if (woken) {
        DuiLib::UIMainQueue::getInstance()->dispatch(callback);
        int initialised = 1;
        SettingsStore::Read(SettingNames::kInitAlgorithm, initialised);
        if (initialised == 0) {
            PublishMessage(GlobalUtils::MessageBoxKind::kAlgorithmNotReady);
        }
    }
    event.Reset();
    return woken;
}

}  // namespace service
