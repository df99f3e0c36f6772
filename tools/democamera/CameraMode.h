#pragma once
// What a demo camera can be set to deliver: pixel format, size, rate and memory layout. Plain values, any thread.
#include <cstdint>

namespace democamera {

enum class CameraFormat { kRgb32, kRgb24, kYuy2, kNv12, kMjpg };

// One native media type of a camera.
struct CameraMode {
    CameraFormat format = CameraFormat::kYuy2;
    std::uint32_t width = 1280;
    std::uint32_t height = 720;
    std::uint32_t framesPerSecond = 30;
    std::uint32_t extraStrideBytes = 0;  // beyond the bytes of a row, for layouts with gaps
    bool bottomUp = false;               // the stride is negative: the last row comes first in memory
    bool declareStride = true;           // whether the media type tells the stride
    std::uint32_t aspectWidth = 1;       // of a pixel
    std::uint32_t aspectHeight = 1;
};

// Bytes of a row without gaps; 0 for the compressed format.
constexpr std::uint32_t PackedRowBytes(const CameraMode& mode) {
    switch (mode.format) {
        case CameraFormat::kRgb32:
            return 4 * mode.width;
        case CameraFormat::kRgb24:
            return 3 * mode.width;
        case CameraFormat::kYuy2:
            return 4 * ((mode.width + 1) / 2);
        case CameraFormat::kNv12:
            return 2 * ((mode.width + 1) / 2);
        case CameraFormat::kMjpg:
            break;
    }
    return 0;
}

constexpr std::uint32_t StrideBytes(const CameraMode& mode) {
    return PackedRowBytes(mode) + mode.extraStrideBytes;
}

// Rows of memory: NV12 has its chroma rows below the picture.
constexpr std::uint32_t MemoryRows(const CameraMode& mode) {
    return mode.format == CameraFormat::kNv12 ? mode.height + (mode.height + 1) / 2 : mode.height;
}

constexpr std::uint32_t FrameBytes(const CameraMode& mode) {
    return StrideBytes(mode) * MemoryRows(mode);
}

}  // namespace democamera
