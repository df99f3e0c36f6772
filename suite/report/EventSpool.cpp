#include "suite/report/EventSpool.h"

#include <atomic>

#include "suite/common/LocalFolder.h"
#include "suite/logger/QxLogger.h"
#include "suite/report/EventLine.h"

namespace suite {

namespace {

constexpr std::size_t kMostQueuedLines = 4096;
constexpr std::uint64_t kSpoolLimitBytes = 4 * 1024 * 1024;
constexpr ULONGLONG kFinishMs = 500;

std::atomic<EventSpool*> theSpool{nullptr};

class ExclusiveLock {
  public:
    explicit ExclusiveLock(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
    ~ExclusiveLock() { ReleaseSRWLockExclusive(&lock_); }
    ExclusiveLock(const ExclusiveLock&) = delete;
    ExclusiveLock& operator=(const ExclusiveLock&) = delete;

  private:
    SRWLOCK& lock_;
};

bool KeepLibraryLoaded() {
    HMODULE module = nullptr;
    return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                              reinterpret_cast<LPCWSTR>(&KeepLibraryLoaded), &module) != FALSE;
}

}  // namespace

// The limit leaves room for the line that reaches it.
EventSpool::EventSpool(const std::wstring& folder)
    : file_(folder + L"\\Velmora\\Quillon\\Report\\events.jsonl", kSpoolLimitBytes - kLongestEventLine - 1, 0) {}

EventSpool* EventSpool::Instance() {
    static const bool made = [] {
        const std::wstring folder = LocalDataFolder();
        if (!folder.empty()) {
            theSpool = new EventSpool(folder);
        }
        return true;
    }();
    (void)made;
    return theSpool;
}

bool EventSpool::Post(std::string line) {
    line += '\n';
    {
        ExclusiveLock guard(lock_);
        if (lines_.size() >= kMostQueuedLines || !StartWriter()) {
            return false;
        }
        lines_.push_back(std::move(line));
    }
    WakeConditionVariable(&filled_);
    return true;
}

bool EventSpool::StartWriter() {
    if (!started_ && KeepLibraryLoaded()) {
        started_ = static_cast<bool>(Handle(CreateThread(nullptr, 0, &EventSpool::WriterThread, this, 0, nullptr)));
    }
    return started_;
}

DWORD WINAPI EventSpool::WriterThread(void* spool) {
    try {
        static_cast<EventSpool*>(spool)->WriteForEver();
    } catch (...) {
        LogLine(4, L"EventSpool::WriterThread", L"usage events are no longer written");
    }
    return 0;
}

void EventSpool::WriteForEver() {
    for (;;) {
        const std::string* line = nullptr;
        {
            ExclusiveLock guard(lock_);
            while (lines_.empty()) {
                SleepConditionVariableSRW(&filled_, &lock_, INFINITE, 0);
            }
            line = &lines_.front();  // others only add at the back
        }
        Write(*line);
        bool idle = false;
        {
            ExclusiveLock guard(lock_);
            lines_.pop_front();
            idle = lines_.empty();
        }
        if (idle) {
            file_.Close();
        }
    }
}

void EventSpool::Write(const std::string& line) {
    const bool written = file_.Append(line);
    if (!written && !toldLoss_) {
        LogLine(3, L"EventSpool::Write", L"usage events are dropped, their file is full or cannot be written");
    }
    toldLoss_ = !written;
}

void EventSpool::FinishAtProcessEnd() {
    EventSpool* const spool = theSpool;
    // The lock is taken for ever when the writer was ended while it held it; then the queue is not to be touched.
    if (spool == nullptr || !TryAcquireSRWLockExclusive(&spool->lock_)) {
        return;
    }
    const ULONGLONG start = GetTickCount64();
    for (const std::string& line : spool->lines_) {
        if (!spool->file_.Append(line) || GetTickCount64() - start > kFinishMs) {
            break;
        }
    }
    ReleaseSRWLockExclusive(&spool->lock_);
}

}  // namespace suite

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
    if (reason == DLL_PROCESS_DETACH && processEnds != nullptr) {
        suite::EventSpool::FinishAtProcessEnd();
    }
    return TRUE;
}
