#include "app/CrashHandler.h"

#include <shlwapi.h>

#include "app/InstallSettings.h"
#include "suite/crashdump/CrashRegistration.h"

namespace {

constexpr std::uint32_t kReporterMissing = 0xFFFFFFFF;
constexpr char kExport[] = "RegisterAppCrashHandler";

}  // namespace

CrashHandler& CrashHandler::GetInstance() {
    static CrashHandler instance;
    return instance;
}

CrashHandler::~CrashHandler() {
    if (library_) {
        FreeLibrary(library_);
    }
    library_ = nullptr;
    if (spare_) {
        CloseHandle(spare_);
    }
    spare_ = nullptr;
}

DWORD CrashHandler::Load() {
    if (library_) {
        return ERROR_SUCCESS;
    }
    wchar_t folder[MAX_PATH] = {};
    if (!GetModuleFileNameW(nullptr, folder, MAX_PATH)) {
        return GetLastError();
    }
    PathRemoveFileSpecW(folder);
    const std::wstring path = std::wstring(folder) + L"\\" + InstallSettings::kCrashLibrary;
    // What it imports may lie beside it.
    library_ = LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    return library_ ? ERROR_SUCCESS : GetLastError();
}

std::uint32_t CrashHandler::Register(bool enableFlag, bool secondFlag, const std::wstring& productName,
                                     std::int32_t mode, const std::wstring& appName) {
    const std::wstring reporter = std::wstring(InstallSettings::kInstallFolder) + InstallSettings::kCrashReporter;
    if (GetFileAttributesW(reporter.c_str()) == INVALID_FILE_ATTRIBUTES) {
        return kReporterMissing;
    }
    if (const DWORD error = Load()) {
        return error;
    }

    const FARPROC address = GetProcAddress(library_, kExport);
    if (!address) {
        return GetLastError();
    }
    CrashRegistration record;
    record.enableFlag = enableFlag;
    record.secondFlag = secondFlag;
    record.mode = mode;
    record.appName = appName;
    record.productName = productName;
    reinterpret_cast<RegisterAppCrashHandlerFunction>(reinterpret_cast<void*>(address))(&record);
    return 0;
}
