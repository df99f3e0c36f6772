// What the tests of the packages need of Windows: a program that has a file open, and a hand for the pages of an
// installer that runs openly.
//   hold PATH MODE    opens the file as soon as it is there, prints "held", and keeps it until it is killed.
//                     MODE: read (others may read), none (nobody else), all (others may do anything), make (makes it)
//   wait              runs until it is killed
//   version PATH      prints the file's version, the name that it was built under, and what it says it is
//   press ID          waits for the installer's window, whose button ID can be pressed, and presses it
//   box ID            waits for a message box with a button ID, prints its text as UTF-8 and presses the button
// Gives up after a minute, with exit code 1.
#include <windows.h>

#include <cstdio>
#include <string>

namespace {

constexpr DWORD kPatienceMs = 60000;
constexpr DWORD kStepMs = 20;

template <typename Condition>
bool WaitFor(Condition condition) {
    const ULONGLONG end = GetTickCount64() + kPatienceMs;
    while (!condition()) {
        if (GetTickCount64() > end) {
            return false;
        }
        Sleep(kStepMs);
    }
    return true;
}

int Print(const std::wstring& text) {
    std::string bytes(4 * text.size(), '\0');
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                                           static_cast<int>(bytes.size()), nullptr, nullptr);
    std::fwrite(bytes.data(), 1, static_cast<std::size_t>(length), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
    return 0;
}

int Hold(const std::wstring& path, const std::wstring& mode) {
    const DWORD share = mode == L"none"  ? 0
                        : mode == L"all" ? FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE
                                         : FILE_SHARE_READ;
    const DWORD access = mode == L"make" ? GENERIC_WRITE : GENERIC_READ;
    const DWORD creation = mode == L"make" ? CREATE_ALWAYS : OPEN_EXISTING;
    HANDLE file = INVALID_HANDLE_VALUE;
    const bool opened = WaitFor([&] {
        file = CreateFileW(path.c_str(), access, share, nullptr, creation, 0, nullptr);
        return file != INVALID_HANDLE_VALUE;
    });
    if (!opened) {
        return 1;
    }
    Print(L"held");
    Sleep(INFINITE);
    return 0;
}

int PrintVersion(const std::wstring& path) {
    DWORD ignored = 0;
    std::string block(GetFileVersionInfoSizeW(path.c_str(), &ignored), '\0');
    if (!GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data())) {
        return 1;
    }
    VS_FIXEDFILEINFO* numbers = nullptr;
    UINT size = 0;
    if (!VerQueryValueW(block.data(), L"\\", reinterpret_cast<void**>(&numbers), &size)) {
        return 1;
    }
    std::wstring text = std::to_wstring(HIWORD(numbers->dwFileVersionMS));
    for (const WORD number :
         {LOWORD(numbers->dwFileVersionMS), HIWORD(numbers->dwFileVersionLS), LOWORD(numbers->dwFileVersionLS)}) {
        text += L"." + std::to_wstring(number);
    }
    for (const wchar_t* name : {L"OriginalFilename", L"FileDescription"}) {
        wchar_t* value = nullptr;
        const std::wstring query = std::wstring(L"\\StringFileInfo\\040904b0\\") + name;
        if (!VerQueryValueW(block.data(), query.c_str(), reinterpret_cast<void**>(&value), &size)) {
            return 1;
        }
        text += std::wstring(L" ") + value;
    }
    return Print(text);
}

std::wstring TextOf(HWND window) {
    wchar_t text[1024] = {};
    GetWindowTextW(window, text, 1024);
    return text;
}

struct Wanted {
    bool box;
    int id;
    HWND found = nullptr;
};

// A dialog whose button can be pressed: a message box has an owner, the installer's own window has not.
BOOL CALLBACK Look(HWND window, LPARAM parameter) {
    Wanted& wanted = *reinterpret_cast<Wanted*>(parameter);
    wchar_t name[16] = {};
    GetClassNameW(window, name, 16);
    const HWND button = GetDlgItem(window, wanted.id);
    if (name != std::wstring(L"#32770") || !IsWindowVisible(window) || !button || !IsWindowEnabled(button) ||
        !IsWindowVisible(button) || (GetWindow(window, GW_OWNER) != nullptr) != wanted.box) {
        return TRUE;
    }
    wanted.found = window;
    return FALSE;
}

BOOL CALLBACK AppendText(HWND control, LPARAM parameter) {
    wchar_t name[16] = {};
    GetClassNameW(control, name, 16);
    if (lstrcmpiW(name, L"Static") == 0) {
        *reinterpret_cast<std::wstring*>(parameter) += TextOf(control);
    }
    return TRUE;
}

int Press(int id, bool box) {
    Wanted wanted{box, id};
    const bool found = WaitFor([&] {
        EnumWindows(Look, reinterpret_cast<LPARAM>(&wanted));
        return wanted.found != nullptr;
    });
    if (!found) {
        return 1;
    }
    if (box) {
        std::wstring text;
        EnumChildWindows(wanted.found, AppendText, reinterpret_cast<LPARAM>(&text));
        Print(text);
    }
    PostMessageW(wanted.found, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(wanted.found, id)));
    return 0;
}

}  // namespace

int wmain(int count, wchar_t** words) {
    const std::wstring command = count > 1 ? words[1] : L"";
    if (command == L"hold" && count == 4) {
        return Hold(words[2], words[3]);
    }
    if (command == L"wait") {
        Print(L"running");
        Sleep(INFINITE);
    }
    if (command == L"version" && count == 3) {
        return PrintVersion(words[2]);
    }
    if ((command == L"press" || command == L"box") && count == 3) {
        return Press(_wtoi(words[2]), command == L"box");
    }
    return 64;
}
