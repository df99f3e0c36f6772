#pragma once
// What the system says of its look, while one lives: a test sets it, and sends the messages by which a system tells of
// a change.
//
// It keeps to the documented rules: a structure without its size is refused, a value of the registry is read with the
// type that it must have, only the window's thread asks, and a message tells nothing by its parameters. Thread: the
// test's, which is the UI thread.
#include <gtest/gtest.h>
#include <windows.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DuiLib/Theme.h"

namespace harness {

class FakeLook {
  public:
    FakeLook() {
        current_ = this;
        DuiLib::UITheme::GetInstance()->SetCalls({Parameters, SysColor, RegGet, SetFrame});
    }
    ~FakeLook() {
        current_ = nullptr;
        DuiLib::UITheme::GetInstance()->SetCalls(DuiLib::DefaultLookCalls());
    }
    FakeLook(const FakeLook&) = delete;
    FakeLook& operator=(const FakeLook&) = delete;

    // --- what the system says; a missing value is one that the user never set
    bool highContrast = false;
    bool refusesHighContrast = false;  // the question
    std::optional<DWORD> appsUseLightTheme;
    std::optional<DWORD> textScaleFactor;
    std::wstring messageFace = L"Segoe UI";
    bool refusesMetrics = false;
    UINT smoothing = TRUE, smoothingType = FE_FONTSMOOTHINGCLEARTYPE, smoothingContrast = 1400;
    // The black contrast theme of Windows.
    std::map<int, COLORREF> colors{
        {COLOR_WINDOW, RGB(0, 0, 0)},         {COLOR_WINDOWTEXT, RGB(255, 255, 255)},
        {COLOR_HOTLIGHT, RGB(255, 255, 0)},   {COLOR_GRAYTEXT, RGB(63, 242, 63)},
        {COLOR_BTNFACE, RGB(0, 0, 64)},       {COLOR_BTNTEXT, RGB(255, 255, 254)},
        {COLOR_HIGHLIGHT, RGB(26, 235, 255)}, {COLOR_HIGHLIGHTTEXT, RGB(0, 0, 1)},
    };

    // --- what the system was told: for each window, whether its frame is dark
    std::map<HWND, bool> darkFrames;
    int questions = 0;

    void SetDark(bool dark) { appsUseLightTheme = dark ? 0 : 1; }
    // As most senders send it: no setting in wParam, and a text that says nothing of this one.
    static void Tell(HWND window) { SendMessageW(window, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(L"intl")); }

  private:
    static FakeLook& Asked() {
        EXPECT_EQ(GetCurrentThreadId(), current_->thread_) << "asked by another thread";
        ++current_->questions;
        return *current_;
    }

    static BOOL WINAPI Parameters(UINT action, UINT parameter, void* data, UINT flags) {
        FakeLook& look = Asked();
        EXPECT_EQ(flags, 0u) << "a question changes nothing";
        switch (action) {
            case SPI_GETHIGHCONTRAST: {
                auto& contrast = *static_cast<HIGHCONTRASTW*>(data);
                if (look.refusesHighContrast || contrast.cbSize != sizeof(contrast) || parameter != sizeof(contrast)) {
                    contrast.dwFlags = HCF_HIGHCONTRASTON;  // what is in it means nothing now
                    return FALSE;
                }
                contrast.dwFlags = HCF_AVAILABLE | (look.highContrast ? HCF_HIGHCONTRASTON : 0);
                return TRUE;
            }
            case SPI_GETNONCLIENTMETRICS: {
                auto& metrics = *static_cast<NONCLIENTMETRICSW*>(data);
                look.messageFace.copy(metrics.lfMessageFont.lfFaceName, LF_FACESIZE - 1);
                return !look.refusesMetrics && metrics.cbSize == sizeof(metrics) && parameter == sizeof(metrics);
            }
            case SPI_GETFONTSMOOTHING:
                *static_cast<UINT*>(data) = look.smoothing;
                return TRUE;
            case SPI_GETFONTSMOOTHINGTYPE:
                *static_cast<UINT*>(data) = look.smoothingType;
                return TRUE;
            case SPI_GETFONTSMOOTHINGCONTRAST:
                *static_cast<UINT*>(data) = look.smoothingContrast;
                return TRUE;
            default:
                ADD_FAILURE() << "asked for " << action;
                return FALSE;
        }
    }

    static DWORD WINAPI SysColor(int index) {
        FakeLook& look = Asked();
        EXPECT_TRUE(look.highContrast) << "these colours count in a contrast theme only";
        EXPECT_EQ(look.colors.count(index), 1u) << index;
        return look.colors[index];
    }

    static LSTATUS WINAPI RegGet(HKEY key, LPCWSTR subKey, LPCWSTR value, DWORD flags, LPDWORD, void* data,
                                 LPDWORD size) {
        FakeLook& look = Asked();
        EXPECT_EQ(key, HKEY_CURRENT_USER);
        EXPECT_EQ(flags, static_cast<DWORD>(RRF_RT_REG_DWORD)) << "a value of another type is none";
        EXPECT_EQ(*size, sizeof(DWORD));
        const std::wstring_view path(subKey), name(value);
        std::optional<DWORD> number;
        if (path == L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize" &&
            name == L"AppsUseLightTheme") {
            number = look.appsUseLightTheme;
        } else if (path == L"Software\\Microsoft\\Accessibility" && name == L"TextScaleFactor") {
            number = look.textScaleFactor;
        } else {
            ADD_FAILURE() << "asked for another value";
        }
        if (!number) {
            return ERROR_FILE_NOT_FOUND;
        }
        *static_cast<DWORD*>(data) = *number;
        return ERROR_SUCCESS;
    }

    static HRESULT WINAPI SetFrame(HWND window, DWORD attribute, LPCVOID value, DWORD size) {
        EXPECT_EQ(attribute, 20u);
        EXPECT_EQ(size, sizeof(BOOL));
        EXPECT_TRUE(IsWindow(window));
        current_->darkFrames[window] = *static_cast<const BOOL*>(value) != FALSE;
        return E_INVALIDARG;  // as systems answer that do not know it
    }

    static inline FakeLook* current_ = nullptr;
    const DWORD thread_ = GetCurrentThreadId();
};

}  // namespace harness
