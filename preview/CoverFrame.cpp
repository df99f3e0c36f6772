#include "preview/CoverFrame.h"

#include <algorithm>
#include <cstring>

#include "preview/pixels/PixelConverter.h"

namespace preview {

UINT CoverFrame::MeanBrightness() const {
    std::uint64_t sum = 0;
    for (const std::uint32_t pixel : pixels) {
        sum += ((pixel & 0xFF) + 2 * (pixel >> 8 & 0xFF) + (pixel >> 16 & 0xFF)) / 4;
    }
    return pixels.empty() ? 0 : static_cast<UINT>(sum / pixels.size());
}

HBITMAP CoverFrame::ToBitmap() const {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = static_cast<LONG>(width);
    info.bmiHeader.biHeight = -static_cast<LONG>(height);
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (bitmap != nullptr) {
        std::memcpy(bits, pixels.data(), pixels.size() * sizeof(std::uint32_t));
    }
    return bitmap;
}

CoverFrame ShrinkYuy2(const std::uint8_t* source, UINT stride, UINT width, UINT height, UINT maxWidth, UINT maxHeight) {
    const UINT times = std::max({1U, (width + maxWidth - 1) / maxWidth, (height + maxHeight - 1) / maxHeight});
    CoverFrame frame{std::max(1U, width / times), std::max(1U, height / times), {}};
    frame.pixels.resize(std::size_t{frame.width} * frame.height);
    const UINT rowsOfBlock = std::min(times, height);
    const UINT columnsOfBlock = std::min(times, width);
    const UINT pixelsOfBlock = rowsOfBlock * columnsOfBlock;
    const PixelConverter convert = ConvertersFor(PixelFormat::kYuy2, BestCpuLevel()).plain;
    std::vector<std::uint32_t> rows(std::size_t{width} * rowsOfBlock);
    for (UINT y = 0; y < frame.height; ++y) {
        convert(reinterpret_cast<std::uint8_t*>(rows.data()), static_cast<std::int32_t>(width * 4),
                source + std::size_t{y} * times * stride, static_cast<std::int32_t>(stride), width, rowsOfBlock);
        for (UINT x = 0; x < frame.width; ++x) {
            UINT blue = 0, green = 0, red = 0;
            for (UINT row = 0; row < rowsOfBlock; ++row) {
                const std::uint32_t* pixel = rows.data() + std::size_t{row} * width + std::size_t{x} * times;
                for (UINT column = 0; column < columnsOfBlock; ++column, ++pixel) {
                    blue += *pixel & 0xFF;
                    green += *pixel >> 8 & 0xFF;
                    red += *pixel >> 16 & 0xFF;
                }
            }
            frame.pixels[std::size_t{y} * frame.width + x] =
                blue / pixelsOfBlock | green / pixelsOfBlock << 8 | red / pixelsOfBlock << 16;
        }
    }
    return frame;
}

}  // namespace preview
