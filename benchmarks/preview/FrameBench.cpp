// How long a camera frame takes from its own format to mirrored 32-bit pixels, against the same work done by libyuv
// (conversion, then mirror, through a frame in between), by swscale (conversion, then libyuv's mirror), and against a
// plain copy of as many bytes as a finished frame has, and against a loop that only reads the source and writes the
// frame. The scalar form, which the others must equal, is timed too.
//
// All contestants take turns within one run, so that a busy machine hits them alike; the figures are medians. "Cold":
// the caches are flushed with other data before each turn, as between two frames of a camera; "warm": they are not.
// Usage: preview_bench [rounds]. One line per format and size. ratio: pixora / libyuv, then its goal; /touch: pixora /
// touch, goal 1.3 when cold; scalar/: scalar / pixora, goal 18 for NV12.
#include <libyuv.h>

extern "C" {
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "preview/pixels/PixelConverter.h"

namespace {

using preview::CpuLevel;
using preview::PixelFormat;

struct Contestant {
    std::string name;
    std::function<void()> work;
    std::vector<double> milliseconds;
};

struct Case {
    const char* name;
    PixelFormat format;
    AVPixelFormat swscaleFormat;
    double goal;  // of libyuv's two passes; RGB32: of its mirror alone
};

constexpr Case kCases[] = {
    {"NV12", PixelFormat::kNv12, AV_PIX_FMT_NV12, 0.55},
    {"YUY2", PixelFormat::kYuy2, AV_PIX_FMT_YUYV422, 0.65},
    {"RGB24", PixelFormat::kRgb24, AV_PIX_FMT_BGR24, 0.75},
    {"RGB32", PixelFormat::kRgb32, AV_PIX_FMT_BGRA, 1.00},
};

int SourceStride(PixelFormat format, int width) {
    switch (format) {
        case PixelFormat::kRgb32:
            return 4 * width;
        case PixelFormat::kRgb24:
            return 3 * width;
        case PixelFormat::kYuy2:
            return 2 * width;
        case PixelFormat::kNv12:
            break;
    }
    return width;
}

void LibyuvConvert(PixelFormat format, const std::uint8_t* source, int stride, std::uint8_t* pixels, int width,
                   int height) {
    switch (format) {
        case PixelFormat::kRgb32:
            break;
        case PixelFormat::kRgb24:
            libyuv::RGB24ToARGB(source, stride, pixels, 4 * width, width, height);
            break;
        case PixelFormat::kYuy2:
            libyuv::YUY2ToARGB(source, stride, pixels, 4 * width, width, height);
            break;
        case PixelFormat::kNv12:
            libyuv::NV12ToARGB(source, stride, source + std::ptrdiff_t{stride} * height, stride, pixels, 4 * width,
                               width, height);
            break;
    }
}

double Median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

void FlushCaches() {
    static std::vector<std::uint8_t> other(96 << 20);
    for (std::size_t i = 0; i < other.size(); i += 64) {
        ++other[i];
    }
}

// Reads all of the one and writes all of the other by ordinary stores, and nothing else: what no conversion can go
// below by much. Every word is another, so that the compiler does not make a call of memset of it.
void Touch(const std::vector<std::uint8_t>& source, std::vector<std::uint8_t>& frame) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i + 8 <= source.size(); i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, source.data() + i, 8);
        sum += word;
    }
    for (std::size_t i = 0; i + 8 <= frame.size(); i += 8) {
        const std::uint64_t word = sum + i;
        std::memcpy(frame.data() + i, &word, 8);
    }
}

