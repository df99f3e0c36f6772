// The program that TestProgramTest runs: it tells where it is, ends with a code, or stays and starts one that stays.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "suite/common/Utf8.h"

namespace {

std::string CurrentFolder() {
    wchar_t folder[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, folder);
    return suite::ToUtf8(folder);
}

// Opens the event that the test waits for, so that it exists as long as this process.
void Stay(const wchar_t* event) {
    const HANDLE held = CreateEventW(nullptr, TRUE, FALSE, event);
    Sleep(INFINITE);
    CloseHandle(held);
}

void StartStaying(const std::wstring& program, const std::wstring& event) {
    std::wstring command = L"\"" + program + L"\" stay " + event;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const std::wstring task = argc > 1 ? argv[1] : L"";
    if (task == L"tell") {
        const wchar_t* const variable = _wgetenv(L"PIXORA_OF_THE_LIST");
        std::printf("%s\n%s\n%d\n", CurrentFolder().c_str(), variable ? suite::ToUtf8(variable).c_str() : "none",
                    std::getchar());
        std::fflush(stdout);
        std::fprintf(stderr, "an error\n");
        return 7;
    }
    if (task == L"leave" || task == L"wait") {
        StartStaying(argv[0], argv[2]);
    }
    if (task == L"stay" || task == L"wait") {
        Stay(argv[argc - 1]);
    }
    return 0;
}
