#include "app/PixoraMutex.h"

#include "suite/logger/QxLogger.h"

namespace {

constexpr wchar_t kMutexName[] = L"PixoraUIMutex";
constexpr wchar_t kFunction[] = L"PixoraMutex::IsAlreadyRunning";

}  // namespace

PixoraMutex& PixoraMutex::GetInstance() {
    static PixoraMutex instance;
    return instance;
}

PixoraMutex::~PixoraMutex() {
    if (mutex_ && ReleaseMutex(mutex_)) {
        CloseHandle(mutex_);
        mutex_ = nullptr;
    }
}

bool PixoraMutex::IsAlreadyRunning() {
    if (HANDLE other = OpenMutexW(MUTEX_ALL_ACCESS, FALSE, kMutexName)) {
        if (!CloseHandle(other)) {
            LogLine(LogLevel::kInfo, kFunction, L"CloseHandle exist error: ", GetLastError());
        }
        return true;
    }

    SetLastError(ERROR_SUCCESS);
    mutex_ = CreateMutexW(nullptr, TRUE, kMutexName);
    const DWORD error = GetLastError();
    if (error == ERROR_SUCCESS) {
        return false;
    }

    // Kept: the handle is forgotten before it is closed, so the name that a concurrent start made stays taken for as
    // long as this process lives.
    LogLine(LogLevel::kInfo, kFunction, L"Create PixoraUIMutex error: ", error);
    mutex_ = nullptr;
    if (!CloseHandle(mutex_)) {
        LogLine(LogLevel::kInfo, kFunction, L"CloseHandle error: ", GetLastError());
    }
    return true;
}
