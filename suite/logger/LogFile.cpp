#include "suite/logger/LogFile.h"

#include <cstddef>
#include <utility>

#include "suite/common/Handle.h"
#include "suite/common/SlimLock.h"

namespace suite {

namespace {

constexpr std::uint64_t kFileLimitBytes = 2 * 1024 * 1024;
constexpr int kOlderFiles = 4;
constexpr std::size_t kMostLines = 4096;
constexpr DWORD kWriteOutMs = 2000;
constexpr std::size_t kWriteBytes = 64 * 1024;  // of lines that are written together

}  // namespace

LogFile::LogFile(std::wstring path) : file_(std::move(path), kFileLimitBytes, kOlderFiles) {}

void LogFile::Write(std::string line) {
    {
        const SlimLock guard(lock_);
        if (queue_.empty() && file_.AppendSoon(line)) {
            return;
        }
        if (queue_.size() >= kMostLines || !StartThread()) {
            return;
        }
        queue_.push_back(std::move(line));
    }
    WakeConditionVariable(&wake_);
}

// Called with lock_ held.
bool LogFile::StartThread() {
    if (threadStarted_) {
        return true;
    }
    // The thread runs this module's code until the process ends, whoever unloads the module before.
    HMODULE self = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                            reinterpret_cast<LPCWSTR>(&LogFile::ThreadEntry), &self)) {
        return false;
    }
    const Handle thread(CreateThread(nullptr, 0, &LogFile::ThreadEntry, this, 0, nullptr));
    threadStarted_ = static_cast<bool>(thread);
    return threadStarted_;
}

DWORD WINAPI LogFile::ThreadEntry(void* file) {
    for (;;) {
        try {
            static_cast<LogFile*>(file)->WriteForever();
        } catch (...) {
            // No memory to write with: there is nowhere else to tell. What waits may find some later.
            Sleep(1000);
        }
    }
}

// Called with lock_ held: some of the lines that wait, as one text.
std::string LogFile::Waiting(std::size_t& lines) const {
    std::string text;
    lines = 0;
    while (lines < queue_.size() && text.size() < kWriteBytes) {
        text += queue_[lines++];
    }
    return text;
}

void LogFile::WriteForever() {
    for (;;) {
        std::size_t lines = 0;
        std::string text;
        {
            const SlimLock guard(lock_);
            while (queue_.empty()) {
                SleepConditionVariableSRW(&wake_, &lock_, INFINITE, 0);
            }
            text = Waiting(lines);
        }
        file_.Append(text);
        const SlimLock guard(lock_);
        queue_.erase(queue_.begin(), queue_.begin() + static_cast<std::ptrdiff_t>(lines));
        WakeAllConditionVariable(&written_);
    }
}

void LogFile::WriteOut() {
    const SlimLock guard(lock_);
    SleepUntil(written_, lock_, kWriteOutMs, [this] { return queue_.empty(); });
}

void LogFile::FlushAtExit() {
    // A thread that was stopped inside the lock keeps it for ever, and has left the queue in no known state.
    if (!TryAcquireSRWLockExclusive(&lock_)) {
        return;
    }
    while (!queue_.empty()) {
        std::size_t lines = 0;
        file_.Append(Waiting(lines));
        queue_.erase(queue_.begin(), queue_.begin() + static_cast<std::ptrdiff_t>(lines));
    }
}

}  // namespace suite
