#pragma once
// What the user chose for all programs: theme and size of text; nothing any more when it goes. Each change is told to
// the window as the system does. Thread: the test's.
#include <windows.h>

#include <gtest/gtest.h>

namespace e2e {

class UsersLook {
  public:
    explicit UsersLook(HWND window) : window_(window) {}
    ~UsersLook() {
        RegDeleteKeyValueW(HKEY_CURRENT_USER, kTheme, L"AppsUseLightTheme");
        RegDeleteKeyValueW(HKEY_CURRENT_USER, kText, L"TextScaleFactor");
    }
    UsersLook(const UsersLook&) = delete;
    UsersLook& operator=(const UsersLook&) = delete;

    void SetDark(bool dark) const { Set(kTheme, L"AppsUseLightTheme", dark ? 0 : 1); }
    void SetTextSize(DWORD percent) const { Set(kText, L"TextScaleFactor", percent); }

  private:
    static constexpr wchar_t kTheme[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize";
    static constexpr wchar_t kText[] = L"Software\\Microsoft\\Accessibility";

    void Set(const wchar_t* key, const wchar_t* name, DWORD value) const {
        EXPECT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, key, name, REG_DWORD, &value, sizeof(value)), ERROR_SUCCESS);
        SendMessageW(window_, WM_SETTINGCHANGE, 0, 0);
    }

    const HWND window_;
};

}  // namespace e2e
