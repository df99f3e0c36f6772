// The pixel converters with any stride and size over exactly the memory that a frame is said to need: nothing beside it
// is read or written, and every processor level gives the pixels of the scalar one.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "fuzz/support/Input.h"
#include "fuzz/support/Require.h"
#include "preview/pixels/MirrorPicture.h"
#include "preview/pixels/PixelConverter.h"
#include "preview/pixels/SourceExtent.h"

using namespace preview;

namespace {

constexpr std::uint32_t kMostWidth = 200;  // beyond two blocks of the widest level
constexpr std::uint32_t kMostHeight = 9;
constexpr std::int32_t kMostStride = 900;
constexpr std::uint8_t kUntouched = 0xA5;

struct Frame {
    PixelFormat format;
    std::uint32_t width, height;
    std::int32_t stride;
    std::vector<std::uint8_t> bytes;
    const std::uint8_t* firstRow;
};

struct Destination {
    std::int32_t stride;
    std::size_t offset;  // of the memory's begin from an address that everything is aligned to
};

std::vector<std::uint8_t> Convert(PixelConverter converter, const Frame& frame, const Destination& destination) {
    const auto step = static_cast<std::size_t>(std::abs(destination.stride));
    const std::size_t rowBytes = std::size_t{4} * frame.width;
    std::vector<std::uint8_t> memory(destination.offset + step * (frame.height - 1) + rowBytes, kUntouched);
    std::uint8_t* top = memory.data() + destination.offset;
    std::uint8_t* const first = destination.stride < 0 ? top + step * (frame.height - 1) : top;
    converter(first, destination.stride, frame.firstRow, frame.stride, frame.width, frame.height);
    // The pixels alone, top row first; between the rows nothing has changed.
    std::vector<std::uint8_t> pixels;
    for (std::uint32_t y = 0; y < frame.height; ++y) {
        const std::uint8_t* row = first + std::ptrdiff_t{destination.stride} * static_cast<std::ptrdiff_t>(y);
        pixels.insert(pixels.end(), row, row + rowBytes);
    }
    const auto isUntouched = [](std::uint8_t byte) { return byte == kUntouched; };
    REQUIRE(std::all_of(memory.begin(), memory.begin() + static_cast<std::ptrdiff_t>(destination.offset), isUntouched));
    for (std::uint32_t y = 0; y + 1 < frame.height; ++y) {
        REQUIRE(std::all_of(top + y * step + rowBytes, top + (y + 1) * step, isUntouched));
    }
    return pixels;
}

Frame TakeFrame(Input& in) {
    Frame frame;
    frame.format = static_cast<PixelFormat>(in.Within(0, 3));
    frame.width = static_cast<std::uint32_t>(in.Within(1, kMostWidth));
    frame.height = static_cast<std::uint32_t>(in.Within(1, kMostHeight));
    frame.stride = static_cast<std::int32_t>(in.Any<std::int16_t>()) % (kMostStride + 1);
    const SourceExtent extent = ExtentOf(frame.format, frame.stride, frame.width, frame.height);
    REQUIRE(extent.begin <= 0 && extent.end > 0);
    frame.bytes.resize(static_cast<std::size_t>(extent.end - extent.begin));
    frame.firstRow = frame.bytes.data() - extent.begin;
    return frame;
}

// No size or stride that a camera may claim leaves the numbers.
void CheckExtent(Input& in) {
    const auto format = static_cast<PixelFormat>(in.Within(0, 3));
    const auto stride = in.Any<std::int32_t>();
    const auto width = static_cast<std::uint32_t>(in.Within(1, kMostSide));
    const auto height = static_cast<std::uint32_t>(in.Within(1, kMostSide));
    const SourceExtent extent = ExtentOf(format, stride, width, height);
    const std::int64_t rows = format == PixelFormat::kNv12 ? std::int64_t{height} + (height + 1) / 2 : height;
    REQUIRE(extent.begin <= 0 && extent.end >= width);
    REQUIRE(extent.end - extent.begin >= std::llabs(stride) * (rows - 1) + width);
    REQUIRE(extent.end - extent.begin <= std::llabs(stride) * (rows - 1) + 4 * std::int64_t{width} + 2);
    REQUIRE(PackedRowBytes(format, width) >= std::int64_t{width});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input in(data, size);
    CheckExtent(in);
    Frame frame = TakeFrame(in);
    Destination destination;
    destination.stride = static_cast<std::int32_t>(4 * frame.width + in.Within(0, 70));
    destination.offset = static_cast<std::size_t>(in.Within(0, 40));
    if (in.Flag()) {
        destination.stride = -destination.stride;
    }
    const auto content = in.Rest();
    for (std::size_t i = 0; i < frame.bytes.size(); ++i) {
        frame.bytes[i] = static_cast<std::uint8_t>((content.empty() ? 0 : content[i % content.size()]) + i / 13 * 7);
    }

    const ConverterPair scalar = ConvertersFor(frame.format, CpuLevel::kScalar);
    const std::vector<std::uint8_t> plain = Convert(scalar.plain, frame, destination);
    std::vector<std::uint8_t> mirrored = plain;
    MirrorPicture(mirrored.data(), 4 * frame.width, frame.width, frame.height);
    for (const CpuLevel level : {CpuLevel::kScalar, CpuLevel::kSsse3, CpuLevel::kAvx2}) {
        if (level <= BestCpuLevel()) {
            const ConverterPair pair = ConvertersFor(frame.format, level);
            REQUIRE(Convert(pair.plain, frame, destination) == plain);
            REQUIRE(Convert(pair.mirrored, frame, destination) == mirrored);
        }
    }
    return 0;
}
