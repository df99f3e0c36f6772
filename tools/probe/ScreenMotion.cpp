#include "tools/probe/ScreenMotion.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

// One change could be the picture's coming or going; a camera brings one with each frame.
constexpr int kChanges = 5;
constexpr DWORD kBetweenLooksMs = 30;

std::vector<std::uint32_t> Grab(const RECT& r) {
    const LONG width = r.right - r.left;
    const LONG height = r.bottom - r.top;
    if (width <= 0 || height <= 0)
        return {};
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * height);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    const HGDIOBJ previous = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, width, height, screen, r.left, r.top, SRCCOPY);
    SelectObject(memory, previous);
    GetDIBits(memory, bitmap, 0, static_cast<UINT>(height), pixels.data(), &info, DIB_RGB_COLORS);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return pixels;
}

}  // namespace

bool WaitForMotion(const RECT& screenPx, DWORD timeoutMs) {
    const ULONGLONG end = GetTickCount64() + timeoutMs;
    std::vector<std::uint32_t> before = Grab(screenPx);
    for (int changes = 0; changes < kChanges;) {
        if (GetTickCount64() > end)
            return false;
        Sleep(kBetweenLooksMs);
        std::vector<std::uint32_t> now = Grab(screenPx);
        changes += now != before ? 1 : 0;
        before.swap(now);
    }
    return true;
}
