#include "benchmarks/support/StartedProgram.h"

#include <psapi.h>

#include <chrono>
#include <stdexcept>

#include "benchmarks/support/Times.h"

namespace benchmark {

namespace {

constexpr std::chrono::seconds kPatience{30};
constexpr DWORD kPatienceToEndMs = 5000;
constexpr int kLeastWidthPx = 100;  // narrower are hints and the like

struct Search {
    DWORD processId;
    HWND found;
};

BOOL CALLBACK FindVisible(HWND window, LPARAM parameter) {
    auto* search = reinterpret_cast<Search*>(parameter);
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    RECT rect = {};
    GetWindowRect(window, &rect);
    if (owner != search->processId || !IsWindowVisible(window) || rect.right - rect.left < kLeastWidthPx)
        return TRUE;
    search->found = window;
    return FALSE;
}

}  // namespace

double MemoryMiB(HANDLE process) {
    PROCESS_MEMORY_COUNTERS counters = {};
    GetProcessMemoryInfo(process, &counters, sizeof(counters));
    return static_cast<double>(counters.WorkingSetSize) / (1024.0 * 1024.0);
}

StartedProgram::StartedProgram(std::wstring commandLine) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    const auto begin = Clock::now();
    PROCESS_INFORMATION started = {};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &started))
        throw std::runtime_error("the program does not start");
    const suite::Handle thread(started.hThread);
    process_ = suite::Handle(started.hProcess);
    Search search{started.dwProcessId, nullptr};
    while (!search.found && Clock::now() - begin < kPatience) {
        EnumWindows(FindVisible, reinterpret_cast<LPARAM>(&search));
        if (!search.found)
            Sleep(1);
    }
    window_ = search.found;
    if (!window_) {
        End();
        throw std::runtime_error("the program shows no window");
    }
    RedrawWindow(window_, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    SendMessageW(window_, WM_NULL, 0, 0);
    startMs_ = MsSince(begin);
}

StartedProgram::~StartedProgram() {
    End();
}

void StartedProgram::End() const {
    if (window_)
        PostMessageW(window_, WM_CLOSE, 0, 0);
    if (WaitForSingleObject(process_.Get(), window_ ? kPatienceToEndMs : 0) != WAIT_OBJECT_0)
        TerminateProcess(process_.Get(), 1);
}

}  // namespace benchmark
