#include "suite/logger/QxLogger.h"

#include <windows.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "suite/common/LocalFolder.h"
#include "suite/logger/LogEnd.h"
#include "suite/logger/LogFile.h"
#include "suite/logger/LogText.h"

namespace {

constexpr std::size_t kMostEarlyLines = 1000;

struct State {
    std::atomic<suite::LogFile*> open{nullptr};  // set once, when logging to the file begins

    std::mutex lock;
    // Guarded by lock.
    bool started = false;
    std::vector<std::string> earlyLines;
};

// Never destroyed: other modules log until the very end of the process.
State& TheState() {
    static State* const state = new State;
    return *state;
}

std::string FormatNow(int level, std::wstring_view text) {
    SYSTEMTIME now;
    GetLocalTime(&now);
    const suite::LogTime time{now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds};
    return suite::FormatLogLine(time, level, GetCurrentThreadId(), text);
}

void Deliver(std::string line) {
    State& state = TheState();
    suite::LogFile* file = state.open.load();
    if (!file) {
        std::scoped_lock guard(state.lock);
        file = state.open.load();
        if (!file) {
            if (!state.started && state.earlyLines.size() < kMostEarlyLines) {
                state.earlyLines.push_back(std::move(line));
            }
            return;
        }
    }
    file->Write(std::move(line));
}

bool Start(State& state) {
    const std::wstring folder = suite::LocalDataFolder();
    if (folder.empty()) {
        return false;
    }
    const std::wstring path = folder + L"\\Velmora\\Quillon\\Logs\\" + suite::ProgramName() + L".log";
    auto file = std::make_unique<suite::LogFile>(path);
    if (!file->Open()) {
        return false;
    }
    for (const std::string& line : state.earlyLines) {
        file->Write(line);
    }
    state.open.store(file.release());
    return true;
}

}  // namespace

QxLogger* QxLogger::GetInstance() {
    static QxLogger* const instance = new QxLogger;
    return instance;
}

bool QxLogger::InitProcessLogger() {
    try {
        State& state = TheState();
        std::scoped_lock guard(state.lock);
        if (!state.started) {
            state.started = true;
            Start(state);
            std::vector<std::string>().swap(state.earlyLines);
        }
        return state.open.load() != nullptr;
    } catch (...) {
        return false;
    }
}

void QxLogger::Log(int level, const std::wostringstream& stream) {
    // Callers log between a failed call and their own look at the error code.
    const DWORD lastError = GetLastError();
    try {
        Deliver(FormatNow(level, stream.view()));
    } catch (...) {
        // No memory for the line: there is nowhere else to tell.
    }
    SetLastError(lastError);
}

void suite::WriteOutLog() {
    if (LogFile* const file = TheState().open.load()) {
        file->WriteOut();
    }
}

std::wstring QxLogger::FilePath() const {
    const suite::LogFile* file = TheState().open.load();
    return file ? file->Path() : std::wstring();
}

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void* processEnds) {
    if (reason == DLL_PROCESS_DETACH && processEnds) {
        if (suite::LogFile* const file = TheState().open.load()) {
            file->FlushAtExit();
        }
    }
    return TRUE;
}
