#pragma once
// What a window shows: its pixels, and pictures of it for people to look at.
//
// With PIXORA_SHOTS set to a folder (as the system under test names it), every picture is kept there as PNG.
// Thread: the test's.
#include <windows.h>

#include <string>
#include <vector>

#include "DuiLib/PaintManagerUI.h"

struct Picture {
    int widthPx = 0;
    int heightPx = 0;
    std::vector<DWORD> pixels;  // 0x00RRGGBB, top row first

    DWORD At(DuiLib::Point px) const;
    // How many different colours lie within the rectangle.
    int ColorsIn(const DuiLib::Rect& px) const;
    bool operator==(const Picture&) const = default;
};

// The window as its paint manager paints it now.
Picture PaintedBy(DuiLib::CPaintManagerUI& manager, const std::wstring& name = {});

// Whether both hold the same pixels; a window's own region may be cut into other rectangles than the one it was given.
bool AreSameRegion(HRGN a, HRGN b);
