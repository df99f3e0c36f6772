// PixoraSetupHelper: what the installer and the uninstaller do with files and folders. It is packed into both, runs
// from the program's folder, where only administrators write, and goes when they end. Prints the path that a failure is
// about.
//     recover|install|remove|clean PROGRAM-FOLDER
//     check-folders|make-folders|remove-pictures PROGRAM-DATA-FOLDER
// Exit codes: 0 done, 2 failed, 4 a file is in use, 7 a folder was prepared by somebody else.
#include <windows.h>

#include <string>

#include "setup/Exchange.h"
#include "setup/SharedFolders.h"
#include "setup/WindowsFiles.h"

namespace setup {
namespace {

constexpr int kExitDone = 0;
constexpr int kExitFailed = 2;
constexpr int kExitInUse = 4;
constexpr int kExitFolder = 7;

// ASCII but for what a neighbour's folder may hold; the reader takes the system's code page.
void Print(const std::wstring& text) {
    char bytes[2 * MAX_PATH] = {};
    const int length = WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), bytes, sizeof bytes,
                                           nullptr, nullptr);
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), bytes, static_cast<DWORD>(length), &written, nullptr);
}

int Tell(const Outcome& outcome) {
    if (outcome.result == Result::kDone) {
        return kExitDone;
    }
    Print(outcome.path + L" (" + std::to_wstring(outcome.error) + L")");
    return outcome.result == Result::kInUse ? kExitInUse : kExitFailed;
}

int Tell(bool sound, const std::wstring& problem) {
    if (!sound) {
        Print(problem);
    }
    return sound ? kExitDone : kExitFolder;
}

int Run(const std::wstring& command, const std::wstring& folder) {
    WindowsFiles files;
    Exchange exchange(files, folder);
    if (command == L"recover") {
        return Tell(exchange.Recover());
    }
    if (command == L"install") {
        return Tell(exchange.Install());
    }
    if (command == L"remove") {
        return Tell(exchange.Remove());
    }
    if (command == L"clean") {
        return Tell(exchange.Clean());
    }
    const SharedFolders folders(folder);
    std::wstring problem;
    if (command == L"check-folders") {
        return Tell(folders.Check(problem), problem);
    }
    if (command == L"make-folders") {
        return Tell(folders.Make(problem), problem);
    }
    if (command == L"remove-pictures") {
        folders.RemovePictures();
        return kExitDone;
    }
    return kExitFailed;
}

}  // namespace
}  // namespace setup

int wmain(int count, wchar_t** words) {
    // A box about a medium that is gone would wait in a silent run for ever.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    try {
        return count == 3 ? setup::Run(words[1], words[2]) : setup::kExitFailed;
    } catch (...) {
        return setup::kExitFailed;
    }
}
