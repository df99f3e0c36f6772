#include "tools/probe/ScreenMotion.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#include "suite/common/GdiObject.h"

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
    BITMAPINFO info = suite::PixelInfo(width, height);
    const suite::WindowDc screen(nullptr);
    const suite::MemoryDc memory(CreateCompatibleDC(screen.Get()));
    const suite::GdiBitmap bitmap(CreateCompatibleBitmap(screen.Get(), width, height));
    {
        const suite::GdiSelection selection(memory.Get(), bitmap.Get());
        BitBlt(memory.Get(), 0, 0, width, height, screen.Get(), r.left, r.top, SRCCOPY);
    }
    GetDIBits(memory.Get(), bitmap.Get(), 0, static_cast<UINT>(height), pixels.data(), &info, DIB_RGB_COLORS);
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
