#pragma once
// The pixels of a window: a 32-bit bitmap of the client area's size that controls are painted into, and from which the
// window is copied. Owns the bitmap and its device context. Thread: UI thread.
#include <windows.h>

#include <cstdint>

#include "DuiLib/Geometry.h"

namespace DuiLib {

class BackBuffer {
  public:
    BackBuffer();
    ~BackBuffer();
    BackBuffer(const BackBuffer&) = delete;
    BackBuffer& operator=(const BackBuffer&) = delete;

    // The pixels' content is undefined after a change of size. False when there is no memory for them; the buffer is
    // empty then.
    bool Resize(Size px);
    Size GetSize() const { return size_; }
    bool IsEmpty() const { return bits_ == nullptr; }
    // Also usable while the buffer is empty, for measuring.
    HDC GetDC() const { return dc_; }
    std::uint32_t* Bits() const { return bits_; }
    void CopyTo(HDC target, const Rect& px) const;

  private:
    void Release();

    HDC dc_;
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ original_ = nullptr;  // what was selected into the device context before the bitmap
    std::uint32_t* bits_ = nullptr;
    Size size_;
};

}  // namespace DuiLib
