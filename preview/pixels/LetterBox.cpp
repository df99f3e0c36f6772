#include "preview/pixels/LetterBox.h"

#include <limits>

namespace preview {

std::int32_t ScaleRounded(std::int32_t number, std::int32_t numerator, std::int32_t denominator) {
    if (denominator == 0) {
        return -1;
    }
    const std::int64_t product = std::int64_t{number} * numerator;
    const bool negative = (product < 0) != (denominator < 0);
    const std::int64_t divisor = denominator < 0 ? -std::int64_t{denominator} : denominator;
    const std::int64_t magnitude = ((product < 0 ? -product : product) + divisor / 2) / divisor;
    const std::int64_t result = negative ? -magnitude : magnitude;
    if (result > std::numeric_limits<std::int32_t>::max() || result < std::numeric_limits<std::int32_t>::min()) {
        return -1;
    }
    return static_cast<std::int32_t>(result);
}

PictureSize CorrectAspect(PictureSize size, std::uint32_t numerator, std::uint32_t denominator) {
    constexpr std::uint32_t kMost = std::numeric_limits<std::int32_t>::max();
    if (numerator > kMost || denominator > kMost) {
        return size;
    }
    // A part that is 0 has no result below.
    const auto n = static_cast<std::int32_t>(numerator);
    const auto d = static_cast<std::int32_t>(denominator);
    PictureSize corrected = size;
    if (n > d) {
        corrected.width = ScaleRounded(size.width, n, d);
    } else if (n < d) {
        corrected.height = ScaleRounded(size.height, d, n);
    }
    return corrected.width > 0 && corrected.height > 0 ? corrected : size;
}

PictureRect LetterBox(PictureSize size, const PictureRect& target) {
    const std::int32_t targetWidth = target.right - target.left;
    const std::int32_t targetHeight = target.bottom - target.top;
    PictureSize box;
    const std::int32_t fullWidth = ScaleRounded(size.width, targetHeight, size.height);
    // Negative: a picture so flat that its width has no number.
    if (fullWidth < 0 || fullWidth > targetWidth) {
        box = {targetWidth, ScaleRounded(targetWidth, size.height, size.width)};
    } else {
        box = {fullWidth, targetHeight};
    }
    const std::int32_t left = target.left + (targetWidth - box.width) / 2;
    const std::int32_t top = target.top + (targetHeight - box.height) / 2;
    return {left, top, left + box.width, top + box.height};
}

}  // namespace preview
