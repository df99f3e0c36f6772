#pragma once
// Registers the suite's crash-dump library for this process, where the suite is installed.
// Thread: UI thread, at start-up.
#include <windows.h>

#include <cstdint>
#include <string>

// Holds the crash-dump library for the life of the process.
class CrashHandler {
  public:
    static CrashHandler& GetInstance();

    // 0 when the handler is registered, -1 when the suite's dump reporter is not installed, else the system's error
    // code: the library is missing or lacks its export.
    std::uint32_t Register(bool enableFlag, bool secondFlag, const std::wstring& productName, std::int32_t mode,
                           const std::wstring& appName);

    CrashHandler(const CrashHandler&) = delete;
    CrashHandler& operator=(const CrashHandler&) = delete;

  private:
    CrashHandler() = default;
    ~CrashHandler();

    DWORD Load();

    HMODULE library_ = nullptr;
    HANDLE spare_ = nullptr;  // kept for compatibility: closed with the library where one is set
};
