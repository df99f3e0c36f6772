#pragma once
// A picture of a file, read and scaled: what the cache keeps, and what is read ahead for it. Works on what it is given:
// any thread, COM usable on it. May throw std::bad_alloc.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "DuiLib/Geometry.h"
#include "markup/ImageAttribute.h"
#include "paint/PictureFile.h"
#include "theme/PictureTheme.h"

namespace DuiLib {

// Premultiplied 0xAARRGGBB, top row first.
struct ScaledImage {
    Size sizePx;
    std::vector<std::uint32_t> pixels;
    bool opaque = false;  // no pixel is translucent
};

struct Picture {
    Size sizePx;
    Size sizeDip;
    std::wstring name;                  // of the file, as it was asked for
    std::wstring file;                  // empty: registered
    int percent = 100;                  // of the file's rendition
    std::optional<MaskColors> tint;     // a mask's
    std::vector<std::uint32_t> pixels;  // empty: too large to keep, read from the file each time
    bool failed = false;

    bool Serves(const Picture& other) const { return file == other.file && tint == other.tint; }
};

// How a picture is drawn.
struct PictureUse {
    ImageAttribute image;
    Size sizePx;
    bool mirrored = false;
    int dpi = 96;
};

// Of a picture whose pixels are kept. Without pixels: it cannot be drawn so.
ScaledImage ScalePicture(const Picture& picture, const PictureUse& use);
// Opens the file once: a small picture's pixels are kept, those of a large one only pass through the scaler.
HRESULT ReadPicture(PictureDecoder& decoder, Picture& picture, const PictureUse& use, ScaledImage& scaled);

}  // namespace DuiLib
