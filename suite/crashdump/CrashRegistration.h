#pragma once
// The record that a program hands to the crash-dump library's export "RegisterAppCrashHandler".
//
// The library is found at run time and may be older or newer than the program, so this layout is fixed: field order,
// natural alignment, and the C++ runtime's own wide strings (both sides link the same runtime DLL).
#include <cstdint>
#include <string>

struct CrashRegistration {
    std::uint8_t enableFlag = 0;
    std::uint8_t secondFlag = 0;
    std::int32_t reserved = 0;
    std::int32_t mode = 0;
    std::wstring appName;
    std::wstring productName;
};

// Installs a handler for unhandled exceptions, std::terminate and abort: it writes
// %LOCALAPPDATA%\<productName>\CrashDumps\<program>-<time>-<pid>.dmp and one line to the program's log, then lets the
// process end with its own exit code. The newest ten dumps are kept. The record is copied before the call returns.
using RegisterAppCrashHandlerFunction = void(__cdecl*)(const CrashRegistration* record);
