#pragma once
// What the program finds of the suite on the machine, while one lives: the dump reporter, the crash-dump library and
// its export, each there or not. Thread: the test's.
#include <windows.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "suite/crashdump/CrashRegistration.h"
#include "tests/support/ImportHook.h"

class FakeSuite {
  public:
    FakeSuite() { current_ = this; }
    ~FakeSuite() { current_ = nullptr; }
    FakeSuite(const FakeSuite&) = delete;
    FakeSuite& operator=(const FakeSuite&) = delete;

    bool hasReporter = true;
    bool hasLibrary = true;
    bool hasExport = true;

    // Paths that were looked for and libraries that were loaded since the last call.
    std::vector<std::wstring> TakeAsked() { return std::exchange(asked_, {}); }
    std::vector<std::wstring> TakeLoaded() { return std::exchange(loaded_, {}); }
    // What the library's export was called with last.
    std::optional<CrashRegistration> TakeRecord() { return std::exchange(record_, std::nullopt); }

  private:
    static DWORD WINAPI Attributes(LPCWSTR path) {
        current_->asked_.emplace_back(path);
        return current_->hasReporter ? FILE_ATTRIBUTE_NORMAL : INVALID_FILE_ATTRIBUTES;
    }
    static HMODULE WINAPI Load(LPCWSTR path, HANDLE file, DWORD flags) {
        // What the library imports may lie beside it, or in the system.
        if (file || flags != (LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32)) {
            return current_->load_.Original<decltype(&LoadLibraryExW)>()(path, file, flags);
        }
        current_->loaded_.emplace_back(path);
        SetLastError(ERROR_MOD_NOT_FOUND);
        // Any library does: its export is asked for below.
        return current_->hasLibrary ? GetModuleHandleW(L"kernel32.dll") : nullptr;
    }
    static FARPROC WINAPI Export(HMODULE module, LPCSTR name) {
        if (std::string(name) != "RegisterAppCrashHandler") {
            return current_->export_.Original<decltype(&GetProcAddress)>()(module, name);
        }
        SetLastError(ERROR_PROC_NOT_FOUND);
        return current_->hasExport ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&TakeIn)) : nullptr;
    }
    static void __cdecl TakeIn(const CrashRegistration* record) { current_->record_ = *record; }

    static inline FakeSuite* current_ = nullptr;

    std::vector<std::wstring> asked_;
    std::vector<std::wstring> loaded_;
    std::optional<CrashRegistration> record_;
    const harness::ImportHook attributes_{nullptr, "GetFileAttributesW", &Attributes};
    const harness::ImportHook load_{nullptr, "LoadLibraryExW", &Load};
    const harness::ImportHook export_{nullptr, "GetProcAddress", &Export};
};
