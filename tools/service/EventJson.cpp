#include "tools/service/EventJson.h"

#include <algorithm>

#include "service/link/ServiceMessages.h"
#include "suite/common/Utf8.h"
#include "tools/service/JsonLine.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

std::string Hex(Bytes bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string out;
    for (const std::uint8_t byte : bytes) {
        out += kDigits[byte >> 4];
        out += kDigits[byte & 15];
    }
    return out;
}

std::optional<std::string> Printable(Bytes bytes) {
    if (!bytes.empty() && bytes.back() == 0) {
        bytes = bytes.first(bytes.size() - 1);
    }
    if (bytes.empty() || !std::all_of(bytes.begin(), bytes.end(), [](auto b) { return b >= 0x20 && b < 0x7F; })) {
        return std::nullopt;
    }
    return std::string(bytes.begin(), bytes.end());
}

std::uint32_t Read32(Bytes bytes, std::size_t at) {
    return bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16 | static_cast<std::uint32_t>(bytes[at + 3]) << 24;
}

std::string Utf8FromUtf16(Bytes bytes) {
    std::string out;
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        char32_t unit = bytes[at] | bytes[at + 1] << 8;
        if (unit >= 0xD800 && unit < 0xDC00 && at + 3 < bytes.size()) {
            const char32_t low = bytes[at + 2] | bytes[at + 3] << 8;
            if (low >= 0xDC00 && low < 0xE000) {
                unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
                at += 2;
            }
        }
        suite::AppendUtf8(out, unit);
    }
    return out;
}

void AddMessage(JsonLine& line, const PipeFrame::Frame& frame) {
    line.Number("destination", frame.slot[0]);
    line.Number("subCode", frame.slot[1]);
    line.Number("code", frame.slot[ServiceMessages::kMessageCode]);
    line.Number("slot3", frame.slot[3]);
    line.Number("slot4", frame.slot[4]);
    line.Number("slot5", frame.slot[5]);
    line.Number("payloadLength", frame.slot[6]);
    line.Text("text", frame.text);
    line.Number("flag", frame.flag);
    line.Number("reserved", frame.reserved);
    line.Text("payload", Hex(frame.payload));
    if (const auto text = Printable(frame.payload)) {
        line.Text("payloadText", *text);
    }
    if (frame.slot[ServiceMessages::kMessageCode] != ServiceMessages::kSwitchStateCode) {
        return;
    }
    if (const auto record = DecodeSwitchRecord(frame.payload)) {
        JsonLine object;
        object.Number("sender", record->sender).Text("caller", record->caller).Number("value", record->value);
        line.Object("record", object);
    }
}

const char* EventName(ServerEvent::Kind kind) {
    switch (kind) {
        case ServerEvent::Kind::kConnected:
            return "connect";
        case ServerEvent::Kind::kHello:
            return "hello";
        case ServerEvent::Kind::kMessage:
            return "message";
        case ServerEvent::Kind::kRefused:
            return "refused";
        case ServerEvent::Kind::kDisconnected:
            return "disconnect";
    }
    return "";
}

}  // namespace

std::string EventJson(const ServerEvent& event) {
    JsonLine line;
    line.Text("event", EventName(event.kind)).Number("client", event.client);
    if (event.kind == ServerEvent::Kind::kHello) {
        line.Number("clientId", event.frame.clientId);
    } else if (event.kind == ServerEvent::Kind::kMessage) {
        AddMessage(line, event.frame);
    } else if (event.kind == ServerEvent::Kind::kRefused) {
        line.Text("reason", suite::ToUtf8(event.reason));
    }
    return line.Take();
}

std::optional<SwitchRecord> DecodeSwitchRecord(Bytes payload) {
    // One, sender, length of the caller's name in UTF-16 units; the name; value. All 32-bit, little-endian.
    constexpr std::size_t kBeforeName = 12;
    constexpr std::size_t kAfterName = 4;
    if (payload.size() < kBeforeName + kAfterName || Read32(payload, 0) != 1) {
        return std::nullopt;
    }
    const std::size_t nameSize = payload.size() - kBeforeName - kAfterName;
    if (nameSize % 2 != 0 || Read32(payload, 8) != nameSize / 2) {
        return std::nullopt;
    }
    SwitchRecord record;
    record.sender = static_cast<std::int32_t>(Read32(payload, 4));
    record.caller = Utf8FromUtf16(payload.subspan(kBeforeName, nameSize));
    record.value = static_cast<std::int32_t>(Read32(payload, kBeforeName + nameSize));
    return record;
}
