// PixoraProbe: looks at the running program through the accessibility door, and presses its controls.
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "suite/common/ComApartment.h"
#include "tools/probe/AccessibleWindow.h"
#include "tools/probe/ScreenMotion.h"

namespace {

constexpr wchar_t kDefaultClass[] = L"Camera";
constexpr DWORD kDefaultWaitMs = 10'000;

constexpr char kHelp[] =
    "PixoraProbe [--class NAME] COMMAND\n"
    "  list               the controls of the window: layout name, name, role, state, value, screen rectangle\n"
    "  press NAME         presses the control with that layout name or name\n"
    "  value NAME TEXT    gives the control a value\n"
    "  wait [MS]          waits until the window shows its controls and has painted (10000 ms unless told)\n"
    "  motion NAME [MS]   waits until the picture within that control moves, as a camera's does (10000 ms unless "
    "told)\n"
    "  rect               the window's screen rectangle: left top right bottom\n"
    "Exit status: 0 done, 1 no such window, 2 no such control, refused or in vain, 64 wrong usage.\n";

std::string Utf8(const std::wstring& text) {
    const int length = static_cast<int>(text.size());
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), bytes, nullptr, nullptr);
    return result;
}

void PrintList(const AccessibleWindow& window) {
    const long focused = window.FocusedId();
    for (const AccessibleControl& control : window.List()) {
        const RECT& r = control.screenPx;
        std::printf("%-28s \"%s\"  %s%s%s  [%s]  value=\"%s\"  %ld,%ld,%ld,%ld\n", Utf8(control.control).c_str(),
                    Utf8(control.name).c_str(), Utf8(AccessibleRoleName(control.role)).c_str(),
                    control.action.empty() ? "" : ", ", Utf8(control.action).c_str(),
                    Utf8(AccessibleStateNames(control.state)).c_str(), Utf8(control.value).c_str(), r.left, r.top,
                    r.right, r.bottom);
        if (control.id == focused)
            std::printf("  ^ has the focus\n");
    }
}

// Polls at a screen reader's pace: another process's start has no event that could be waited for.
HWND WaitForWindow(const std::wstring& className, DWORD timeoutMs) {
    const ULONGLONG end = GetTickCount64() + timeoutMs;
    do {
        const HWND window = FindWindowW(className.c_str(), nullptr);
        if (window && IsWindowVisible(window) && !AccessibleWindow(window).List().empty()) {
            RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
            DWORD_PTR answer = 0;
            // A message that is answered: everything painted before it.
            if (SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_ABORTIFHUNG, 5000, &answer))
                return window;
        }
        Sleep(20);
    } while (GetTickCount64() < end);
    return nullptr;
}

int Run(std::vector<std::wstring> arguments) {
    std::wstring className = kDefaultClass;
    if (arguments.size() >= 2 && arguments[0] == L"--class") {
        className = arguments[1];
        arguments.erase(arguments.begin(), arguments.begin() + 2);
    }
    const std::wstring command = arguments.empty() ? L"--help" : arguments[0];
    if (command == L"--help") {
        std::fputs(kHelp, stdout);
        return arguments.empty() ? 64 : 0;
    }
    if (command == L"wait") {
        const DWORD timeoutMs = arguments.size() > 1 ? std::stoul(arguments[1]) : kDefaultWaitMs;
        return WaitForWindow(className, timeoutMs) ? 0 : 1;
    }

    const HWND handle = FindWindowW(className.c_str(), nullptr);
    if (!handle)
        return 1;
    if (command == L"rect") {
        RECT r = {};
        GetWindowRect(handle, &r);
        std::printf("%ld %ld %ld %ld\n", r.left, r.top, r.right, r.bottom);
        return 0;
    }
    const AccessibleWindow window(handle);
    if (!window.IsOpen())
        return 1;
    if (command == L"list") {
        PrintList(window);
        return 0;
    }
    const bool motion = command == L"motion" && (arguments.size() == 2 || arguments.size() == 3);
    const bool press = command == L"press" && arguments.size() == 2;
    const bool value = command == L"value" && arguments.size() == 3;
    if (!press && !value && !motion) {
        std::fputs(kHelp, stderr);
        return 64;
    }
    const auto control = window.Find(arguments[1]);
    if (!control)
        return 2;
    if (motion) {
        const DWORD timeoutMs = arguments.size() == 3 ? std::stoul(arguments[2]) : kDefaultWaitMs;
        return WaitForMotion(control->screenPx, timeoutMs) ? 0 : 2;
    }
    return (press ? window.Press(control->id) : window.SetValue(control->id, arguments[2])) ? 0 : 2;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    SetConsoleOutputCP(CP_UTF8);
    // Else the system tells it the places of another process' windows as if every screen were at 100 %.
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    const suite::ComApartment com(suite::ComApartment::Kind::kSingleThreaded);
    int status = 64;
    try {
        status = Run({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n%s", error.what(), kHelp);
    }
    return status;
}
