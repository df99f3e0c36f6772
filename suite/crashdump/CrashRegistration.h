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

// Installs a handler for unhandled exceptions of the system, std::terminate and abort: it writes
// %LOCALAPPDATA%\<productName>\CrashDumps\<program>-<time>-<pid>.dmp and one line to the program's log, then lets the
// process end as it would have ended, with its own exit code. The newest ten dumps of a program are kept. Nothing is
// installed when the enable flag is 0; the second flag, the mode and the application's name are kept for compatibility
// and have no effect. The record is copied before the call returns, the library stays in memory, and a second call does
// nothing.
using RegisterAppCrashHandlerFunction = void(__cdecl*)(const CrashRegistration* record);
