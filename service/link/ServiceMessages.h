#pragma once
// What the settings model says over the message pipe: endpoints, codes, the change ping and the camera-switch message.
//
// Why: settings never travel in a message; the receiver reads the registry again. Messages are built here, apart from
// the pipe, so that their bytes can be tested anywhere. Threads: pure functions, any thread.
#include <cstdint>
#include <string_view>

#include "suite/ipc/IIPCDataIO.h"
#include "suite/ipc/TagIPCMessageItem.h"

namespace ServiceMessages {

inline constexpr const wchar_t* kPipeName = L"\\\\.\\Pipe\\iNotoraAssistant";

inline constexpr std::int32_t kOwnClientId = 0xCE0000;
inline constexpr std::int32_t kCameraServiceId = 0xCD0000;
inline constexpr std::int32_t kSwitchStateReceiverId = 0xB20001;

inline constexpr std::int32_t kSettingsChangedCode = 0x4B273B;  // both ways
inline constexpr std::int32_t kSwitchStateCode = 0x4B273C;      // out
inline constexpr std::int32_t kBackgroundGoneCode = 0x4B273D;   // in
inline constexpr std::int32_t kNotificationCode = 0x22711;      // in
inline constexpr std::int32_t kResetSubCode = 0x40000;          // of kNotificationCode

// The ping's payload with its terminator, whatever changed; kept: what changed goes into the usage report only.
inline constexpr char kSignalText[] = "1";

// A slot of TagIPCMessageItem.
enum Slot : std::size_t { kDestination = 0, kSubCode = 1, kMessageCode = 2, kSlot3 = 3, kPayloadLength = 6 };

// Tells the camera service that settings changed. Its data is kSignalText.
TagIPCMessageItem ChangePing();

// Tells the switch-state receiver the camera switch, with a serialised SwitchState as payload. The payload is borrowed
// and must outlive the item.
TagIPCMessageItem SwitchStateMessage(const std::uint8_t* payload, std::int32_t payloadLength);

struct SwitchState {
    std::int32_t senderId = kCameraServiceId;
    std::u16string_view callerName = u"LumiCameraUI";
    std::int32_t value = 0;  // 1 switched on, 0 off
};

// Length in code units, then the code units without a terminator; of a text of 0x40000000 units or more the length
// only. True when all was written.
[[nodiscard]] bool WriteWideString(IIPCDataIO& out, std::u16string_view text);
// The record with the mark that goes before every record. True when all was written.
[[nodiscard]] bool WriteRecord(IIPCDataIO& out, const SwitchState& state);

}  // namespace ServiceMessages
