#pragma once
// What the system itself keeps of windows that have a shape, for tests that count what the program keeps.
//
// Wine 10 never frees the region of the surface that it draws such a window on, which is made anew when the window is
// shown or gets another size; earlier ones and Windows keep nothing. Thread: one that may have windows.
#include <windows.h>

#include "tests/support/Wait.h"

namespace harness {

// The regions of this process, where the system finds an object by the index that is the low half of its handle; else
// 0.
inline int RegionCount() {
    int count = 0;
    for (ULONG_PTR index = 1; index <= 0xFFFF; ++index)
        count += GetObjectType(reinterpret_cast<HGDIOBJ>(index)) == OBJ_REGION ? 1 : 0;
    return count;
}

// How many more there are after so many plain windows were shown in a shape and are gone.
inline int RegionsKeptByTheSystem(int windows) {
    const auto round = [] {
        const HWND window =
            CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 300, 100, nullptr, nullptr, nullptr, nullptr);
        SetWindowRgn(window, CreateRoundRectRgn(0, 0, 300, 100, 8, 8), TRUE);
        ShowWindow(window, SW_SHOWNOACTIVATE);
        Pump();
        DestroyWindow(window);
    };
    round();
    const int before = RegionCount();
    for (int i = 0; i < windows; ++i)
        round();
    return RegionCount() - before;
}

}  // namespace harness
