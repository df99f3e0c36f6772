#pragma once
// The pixels of a window: a 32-bit bitmap of the client area's size that controls are painted into, and from which the
// window is copied. Owns the bitmap and its device context. Thread: UI thread.
#include <windows.h>

#include <cstdint>
#include <optional>

#include "DuiLib/Geometry.h"
#include "suite/common/GdiObject.h"

namespace DuiLib {

class BackBuffer {
  public:
    BackBuffer();

    // The pixels' content is undefined after a change of size. False when there is no memory for them; the buffer is
    // empty then.
    bool Resize(Size px);
    Size GetSize() const { return size_; }
    bool IsEmpty() const { return !bits_; }
    // Also usable while the buffer is empty, for measuring.
    HDC GetDC() const { return dc_.Get(); }
    std::uint32_t* Bits() const { return bits_; }
    void CopyTo(HDC target, const Rect& px) const;

  private:
    void Release();

    // In this order: the selection ends first, the device context lasts longest.
    suite::MemoryDc dc_;
    suite::GdiBitmap bitmap_;
    std::optional<suite::GdiSelection> selection_;  // of the bitmap into the device context
    std::uint32_t* bits_ = nullptr;
    Size size_;
};

}  // namespace DuiLib
