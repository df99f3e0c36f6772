#include "suite/ipc/PipeFrame.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace PipeFrame {
namespace {

constexpr std::size_t kVersionAt = 4;
constexpr std::size_t kKindAt = 6;
constexpr std::size_t kLengthAt = 8;
constexpr std::size_t kClientIdAt = 12;
constexpr std::size_t kTextLengthAt = 12;
constexpr std::size_t kSlotsAt = 16;
constexpr std::size_t kPayloadSlot = 6;
constexpr std::size_t kReservedAt = 44;
constexpr std::size_t kFlagAt = 48;
constexpr std::size_t kPaddingAt = 49;

using Bytes = std::span<const std::uint8_t>;

std::uint16_t Read16(Bytes bytes, std::size_t at) {
    return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8);
}

std::uint32_t Read32(Bytes bytes, std::size_t at) {
    return Read16(bytes, at) | static_cast<std::uint32_t>(Read16(bytes, at + 2)) << 16;
}

std::int32_t ReadSigned32(Bytes bytes, std::size_t at) {
    return static_cast<std::int32_t>(Read32(bytes, at));
}

void Append16(std::vector<std::uint8_t>& bytes, std::uint32_t value) {
    bytes.push_back(static_cast<std::uint8_t>(value));
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
}

void Append32(std::vector<std::uint8_t>& bytes, std::uint32_t value) {
    Append16(bytes, value & 0xFFFF);
    Append16(bytes, value >> 16);
}

void AppendHeader(std::vector<std::uint8_t>& bytes, Kind kind, std::size_t length) {
    bytes.reserve(length);
    bytes.insert(bytes.end(), kMagic.begin(), kMagic.end());
    Append16(bytes, kVersion);
    Append16(bytes, static_cast<std::uint16_t>(kind));
    Append32(bytes, static_cast<std::uint32_t>(length));
}

// Judges what has come of a frame: every field is looked at as soon as all its bytes are there.
Refusal Judge(Bytes bytes) {
    if (!std::equal(bytes.begin(), bytes.begin() + std::min(bytes.size(), kMagic.size()), kMagic.begin())) {
        return Refusal::kBadMagic;
    }
    if (bytes.size() >= kKindAt && Read16(bytes, kVersionAt) != kVersion) {
        return Refusal::kBadVersion;
    }
    if (bytes.size() < kLengthAt) {
        return Refusal::kNone;
    }
    const auto kind = static_cast<Kind>(Read16(bytes, kKindAt));
    if (kind != Kind::kHello && kind != Kind::kMessage) {
        return Refusal::kBadKind;
    }
    if (bytes.size() < kHeaderSize) {
        return Refusal::kNone;
    }
    const std::uint32_t length = Read32(bytes, kLengthAt);
    if (kind == Kind::kHello) {
        return length == kHelloSize ? Refusal::kNone : Refusal::kBadLength;
    }
    if (length < kMessageHeaderSize || length > kMaxFrame) {
        return Refusal::kBadLength;
    }
    if (bytes.size() < kSlotsAt) {
        return Refusal::kNone;
    }
    const std::uint32_t textLength = Read32(bytes, kTextLengthAt);
    if (textLength > kMaxText || textLength > length - kMessageHeaderSize) {
        return Refusal::kBadTextLength;
    }
    if (bytes.size() < kReservedAt) {
        return Refusal::kNone;
    }
    // A negative length is a huge one here.
    if (Read32(bytes, kSlotsAt + 4 * kPayloadSlot) != length - kMessageHeaderSize - textLength ||
        length - kMessageHeaderSize - textLength > kMaxPayload) {
        return Refusal::kBadPayloadLength;
    }
    if (bytes.size() >= kMessageHeaderSize &&
        std::any_of(bytes.begin() + kPaddingAt, bytes.begin() + kMessageHeaderSize, [](auto b) { return b != 0; })) {
        return Refusal::kBadPadding;
    }
    return Refusal::kNone;
}

