#include "preview/pixels/SourceExtent.h"

#include <algorithm>
#include <cstdlib>

namespace preview {

namespace {

// What a converter reads of a row: an odd row's last Cr only when the stride has room for it.
std::int64_t RowBytes(PixelFormat format, std::int64_t room, std::int64_t width) {
    switch (format) {
        case PixelFormat::kRgb32:
            return 4 * width;
        case PixelFormat::kRgb24:
            return 3 * width;
        case PixelFormat::kYuy2:
            return width % 2 != 0 && room >= 2 * (width + 1) ? 2 * (width + 1) : 2 * width;
        case PixelFormat::kNv12:
            break;
    }
    return width % 2 != 0 && room >= width + 1 ? width + 1 : width;
}

}  // namespace

SourceExtent ExtentOf(PixelFormat format, std::int32_t stride, std::uint32_t width, std::uint32_t height) {
    const std::int64_t step = stride;
    const std::int64_t rows =
        format == PixelFormat::kNv12 ? std::int64_t{height} + (std::int64_t{height} + 1) / 2 : std::int64_t{height};
    const std::int64_t lastRow = step * (rows - 1);
    return {std::min<std::int64_t>(0, lastRow),
            std::max<std::int64_t>(0, lastRow) + RowBytes(format, std::llabs(step), width)};
}

std::int32_t GaplessStride(PixelFormat format, std::uint32_t width) {
    const auto columns = static_cast<std::int32_t>(width);
    switch (format) {
        case PixelFormat::kRgb32:
            return 4 * columns;
        case PixelFormat::kRgb24:
            return (3 * columns + 3) / 4 * 4;
        case PixelFormat::kYuy2:
            return (columns + 1) / 2 * 4;
        case PixelFormat::kNv12:
            break;
    }
    return columns;
}

std::int64_t PackedRowBytes(PixelFormat format, std::uint32_t width) {
    return RowBytes(format, 0, width);
}

}  // namespace preview
