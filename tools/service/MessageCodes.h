#pragma once
// The numbers that program and camera service exchange, as the stand-in service uses them.
#include <cstdint>

inline constexpr std::int32_t kProgramEndpoint = 0xCE0000;
inline constexpr std::int32_t kSettingsChangedCode = 0x4B273B;
inline constexpr std::int32_t kCameraSwitchCode = 0x4B273C;
inline constexpr std::int32_t kShowMessageCode = 0x4B273D;
inline constexpr std::int32_t kServiceNoticeCode = 0x22711;
inline constexpr std::int32_t kResetSubCode = 0x40000;  // of kServiceNoticeCode
