#pragma once
// The numbers and names that the tests share with the program: those of the program's own headers, under one roof, and
// those that the program keeps in one .cpp file. What they must be is stated once, in
// tests/unit/service/ServiceMessagesTest.cpp and in the documents of tests/integration. Pure data.
#include <cstdint>

#include "service/SettingNames.h"
#include "service/link/ServiceMessages.h"
#include "suite/ipc/TagIPCMessageItem.h"

namespace harness::Protocol {

using ServiceMessages::kBackgroundGoneCode;
using ServiceMessages::kCameraServiceId;
using ServiceMessages::kNotificationCode;
using ServiceMessages::kOwnClientId;
using ServiceMessages::kPipeName;
using ServiceMessages::kResetSubCode;
using ServiceMessages::kSettingsChangedCode;
using ServiceMessages::kSwitchStateCode;
using ServiceMessages::kSwitchStateReceiverId;

// Below HKEY_CURRENT_USER.
inline constexpr const wchar_t* kSettingsKey = SettingNames::kSystemKeyPath;
// Written by the installation of the driver and by the camera service.
inline constexpr const wchar_t* kDriverInstalled = L"filter_driver_install";
inline constexpr const wchar_t* kAlgorithmStarted = L"init_algorithm";

// Class of both top-level windows of the program, and of its boxes.
inline constexpr const wchar_t* kWindowClass = L"Camera";
inline constexpr const wchar_t* kMessageClass = L"MESSAGE BOX";
inline constexpr const wchar_t* kQuestionClass = L"Delete Double Check";
// Posted to the main window when reading from the camera fails: WM_APP + 1.
inline constexpr unsigned kCaptureFailed = 0x8001;

// A message of the camera service to the program.
inline TagIPCMessageItem FromService(std::int32_t code, std::int32_t subCode = -1) {
    TagIPCMessageItem item;
    item.slot[ServiceMessages::kDestination] = kOwnClientId;
    item.slot[ServiceMessages::kSubCode] = subCode;
    item.slot[ServiceMessages::kMessageCode] = code;
    return item;
}

}  // namespace harness::Protocol
