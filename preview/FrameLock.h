#pragma once
// A media buffer while its pixels are read: locked by the constructor, unlocked by the destructor.
//
// Nothing is read that the buffer does not have. A buffer that knows its bounds tells first row, stride and bounds; one
// that knows only its rows is read where they lie as long as its packed length proves that they are all there, else as
// a packed copy, which the buffer makes; of a plain one only the bytes are known, and the rows follow from the agreed
// stride. Used by Device on the thread that draws.
#include <windows.h>

#include <mfobjects.h>

#include <cstdint>

#include "preview/pixels/PixelConverter.h"

namespace preview {

// What the media type says of a frame.
struct FrameShape {
    PixelFormat format;
    std::uint32_t width;
    std::uint32_t height;
    std::int32_t defaultStride;  // of a plain buffer's rows, bytes; negative: bottom-up
};

class FrameLock {
  public:
    // `buffer`: borrowed; must outlive the lock.
    FrameLock(IMFMediaBuffer* buffer, const FrameShape& shape);
    ~FrameLock();
    FrameLock(const FrameLock&) = delete;
    FrameLock& operator=(const FrameLock&) = delete;

    // Of the locking; the rest is meaningless when it is a failure.
    HRESULT Result() const { return result_; }
    // Whether the buffer holds a frame of that shape. Only then there are rows.
    bool Holds() const { return holds_; }
    // The picture's top row; the rows below follow at the stride's distance.
    const std::uint8_t* FirstRow() const { return firstRow_; }
    std::int32_t Stride() const { return stride_; }

  private:
    bool LockWithBounds();
    bool LockRows();
    // As a packed copy that a buffer with rows of its own makes.
    void LockPacked();
    void LockPlain(std::int32_t stride);
    void UnlockRows();
    // Whether the rows do not overlap.
    bool HasWideRows() const;
    bool HasSpareLines(std::uint64_t length) const;
    // Whether the rows lie within these bytes.
    bool LiesWithin(const std::uint8_t* begin, std::uint64_t length) const;

    IMFMediaBuffer* const buffer_;  // borrowed
    const FrameShape shape_;
    IMF2DBuffer* rows_ = nullptr;  // while it is locked by its rows
    bool plain_ = false;           // it is locked as a plain buffer
    HRESULT result_ = S_OK;
    bool holds_ = false;
    const std::uint8_t* firstRow_ = nullptr;
    std::int32_t stride_ = 0;
    DWORD plainLength_ = 0;
};

}  // namespace preview
