#pragma once
// The JSON line for each thing that a client of the stand-in service does. The lines:
//   {"event":"connect","client":1}
//   {"event":"hello","client":1,"clientId":13500416}
//   {"event":"message","client":1,"destination":13434880,"subCode":-1,"code":4925243,"slot3":0,"slot4":-1,"slot5":0,
//    "payloadLength":2,"text":"","flag":0,"reserved":0,"payload":"3100","payloadText":"1"}
//   {"event":"refused","client":1,"reason":"bad length"}
//   {"event":"disconnect","client":1}
// "payload" is in hexadecimal; "payloadText" is there when the payload is printable ASCII, with or without a NUL at the
// end; "record" is there for a camera-switch message: {"sender":13434880,"caller":"LumiCameraUI","value":1}.
// Threads: none of its own.
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "tools/service/ServerEvent.h"

std::string EventJson(const ServerEvent& event);

// The record that a camera-switch message carries.
struct SwitchRecord {
    std::int32_t sender = 0;
    std::string caller;  // UTF-8
    std::int32_t value = 0;
};

// Nothing unless the payload is exactly one such record.
std::optional<SwitchRecord> DecodeSwitchRecord(std::span<const std::uint8_t> payload);
