// What the other end of the pipe sends: the same frames whatever portions it comes in, and none that says anything else
// than its bytes. The first byte chooses the portions.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "fuzz/support/Input.h"
#include "fuzz/support/Require.h"
#include "suite/ipc/PipeFrame.h"

using namespace PipeFrame;

namespace {

using Bytes = std::span<const std::uint8_t>;

struct Decoded {
    std::vector<Frame> frames;
    Refusal refusal = Refusal::kNone;
    bool partial = false;
    bool operator==(const Decoded&) const = default;
};

// `most`: bytes of the largest portion.
Decoded Decode(Bytes stream, unsigned seed, std::size_t most) {
    std::minstd_rand random(seed);
    Decoder decoder;
    Decoded decoded;
    while (!stream.empty()) {
        const std::size_t count = std::min<std::size_t>(1 + random() % most, stream.size());
        decoder.Feed(stream.first(count));
        stream = stream.subspan(count);
        while (std::optional<Frame> frame = decoder.Next()) {
            decoded.frames.push_back(*std::move(frame));
        }
    }
    decoded.refusal = decoder.refusal();
    decoded.partial = decoder.HasPartial();
    if (decoded.refusal != Refusal::kNone) {
        // Refused for good.
        decoder.Feed(EncodeHello(1));
        REQUIRE(!decoder.Next() && decoder.refusal() == decoded.refusal && !decoder.HasPartial());
        REQUIRE(*RefusalText(decoded.refusal) != 0);
    }
    return decoded;
}

std::vector<std::uint8_t> Encode(const Frame& frame) {
    if (frame.kind == Kind::kHello) {
        return EncodeHello(frame.clientId);
    }
    const auto bytes = EncodeMessage(frame.Item());
    REQUIRE(bytes.has_value());
    return *bytes;
}

void CheckStream(Bytes stream, unsigned seed) {
    const Decoded whole = Decode(stream, seed, kMaxFrame);
    REQUIRE(Decode(stream, seed, 1) == whole);
    REQUIRE(Decode(stream, seed, 70) == whole);
    std::vector<std::uint8_t> again;
    for (const Frame& frame : whole.frames) {
        const std::vector<std::uint8_t> bytes = Encode(frame);
        again.insert(again.end(), bytes.begin(), bytes.end());
    }
    REQUIRE(again.size() <= stream.size() && std::equal(again.begin(), again.end(), stream.begin()));
    REQUIRE(whole.partial == (whole.refusal == Refusal::kNone && again.size() < stream.size()));
}

// A message of any content comes out as it went in, or cannot travel.
void CheckMessage(Input in) {
    TagIPCMessageItem item;
    for (std::int32_t& slot : item.slot) {
        slot = in.Any<std::int32_t>();
    }
    item.reserved = in.Any<std::int32_t>();
    item.flag = in.Any<std::uint8_t>();
    const Bytes text = in.Take(in.Any<std::uint8_t>());
    item.text.assign(text.begin(), text.end());
    const Bytes payload = in.Rest();
    const bool fits = in.Flag();
    if (fits) {
        item.slot[6] = static_cast<std::int32_t>(payload.size());
        item.data = payload.data();
    }
    const auto bytes = EncodeMessage(item);
    REQUIRE(bytes.has_value() == (item.slot[6] == 0 || (fits && !payload.empty())));
    if (!bytes) {
        return;
    }
    Decoder decoder;
    decoder.Feed(*bytes);
    const auto frame = decoder.Next();
    REQUIRE(frame.has_value() && !decoder.HasPartial());
    REQUIRE(frame->text == item.text && frame->flag == item.flag && frame->reserved == item.reserved);
    REQUIRE(std::equal(frame->slot.begin(), frame->slot.end(), item.slot));
    REQUIRE(frame->payload.size() == static_cast<std::size_t>(item.slot[6]));
    REQUIRE(std::equal(frame->payload.begin(), frame->payload.end(), payload.begin()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input in(data, size);
    const unsigned seed = 1 + in.Any<std::uint8_t>();
    CheckStream(in.Rest(), seed);
    CheckMessage(in);
    return 0;
}
