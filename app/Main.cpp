// The process entry.
#include <windows.h>

#include <exception>

#include "app/StartUp.h"
#include "suite/common/ProcessStart.h"
#include "suite/logger/QxLogger.h"

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR cmdLine, int) {
    suite::PrepareProcess();
    try {
        StartUp(instance, cmdLine);
    } catch (const std::exception& error) {
        LogLine(LogLevel::kError, L"wWinMain", L"unexpected exception: ", error.what());
    }
    return 0;
}
