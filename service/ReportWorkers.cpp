#include "service/ReportWorkers.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>

struct ReportWorkers::State {
    explicit State(std::function<void()> reportToRun) : report(std::move(reportToRun)) {}

    const std::function<void()> report;
    std::mutex mutex;
    std::condition_variable ended;  // a worker has ended
    // Guarded by mutex.
    std::size_t running = 0;
    bool runAgain = false;
};

ReportWorkers::ReportWorkers(std::function<void()> report) : state_(std::make_shared<State>(std::move(report))) {}

ReportWorkers::~ReportWorkers() {
    std::unique_lock lock(state_->mutex);
    state_->ended.wait_for(lock, kExitWait, [this] { return state_->running == 0; });
}

bool ReportWorkers::Start() {
    {
        const std::scoped_lock lock(state_->mutex);
        if (state_->running == kMaxWorkers) {
            state_->runAgain = true;
            return true;
        }
        ++state_->running;
    }
    try {
        std::thread([state = state_] { Work(*state); }).detach();
        return true;
    } catch (const std::exception&) {
        const std::scoped_lock lock(state_->mutex);
        --state_->running;
        return false;
    }
}

void ReportWorkers::Work(State& state) noexcept {
    for (;;) {
        try {
            state.report();
        } catch (...) {
            // Reporting is the one thing that may fail without a trace: nothing depends on it.
        }
        const std::scoped_lock lock(state.mutex);
        if (!std::exchange(state.runAgain, false)) {
            --state.running;
            state.ended.notify_all();
            return;
        }
    }
}
