#include "service/link/ServiceMessages.h"

#include <algorithm>

namespace ServiceMessages {

namespace {

constexpr std::int32_t kRecordMark = 1;
constexpr std::size_t kTextLimit = 0x40000000;

}  // namespace

TagIPCMessageItem ChangePing() {
    TagIPCMessageItem item;
    item.slot[kDestination] = kCameraServiceId;
    item.slot[kMessageCode] = kSettingsChangedCode;
    item.slot[kSlot3] = 0;
    item.slot[kPayloadLength] = sizeof(kSignalText);
    item.data = kSignalText;
    return item;
}

TagIPCMessageItem SwitchStateMessage(const std::uint8_t* payload, std::int32_t payloadLength) {
    TagIPCMessageItem item;
    item.slot[kDestination] = kSwitchStateReceiverId;
    item.slot[kMessageCode] = kSwitchStateCode;
    item.slot[kPayloadLength] = payloadLength;
    item.data = payload;
    return item;
}

bool WriteWideString(IIPCDataIO& out, std::u16string_view text) {
    if (out.WriteInt(static_cast<std::int32_t>(text.size())) == 0) {
        return false;
    }
    if (text.size() >= kTextLimit) {
        return true;
    }
    return std::all_of(text.begin(), text.end(), [&out](char16_t unit) {
        return out.WriteByte(static_cast<std::uint8_t>(unit & 0xFF)) != 0 &&
               out.WriteByte(static_cast<std::uint8_t>(unit >> 8)) != 0;
    });
}

bool WriteRecord(IIPCDataIO& out, const SwitchState& state) {
    return out.WriteInt(kRecordMark) != 0 && out.WriteInt(state.senderId) != 0 &&
           WriteWideString(out, state.callerName) && out.WriteInt(state.value) != 0;
}

}  // namespace ServiceMessages
