#include "paint/BackBuffer.h"

#include "suite/logger/QxLogger.h"

namespace DuiLib {

BackBuffer::BackBuffer() : dc_(CreateCompatibleDC(nullptr)) {}

BackBuffer::~BackBuffer() {
    Release();
    DeleteDC(dc_);
}

void BackBuffer::Release() {
    if (bitmap_ != nullptr) {
        SelectObject(dc_, original_);
        DeleteObject(bitmap_);
    }
    bitmap_ = nullptr;
    bits_ = nullptr;
    size_ = {};
}

bool BackBuffer::Resize(Size px) {
    if (px == size_ && bits_ != nullptr) {
        return true;
    }
    Release();
    if (px.cx <= 0 || px.cy <= 0) {
        return false;
    }
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = px.cx;
    info.bmiHeader.biHeight = -px.cy;  // top row first
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    bitmap_ = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (bitmap_ == nullptr) {
        LogLine(4, L"BackBuffer::Resize", L"No back buffer, error code: ", GetLastError());
        return false;
    }
    original_ = SelectObject(dc_, bitmap_);
    bits_ = static_cast<std::uint32_t*>(bits);
    size_ = px;
    return true;
}

void BackBuffer::CopyTo(HDC target, const Rect& px) const {
    if (bits_ != nullptr && !px.IsEmpty()) {
        BitBlt(target, px.left, px.top, px.Width(), px.Height(), dc_, px.left, px.top, SRCCOPY);
    }
}

}  // namespace DuiLib