// REQUIRES: Judge found nothing wrong and the frame is complete.
Frame Parse(Bytes bytes) {
    Frame frame;
    frame.kind = static_cast<Kind>(Read16(bytes, kKindAt));
    if (frame.kind == Kind::kHello) {
        frame.clientId = ReadSigned32(bytes, kClientIdAt);
        return frame;
    }
    for (std::size_t i = 0; i < frame.slot.size(); ++i) {
        frame.slot[i] = ReadSigned32(bytes, kSlotsAt + 4 * i);
    }
    frame.reserved = ReadSigned32(bytes, kReservedAt);
    frame.flag = bytes[kFlagAt];
    const Bytes text = bytes.subspan(kMessageHeaderSize, Read32(bytes, kTextLengthAt));
    const Bytes payload = bytes.subspan(kMessageHeaderSize + text.size());
    frame.text.assign(text.begin(), text.end());
    frame.payload.assign(payload.begin(), payload.end());
    return frame;
}

}  // namespace

TagIPCMessageItem Frame::Item() const {
    TagIPCMessageItem item;
    item.text = text;
    std::copy(slot.begin(), slot.end(), item.slot);
    item.data = payload.empty() ? nullptr : payload.data();
    item.flag = flag;
    item.reserved = reserved;
    return item;
}

std::vector<std::uint8_t> EncodeHello(std::int32_t clientId) {
    std::vector<std::uint8_t> bytes;
    AppendHeader(bytes, Kind::kHello, kHelloSize);
    Append32(bytes, static_cast<std::uint32_t>(clientId));
    return bytes;
}

std::optional<std::vector<std::uint8_t>> EncodeMessage(const TagIPCMessageItem& item) {
    const std::int32_t payloadLength = item.slot[kPayloadSlot];
    if (item.text.size() > kMaxText || payloadLength < 0 || payloadLength > static_cast<std::int32_t>(kMaxPayload) ||
        (payloadLength > 0 && !item.data)) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> bytes;
    AppendHeader(bytes, Kind::kMessage,
                 kMessageHeaderSize + item.text.size() + static_cast<std::size_t>(payloadLength));
    Append32(bytes, static_cast<std::uint32_t>(item.text.size()));
    for (const std::int32_t slot : item.slot) {
        Append32(bytes, static_cast<std::uint32_t>(slot));
    }
    Append32(bytes, static_cast<std::uint32_t>(item.reserved));
    bytes.push_back(item.flag);
    bytes.resize(kMessageHeaderSize);
    bytes.insert(bytes.end(), item.text.begin(), item.text.end());
    if (payloadLength > 0) {
        const auto* payload = static_cast<const std::uint8_t*>(item.data);
        bytes.insert(bytes.end(), payload, payload + payloadLength);
    }
    return bytes;
}

const wchar_t* RefusalText(Refusal refusal) {
    switch (refusal) {
        case Refusal::kNone:
            return L"nothing wrong";
        case Refusal::kBadMagic:
            return L"no frame begins there";
        case Refusal::kBadVersion:
            return L"unknown version";
        case Refusal::kBadKind:
            return L"unknown kind";
        case Refusal::kBadLength:
            return L"bad length";
        case Refusal::kBadTextLength:
            return L"bad text length";
        case Refusal::kBadPayloadLength:
            return L"bad payload length";
        case Refusal::kBadPadding:
            return L"padding is not zero";
    }
    return L"";
}

void Decoder::Feed(std::span<const std::uint8_t> bytes) {
    if (refusal_ != Refusal::kNone) {
        return;
    }
    if (start_ > 0) {
        pending_.erase(pending_.begin(), pending_.begin() + static_cast<std::ptrdiff_t>(start_));
        start_ = 0;
    }
    pending_.insert(pending_.end(), bytes.begin(), bytes.end());
}

std::optional<Frame> Decoder::Next() {
    if (refusal_ != Refusal::kNone) {
        return std::nullopt;
    }
    const Bytes bytes = Pending();
    if (const Refusal refusal = Judge(bytes); refusal != Refusal::kNone) {
        Refuse(refusal);
        return std::nullopt;
    }
    if (bytes.size() < kHeaderSize || bytes.size() < Read32(bytes, kLengthAt)) {
        return std::nullopt;
    }
    const std::size_t length = Read32(bytes, kLengthAt);
    Frame frame = Parse(bytes.first(length));
    start_ += length;
    return frame;
}

void Decoder::Refuse(Refusal refusal) {
    refusal_ = refusal;
    start_ = 0;
    pending_ = {};
}

}  // namespace PipeFrame
