#include "preview/FrameLock.h"

#include <cstdlib>

#include "preview/pixels/SourceExtent.h"
#include "suite/common/ComRelease.h"

namespace preview {

FrameLock::FrameLock(IMFMediaBuffer* buffer, const FrameShape& shape) : buffer_(buffer), shape_(shape) {
    if (!LockWithBounds() && !LockRows()) {
        LockPlain(shape_.defaultStride);
    }
}

FrameLock::~FrameLock() {
    UnlockRows();
    if (plain_) {
        buffer_->Unlock();
    }
}

void FrameLock::UnlockRows() {
    if (rows_) {
        rows_->Unlock2D();
        ComRelease(rows_);
    }
}

bool FrameLock::LiesWithin(const std::uint8_t* begin, std::uint64_t length) const {
    const SourceExtent extent = ExtentOf(shape_.format, stride_, shape_.width, shape_.height);
    const std::int64_t first = firstRow_ - begin;
    return HasWideRows() && first + extent.begin >= 0 && first + extent.end <= static_cast<std::int64_t>(length);
}

bool FrameLock::HasWideRows() const {
    return std::llabs(stride_) >= PackedRowBytes(shape_.format, shape_.width);
}

// Where a frame has more lines than it needs, nobody tells which of them its chroma begins at.
bool FrameLock::HasSpareLines(std::uint64_t length) const {
    const auto pitch = static_cast<std::uint64_t>(std::llabs(stride_));
    const std::uint64_t needed = shape_.height + (std::uint64_t{shape_.height} + 1) / 2;
    return shape_.format == PixelFormat::kNv12 && length > pitch * needed;
}

// The two below: whether that way is the buffer's. It is locked then, or has no frame.

bool FrameLock::LockWithBounds() {
    IMF2DBuffer2* rows = nullptr;
    if (FAILED(buffer_->QueryInterface(__uuidof(IMF2DBuffer2), reinterpret_cast<void**>(&rows)))) {
        return false;
    }
    BYTE* first = nullptr;
    BYTE* begin = nullptr;
    LONG stride = 0;
    DWORD length = 0;
    if (FAILED(rows->Lock2DSize(MF2DBuffer_LockFlags_Read, &first, &stride, &begin, &length))) {
        ComRelease(rows);
        return false;
    }
    rows_ = rows;
    firstRow_ = first;
    stride_ = stride;
    holds_ = LiesWithin(begin, length);
    if (holds_ && HasSpareLines(length)) {
        UnlockRows();
        LockPacked();
    }
    return true;
}

bool FrameLock::LockRows() {
    IMF2DBuffer* rows = nullptr;
    if (FAILED(buffer_->QueryInterface(__uuidof(IMF2DBuffer), reinterpret_cast<void**>(&rows)))) {
        return false;
    }
    BYTE* first = nullptr;
    LONG stride = 0;
    DWORD packed = 0;
    if (FAILED(rows->Lock2D(&first, &stride))) {
        ComRelease(rows);
        LockPacked();
        return true;
    }
    rows_ = rows;
    firstRow_ = first;
    stride_ = stride;
    // The rows lie no closer than packed ones, so where the bytes of all packed rows cover them they are there.
    const SourceExtent extent = ExtentOf(shape_.format, stride, shape_.width, shape_.height);
    holds_ = HasWideRows() && SUCCEEDED(rows->GetContiguousLength(&packed)) && extent.end - extent.begin <= packed;
    if (HasWideRows() && (!holds_ || HasSpareLines(packed))) {
        UnlockRows();
        LockPacked();
    }
    return true;
}

void FrameLock::LockPacked() {
    const std::int32_t stride = GaplessStride(shape_.format, shape_.width);
    LockPlain(shape_.defaultStride < 0 ? -stride : stride);
    // More bytes than a frame has, by a row or more, are those of another shape.
    const SourceExtent extent = ExtentOf(shape_.format, stride, shape_.width, shape_.height);
    holds_ = holds_ && std::int64_t{plainLength_} - (extent.end - extent.begin) < stride;
}

void FrameLock::LockPlain(std::int32_t stride) {
    BYTE* data = nullptr;
    result_ = buffer_->Lock(&data, nullptr, &plainLength_);
    if (FAILED(result_)) {
        return;
    }
    plain_ = true;
    stride_ = stride;
    firstRow_ = data;
    if (stride < 0) {
        firstRow_ -= std::int64_t{stride} * (std::int64_t{shape_.height} - 1);
    }
    holds_ = LiesWithin(data, plainLength_);
}

}  // namespace preview
