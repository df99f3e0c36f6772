#include "paint/PictureRead.h"

#include <algorithm>

#include "paint/ImageScale.h"
#include "paint/MaskTint.h"

namespace DuiLib {
namespace {

// Decoded pixels of a picture are kept up to this many.
constexpr size_t kMaxKeptPixels = 512 * 512;

// One axis of a nine-grid: a part of the source and a length of the target, each with the margins at its ends that keep
// their size.
struct Axis {
    int begin, end;  // of the source's part
    int nearSource, farSource;
    int target;
    int nearTarget, farTarget;
};

// Where the three parts of an axis begin and end.
struct Cuts {
    int source[4];
    int target[4];
};

// Margins that do not leave a middle are made smaller; a target that is too small shows smaller corners.
Cuts CutAxis(const Axis& axis) {
    const int length = axis.end - axis.begin;
    const int nearSource = std::clamp(axis.nearSource, 0, std::max(0, length - 1));
    const int farSource = std::clamp(axis.farSource, 0, std::max(0, length - 1 - nearSource));
    int nearTarget = axis.nearTarget;
    int farTarget = axis.farTarget;
    if (nearTarget + farTarget > axis.target) {
        nearTarget = ScaleBy(axis.target, nearTarget, nearTarget + farTarget);
        farTarget = axis.target - nearTarget;
    }
    return {{axis.begin, axis.begin + nearSource, axis.end - farSource, axis.end},
            {0, nearTarget, axis.target - farTarget, axis.target}};
}

// Units of the picture to its pixels.
Rect InPixels(const Picture& picture, const Rect& dip) {
    const Size px = picture.sizePx, unit{std::max(1, picture.sizeDip.cx), std::max(1, picture.sizeDip.cy)};
    return {ScaleBy(dip.left, px.cx, unit.cx), ScaleBy(dip.top, px.cy, unit.cy), ScaleBy(dip.right, px.cx, unit.cx),
            ScaleBy(dip.bottom, px.cy, unit.cy)};
}

std::vector<std::uint32_t> ScaleParts(const Picture& picture, const std::vector<std::uint32_t>& pixels,
                                      const PictureUse& use) {
    const ImageAttribute& image = use.image;
    const Size sizePx = use.sizePx;
    const Rect whole{0, 0, picture.sizePx.cx, picture.sizePx.cy};
    const Rect part = image.sourceDip ? InPixels(picture, *image.sourceDip).Intersect(whole) : whole;
    if (pixels.empty() || part.IsEmpty()) {
        return {};
    }
    std::vector<std::uint32_t> result(static_cast<size_t>(sizePx.cx) * static_cast<size_t>(sizePx.cy));
    const ConstPixelView source{pixels.data(), picture.sizePx.cx, picture.sizePx.cy, picture.sizePx.cx};
    const PixelView target{result.data(), sizePx.cx, sizePx.cy, sizePx.cx};
    const Rect& corner = image.cornerDip;
    const Rect cornerPx = InPixels(picture, corner);
    const Cuts x = CutAxis({.begin = part.left,
                            .end = part.right,
                            .nearSource = cornerPx.left,
                            .farSource = cornerPx.right,
                            .target = sizePx.cx,
                            .nearTarget = DipToPx(corner.left, use.dpi),
                            .farTarget = DipToPx(corner.right, use.dpi)});
    const Cuts y = CutAxis({.begin = part.top,
                            .end = part.bottom,
                            .nearSource = cornerPx.top,
                            .farSource = cornerPx.bottom,
                            .target = sizePx.cy,
                            .nearTarget = DipToPx(corner.top, use.dpi),
                            .farTarget = DipToPx(corner.bottom, use.dpi)});
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            ScalePart(source, {x.source[column], y.source[row], x.source[column + 1], y.source[row + 1]}, target,
                      {x.target[column], y.target[row], x.target[column + 1], y.target[row + 1]});
        }
    }
    return result;
}

void Tint(const Picture& picture, std::vector<std::uint32_t>& pixels) {
    if (picture.tint) {
        TintMask(pixels, *picture.tint);
    }
}

std::vector<std::uint32_t> ReadWhole(const Picture& picture, const RowReader& read, Size sizePx) {
    std::vector<std::uint32_t> pixels = ScaleRows(read, sizePx, sizePx);
    Tint(picture, pixels);
    return pixels;
}

ScaledImage Finished(std::vector<std::uint32_t> pixels, const PictureUse& use) {
    if (use.mirrored && !pixels.empty()) {
        MirrorRows(pixels, use.sizePx);
    }
    const bool opaque = std::all_of(pixels.begin(), pixels.end(), [](std::uint32_t p) { return p >> 24 == 255; });
    return {use.sizePx, std::move(pixels), opaque};
}

}  // namespace

ScaledImage ScalePicture(const Picture& picture, const PictureUse& use) {
    return Finished(ScaleParts(picture, picture.pixels, use), use);
}

HRESULT ReadPicture(PictureDecoder& decoder, Picture& picture, const PictureUse& use, ScaledImage& scaled) {
    std::vector<std::uint32_t> pixels;
    const HRESULT hr = decoder.Open(picture.file, [&](Size sizePx, const RowReader& read) {
        picture.sizePx = sizePx;
        picture.sizeDip = {ScaleBy(sizePx.cx, 100, picture.percent), ScaleBy(sizePx.cy, 100, picture.percent)};
        if (static_cast<size_t>(sizePx.cx) * static_cast<size_t>(sizePx.cy) <= kMaxKeptPixels) {
            picture.pixels = ReadWhole(picture, read, sizePx);
            pixels = ScaleParts(picture, picture.pixels, use);
        } else if (!use.image.sourceDip && use.image.cornerDip == Rect{}) {
            pixels = ScaleRows(read, sizePx, use.sizePx);
            Tint(picture, pixels);
        } else {
            pixels = ScaleParts(picture, ReadWhole(picture, read, sizePx), use);
        }
        return S_OK;
    });
    if (SUCCEEDED(hr)) {
        scaled = Finished(std::move(pixels), use);
    }
    return hr;
}

}  // namespace DuiLib
