// Where a camera's picture goes in the window, whatever size and pixel shape the camera claims; and the mirror step
// with any pitch.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "fuzz/support/Input.h"
#include "fuzz/support/Require.h"
#include "preview/pixels/LetterBox.h"
#include "preview/pixels/MirrorPicture.h"
#include "preview/pixels/SourceExtent.h"

using namespace preview;

namespace {

constexpr std::int32_t kMostWindowSide = 0x8000;

void CheckScale(Input& in) {
    const auto number = in.Any<std::int32_t>();
    const auto numerator = in.Any<std::int32_t>();
    const auto denominator = in.Any<std::int32_t>();
    const std::int32_t result = ScaleRounded(number, numerator, denominator);
    const std::int64_t product = std::int64_t{number} * numerator;
    if (denominator == 0) {
        REQUIRE(result == -1);
        return;
    }
    // Twice the distance from the exact quotient is at most the denominator.
    const std::int64_t divisor = denominator;
    if (result != -1) {
        const __int128 off = static_cast<__int128>(product) - static_cast<__int128>(result) * divisor;
        REQUIRE(2 * (off < 0 ? -off : off) <= (divisor < 0 ? -divisor : divisor));
    } else {
        const bool outside = product / divisor >= std::numeric_limits<std::int32_t>::max() ||
                             product / divisor <= std::numeric_limits<std::int32_t>::min();
        REQUIRE(outside || product / divisor >= -2);
    }
}

void CheckBox(Input& in) {
    PictureSize size{static_cast<std::int32_t>(in.Within(1, kMostSide)),
                     static_cast<std::int32_t>(in.Within(1, kMostSide))};
    const PictureSize square = CorrectAspect(size, in.Any<std::uint32_t>(), in.Any<std::uint32_t>());
    REQUIRE(square.width >= size.width && square.height >= size.height);
    REQUIRE(square.width == size.width || square.height == size.height);
    if (in.Flag()) {
        size = square;
    }
    PictureRect target;
    target.left = in.Any<std::int16_t>();
    target.top = in.Any<std::int16_t>();
    target.right = target.left + static_cast<std::int32_t>(in.Within(0, kMostWindowSide));
    target.bottom = target.top + static_cast<std::int32_t>(in.Within(0, kMostWindowSide));
    const PictureRect box = LetterBox(size, target);
    REQUIRE(box.left >= target.left && box.right <= target.right && box.left <= box.right);
    REQUIRE(box.top >= target.top && box.bottom <= target.bottom && box.top <= box.bottom);
    // It touches two opposite sides.
    REQUIRE((box.left == target.left && box.right == target.right) ||
            (box.top == target.top && box.bottom == target.bottom));
}

void CheckMirror(Input& in) {
    const auto width = static_cast<std::uint32_t>(in.Within(0, 40));
    const auto pitch = static_cast<std::uint32_t>(in.Within(0, 255));
    const auto height = static_cast<std::uint32_t>(in.Within(0, 5));
    const auto content = in.Rest();
    std::vector<std::uint8_t> bits(std::size_t{pitch} * height);
    for (std::size_t i = 0; i < bits.size(); ++i) {
        bits[i] = static_cast<std::uint8_t>((content.empty() ? 0 : content[i % content.size()]) + i);
    }
    const std::vector<std::uint8_t> before = bits;
    MirrorPicture(bits.data(), pitch, width, height);
    const std::uint32_t pixel = BytesPerPixel(pitch, width);
    for (std::uint32_t y = 0; y < height; ++y) {
        const auto row = before.begin() + std::ptrdiff_t{y} * pitch;
        const auto now = bits.begin() + std::ptrdiff_t{y} * pitch;
        for (std::uint32_t x = 0; x < width; ++x) {
            REQUIRE(std::equal(row + x * pixel, row + (x + 1) * pixel, now + (width - 1 - x) * pixel));
        }
        REQUIRE(std::equal(row + pixel * width, row + pitch, now + pixel * width));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input in(data, size);
    CheckScale(in);
    CheckBox(in);
    CheckMirror(in);
    return 0;
}
