#include <windows.h>

#include <shellscalingapi.h>

#include <string>

#include "diagnostics/Sections.h"
#include "suite/common/GdiObject.h"

namespace diagnostics {

namespace {

BOOL CALLBACK AddScreen(HMONITOR monitor, HDC, RECT*, LPARAM report) {
    MONITORINFO info{};
    info.cbSize = sizeof info;
    GetMonitorInfoW(monitor, &info);
    UINT dpi = USER_DEFAULT_SCREEN_DPI;
    UINT dpiY = USER_DEFAULT_SCREEN_DPI;
    GetDpiForMonitor(monitor, MDT_EFFECTIVE_DPI, &dpi, &dpiY);
    const RECT& r = info.rcMonitor;
    const RECT& work = info.rcWork;
    reinterpret_cast<Report*>(report)->Note(
        std::to_string(r.right - r.left) + " x " + std::to_string(r.bottom - r.top) + " pixels at " +
        std::to_string(r.left) + "," + std::to_string(r.top) + ", " + std::to_string(dpi) + " DPI (" +
        std::to_string(MulDiv(static_cast<int>(dpi), 100, USER_DEFAULT_SCREEN_DPI)) + " %), work area " +
        std::to_string(work.right - work.left) + " x " + std::to_string(work.bottom - work.top) +
        ((info.dwFlags & MONITORINFOF_PRIMARY) != 0 ? ", the main screen" : ""));
    return TRUE;
}

}  // namespace

void AddScreens(Report& report) {
    report.Section("Screens");
    EnumDisplayMonitors(nullptr, nullptr, AddScreen, reinterpret_cast<LPARAM>(&report));
    const suite::WindowDc screen(nullptr);
    report.Note(std::to_string(GetDeviceCaps(screen.Get(), BITSPIXEL)) + " bits a pixel");
}

}  // namespace diagnostics
