#include "service/pictures/JpegThumbnail.h"

#include <algorithm>
#include <array>

namespace pictures::JpegThumbnail {

namespace {

constexpr std::array<std::uint8_t, 2> kStart{0xFF, 0xD8};
constexpr std::array<std::uint8_t, 2> kApplication{0xFF, 0xE0};
constexpr std::array<std::uint8_t, 6> kExtension{'J', 'F', 'X', 'X', 0, 0x10};
constexpr std::size_t kLengthBytes = 2;
constexpr std::size_t kMaxSegment = 0xFFFF;

bool HoldsAt(Bytes bytes, std::size_t at, Bytes part) {
    return at <= bytes.size() && bytes.size() - at >= part.size() &&
           std::equal(part.begin(), part.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
}

// The length of the application segment that begins there, its marker included; 0 when there is none.
std::size_t SegmentSize(Bytes bytes, std::size_t at) {
    if (!HoldsAt(bytes, at, kApplication) || bytes.size() - at < kApplication.size() + kLengthBytes) {
        return 0;
    }
    const std::size_t length = std::size_t{bytes[at + 2]} << 8 | bytes[at + 3];
    return length < kLengthBytes ? 0 : kApplication.size() + length;
}

}  // namespace

std::vector<std::uint8_t> Embed(Bytes file, Bytes thumbnail) {
    const std::size_t length = kLengthBytes + kExtension.size() + thumbnail.size();
    const std::size_t place = kStart.size() + SegmentSize(file, kStart.size());
    std::vector<std::uint8_t> result;
    result.reserve(file.size() + kApplication.size() + length);
    const auto append = [&result](Bytes part) { result.insert(result.end(), part.begin(), part.end()); };
    if (!HoldsAt(file, 0, kStart) || length > kMaxSegment || place > file.size()) {
        append(file);
        return result;
    }
    const std::array<std::uint8_t, kLengthBytes> lengthBytes{static_cast<std::uint8_t>(length >> 8),
                                                             static_cast<std::uint8_t>(length & 0xFF)};
    append(file.first(place));
    append(kApplication);
    append(lengthBytes);
    append(kExtension);
    append(thumbnail);
    append(file.subspan(place));
    return result;
}

Bytes Find(Bytes beginning) {
    if (!HoldsAt(beginning, 0, kStart)) {
        return {};
    }
    const std::size_t header = kApplication.size() + kLengthBytes;
    std::size_t at = kStart.size();
    while (const std::size_t size = SegmentSize(beginning, at)) {
        if (size > beginning.size() - at) {
            return {};
        }
        const Bytes content = beginning.subspan(at + header, size - header);
        if (HoldsAt(content, 0, kExtension) && content.size() > kExtension.size()) {
            return content.subspan(kExtension.size());
        }
        at += size;
    }
    return {};
}

}  // namespace pictures::JpegThumbnail
