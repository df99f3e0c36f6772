#include "suite/report/Spool.h"

#include <algorithm>
#include <atomic>

#include "suite/common/LocalFolder.h"
#include "suite/common/SlimLock.h"
#include "suite/logger/QxLogger.h"

namespace suite {

namespace {

constexpr std::uint64_t kFileLimitBytes = 4 * 1024 * 1024;
constexpr std::size_t kLongestMessage = 8 * 1024;
constexpr std::size_t kMostMessages = 4096;
constexpr ULONGLONG kExitFlushMs = 500;
constexpr DWORD kWriteOutMs = 2000;

std::atomic<Spool*> theSpool{nullptr};

std::string AsLine(const std::string& message) {
    std::string line = message;
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r' || c == '\0'; }, ' ');
    line += '\n';
    return line;
}

}  // namespace

Spool* Spool::Instance() {
    static Spool* const spool = Make();
    return spool;
}

Spool* Spool::Make() {
    try {
        const std::wstring folder = LocalDataFolder();
        if (folder.empty()) {
            return nullptr;
        }
        theSpool = new Spool(folder + L"\\Velmora\\Quillon\\Report\\events.jsonl");
        return theSpool;
    } catch (...) {
        return nullptr;
    }
}

// A line may pass the limit by its own length, and the file stays below four MiB all the same.
Spool::Spool(const std::wstring& path) : file_(path, kFileLimitBytes - kLongestMessage - 1, 0) {}

bool Spool::Put(const std::string& message) {
    if (message.size() > kLongestMessage) {
        return false;
    }
    try {
        std::string line = AsLine(message);
        {
            const SlimLock guard(lock_);
            if (queue_.size() + taken_.size() - done_ >= kMostMessages || !StartThread()) {
                return false;
            }
            queue_.push_back(std::move(line));
        }
        WakeConditionVariable(&wake_);
        return true;
    } catch (...) {
        return false;
    }
}

// Called with lock_ held.
bool Spool::StartThread() {
    if (threadStarted_) {
        return true;
    }
    // The thread runs this module's code until the process ends, whoever unloads the module before.
    HMODULE self = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                            reinterpret_cast<LPCWSTR>(&Spool::ThreadEntry), &self)) {
        return false;
    }
    const Handle thread(CreateThread(nullptr, 0, &Spool::ThreadEntry, this, 0, nullptr));
    threadStarted_ = static_cast<bool>(thread);
    return threadStarted_;
}

DWORD WINAPI Spool::ThreadEntry(void* spool) {
    try {
        static_cast<Spool*>(spool)->WriteForever();
    } catch (...) {
        LogLine(LogLevel::kError, L"Spool::ThreadEntry", L"unexpected exception");
    }
    return 0;
}

// What was taken is written; whether nothing waits.
bool Spool::EndRound() {
    const SlimLock guard(lock_);
    done_ = 0;
    taken_.clear();
    if (!queue_.empty()) {
        return false;
    }
    WakeAllConditionVariable(&written_);
    return true;
}

void Spool::WriteForever() {
    for (;;) {
        if (EndRound()) {
            file_.Close();  // without the lock: somebody may hold the file's mutex
        }
        {
            const SlimLock guard(lock_);
            while (queue_.empty()) {
                SleepConditionVariableSRW(&wake_, &lock_, INFINITE, 0);
            }
            taken_.swap(queue_);
        }
        for (; done_ < taken_.size(); ++done_) {
            if (!file_.Append(taken_[done_]) && !toldFailure_) {
                toldFailure_ = true;
                LogLine(LogLevel::kError, L"Spool::WriteForever",
                        L"usage events are lost: the spool file is full or cannot be written");
            }
        }
    }
}

void Spool::WriteOut() {
    if (Spool* const spool = theSpool) {
        const SlimLock guard(spool->lock_);
        SleepUntil(spool->written_, spool->lock_, kWriteOutMs,
                   [spool] { return spool->queue_.empty() && spool->taken_.empty(); });
    }
}

void Spool::FlushAtExit() {
    Spool* const spool = theSpool;
    // A thread that was stopped inside the lock keeps it for ever, and has left the queue in no known state.
    if (!spool || !TryAcquireSRWLockExclusive(&spool->lock_)) {
        return;
    }
    const ULONGLONG deadline = GetTickCount64() + kExitFlushMs;
    const auto write = [&](const std::string& line) {
        return spool->file_.Append(line) && GetTickCount64() <= deadline;
    };
    const auto rest = spool->taken_.cbegin() + static_cast<std::ptrdiff_t>(spool->done_);
    if (std::all_of(rest, spool->taken_.cend(), write)) {
        (void)std::all_of(spool->queue_.cbegin(), spool->queue_.cend(), write);
    }
}

UtcTime UtcNow() {
    SYSTEMTIME now;
    GetSystemTime(&now);
    return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds};
}

}  // namespace suite

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void* processEnds) {
    if (reason == DLL_PROCESS_DETACH && processEnds) {
        suite::Spool::FlushAtExit();
    }
    return TRUE;
}
