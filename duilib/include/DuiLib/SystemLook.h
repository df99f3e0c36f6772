#pragma once
// The calls by which the library asks the system how it should look, and tells it how it does. A table, so that tests
// and tools put others in their place (UITheme::SetCalls); the program never does.
//
// What is asked: SPI_GETHIGHCONTRAST, GetSysColor, the value AppsUseLightTheme of the user's theme, TextScaleFactor of
// the user's accessibility settings, the message font, and how text is smoothed. What is told: whether a window's
// frame, which the system draws, is dark. Thread: UI thread.
#include <windows.h>

#include "DuiLib/Export.h"

namespace DuiLib {

struct SystemLookCalls {
    BOOL(WINAPI* systemParametersInfo)(UINT action, UINT parameter, void* data, UINT flags);
    DWORD(WINAPI* getSysColor)(int index);
    LSTATUS(WINAPI* regGetValue)
    (HKEY key, LPCWSTR subKey, LPCWSTR value, DWORD flags, LPDWORD type, void* data, LPDWORD size);
    HRESULT(WINAPI* dwmSetWindowAttribute)(HWND window, DWORD attribute, LPCVOID value, DWORD size);
};

// The system's own.
DUILIB_API SystemLookCalls DefaultLookCalls();

}  // namespace DuiLib