void Run(const Case& item, int width, int height, int rounds, bool cold) {
    const int stride = SourceStride(item.format, width);
    const std::size_t sourceBytes = std::size_t(stride) * height * (item.format == PixelFormat::kNv12 ? 3 : 2) / 2;
    std::vector<std::uint8_t> source(sourceBytes);
    for (std::uint8_t& byte : source) {
        byte = static_cast<std::uint8_t>(std::rand());
    }
    const std::size_t frameBytes = std::size_t{4} * width * height;
    std::vector<std::uint8_t> between(frameBytes, 1), frame(frameBytes, 2), other(frameBytes, 3);

    const std::unique_ptr<SwsContext, void (*)(SwsContext*)> scaler(
        sws_getContext(width, height, item.swscaleFormat, width, height, AV_PIX_FMT_BGRA, SWS_POINT, nullptr, nullptr,
                       nullptr),
        sws_freeContext);
    const auto mirror = [&](const std::vector<std::uint8_t>& from) {
        libyuv::ARGBMirror(from.data(), 4 * width, frame.data(), 4 * width, width, height);
    };
    std::vector<Contestant> contestants;
    for (const auto& [level, name] : {std::pair{CpuLevel::kAvx2, "pixora"},
                                      {CpuLevel::kSsse3, "pixora ssse3"},
                                      {CpuLevel::kScalar, "pixora scalar"}}) {
        if (level <= preview::BestCpuLevel()) {
            contestants.push_back({name,
                                   [&, convert = preview::ConvertersFor(item.format, level).mirrored] {
                                       convert(frame.data(), 4 * width, source.data(), stride, width, height);
                                   },
                                   {}});
        }
    }
    contestants.push_back({"libyuv",
                           [&] {
                               if (item.format == PixelFormat::kRgb32) {
                                   mirror(source);
                                   return;
                               }
                               LibyuvConvert(item.format, source.data(), stride, between.data(), width, height);
                               mirror(between);
                           },
                           {}});
    contestants.push_back(
        {"swscale",
         [&] {
             const std::uint8_t* planes[] = {source.data(), source.data() + std::size_t(stride) * height};
             const int strides[] = {stride, stride};
             std::uint8_t* out[] = {between.data()};
             const int outStrides[] = {4 * width};
             sws_scale(scaler.get(), planes, strides, 0, height, out, outStrides);
             mirror(between);
         },
         {}});
    contestants.push_back({"memcpy", [&] { std::memcpy(frame.data(), other.data(), frameBytes); }, {}});

    contestants.push_back({"touch", [&] { Touch(source, frame); }, {}});

    std::minstd_rand random;
    for (int round = 0; round < rounds; ++round) {
        // In another order each time: who always runs after the same neighbour finds what that one left in the caches.
        std::shuffle(contestants.begin(), contestants.end(), random);
        for (Contestant& contestant : contestants) {
            if (cold) {
                FlushCaches();
            } else {
                contestant.work();
            }
            const auto start = std::chrono::steady_clock::now();
            contestant.work();
            const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
            contestant.milliseconds.push_back(took.count());
        }
    }

    const auto figure = [&](const char* name) {
        for (const Contestant& contestant : contestants) {
            if (contestant.name == name) {
                return Median(contestant.milliseconds);
            }
        }
        return 0.0;
    };
    const double ratio = figure("pixora") / figure("libyuv");
    std::printf("%-6s %4dx%-4d %s  %7.3f  %7.3f  %7.3f  %7.3f  %7.3f  %7.3f  %7.3f   %5.2f  %5.2f  %5.2f  %6.1f\n",
                item.name, width, height, cold ? "cold" : "warm", figure("pixora"), figure("pixora ssse3"),
                figure("pixora scalar"), figure("libyuv"), figure("swscale"), figure("memcpy"), figure("touch"), ratio,
                item.goal, figure("pixora") / figure("touch"), figure("pixora scalar") / figure("pixora"));
}

}  // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 101;
    if (rounds <= 0) {
        std::fprintf(stderr, "usage: preview_bench [rounds]\n");
        return 64;
    }
    std::printf("Milliseconds a frame, medians of %d rounds\n", rounds);
    std::printf("%-6s %-9s %s  %7s  %7s  %7s  %7s  %7s  %7s  %7s   %5s  %5s  %5s  %6s\n", "format", "size", "cache",
                "pixora", "(ssse3)", "scalar", "libyuv", "swscale", "memcpy", "touch", "ratio", "goal", "/touch",
                "scalar/");
    for (const Case& item : kCases) {
        for (const auto& [width, height] : {std::pair{1280, 720}, {1920, 1080}}) {
            for (const bool cold : {true, false}) {
                Run(item, width, height, rounds, cold);
            }
        }
    }
}
