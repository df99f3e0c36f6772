#pragma once
// What a theme makes of pictures: the folders where they are looked for, the colours of masks, and the pictures that
// are never mirrored. Pictures go by the name of their file without folder and ending. Pure logic. Thread: UI thread.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace DuiLib {

// What a mask's white and its black become, 0xFFRRGGBB.
struct MaskColors {
    std::uint32_t white = 0, black = 0;
    bool operator==(const MaskColors&) const = default;
};

struct PictureTheme {
    struct Mask {
        std::wstring name;
        MaskColors colors;
    };

    // Families of folders, the first to be looked into first: "drawable-dark" stands for drawable-dark-125 and so on.
    std::vector<std::wstring> families{L"drawable"};
    std::wstring maskFamily;  // one of them, or none: its pictures are masks
    std::vector<Mask> masks;
    MaskColors otherMasks;  // the colours of a mask that has none of its own
    std::vector<std::wstring> upright;

    MaskColors ColorsOf(std::wstring_view path) const;
    bool IsUpright(std::wstring_view path) const;
};

}  // namespace DuiLib
