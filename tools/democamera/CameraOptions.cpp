#include "tools/democamera/CameraOptions.h"

#include <charconv>
#include <optional>
#include <utility>

namespace democamera {

namespace {

// Larger pictures are of no use to a preview.
constexpr std::uint32_t kMostSide = 4096;
constexpr std::uint32_t kMostRate = 1000;

template <typename Value, std::size_t count>
void Choose(const std::pair<std::string_view, Value> (&names)[count], std::string_view name, Value* chosen) {
    for (const auto& [known, value] : names) {
        if (known == name) {
            *chosen = value;
        }
    }
}

template <typename Number>
std::optional<Number> ParseNumber(std::string_view text) {
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

void ApplySize(std::string_view text, CameraMode* mode) {
    const std::size_t cross = text.find('x');
    if (cross == std::string_view::npos) {
        return;
    }
    const auto width = ParseNumber<std::uint32_t>(text.substr(0, cross));
    const auto height = ParseNumber<std::uint32_t>(text.substr(cross + 1));
    if (width && height && *width > 0 && *height > 0 && *width <= kMostSide && *height <= kMostSide) {
        mode->width = *width;
        mode->height = *height;
    }
}

void ApplyWord(std::string_view name, std::string_view value, CameraOptions* options) {
    static constexpr std::pair<std::string_view, CameraFormat> kFormats[] = {{"rgb32", CameraFormat::kRgb32},
                                                                             {"rgb24", CameraFormat::kRgb24},
                                                                             {"yuy2", CameraFormat::kYuy2},
                                                                             {"nv12", CameraFormat::kNv12},
                                                                             {"mjpg", CameraFormat::kMjpg}};
    static constexpr std::pair<std::string_view, CameraPicture> kPictures[] = {
        {"person", CameraPicture::kPerson}, {"bars", CameraPicture::kBars}, {"halves", CameraPicture::kHalves}};
    static constexpr std::pair<std::string_view, CameraFault> kFaults[] = {
        {"none", CameraFault::kNone},       {"absent", CameraFault::kAbsent}, {"busy", CameraFault::kBusy},
        {"refused", CameraFault::kRefused}, {"taken", CameraFault::kTaken},   {"nostart", CameraFault::kNoStart},
        {"error", CameraFault::kError},     {"silent", CameraFault::kSilent}, {"unplugged", CameraFault::kUnplugged},
        {"end", CameraFault::kEnd},         {"empty", CameraFault::kEmpty},   {"short", CameraFault::kShort}};
    if (name == "format") {
        Choose(kFormats, value, &options->mode.format);
    } else if (name == "picture") {
        Choose(kPictures, value, &options->picture);
    } else if (name == "fault") {
        Choose(kFaults, value, &options->fault);
    } else if (name == "size") {
        ApplySize(value, &options->mode);
    } else if (name == "rate") {
        const auto rate = ParseNumber<std::uint32_t>(value);
        if (rate && *rate > 0 && *rate <= kMostRate) {
            options->mode.framesPerSecond = *rate;
        }
    } else if (name == "after") {
        options->after = ParseNumber<std::int64_t>(value).value_or(options->after);
    } else if (name == "opening") {
        options->openingMs = ParseNumber<std::uint32_t>(value).value_or(options->openingMs);
    } else if (name == "closing") {
        options->closingMs = ParseNumber<std::uint32_t>(value).value_or(options->closingMs);
    } else if (name == "opens") {
        options->opens = ParseNumber<std::int64_t>(value).value_or(options->opens);
    }
}

}  // namespace

CameraOptions ParseCameraOptions(std::string_view text) {
    CameraOptions options;
    while (!text.empty()) {
        const std::size_t end = text.find(' ');
        const std::string_view word = text.substr(0, end);
        const std::size_t equals = word.find('=');
        if (equals != std::string_view::npos) {
            ApplyWord(word.substr(0, equals), word.substr(equals + 1), &options);
        }
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    return options;
}

}  // namespace democamera
