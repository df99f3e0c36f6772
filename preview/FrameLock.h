#pragma once
// A media buffer while its pixels are read: locked by the constructor, unlocked by the destructor.
//
// A buffer with a two-dimensional interface tells its first row and stride itself; of a plain one only the bytes are
// known, and the rows follow from the agreed stride. Used by Device on the thread that draws.
#include <windows.h>

#include <mfobjects.h>

#include <cstdint>

#include "preview/PixelConverter.h"

namespace preview {

class FrameLock {
  public:
    // `buffer`: borrowed; must outlive the lock. `defaultStride` counts for plain buffers only.
    FrameLock(IMFMediaBuffer* buffer, std::int32_t defaultStride, std::uint32_t height);
    ~FrameLock();
    FrameLock(const FrameLock&) = delete;
    FrameLock& operator=(const FrameLock&) = delete;

    // Of the locking; the rest is meaningless when it is a failure.
    HRESULT Result() const { return result_; }
    // The picture's top row; the rows below follow at the stride's distance.
    const std::uint8_t* FirstRow() const { return firstRow_; }
    std::int32_t Stride() const { return stride_; }

    // Whether the buffer is long enough for a frame of that format and size, as far as the buffer tells.
    bool Holds(PixelFormat format, std::uint32_t width, std::uint32_t height) const;

  private:
    IMFMediaBuffer* const buffer_;        // borrowed
    IMF2DBuffer* planeBuffer_ = nullptr;  // null for a plain buffer
    HRESULT result_;
    const std::uint8_t* data_ = nullptr;  // plain buffers: all bytes
    DWORD length_ = 0;
    const std::uint8_t* firstRow_ = nullptr;
    std::int32_t stride_ = 0;
};

}  // namespace preview
