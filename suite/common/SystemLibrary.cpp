#include "suite/common/SystemLibrary.h"

#include "suite/logger/QxLogger.h"

namespace suite {

DWORD SystemLibrary::Load() {
    std::call_once(once_, [this] {
        library_ = LoadLibraryExW(name_, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
        if (!library_) {
            error_ = GetLastError();
            LogLine(LogLevel::kError, L"SystemLibrary::Load", L"this system has no ", name_, L": ", error_);
        }
    });
    return error_;
}

FARPROC SystemLibrary::Find(const char* function, DWORD& error) {
    error = Load();
    if (error != ERROR_SUCCESS) {
        return nullptr;
    }
    const FARPROC found = GetProcAddress(library_, function);
    if (!found) {
        error = GetLastError();
    }
    return found;
}

void SystemLibrary::TellMissing(const char* function, DWORD error) const {
    // A library that is missing has its own line.
    if (library_) {
        LogLine(LogLevel::kError, L"SystemLibrary::Find", name_, L" has no ", function, L": ", error);
    }
}

}  // namespace suite
