#include "service/pictures/ExifOrientation.h"

#include <gmock/gmock.h>

#include <vector>

namespace ExifOrientation = pictures::ExifOrientation;

namespace {

using testing::ElementsAre;
using Bytes = std::vector<std::uint8_t>;

// A file with the notes of a camera that writes its numbers in that order.
Bytes FileWith(std::uint8_t value, bool littleEndian) {
    Bytes notes{'E', 'x', 'i', 'f', 0, 0};
    const auto number = [&](std::uint32_t n, int size) {
        for (int i = 0; i < size; ++i)
            notes.push_back(static_cast<std::uint8_t>(n >> 8 * (littleEndian ? i : size - 1 - i)));
    };
    notes.insert(notes.end(), 2, littleEndian ? 'I' : 'M');
    number(42, 2);
    number(8, 4);
    number(2, 2);
    for (const std::uint32_t tag : {0x010Fu, 0x0112u}) {
        number(tag, 2);
        number(tag == 0x0112u ? 3 : 2, 2);
        number(1, 4);
        number(value, 2);
        number(0, 2);
    }
    Bytes file{0xFF, 0xD8, 0xFF, 0xE0, 0, 4, 'J', 'F', 0xFF, 0xE1};
    file.push_back(static_cast<std::uint8_t>((notes.size() + 2) >> 8));
    file.push_back(static_cast<std::uint8_t>(notes.size() + 2));
    file.insert(file.end(), notes.begin(), notes.end());
    file.insert(file.end(), {0xFF, 0xDA, 0, 2});
    return file;
}

TEST(ExifOrientation, IsReadInBothByteOrders) {
    for (std::uint8_t value = 1; value <= 8; ++value) {
        EXPECT_EQ(ExifOrientation::Read(FileWith(value, true)), value);
        EXPECT_EQ(ExifOrientation::Read(FileWith(value, false)), value);
    }
}

TEST(ExifOrientation, IsUprightForWhatIsNotUnderstood) {
    EXPECT_EQ(ExifOrientation::Read({}), 1);
    EXPECT_EQ(ExifOrientation::Read(FileWith(0, true)), 1);
    EXPECT_EQ(ExifOrientation::Read(FileWith(9, true)), 1);
    EXPECT_EQ(ExifOrientation::Read(Bytes{0x89, 'P', 'N', 'G'}), 1);
    const Bytes whole = FileWith(6, true);
    for (std::size_t size = 0; size < whole.size() - 24; ++size)
        EXPECT_EQ(ExifOrientation::Read({whole.data(), size}), 1) << size;
}

// 3 x 2: 1 2 3
//        4 5 6
std::vector<std::uint32_t> Upright(int orientation) {
    const std::vector<std::uint32_t> stored{1, 2, 3, 4, 5, 6};
    std::vector<std::uint32_t> upright(6);
    const bool swaps = ExifOrientation::SwapsSides(orientation);
    const std::size_t rows = swaps ? 3 : 2;
    const std::size_t columns = swaps ? 2 : 3;
    // Row by row, as bands come.
    for (std::size_t row = 0; row < rows; ++row)
        ExifOrientation::TurnRows(stored.data(), 3, 2, orientation, row, 1, upright.data() + row * columns);
    return upright;
}

TEST(ExifOrientation, EachIsPutUpright) {
    EXPECT_THAT(Upright(1), ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_THAT(Upright(2), ElementsAre(3, 2, 1, 6, 5, 4));
    EXPECT_THAT(Upright(3), ElementsAre(6, 5, 4, 3, 2, 1));
    EXPECT_THAT(Upright(4), ElementsAre(4, 5, 6, 1, 2, 3));
    EXPECT_THAT(Upright(5), ElementsAre(1, 4, 2, 5, 3, 6));
    EXPECT_THAT(Upright(6), ElementsAre(4, 1, 5, 2, 6, 3));
    EXPECT_THAT(Upright(7), ElementsAre(6, 3, 5, 2, 4, 1));
    EXPECT_THAT(Upright(8), ElementsAre(3, 6, 2, 5, 1, 4));
}

}  // namespace
