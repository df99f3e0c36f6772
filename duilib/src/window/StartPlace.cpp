#include "window/StartPlace.h"

namespace DuiLib {
namespace {

bool HasWorkArea(HMONITOR monitor, MONITORINFO& info) {
    info.cbSize = sizeof(info);
    return monitor && GetMonitorInfoW(monitor, &info);
}

// A window has no size at first: right at the edge it might be taken for one of the screen beside it.
POINT InCornerOf(const RECT& area) {
    return {area.left + 1, area.top + 1};
}

}  // namespace

POINT StartPlace(HWND owner) {
    MONITORINFO info{};
    if (!owner) {
        STARTUPINFOW start{};
        start.cb = sizeof(start);
        GetStartupInfoW(&start);
        // The shell gives the screen where other starters may give a file.
        const bool isFile = (start.dwFlags & STARTF_USESTDHANDLES) != 0;
        if (!isFile && HasWorkArea(static_cast<HMONITOR>(start.hStdOutput), info)) {
            return InCornerOf(info.rcWork);
        }
    }
    POINT cursor{};
    GetCursorPos(&cursor);
    const HMONITOR monitor =
        owner ? MonitorFromWindow(owner, MONITOR_DEFAULTTONEAREST) : MonitorFromPoint(cursor, MONITOR_DEFAULTTONEAREST);
    return HasWorkArea(monitor, info) ? InCornerOf(info.rcWork) : POINT{};
}

}  // namespace DuiLib
