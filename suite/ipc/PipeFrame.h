#pragma once
// The frames that client and server of the message pipe exchange. This header is the format's document.
//
// Why: a pipe in byte mode delivers bytes, not messages, and the other end may be broken or lying. Encoding and
// decoding stand apart from the pipe so that they can be tested with any bytes in any portions.
// All integers are little-endian and unaligned; frames follow each other without gaps, in both directions.
// Threads: none of its own; a Decoder belongs to one thread at a time.
//
//   offset  size  every frame
//        0     4  magic: the bytes 'Q' 'X' 'P' 'F'
//        4     2  version: 1
//        6     2  kind: 1 hello, 2 message
//        8     4  length of the whole frame in bytes, these 12 included
//
//   offset  size  hello: first frame of every connection, from client to server, once; length is 16
//       12     4  client id, signed
//
//   offset  size  message: either direction
//       12     4  text length t in bytes, at most kMaxText
//       16    28  slot 0 to slot 6, signed, 4 bytes each; slot 6 (at 40) is the payload length p, 0 to kMaxPayload
//       44     4  reserved, signed, passed on as it is
//       48     1  flag, passed on as it is
//       49     3  zero
//       52     t  text, any bytes, no terminator
//     52+t     p  payload, any bytes; the frame's length is 52 + t + p
//
// A frame that says anything else is refused, and so is all that follows it: the byte stream has lost its place.
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "suite/ipc/TagIPCMessageItem.h"

namespace PipeFrame {

inline constexpr std::array<std::uint8_t, 4> kMagic{'Q', 'X', 'P', 'F'};
inline constexpr std::uint16_t kVersion = 1;
inline constexpr std::size_t kHeaderSize = 12;
inline constexpr std::size_t kHelloSize = 16;
inline constexpr std::size_t kMessageHeaderSize = 52;
inline constexpr std::size_t kMaxText = 4096;
inline constexpr std::size_t kMaxPayload = 1024 * 1024;
inline constexpr std::size_t kMaxFrame = kMessageHeaderSize + kMaxText + kMaxPayload;

enum class Kind : std::uint16_t { kHello = 1, kMessage = 2 };

// One decoded frame, owning its bytes.
struct Frame {
    Kind kind = Kind::kMessage;
    std::int32_t clientId = 0;  // hello only; all below: message only
    std::string text;
    std::array<std::int32_t, 7> slot{};
    std::int32_t reserved = 0;
    std::uint8_t flag = 0;
    std::vector<std::uint8_t> payload;

    // The message as callbacks receive it; its data points into this frame.
    TagIPCMessageItem Item() const;
    bool operator==(const Frame&) const = default;
};

std::vector<std::uint8_t> EncodeHello(std::int32_t clientId);

// Nothing when the item cannot travel: text or payload too long, slot 6 negative, or slot 6 positive without data.
std::optional<std::vector<std::uint8_t>> EncodeMessage(const TagIPCMessageItem& item);

// What a refused frame got wrong.
enum class Refusal {
    kNone,
    kBadMagic,
    kBadVersion,
    kBadKind,
    kBadLength,
    kBadTextLength,
    kBadPayloadLength,
    kBadPadding
};
const wchar_t* RefusalText(Refusal refusal);

// Cuts a byte stream into frames, whatever portions the bytes come in. Refuses as soon as the bytes seen so far rule
// out a good frame, and never holds more than one frame beyond what the last Feed brought.
class Decoder {
  public:
    void Feed(std::span<const std::uint8_t> bytes);

    // The next complete frame; nothing when more bytes are needed or the stream is refused.
    // Call until it returns nothing, after every Feed.
    std::optional<Frame> Next();

    // Other than kNone: no frame comes any more, and what is fed is dropped.
    Refusal refusal() const { return refusal_; }
    // Some bytes of a frame have come, and not all of them.
    bool HasPartial() const { return refusal_ == Refusal::kNone && pending_.size() > start_; }

  private:
    std::span<const std::uint8_t> Pending() const { return std::span(pending_).subspan(start_); }
    void Refuse(Refusal refusal);

    std::vector<std::uint8_t> pending_;
    std::size_t start_ = 0;  // bytes of pending_ that earlier frames used up
    Refusal refusal_ = Refusal::kNone;
};

}  // namespace PipeFrame
