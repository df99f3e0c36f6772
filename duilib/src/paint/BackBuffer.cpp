#include "paint/BackBuffer.h"

#include "suite/logger/QxLogger.h"

namespace DuiLib {

BackBuffer::BackBuffer() : dc_(CreateCompatibleDC(nullptr)) {}

void BackBuffer::Release() {
    selection_.reset();
    bitmap_.Reset();
    bits_ = nullptr;
    size_ = {};
}

bool BackBuffer::Resize(Size px) {
    if (px == size_ && bits_) {
        return true;
    }
    Release();
    if (px.cx <= 0 || px.cy <= 0) {
        return false;
    }
    bitmap_ = suite::MakePixelBitmap(px.cx, px.cy, bits_);
    if (!bitmap_) {
        LogLine(LogLevel::kError, L"BackBuffer::Resize", L"No back buffer, error code: ", GetLastError());
        return false;
    }
    selection_.emplace(dc_.Get(), bitmap_.Get());
    size_ = px;
    return true;
}

void BackBuffer::CopyTo(HDC target, const Rect& px) const {
    if (bits_ && !px.IsEmpty()) {
        BitBlt(target, px.left, px.top, px.Width(), px.Height(), dc_.Get(), px.left, px.top, SRCCOPY);
    }
}

}  // namespace DuiLib
