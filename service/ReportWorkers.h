#pragma once
// Runs a report on short-lived threads of its own, one for each request, never more than a few at once.
//
// Why: the caller must not wait for reporting, and reporting may hang. A slider that is dragged for ten seconds asks
// hundreds of times: each request starts a thread, as long as fewer than kMaxWorkers run. What is asked for beyond that
// becomes one more run of the first thread to finish, however many requests it stands for: a report reads the settings
// when it runs, so they would all have said the same. Threads and memory are bounded, and the last state is reported.
// Threads: Start from any thread; the report runs on several threads at once.
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>

class ReportWorkers {
  public:
    static constexpr std::size_t kMaxWorkers = 8;
    // What the end of the program may cost: reports that run are given this time to finish, then they are left behind.
    static constexpr std::chrono::milliseconds kExitWait{200};

    // The report may outlive this object by as long as it hangs, so it must not use what ends with its owner.
    explicit ReportWorkers(std::function<void()> report);
    ~ReportWorkers();
    ReportWorkers(const ReportWorkers&) = delete;
    ReportWorkers& operator=(const ReportWorkers&) = delete;

    // Returns at once; false when the system gave no thread, and the request is lost.
    [[nodiscard]] bool Start();

  private:
    struct State;
    static void Work(State& state) noexcept;

    const std::shared_ptr<State> state_;  // shared with the threads
};
