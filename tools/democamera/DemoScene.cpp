#include "tools/democamera/DemoScene.h"

#include <numbers>

#include "tools/democamera/Room.h"

namespace democamera {

namespace {

constexpr float kPi = std::numbers::pi_v<float>;
// A moving background is that many pixels larger on each side.
constexpr int kDrift = 24;

// Two channels of eight bits at once.
constexpr std::uint32_t kPair = 0x00FF00FF;

std::uint32_t Scale256(std::uint32_t pixel, std::uint32_t weight) {
    const std::uint32_t low = ((pixel & kPair) * weight >> 8) & kPair;
    const std::uint32_t high = (pixel >> 8 & kPair) * weight & ~kPair;
    return low | high;
}

// Lays the layer over the picture with its origin at x, y, in pixels and parts of them.
void Lay(const Layer& layer, std::uint32_t* picture, int width, int height, float x, float y) {
    const float left = x - layer.originX;
    const float top = y - layer.originY;
    const int column0 = static_cast<int>(std::floor(left));
    const int row0 = static_cast<int>(std::floor(top));
    const auto partX = static_cast<std::uint32_t>((left - std::floor(left)) * 16);
    const auto partY = static_cast<std::uint32_t>((top - std::floor(top)) * 16);
    // Of a pixel and of its neighbours to the left and above; their sum is 256.
    const std::uint32_t weights[4] = {(16 - partX) * (16 - partY), partX * (16 - partY), (16 - partX) * partY,
                                      partX * partY};
    const int first = std::max(1, -column0);
    const int last = std::min(layer.width, width - column0);
    for (int row = std::max(1, -row0); row < std::min(layer.height, height - row0); ++row) {
        const std::uint32_t* here = layer.pixels.data() + static_cast<std::size_t>(row) * layer.width;
        const std::uint32_t* above = here - layer.width;
        std::uint32_t* target = picture + static_cast<std::size_t>(row + row0) * width + column0;
        for (int i = first; i < last; ++i) {
            if ((here[i] | here[i - 1] | above[i] | above[i - 1]) == 0) {
                continue;
            }
            const std::uint32_t over = Scale256(here[i], weights[0]) + Scale256(here[i - 1], weights[1]) +
                                       Scale256(above[i], weights[2]) + Scale256(above[i - 1], weights[3]);
            const std::uint32_t keep = 256 - (over >> 24) - (over >> 31);
            target[i] = keep == 0 ? over : over + Scale256(target[i], keep);
        }
    }
}

// Fills width x height with the picture, centred and cut, smoothly scaled.
void FillWith(const Picture& source, Picture& target) {
    const float scale = std::max(static_cast<float>(target.width) / static_cast<float>(source.width),
                                 static_cast<float>(target.height) / static_cast<float>(source.height));
    const auto place = [scale](int at, int targetSize, int sourceSize, int* index) {
        const float middle = (static_cast<float>(at) + 0.5F - static_cast<float>(targetSize) / 2) / scale;
        const float position =
            std::clamp(middle + static_cast<float>(sourceSize) / 2 - 0.5F, 0.0F, static_cast<float>(sourceSize - 1));
        *index = std::min(static_cast<int>(position), std::max(0, sourceSize - 2));
        return static_cast<std::uint32_t>((position - static_cast<float>(*index)) * 256);
    };
    const int stepX = source.width > 1 ? 1 : 0;
    const int stepY = source.height > 1 ? source.width : 0;
    for (int y = 0; y < target.height; ++y) {
        int row = 0;
        const std::uint32_t partY = place(y, target.height, source.height, &row);
        for (int x = 0; x < target.width; ++x) {
            int column = 0;
            const std::uint32_t partX = place(x, target.width, source.width, &column);
            const std::uint32_t* at = source.pixels.data() + static_cast<std::size_t>(row) * source.width + column;
            const std::uint32_t upper = Scale256(at[0], 256 - partX) + Scale256(at[stepX], partX);
            const std::uint32_t lower = Scale256(at[stepY], 256 - partX) + Scale256(at[stepY + stepX], partX);
            target.pixels[static_cast<std::size_t>(y) * target.width + x] =
                Scale256(upper, 256 - partY) + Scale256(lower, partY);
        }
    }
}

// 1 for a moment every few seconds; twice in a row now and then.
float Blink(double seconds) {
    const double cycle = std::fmod(seconds, 9.7);
    for (const double at : {2.1, 6.4, 6.75}) {
        const double distance = std::abs(cycle - at);
        if (distance < 0.13) {
            return Smooth(0.13F, 0.04F, static_cast<float>(distance));
        }
    }
    return 0;
}

}  // namespace

DemoScene::Pose DemoScene::PoseOf(const SceneSettings& settings) {
    Pose pose{.x = 0.615F, .y = 0.47F, .scale = 0.80F, .gaze = 1, .look = settings.look};
    if (settings.framing) {
        pose.x = 0.5F;
        pose.y = 0.45F;
        pose.scale = 1.14F;
    }
    if (settings.eyeContact) {
        pose.gaze = 0;
    }
    return pose;
}

void DemoScene::Glide(const Pose& goal, double seconds) {
    const auto passed = static_cast<float>(seconds - lastSeconds_);
    const float part = posed_ && passed >= 0 ? 1 - std::exp(-9 * passed) : 1;
    const auto go = [part](float& value, float to) {
        value = std::abs(to - value) < 0.002F ? to : Mix(value, to, part);
    };
    go(pose_.x, goal.x);
    go(pose_.y, goal.y);
    go(pose_.scale, goal.scale);
    go(pose_.gaze, goal.gaze);
    pose_.look = goal.look;
    posed_ = true;
    lastSeconds_ = seconds;
}

void DemoScene::PrepareBackground(int width, int height, const SceneSettings& settings) {
    const int border = settings.backgroundMoves ? kDrift : 0;
    const int wantedWidth = width + 2 * border;
    const int wantedHeight = height + 2 * border;
    const bool known = background_.width == wantedWidth && background_.height == wantedHeight &&
                       (settings.background ? settings.background == shownBackground_ : roomShown_);
    if (known) {
        return;
    }
    background_.width = wantedWidth;
    background_.height = wantedHeight;
    background_.pixels.resize(static_cast<std::size_t>(wantedWidth) * wantedHeight);
    shownBackground_ = settings.background;
    roomShown_ = !settings.background;
    if (roomShown_) {
        PaintRoom(background_.pixels.data(), wantedWidth, wantedHeight);
    } else {
        FillWith(*settings.background, background_);
    }
}

void DemoScene::PreparePerson(int height) {
    const float scale = pose_.scale * static_cast<float>(height) / 720;
    if (scale == paintedScale_ && pose_.look == paintedLook_) {
        return;
    }
    person_ = PaintPerson(pose_.look, scale);
    paintedScale_ = scale;
    paintedLook_ = pose_.look;
}

void DemoScene::CopyBackground(std::uint32_t* picture, int width, int height, double seconds, bool moves) const {
    const int border = moves ? kDrift : 0;
    const auto time = static_cast<float>(seconds);
    const int left = border + static_cast<int>(std::lround(static_cast<float>(border) * std::sin(time * 0.45F)));
    const int top = border + static_cast<int>(std::lround(static_cast<float>(border) * 0.5F * std::sin(time * 0.31F)));
    for (int y = 0; y < height; ++y) {
        const std::uint32_t* row =
            background_.pixels.data() + static_cast<std::size_t>(y + top) * background_.width + left;
        std::copy(row, row + width, picture + static_cast<std::size_t>(y) * width);
    }
}

void DemoScene::Paint(std::uint32_t* picture, int width, int height, double seconds, const SceneSettings& settings) {
    Glide(PoseOf(settings), seconds);
    PrepareBackground(width, height, settings);
    PreparePerson(height);
    CopyBackground(picture, width, height, seconds, settings.backgroundMoves);

    const float unit = paintedScale_;
    const auto time = static_cast<float>(std::fmod(seconds, 3600.0));
    const float breath = std::sin(time * 2 * kPi / 4.2F);
    const float sway = std::sin(time * 2 * kPi / 7.3F) + 0.4F * std::sin(time * 2 * kPi / 3.1F);
    const float x = pose_.x * static_cast<float>(width);
    const float y = pose_.y * static_cast<float>(height);
    const float headX = x + 6 * unit * sway;
    const float headY = y + unit * (1.5F * breath + 1.5F * std::sin(time * 2 * kPi / 5.3F));
    Lay(person_.hair, picture, width, height, headX, headY);
    Lay(person_.body, picture, width, height, x + 1.5F * unit * sway, y + 3 * unit * breath);
    Lay(person_.head, picture, width, height, headX, headY);

    Layer place;
    place.width = width;
    place.height = height;
    place.originX = headX;
    place.originY = headY;
    place.scale = unit;
    // Without correction the eyes read the screen, below and beside the camera.
    const float reading = std::sin(time * 2 * kPi / 2.6F);
    const FaceMoment moment{.gazeX = pose_.gaze * (-0.75F + 0.2F * reading),
                            .gazeY = pose_.gaze * 0.75F,
                            .lid = std::max(Blink(seconds), 0.16F * pose_.gaze),
                            .smile = Smooth(-0.2F, 0.9F, std::sin(time * 2 * kPi / 11))};
    PaintFaceMoment(picture, place, pose_.look, moment);
}

}  // namespace democamera
