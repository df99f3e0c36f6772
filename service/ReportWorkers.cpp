#include "service/ReportWorkers.h"

#include <exception>
#include <mutex>
#include <utility>

#include "suite/logger/QxLogger.h"

struct ReportWorkers::State {
    explicit State(std::function<void()> reportToRun) : report(std::move(reportToRun)) {}

    const std::function<void()> report;
    std::mutex mutex;
    // Guarded by mutex.
    std::size_t running = 0;
    bool runAgain = false;
};

ReportWorkers::ReportWorkers(std::function<void()> report) : state_(std::make_shared<State>(std::move(report))) {}

ReportWorkers::~ReportWorkers() {
    const ULONGLONG deadline = GetTickCount64() + kExitWait.count();
    for (const suite::Handle& thread : threads_) {
        const ULONGLONG now = GetTickCount64();
        WaitForSingleObject(thread.Get(), now < deadline ? static_cast<DWORD>(deadline - now) : 0);
    }
}

bool ReportWorkers::Start() noexcept {
    try {
        const std::scoped_lock lock(state_->mutex);
        if (state_->running == kMaxWorkers) {
            state_->runAgain = true;
            return true;
        }
        return StartThread();
    } catch (const std::exception&) {
        return false;
    }
}

// Called with the mutex held.
bool ReportWorkers::StartThread() {
    std::erase_if(threads_,
                  [](const suite::Handle& thread) { return WaitForSingleObject(thread.Get(), 0) == WAIT_OBJECT_0; });
    threads_.reserve(threads_.size() + 1);
    auto state = std::make_unique<std::shared_ptr<State>>(state_);
    suite::Handle thread(CreateThread(nullptr, 0, &ReportWorkers::ThreadEntry, state.get(), 0, nullptr));
    if (!thread) {
        return false;
    }
    static_cast<void>(state.release());  // the thread's now
    ++state_->running;
    threads_.push_back(std::move(thread));
    return true;
}

DWORD WINAPI ReportWorkers::ThreadEntry(void* state) {
    const std::unique_ptr<std::shared_ptr<State>> owner(static_cast<std::shared_ptr<State>*>(state));
    State& mine = **owner;
    for (;;) {
        try {
            mine.report();
        } catch (const std::exception& error) {
            LogLine(LogLevel::kError, L"ReportWorkers::ThreadEntry", L"a report failed: ", error.what());
        } catch (...) {
            LogLine(LogLevel::kError, L"ReportWorkers::ThreadEntry", L"a report failed");
        }
        const std::scoped_lock lock(mine.mutex);
        if (!std::exchange(mine.runAgain, false)) {
            --mine.running;
            return 0;
        }
    }
}
