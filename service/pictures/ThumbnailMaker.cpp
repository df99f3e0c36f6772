#include "service/pictures/ThumbnailMaker.h"

#include <algorithm>

namespace pictures {

ThumbnailMaker::ThumbnailMaker(std::size_t pictureWidth, std::size_t pictureHeight)
    : pictureWidth_(pictureWidth), cropWidth_(pictureWidth), cropHeight_(pictureHeight) {
    if (pictureWidth * kMaxHeight > pictureHeight * kMaxWidth) {
        cropWidth_ = std::max<std::size_t>(1, pictureHeight * kMaxWidth / kMaxHeight);
    } else {
        cropHeight_ = std::max<std::size_t>(1, pictureWidth * kMaxHeight / kMaxWidth);
    }
    cropLeft_ = (pictureWidth - cropWidth_) / 2;
    cropTop_ = (pictureHeight - cropHeight_) / 2;
    width_ = std::min(cropWidth_, kMaxWidth);
    height_ = std::min(cropHeight_, kMaxHeight);
    columnOf_.resize(cropWidth_);
    for (std::size_t x = 0; x < cropWidth_; ++x) {
        columnOf_[x] = static_cast<std::uint32_t>(x * width_ / cropWidth_);
    }
    sums_.resize(width_ * height_);
    constexpr std::size_t kRowsForOne = 8;
    rowStep_ = std::max<std::size_t>(1, cropHeight_ / (height_ * kRowsForOne));
}

void ThumbnailMaker::AddRows(std::size_t top, std::size_t rows, const std::uint32_t* pixels) {
    constexpr std::size_t kBytes = sizeof(std::uint32_t);
    AddRows(top, rows, reinterpret_cast<const std::uint8_t*>(pixels), kBytes, pictureWidth_ * kBytes);
}

void ThumbnailMaker::AddRows(std::size_t top, std::size_t rows, const std::uint8_t* bytes, std::size_t pixelBytes,
                             std::size_t rowBytes) {
    const std::size_t begin = std::max(top, cropTop_);
    const std::size_t end = std::min(top + rows, cropTop_ + cropHeight_);
    for (std::size_t y = begin; y < end; ++y) {
        if ((y - cropTop_) % rowStep_ != 0) {
            continue;
        }
        const std::uint8_t* pixel = bytes + (y - top) * rowBytes + cropLeft_ * pixelBytes;
        Sum* target = sums_.data() + (y - cropTop_) * height_ / cropHeight_ * width_;
        for (std::size_t x = 0; x < cropWidth_; ++x, pixel += pixelBytes) {
            Sum& sum = target[columnOf_[x]];
            sum.blue += pixel[0];
            sum.green += pixel[1];
            sum.red += pixel[2];
            ++sum.count;
        }
    }
}

std::vector<std::uint32_t> ThumbnailMaker::Pixels() const {
    std::vector<std::uint32_t> pixels;
    pixels.reserve(sums_.size());
    for (const Sum& sum : sums_) {
        const std::uint64_t count = std::max<std::uint32_t>(1, sum.count);
        pixels.push_back(0xFF000000 |
                         static_cast<std::uint32_t>(sum.red / count << 16 | sum.green / count << 8 | sum.blue / count));
    }
    return pixels;
}

}  // namespace pictures
