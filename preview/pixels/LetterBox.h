#pragma once
// Where a picture goes within a window: as large as fits, centred, its shape kept. All lengths in pixels.
// Pure functions, any thread.
#include <cstdint>

namespace preview {

struct PictureSize {
    std::int32_t width;
    std::int32_t height;
};

struct PictureRect {
    std::int32_t left;
    std::int32_t top;
    std::int32_t right;
    std::int32_t bottom;
};

// number * numerator / denominator in 64 bits, rounded to the nearest integer, halves away from zero; -1 when the
// denominator is 0 or the result leaves 32 bits. This is how the windowing system scales.
std::int32_t ScaleRounded(std::int32_t number, std::int32_t numerator, std::int32_t denominator);

// The size that a picture whose pixels are `numerator` wide and `denominator` high has in square pixels: one side
// grows, none shrinks. A ratio without a meaning (a part that is 0, a result past 32 bits) leaves the size alone.
PictureSize CorrectAspect(PictureSize size, std::uint32_t numerator, std::uint32_t denominator);

// The box for a picture of that size within `target`; left and top are rounded towards zero.
PictureRect LetterBox(PictureSize size, const PictureRect& target);

}  // namespace preview
