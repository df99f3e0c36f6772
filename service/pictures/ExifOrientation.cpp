#include "service/pictures/ExifOrientation.h"

#include <algorithm>
#include <array>

namespace pictures::ExifOrientation {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint8_t kMarker = 0xFF;
constexpr std::uint8_t kStartOfScan = 0xDA;
constexpr std::uint8_t kNotes = 0xE1;
constexpr std::array<std::uint8_t, 6> kNotesName{'E', 'x', 'i', 'f', 0, 0};
constexpr std::size_t kEntrySize = 12;
constexpr std::uint32_t kOrientationTag = 0x0112;
constexpr std::uint32_t kShortNumber = 3;

// Reads beyond the end give 0, which no structure below takes for anything.
std::uint32_t Number(Bytes bytes, std::size_t at, std::size_t size, bool littleEndian) {
    if (at > bytes.size() || bytes.size() - at < size) {
        return 0;
    }
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < size; ++i) {
        number = number << 8 | bytes[at + (littleEndian ? size - 1 - i : i)];
    }
    return number;
}

// The directory of notes: byte order, offset of the first directory, then its entries.
int FromNotes(Bytes notes) {
    const std::uint32_t order = Number(notes, 0, 2, false);
    if (order != 0x4949 && order != 0x4D4D) {
        return kUpright;
    }
    const bool little = order == 0x4949;
    const std::size_t directory = Number(notes, 4, 4, little);
    const std::size_t count = Number(notes, directory, 2, little);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t entry = directory + 2 + i * kEntrySize;
        if (entry >= notes.size()) {
            break;
        }
        if (Number(notes, entry, 2, little) != kOrientationTag) {
            continue;
        }
        const std::uint32_t value = Number(notes, entry + 8, 2, little);
        const bool valid = Number(notes, entry + 2, 2, little) == kShortNumber && value >= 1 && value <= 8;
        return valid ? static_cast<int>(value) : kUpright;
    }
    return kUpright;
}

}  // namespace

int Read(Bytes file) {
    if (Number(file, 0, 2, false) != 0xFFD8) {
        return kUpright;
    }
    std::size_t at = 2;
    while (at + 4 <= file.size() && file[at] == kMarker) {
        const std::uint8_t kind = file[at + 1];
        if (kind == kMarker) {
            ++at;  // padding
            continue;
        }
        const std::size_t length = Number(file, at + 2, 2, false);
        if (kind == kStartOfScan || length < 2) {
            break;
        }
        const Bytes content = file.subspan(at + 4, std::min(length - 2, file.size() - at - 4));
        if (kind == kNotes && content.size() > kNotesName.size() &&
            std::equal(kNotesName.begin(), kNotesName.end(), content.begin())) {
            return FromNotes(content.subspan(kNotesName.size()));
        }
        at += 2 + length;
    }
    return kUpright;
}

void TurnRows(const std::uint32_t* stored, std::size_t width, std::size_t height, int orientation, std::size_t top,
              std::size_t rows, std::uint32_t* upright) {
    // Every orientation is a corner to begin at and a direction for each of the two axes.
    const auto down = static_cast<std::ptrdiff_t>(width);
    const bool swaps = SwapsSides(orientation);
    const bool fromRight = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
    const bool fromBottom = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
    const std::ptrdiff_t alongWidth = fromRight ? -1 : 1;
    const std::ptrdiff_t alongHeight = fromBottom ? -down : down;
    const std::ptrdiff_t stepX = swaps ? alongHeight : alongWidth;
    const std::ptrdiff_t stepY = swaps ? alongWidth : alongHeight;
    const std::size_t columns = swaps ? height : width;
    const std::ptrdiff_t corner =
        (fromRight ? down - 1 : 0) + (fromBottom ? (static_cast<std::ptrdiff_t>(height) - 1) * down : 0);

    for (std::size_t row = 0; row < rows; ++row) {
        std::ptrdiff_t from = corner + static_cast<std::ptrdiff_t>(top + row) * stepY;
        for (std::size_t column = 0; column < columns; ++column) {
            *upright++ = stored[from];
            from += stepX;
        }
    }
}

}  // namespace pictures::ExifOrientation
