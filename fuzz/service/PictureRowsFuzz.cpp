// A picture's pixels on their way into the gallery: turned upright band by band, and shrunk band by band, over exactly
// the memory that they need.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/support/Input.h"
#include "fuzz/support/Require.h"
#include "service/pictures/ExifOrientation.h"
#include "service/pictures/ThumbnailMaker.h"

namespace ExifOrientation = pictures::ExifOrientation;
using pictures::ThumbnailMaker;

namespace {

struct Picture {
    std::size_t width, height;
    std::vector<std::uint32_t> pixels;
};

// Mostly small, now and then one long side.
Picture TakePicture(Input& in) {
    constexpr std::size_t kMostPixels = 3'000;
    const bool small = in.Any<std::uint8_t>() % 8 != 0;
    Picture picture;
    picture.width = static_cast<std::size_t>(in.Within(1, small ? 40 : 3000));
    picture.height = static_cast<std::size_t>(in.Within(1, small ? 40 : 3000));
    while (picture.width * picture.height > kMostPixels) {
        std::size_t& shorter = picture.width < picture.height ? picture.width : picture.height;
        std::size_t& longer = picture.width < picture.height ? picture.height : picture.width;
        (shorter > 1 ? shorter : longer) /= 2;
    }
    const auto color = in.Any<std::uint32_t>();
    const auto change = in.Flag() ? in.Any<std::uint32_t>() : 0;
    for (std::size_t i = 0; i < picture.width * picture.height; ++i) {
        picture.pixels.push_back(color ^ static_cast<std::uint32_t>(i) * change);
    }
    return picture;
}

Picture Upright(const Picture& stored, int orientation, std::size_t band) {
    Picture upright = stored;
    if (ExifOrientation::SwapsSides(orientation)) {
        std::swap(upright.width, upright.height);
    }
    upright.pixels.clear();
    for (std::size_t top = 0; top < upright.height; top += band) {
        const std::size_t rows = std::min(band, upright.height - top);
        std::vector<std::uint32_t> turned(rows * upright.width);
        ExifOrientation::TurnRows(stored.pixels.data(), stored.width, stored.height, orientation, top, rows,
                                  turned.data());
        upright.pixels.insert(upright.pixels.end(), turned.begin(), turned.end());
    }
    return upright;
}

// Where each orientation says that a pixel of the upright picture was stored.
std::uint32_t StoredPixel(const Picture& stored, int orientation, std::size_t x, std::size_t y) {
    const std::size_t right = stored.width - 1, bottom = stored.height - 1;
    const auto at = [&](std::size_t column, std::size_t row) { return stored.pixels[row * stored.width + column]; };
    switch (orientation) {
        case 1:
            return at(x, y);
        case 2:
            return at(right - x, y);
        case 3:
            return at(right - x, bottom - y);
        case 4:
            return at(x, bottom - y);
        case 5:
            return at(y, x);
        case 6:
            return at(y, bottom - x);
        case 7:
            return at(right - y, bottom - x);
        default:
            return at(right - y, x);
    }
}

void CheckTurning(const Picture& stored, int orientation, std::size_t band) {
    const Picture upright = Upright(stored, orientation, band);
    for (std::size_t y = 0; y < upright.height; ++y) {
        for (std::size_t x = 0; x < upright.width; ++x) {
            REQUIRE(upright.pixels[y * upright.width + x] == StoredPixel(stored, orientation, x, y));
        }
    }
}

std::vector<std::uint32_t> Shrunk(const Picture& picture, std::size_t band, std::size_t pixelBytes, std::size_t gap) {
    ThumbnailMaker maker(picture.width, picture.height);
    REQUIRE(maker.Width() > 0 && maker.Width() <= ThumbnailMaker::kMaxWidth && maker.Width() <= picture.width);
    REQUIRE(maker.Height() > 0 && maker.Height() <= ThumbnailMaker::kMaxHeight && maker.Height() <= picture.height);
    const std::size_t rowBytes = picture.width * pixelBytes + gap;
    for (std::size_t top = 0; top < picture.height; top += band) {
        const std::size_t rows = std::min(band, picture.height - top);
        std::vector<std::uint8_t> bytes(rowBytes * (rows - 1) + picture.width * pixelBytes);
        for (std::size_t i = 0; i < rows * picture.width; ++i) {
            const std::uint32_t pixel = picture.pixels[top * picture.width + i];
            std::uint8_t* to = bytes.data() + i / picture.width * rowBytes + i % picture.width * pixelBytes;
            for (std::size_t byte = 0; byte < pixelBytes; ++byte) {
                to[byte] = static_cast<std::uint8_t>(pixel >> (8 * byte));
            }
        }
        maker.AddRows(top, rows, bytes.data(), pixelBytes, rowBytes);
    }
    const std::vector<std::uint32_t> pixels = maker.Pixels();
    REQUIRE(pixels.size() == maker.Width() * maker.Height());
    return pixels;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input in(data, size);
    const Picture picture = TakePicture(in);
    const auto band = static_cast<std::size_t>(in.Within(1, 64));
    CheckTurning(picture, static_cast<int>(in.Within(1, 8)), band);

    const std::vector<std::uint32_t> small = Shrunk(picture, picture.height, 4, 0);
    REQUIRE(Shrunk(picture, band, 4, 0) == small);
    REQUIRE(Shrunk(picture, band, 3, static_cast<std::size_t>(in.Within(0, 9))) == small);
    // Each is a mean of the picture's pixels: between the smallest and the largest, and opaque.
    for (const int shift : {0, 8, 16}) {
        const auto channel = [shift](std::uint32_t pixel) { return pixel >> shift & 0xFF; };
        const auto less = [&](std::uint32_t a, std::uint32_t b) { return channel(a) < channel(b); };
        const auto [least, most] = std::minmax_element(picture.pixels.begin(), picture.pixels.end(), less);
        for (const std::uint32_t pixel : small) {
            REQUIRE(channel(pixel) >= channel(*least) && channel(pixel) <= channel(*most) && pixel >> 24 == 0xFF);
        }
    }
    return 0;
}
