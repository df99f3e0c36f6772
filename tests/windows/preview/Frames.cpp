#include "tests/windows/preview/Frames.h"

#include <gtest/gtest.h>
#include <mfapi.h>

#include "preview/pixels/SourceExtent.h"
#include "suite/common/ComRelease.h"

namespace preview_test {

using preview::PixelFormat;

namespace {

std::int32_t PackedStride(PixelFormat format, std::uint32_t width) {
    const auto columns = static_cast<std::int32_t>(width);
    switch (format) {
        case PixelFormat::kRgb32:
            return 4 * columns;
        case PixelFormat::kRgb24:
            return 3 * columns;
        case PixelFormat::kYuy2:
            return 2 * columns;
        case PixelFormat::kNv12:
            break;
    }
    return columns;
}

// Values that differ from patch to patch in every channel and are no multiple of each other.
std::uint8_t PatchValue(std::uint32_t x, std::uint32_t y, std::uint32_t channel) {
    return static_cast<std::uint8_t>(40 + (x / 16) * 37 + (y / 12) * 61 + channel * 83);
}

void FillRow(PixelFormat format, std::uint8_t* row, std::uint32_t width, std::uint32_t y) {
    for (std::uint32_t x = 0; x < width; ++x) {
        switch (format) {
            case PixelFormat::kRgb32:
            case PixelFormat::kRgb24: {
                const std::uint32_t size = format == PixelFormat::kRgb32 ? 4 : 3;
                for (std::uint32_t channel = 0; channel < size; ++channel) {
                    row[size * x + channel] = PatchValue(x, y, channel);
                }
                break;
            }
            case PixelFormat::kYuy2:
                row[2 * x] = PatchValue(x, y, 0);
                row[2 * x + 1] = PatchValue(x, y, x % 2 + 1);
                break;
            case PixelFormat::kNv12:
                row[x] = PatchValue(x, y, 0);
                break;
        }
    }
}

}  // namespace

const std::uint8_t* Frame::FirstRow() const {
    return bytes.data() - preview::ExtentOf(format, stride, width, height).begin;
}

const GUID& SubtypeOf(PixelFormat format) {
    switch (format) {
        case PixelFormat::kRgb32:
            return MFVideoFormat_RGB32;
        case PixelFormat::kRgb24:
            return MFVideoFormat_RGB24;
        case PixelFormat::kYuy2:
            return MFVideoFormat_YUY2;
        case PixelFormat::kNv12:
            break;
    }
    return MFVideoFormat_NV12;
}

Frame MakeFrame(PixelFormat format, std::uint32_t width, std::uint32_t height, std::int32_t extraStride,
                bool bottomUp) {
    Frame frame = {format, width, height, PackedStride(format, width) + extraStride, {}};
    if (bottomUp) {
        frame.stride = -frame.stride;
    }
    const preview::SourceExtent extent = preview::ExtentOf(format, frame.stride, width, height);
    frame.bytes.assign(static_cast<std::size_t>(extent.end - extent.begin), 0);
    std::uint8_t* firstRow = frame.bytes.data() - extent.begin;
    for (std::uint32_t y = 0; y < height; ++y) {
        FillRow(format, firstRow + static_cast<std::ptrdiff_t>(y) * frame.stride, width, y);
    }
    if (format == PixelFormat::kNv12) {
        std::uint8_t* chroma = firstRow + static_cast<std::ptrdiff_t>(height) * frame.stride;
        for (std::uint32_t y = 0; y < (height + 1) / 2; ++y) {
            for (std::uint32_t x = 0; x < width; ++x) {
                chroma[static_cast<std::ptrdiff_t>(y) * frame.stride + x] = PatchValue(x, 2 * y, x % 2 + 1);
            }
        }
    }
    return frame;
}

std::vector<std::uint32_t> MirroredPixels(const Frame& frame) {
    std::vector<std::uint32_t> pixels(std::size_t{frame.width} * frame.height);
    preview::ConvertersFor(frame.format, preview::CpuLevel::kScalar)
        .mirrored(reinterpret_cast<std::uint8_t*>(pixels.data()), static_cast<std::int32_t>(4 * frame.width),
                  frame.FirstRow(), frame.stride, frame.width, frame.height);
    for (std::uint32_t& pixel : pixels) {
        pixel &= 0xFFFFFF;
    }
    return pixels;
}

IMFMediaType* TypeOf(const Frame& frame, bool withStride) {
    IMFMediaType* type = nullptr;
    EXPECT_EQ(MFCreateMediaType(&type), S_OK);
    type->SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Video);
    type->SetGUID(MF_MT_SUBTYPE, SubtypeOf(frame.format));
    MFSetAttributeSize(type, MF_MT_FRAME_SIZE, frame.width, frame.height);
    if (withStride) {
        type->SetUINT32(MF_MT_DEFAULT_STRIDE, static_cast<UINT32>(frame.stride));
    }
    return type;
}

IMFMediaBuffer* PlainBuffer(const Frame& frame) {
    IMFMediaBuffer* buffer = nullptr;
    const auto size = static_cast<DWORD>(frame.bytes.size());
    EXPECT_EQ(MFCreateMemoryBuffer(size, &buffer), S_OK);
    BYTE* data = nullptr;
    EXPECT_EQ(buffer->Lock(&data, nullptr, nullptr), S_OK);
    memcpy(data, frame.bytes.data(), size);
    buffer->Unlock();
    buffer->SetCurrentLength(size);
    return buffer;
}

IMFMediaBuffer* PlaneBuffer(const Frame& frame, bool bottomUp) {
    IMFMediaBuffer* buffer = nullptr;
    EXPECT_EQ(MFCreate2DMediaBuffer(frame.width, frame.height, SubtypeOf(frame.format).Data1, bottomUp, &buffer), S_OK);
    IMF2DBuffer* planes = nullptr;
    EXPECT_EQ(buffer->QueryInterface(IID_IMF2DBuffer, reinterpret_cast<void**>(&planes)), S_OK);
    BYTE* row = nullptr;
    LONG stride = 0;
    EXPECT_EQ(planes->Lock2D(&row, &stride), S_OK);
    EXPECT_EQ(stride < 0, bottomUp);
    const std::uint32_t rows = frame.format == PixelFormat::kNv12 ? frame.height + frame.height / 2 : frame.height;
    const std::uint8_t* from = frame.FirstRow();
    for (std::uint32_t y = 0; y < rows; ++y) {
        memcpy(row + static_cast<std::ptrdiff_t>(y) * stride, from + static_cast<std::ptrdiff_t>(y) * frame.stride,
               static_cast<std::size_t>(PackedStride(frame.format, frame.width)));
    }
    planes->Unlock2D();
    ComRelease(planes);
    return buffer;
}

}  // namespace preview_test
