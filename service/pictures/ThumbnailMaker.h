#pragma once
// Shrinks a picture whose rows come one band after the other to the gallery's thumbnail: the middle of the picture in
// the cell's proportions, each pixel the mean of those it stands for (of large pictures, of some of their rows).
//
// Threads: one at a time.
#include <cstddef>
#include <cstdint>
#include <vector>

namespace pictures {

class ThumbnailMaker {
  public:
    // A cell's 52 x 32 units at three pixels a unit, the most that a screen is drawn with.
    static constexpr std::size_t kMaxWidth = 156;
    static constexpr std::size_t kMaxHeight = 96;

    // REQUIRES: neither is 0.
    ThumbnailMaker(std::size_t pictureWidth, std::size_t pictureHeight);

    // Rows from `top` on, each as wide as the picture, blue, green, red and a byte that is left out of account.
    // REQUIRES: every row of the picture comes once.
    void AddRows(std::size_t top, std::size_t rows, const std::uint32_t* pixels);
    // The same for pixels of three bytes, or of four, and rows of that many bytes.
    void AddRows(std::size_t top, std::size_t rows, const std::uint8_t* bytes, std::size_t pixelBytes,
                 std::size_t rowBytes);

    // Smaller than the largest thumbnail where the picture is.
    std::size_t Width() const { return width_; }
    std::size_t Height() const { return height_; }
    // Opaque, top row first. REQUIRES: all rows have come.
    std::vector<std::uint32_t> Pixels() const;

  private:
    struct Sum {
        std::uint64_t blue = 0, green = 0, red = 0;
        std::uint32_t count = 0;
    };

    const std::size_t pictureWidth_;
    std::size_t cropLeft_ = 0, cropTop_ = 0, cropWidth_, cropHeight_;
    std::size_t width_, height_;
    std::size_t rowStep_ = 1;              // every so many rows of the crop count
    std::vector<std::uint32_t> columnOf_;  // thumbnail column of each column of the crop
    std::vector<Sum> sums_;
};

}  // namespace pictures
