#pragma once
// Runs a report on short-lived threads of its own, one for each request, never more than a few at once.
//
// Why: the caller must not wait for reporting, and reporting may hang. A slider that is dragged for ten seconds asks
// hundreds of times: each request starts a thread, as long as fewer than kMaxWorkers run. What is asked for beyond that
// becomes one more run of the first thread to finish, however many requests it stands for: a report reads the settings
// when it runs, so they would all have said the same. Threads and memory are bounded, and the last state is reported.
// The threads are the system's own: a detached std::thread may crash a process that ends while it ends.
// Threads: Start from any thread; the report runs on several threads at once. Nothing throws.
#include <windows.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include "suite/common/Handle.h"

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
    [[nodiscard]] bool Start() noexcept;

  private:
    struct State;

    bool StartThread();
    static DWORD WINAPI ThreadEntry(void* state);

    const std::shared_ptr<State> state_;  // shared with the threads
    std::vector<suite::Handle> threads_;  // guarded by the state's mutex; those that have ended go with the next start
};
