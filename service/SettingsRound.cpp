#include "service/SettingsRound.h"

#include <windows.h>

#include "DuiLib/UIMainQueue.h"
#include "service/GlobalUtils.h"
#include "service/KindNotifier.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"
#include "suite/common/Handle.h"
#include "suite/common/RegistryKey.h"

namespace service {

namespace {

suite::RegistryKey OpenSettings() {
    HKEY key = nullptr;
    return RegOpenKeyExW(HKEY_CURRENT_USER, SettingNames::kSystemKeyPath, 0, KEY_NOTIFY, &key) == ERROR_SUCCESS
               ? suite::RegistryKey(key)
               : suite::RegistryKey();
}

bool Arm(const suite::RegistryKey& key, HANDLE event) {
    constexpr DWORD kFilter = REG_NOTIFY_CHANGE_NAME | REG_NOTIFY_CHANGE_ATTRIBUTES | REG_NOTIFY_CHANGE_LAST_SET;
    return key && RegNotifyChangeKeyValue(key.Get(), TRUE, kFilter, event, TRUE) == ERROR_SUCCESS;
}

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
    const suite::RegistryKey key = OpenSettings();
    const bool woken = Arm(key, event.Get()) && WaitForSingleObject(event.Get(), INFINITE) != WAIT_FAILED;
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
