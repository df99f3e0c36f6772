#pragma once
// The owners of what the system's drawing hands out: objects (DeleteObject), memory device contexts (DeleteDC), the
// device context of a window or the screen (ReleaseDC), and the selection of an object into a device context.
//
// An object must not be selected anywhere when it is deleted: declare the selection after the object and the device
// context, so that it ends first. Thread: the one that made the device context.
#include <windows.h>

#include <cstdint>

#include "suite/common/Owner.h"

namespace suite {

template <typename Object>
struct GdiObjectKind {
    using Raw = Object;
    static Raw Valid(Raw object) { return object; }
    static void Close(Raw object) { DeleteObject(object); }
};

using GdiBitmap = Owner<GdiObjectKind<HBITMAP>>;
using GdiFont = Owner<GdiObjectKind<HFONT>>;
using GdiRegion = Owner<GdiObjectKind<HRGN>>;

struct MemoryDcKind {
    using Raw = HDC;
    static Raw Valid(Raw dc) { return dc; }
    static void Close(Raw dc) { DeleteDC(dc); }
};

// Made by CreateCompatibleDC or CreateDC.
using MemoryDc = Owner<MemoryDcKind>;

class WindowDc {
  public:
    // Null: the screen.
    explicit WindowDc(HWND window) : window_(window), dc_(GetDC(window)) {}
    ~WindowDc() {
        if (dc_) {
            ReleaseDC(window_, dc_);
        }
    }
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;

    HDC Get() const { return dc_; }
    explicit operator bool() const { return dc_ != nullptr; }

  private:
    const HWND window_;
    const HDC dc_;
};

// Selects an object for the length of a scope; the earlier one comes back. Both borrowed.
class GdiSelection {
  public:
    GdiSelection(HDC dc, HGDIOBJ object) : dc_(dc), earlier_(SelectObject(dc, object)) {}
    ~GdiSelection() { SelectObject(dc_, earlier_); }
    GdiSelection(const GdiSelection&) = delete;
    GdiSelection& operator=(const GdiSelection&) = delete;

  private:
    const HDC dc_;
    const HGDIOBJ earlier_;
};

// The header of 32-bit pixels without gaps, top row first.
inline BITMAPINFO PixelInfo(int widthPx, int heightPx) {
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), widthPx, -heightPx, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    return info;
}

// A bitmap of such pixels; `pixels` lives as long as it. Null when the system has no memory for it.
inline GdiBitmap MakePixelBitmap(int widthPx, int heightPx, std::uint32_t*& pixels) {
    const BITMAPINFO info = PixelInfo(widthPx, heightPx);
    void* bits = nullptr;
    GdiBitmap bitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    pixels = static_cast<std::uint32_t*>(bits);
    return bitmap;
}

}  // namespace suite
