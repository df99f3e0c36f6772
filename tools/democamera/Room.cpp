#include "tools/democamera/Room.h"

#include <utility>

#include "tools/democamera/Shapes.h"

namespace democamera {

namespace {

// Units: the room is 1280 x 720, its origin at the top left; edges are blurred.
constexpr float kBlur = 7;

void PaintBox(Layer& room, const Box& box, Rgb top, Rgb bottom, float corner = 4, float blur = kBlur) {
    const float cx = (box.left + box.right) / 2;
    const float cy = (box.top + box.bottom) / 2;
    Paint(room, {box.left - blur, box.top - blur, box.right + blur, box.bottom + blur}, [&](float x, float y) {
        const float distance =
            BoxDistance(x - cx, y - cy, (box.right - box.left) / 2, (box.bottom - box.top) / 2, corner);
        return Ink{Mix(top, bottom, Clamp01((y - box.top) / (box.bottom - box.top))), Smooth(blur, -blur, distance)};
    });
}

void PaintWalls(Layer& room) {
    Paint(room, {0, 0, 1280, 720}, [](float x, float y) {
        const Rgb wall = Mix(FromHex(0xE9DDCB), FromHex(0xB79F86), Clamp01(x / 1280 * 0.7F + y / 720 * 0.35F));
        return Ink{Mix(wall, FromHex(0x7C6353), Smooth(560, 640, y) * 0.85F), 1};
    });
    PaintBox(room, {-20, 572, 1300, 588}, FromHex(0xF1E9DD), FromHex(0xD9CBB8));
}

void PaintWindow(Layer& room) {
    PaintBox(room, {92, 62, 392, 432}, FromHex(0xFBF7F0), FromHex(0xE9DFD2), 8);
    PaintBox(room, {108, 78, 376, 416}, FromHex(0xBFE0F5), FromHex(0xF3F6EA), 4);
    // Trees outside.
    constexpr float kTrees[][3] = {{150, 392, 62}, {236, 404, 78}, {340, 388, 66}};  // place and size
    for (const auto& tree : kTrees) {
        Paint(room, {108, 280, 376, 414}, [&](float x, float y) {
            return Ink{Mix(FromHex(0x9CC58B), FromHex(0x6E9F70), Smooth(tree[1] - tree[2], tree[1] + tree[2], y)),
                       0.85F * Smooth(12, -12, std::hypot(x - tree[0], y - tree[1]) - tree[2])};
        });
    }
    PaintBox(room, {236, 70, 248, 424}, FromHex(0xFBF7F0), FromHex(0xE9DFD2));
    PaintBox(room, {100, 222, 384, 233}, FromHex(0xFBF7F0), FromHex(0xEFE7DB));
    PaintBox(room, {72, 428, 412, 450}, FromHex(0xFDFAF5), FromHex(0xD8CCBD), 6);
    // Daylight on the wall.
    Paint(room, {0, 0, 900, 720}, [](float x, float y) {
        return Ink{FromHex(0xFFF6DD), 0.32F * Smooth(620, 60, std::hypot(x - 240, y - 240))};
    });
}

void PaintShelf(Layer& room) {
    PaintBox(room, {912, 96, 1196, 584}, FromHex(0x8A6247), FromHex(0x6C4A35), 6);
    constexpr std::uint32_t kBooks[] = {0xC8553D, 0x3E6C8F, 0xE0B04C, 0x5B8C6A, 0x8E5572, 0xDCCFC0, 0x2F4858, 0xD98E5F};
    int book = 0;
    for (const float top : {112.0F, 228.0F, 344.0F, 460.0F}) {
        PaintBox(room, {926, top, 1182, top + 104}, FromHex(0x5A3D2C), FromHex(0x4A3122), 4);
        float left = 936;
        while (left < 1130) {
            const float thick = 20.0F + static_cast<float>(book * 7 % 3) * 8;
            const float tall = 62.0F + static_cast<float>(book * 5 % 4) * 9;
            const Rgb color = FromHex(kBooks[book % 8]);
            if (book % 7 != 5) {
                PaintBox(room, {left, top + 102 - tall, left + thick - 3, top + 102},
                         Mix(color, {255, 255, 255}, 0.12F), Mix(color, {40, 28, 22}, 0.3F), 2, 4);
            }
            left += thick;
            ++book;
        }
    }
}

void PaintPlantAndLamp(Layer& room) {
    for (int leaf = 0; leaf < 9; ++leaf) {
        const float lean = (static_cast<float>(leaf) - 4) * 26;
        const float tipY = 300 + std::abs(lean) * 0.9F;
        Paint(room, {560, 260, 860, 560}, [&](float x, float y) {
            const float stem = LineDistance(x, y, 716, 560, 716 + lean, tipY, 10);
            return Ink{Mix(FromHex(0x7FB069), FromHex(0x3F6B4A), Smooth(300, 540, y)), 0.9F * Smooth(7, -5, stem)};
        });
    }
    PaintBox(room, {668, 528, 764, 622}, FromHex(0xD9805B), FromHex(0xA85B3E), 14);
    PaintBox(room, {506, 214, 514, 610}, FromHex(0x4B423D), FromHex(0x3A332F), 3);
    Paint(room, {330, 40, 690, 420}, [](float x, float y) {
        return Ink{FromHex(0xFFE0A3), 0.45F * Smooth(190, 20, std::hypot(x - 510, y - 200))};
    });
    Paint(room, {430, 130, 590, 240}, [](float x, float y) {
        const float slope = (y - 150) * 0.28F;
        const float shade = BoxDistance(x - 510, y - 186, 46 + slope, 38, 6);
        return Ink{Mix(FromHex(0xFFEFC9), FromHex(0xF6CF8E), Smooth(150, 225, y)), Smooth(kBlur, -kBlur, shade)};
    });
}

}  // namespace

void PaintRoom(std::uint32_t* picture, int width, int height) {
    Layer room;
    room.width = width;
    room.height = height;
    room.scale = std::max(static_cast<float>(width) / 1280, static_cast<float>(height) / 720);
    room.pixels.resize(static_cast<std::size_t>(width) * height);
    PaintWalls(room);
    PaintWindow(room);
    PaintShelf(room);
    PaintPlantAndLamp(room);
    std::copy(room.pixels.begin(), room.pixels.end(), picture);
}

}  // namespace democamera
