// A DLL under a name that is not its own, made by somebody who wants the program to load it. It leaves a mark beside
// itself when that happens. It also has the one function of the suite's crash-dump library, which the program calls
// before anything else: then it tells, in "start.txt" beside itself, in which state the process is.
#include <windows.h>

#include <cstdio>
#include <cwchar>

namespace {

HMODULE self = nullptr;

void WriteBeside(const wchar_t* path, const char* text) {
    const HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    WriteFile(file, text, static_cast<DWORD>(lstrlenA(text)), &written, nullptr);
    CloseHandle(file);
}

}  // namespace

extern "C" __declspec(dllexport) void RegisterAppCrashHandler(const void*) {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(self, path, MAX_PATH);
    *(std::wcsrchr(path, L'\\') + 1) = L'\0';
    lstrcatW(path, L"start.txt");
    // Beside the program, and nowhere in the system.
    const bool findsPlanted = LoadLibraryW(L"planted.dll") != nullptr;
    char text[64] = {};
    std::snprintf(text, sizeof(text), "error mode %u, planted.dll %s", GetErrorMode(),
                  findsPlanted ? "loaded" : "not loaded");
    WriteBeside(path, text);
}

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void*) {
    if (reason == DLL_PROCESS_ATTACH) {
        self = module;
        wchar_t path[MAX_PATH] = {};
        GetModuleFileNameW(module, path, MAX_PATH);
        lstrcatW(path, L".loaded");
        WriteBeside(path, "");
    }
    return TRUE;
}
