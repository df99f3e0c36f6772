#include "tools/democamera/Person.h"

namespace democamera {

namespace {

constexpr Rgb kSkin = FromHex(0xE0AC8A);
constexpr Rgb kBrightSkin = FromHex(0xFBE3D3);
constexpr Rgb kSkinShade = FromHex(0xB97B5E);
constexpr Rgb kBlush = FromHex(0xE2786A);
constexpr Rgb kSpot = FromHex(0x9C5A42);
constexpr Rgb kHair = FromHex(0x3A2A2B);
constexpr Rgb kHairLight = FromHex(0x74504A);
constexpr Rgb kCloth = FromHex(0x2C7A86);
constexpr Rgb kClothLight = FromHex(0x4FA6AE);
constexpr Rgb kClothDark = FromHex(0x1B5560);
constexpr Rgb kLips = FromHex(0xB9504F);
constexpr Rgb kIris = FromHex(0x6B4A2E);
constexpr Rgb kLash = FromHex(0x2A1E20);
constexpr Rgb kWhite = FromHex(0xFFFFFF);

constexpr float kEyeX = 37;
constexpr float kEyeY = 8;
constexpr float kFaceHeight = 114;

Rgb SkinOf(const PersonLook& look) {
    return Mix(kSkin, kBrightSkin, 0.85F * look.white);
}

// Narrower towards the chin.
float FaceDistance(const PersonLook& look, float x, float y) {
    const float chin = Smooth(-10, kFaceHeight, y);
    const float radius = 90 * (1 - 0.05F * look.thin) * (1 - (0.16F + 0.14F * look.thin) * chin);
    return EllipseDistance(x, y, radius, kFaceHeight);
}

void PaintHairBehind(Layer& layer) {
    Paint(layer, {-130, -150, 130, 150}, [&](float x, float y) {
        const float crown = EllipseDistance(x, y + 26, 116, 116);
        const float fall = BoxDistance(x, y - 36, 116 - 8 * Smooth(60, 130, y), 100, 52);
        const float sheen = 0.35F * Smooth(-130, 110, y) * Smooth(120, 40, std::abs(x));
        return Ink{Mix(kHair, {22, 15, 17}, sheen), Coverage(std::min(crown, fall), layer.Edge())};
    });
}

void PaintBody(Layer& layer, const PersonLook& look) {
    const float edge = layer.Edge();
    const Rgb skin = SkinOf(look);
    const auto shoulders = [](float x, float y) {
        const float round = EllipseDistance(x, y - 330, 232, 150);
        const float neck = EllipseDistance(x, y - 218, 118, 52);
        const float chest = BoxDistance(x, y - 520, 232, 190, 1);
        return std::min({round, neck, chest});
    };
    Paint(layer, {-260, 130, 260, 520}, [&](float x, float y) {
        const float light = Clamp01(0.5F - x / 420);
        const float fold = 0.25F * Smooth(34, 0, std::abs(std::abs(x) - 150 - 0.10F * (y - 260))) * Smooth(230, 420, y);
        Rgb color = Mix(kClothDark, kClothLight, 0.15F + 0.7F * light);
        color = Mix(color, kCloth, 0.45F);
        return Ink{Mix(color, kClothDark, fold), Coverage(shoulders(x, y), edge)};
    });
    // The neck and the opening of the collar.
    Paint(layer, {-80, 60, 80, 240}, [&](float x, float y) {
        const float neck = BoxDistance(x, y - 120, 37 + 10 * Smooth(120, 175, y), 75, 20);
        const float collar = EllipseDistance(x, y - 170, 58, 40);
        const float shade = 0.75F * Smooth(165, 85, y) + 0.2F * Smooth(-10, 50, x);
        return Ink{Mix(skin, kSkinShade, Clamp01(shade)), Coverage(std::min(neck, collar), edge)};
    });
    Paint(layer, {-80, 150, 80, 230}, [&](float x, float y) {
        const float band = std::abs(EllipseDistance(x, y - 170, 61, 43)) - 5;
        return Ink{kClothDark, Coverage(band, edge) * Smooth(165, 178, y)};
    });
}

void PaintSpots(Layer& layer, float strength) {
    struct Spot {
        float x, y, radius, alpha;
    };
    static constexpr Spot kSpots[] = {{-48, 44, 3.4F, 0.8F},  {-58, 34, 2.4F, 0.6F}, {-40, 56, 2.2F, 0.6F},
                                      {46, 46, 3.0F, 0.8F},   {56, 38, 2.2F, 0.6F},  {38, 60, 2.6F, 0.7F},
                                      {-16, -40, 2.6F, 0.6F}, {22, -46, 2.2F, 0.5F}, {8, 92, 2.6F, 0.6F},
                                      {-30, 82, 2.4F, 0.5F},  {62, 14, 2.0F, 0.5F},  {-64, 18, 2.0F, 0.5F}};
    for (const Spot& spot : kSpots) {
        Paint(layer, {spot.x - 6, spot.y - 6, spot.x + 6, spot.y + 6}, [&](float x, float y) {
            const float distance = std::hypot(x - spot.x, y - spot.y);
            return Ink{kSpot, strength * spot.alpha * 0.7F * Smooth(spot.radius + 1.5F, 0.5F, distance)};
        });
    }
    // Below the eyes, and beside the mouth.
    for (const float side : {-1.0F, 1.0F}) {
        Paint(layer, {side * kEyeX - 26, 14, side * kEyeX + 26, 40}, [&](float x, float y) {
            const float ring = std::abs(EllipseDistance(x - side * kEyeX, y - 10, 22, 18));
            return Ink{kSkinShade, strength * 0.45F * Smooth(6, 0, ring) * Smooth(16, 24, y)};
        });
        Paint(layer, {side > 0 ? 24.0F : -44.0F, 34, side > 0 ? 44.0F : -24.0F, 74}, [&](float x, float y) {
            const float line = LineDistance(x, y, side * 27, 40, side * 38, 66, 0.5F);
            return Ink{kSkinShade, strength * 0.28F * Smooth(4, 0, line)};
        });
    }
}

void PaintFace(Layer& layer, const PersonLook& look) {
    const float edge = layer.Edge();
    const Rgb skin = SkinOf(look);
    for (const float side : {-1.0F, 1.0F}) {
        Paint(layer, {side * 90 - 20, -24, side * 90 + 20, 44}, [&](float x, float y) {
            const float ear = EllipseDistance(x - side * 87 * (1 - 0.05F * look.thin), y - 10, 15, 25);
            return Ink{Mix(skin, kSkinShade, 0.35F), Coverage(ear, edge)};
        });
    }
    Paint(layer, {-100, -130, 100, 130}, [&](float x, float y) {
        const float distance = FaceDistance(look, x, y);
        const float rim = 0.42F * Smooth(-42, 4, distance);
        const float side = 0.22F * Smooth(-20, 90, x);
        const float forehead = 0.25F * Smooth(-30, -90, y);
        Rgb color = Mix(skin, kSkinShade, Clamp01(rim + side + forehead));
        color = Mix(color, kWhite, 0.10F * Smooth(60, 0, std::hypot(x + 30, y - 20)));
        return Ink{color, Coverage(distance, edge)};
    });
    for (const float side : {-1.0F, 1.0F}) {
        Paint(layer, {side * 52 - 36, 20, side * 52 + 36, 80}, [&](float x, float y) {
            const float soft = Smooth(1, 0, std::hypot((x - side * 50) / 32, (y - 48) / 24));
            return Ink{kBlush, 0.30F * soft * Coverage(FaceDistance(look, x, y) + 4, 10)};
        });
    }
    PaintSpots(layer, 1 - look.smooth);
    // The nose: a shadow on one side, a light on its tip.
    Paint(layer, {-20, 0, 26, 54}, [&](float x, float y) {
        const float bridge = LineDistance(x, y, 7, 8, 11, 38, 1);
        const float tip = std::abs(EllipseDistance(x, y - 36, 13, 10));
        const float alpha = 0.30F * Smooth(7, 0, bridge) + 0.5F * Smooth(4, 0, tip) * Smooth(36, 44, y);
        return Ink{kSkinShade, Clamp01(alpha)};
    });
    Paint(layer, {-12, 18, 12, 42}, [&](float x, float y) {
        return Ink{kWhite, 0.35F * Smooth(9, 0, std::hypot((x + 2) * 1.3F, y - 31))};
    });
}

void PaintHairInFront(Layer& layer, const PersonLook& look) {
    const float edge = layer.Edge();
    Paint(layer, {-125, -150, 125, 120}, [&](float x, float y) {
        const float cap = std::min(EllipseDistance(x, y + 22, 106, 112), FaceDistance(look, x, y) - 9);
        // The hair line: parted on one side, falling to the temples.
        const float part = x + 34;
        const float line = part > 0 ? -84 + 0.0080F * part * part : -84 + 0.034F * part * part;
        const float below = Coverage(line - y, 2 * edge);
        const float strand = 0.5F + 0.5F * std::sin(0.22F * (x + 34) + 0.05F * y);
        const float sheen = Smooth(46, 0, std::abs(y + 98 - 0.004F * x * x)) * (0.35F + 0.35F * strand);
        return Ink{Mix(kHair, kHairLight, sheen), Coverage(cap, edge) * (1 - below)};
    });
    // The hair throws a shadow on the forehead.
    Paint(layer, {-90, -90, 90, 0}, [&](float x, float y) {
        const float part = x + 34;
        const float line = part > 0 ? -84 + 0.0080F * part * part : -84 + 0.034F * part * part;
        const float alpha = y > line ? 0.35F * Smooth(16, 0, y - line) : 0;
        return Ink{kSkinShade, alpha * Coverage(FaceDistance(look, x, y) + 2, 2)};
    });
    for (const float side : {-1.0F, 1.0F}) {
        Paint(layer, {side * kEyeX - 30, -34, side * kEyeX + 30, 0}, [&](float x, float y) {
            const float u = (x - side * kEyeX) * side;  // from the nose outwards
            const float arch = -24 - 3 * Smooth(-24, 4, u) + 6 * Smooth(4, 26, u);
            const float brow = std::max(std::abs(y - arch) - Mix(4.4F, 1.6F, Clamp01((u + 22) / 46)), std::abs(u) - 23);
            return Ink{kHair, 0.85F * Coverage(brow, 1.6F * edge)};
        });
    }
}

void PaintEye(std::uint32_t* picture, const Layer& place, const PersonLook& look, const FaceMoment& moment,
              float side) {
    const float edge = place.Edge();
    const float size = 1 + 0.22F * look.eye;
    const float halfWidth = 20 * size;
    const float openness = 1 - moment.lid;
    const float upper = 12.5F * size * openness;
    const float lower = 9.5F * size * Mix(0.25F, 1.0F, openness);
    const float cx = side * kEyeX;
    const float irisX = 7.0F * moment.gazeX;
    const float irisY = 3.5F * moment.gazeY;
    const float irisRadius = 9.8F * size;
    const Rgb skin = SkinOf(look);
    PaintOn(picture, place, {cx - 32, kEyeY - 24, cx + 32, kEyeY + 22}, [&](float px, float py) {
        const float x = px - cx;
        const float y = py - kEyeY;
        const float curve = std::max(0.0F, 1 - x * x / (halfWidth * halfWidth));
        const float top = -upper * std::sqrt(curve) - (1 - openness) * -lower * 0.6F * curve;
        const float bottom = lower * curve;
        const float open = Coverage(std::max(top - y, y - bottom), 1.5F * edge) * (curve > 0 ? 1.0F : 0.0F);
        Ink ink;
        if (open > 0) {
            Rgb color = Mix(FromHex(0xF7F4F2), FromHex(0xC9C3C6), 0.8F * Smooth(top + 7, top, y));
            const float r = std::hypot(x - irisX, y - irisY);
            const Rgb iris = Mix(kIris, FromHex(0xA9764A), Smooth(-irisRadius, irisRadius, y - irisY) * 0.8F);
            color = Mix(color, Mix(iris, kLash, Smooth(irisRadius - 3, irisRadius, r)), Coverage(r - irisRadius, edge));
            color = Mix(color, FromHex(0x120C0C), Coverage(r - 4.8F * size, edge));
            color = Mix(color, kWhite, Coverage(std::hypot(x - irisX + 3.4F, y - irisY + 3.6F) - 2.6F, edge));
            ink = {color, open};
        }
        // Lashes along the upper lid, a little beyond the outer corner; a fold above.
        const float outward = x * side;
        const float lash = std::abs(y - top) - Mix(1.3F, 2.6F, Smooth(-20, 20, outward));
        const float lashes = curve > 0 ? Coverage(lash, 1.5F * edge) : 0;
        if (lashes > 0) {
            ink = {Mix(ink.color, kLash, lashes), std::max(ink.alpha, lashes)};
        } else if (ink.alpha == 0 && curve > 0 && y < top) {
            ink = {Mix(skin, kSkinShade, 0.9F), 0.55F * Smooth(2.2F, 0, std::abs(y - top + 6.5F)) * curve};
        }
        return ink;
    });
}

void PaintMouth(std::uint32_t* picture, const Layer& place, const FaceMoment& moment) {
    const float edge = place.Edge();
    const float halfWidth = 25 + 4 * moment.smile;
    const float lift = 5 + 5 * moment.smile;
    PaintOn(picture, place, {-36, 52, 36, 92}, [&](float x, float y) {
        const float u = x / halfWidth;
        const float curve = std::max(0.0F, 1 - u * u);
        const float middle = 72 - lift * u * u + 1.5F;
        const float upperLip = middle - 5.5F * curve + 1.6F * Smooth(0.28F, 0, std::abs(u));
        const float lowerLip = middle + 8.0F * curve;
        const float within = std::abs(u) < 1 ? Coverage(std::max(upperLip - y, y - lowerLip), 1.5F * edge) : 0;
        const float line = std::abs(u) < 1.06F ? Coverage(std::abs(y - middle) - 1.1F, 1.5F * edge) : 0;
        Rgb color = Mix(kLips, FromHex(0xD8797A), Smooth(middle, lowerLip, y));
        color = Mix(color, FromHex(0x6E2A2C), line);
        return Ink{color, std::max(within * 0.92F, line)};
    });
}

}  // namespace

PersonLayers PaintPerson(const PersonLook& look, float scale) {
    PersonLayers layers{Layer::ForBox({-130, -150, 130, 150}, scale), Layer::ForBox({-260, 60, 260, 520}, scale),
                        Layer::ForBox({-130, -150, 130, 130}, scale)};
    PaintHairBehind(layers.hair);
    PaintBody(layers.body, look);
    PaintFace(layers.head, look);
    PaintHairInFront(layers.head, look);
    return layers;
}

void PaintFaceMoment(std::uint32_t* picture, const Layer& place, const PersonLook& look, const FaceMoment& moment) {
    PaintEye(picture, place, look, moment, -1);
    PaintEye(picture, place, look, moment, 1);
    PaintMouth(picture, place, moment);
}

}  // namespace democamera
