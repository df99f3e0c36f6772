#include "preview/FrameLock.h"

#include "preview/SourceExtent.h"
#include "suite/common/ComRelease.h"

namespace preview {

FrameLock::FrameLock(IMFMediaBuffer* buffer, std::int32_t defaultStride, std::uint32_t height) : buffer_(buffer) {
    BYTE* data = nullptr;
    if (SUCCEEDED(buffer->QueryInterface(IID_IMF2DBuffer, reinterpret_cast<void**>(&planeBuffer_)))) {
        LONG stride = 0;
        result_ = planeBuffer_->Lock2D(&data, &stride);
        firstRow_ = data;
        stride_ = stride;
        return;
    }
    result_ = buffer->Lock(&data, nullptr, &length_);
    data_ = data;
    stride_ = defaultStride;
    const std::int64_t lastRow = -std::int64_t{defaultStride} * (std::int64_t{height} - 1);
    firstRow_ = defaultStride < 0 ? data + lastRow : data;
}

FrameLock::~FrameLock() {
    if (SUCCEEDED(result_)) {
        if (planeBuffer_ != nullptr) {
            planeBuffer_->Unlock2D();
        } else {
            buffer_->Unlock();
        }
    }
    ComRelease(planeBuffer_);
}

bool FrameLock::Holds(PixelFormat format, std::uint32_t width, std::uint32_t height) const {
    if (planeBuffer_ != nullptr) {
        DWORD length = 0;
        return SUCCEEDED(planeBuffer_->GetContiguousLength(&length)) &&
               length >= PackedFrameBytes(format, width, height);
    }
    const SourceExtent extent = ExtentOf(format, stride_, width, height);
    const std::int64_t firstRow = firstRow_ - data_;
    return firstRow + extent.begin >= 0 && firstRow + extent.end <= length_;
}

}  // namespace preview
