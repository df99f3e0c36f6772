#pragma once
// A course of steps that goes on inside modal loops: each step waits until its condition holds, then acts.
//
// Why: a modal window runs its own loop, and the test that caused it gets control back only when it has closed. The
// steps are driven by a timer message, which every loop runs. When the deadline passes, the test fails with the name
// of the step that did not come, and modal windows are destroyed and loops ended so that the test program goes on.
// Thread: the test's.
#include <windows.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

class Script {
  public:
    using Condition = std::function<bool()>;
    using Action = std::function<void()>;

    Script() = default;
    Script(const Script&) = delete;
    Script& operator=(const Script&) = delete;

    Script& When(const std::string& what, Condition condition, Action action);
    // As When, without an action.
    Script& Wait(const std::string& what, Condition condition);
    // Runs messages until all steps are done and every modal loop has ended.
    void Run();
    // As Run; `begin` is called first, with the steps already under way: it may run a modal loop itself.
    void Run(const Action& begin);

  private:
    struct Step {
        std::string what;
        Condition condition;
        Action action;
    };

    static void CALLBACK OnTimer(HWND, UINT, UINT_PTR, DWORD);
    void Advance();

    std::vector<Step> steps_;
    std::size_t next_ = 0;
    bool failed_ = false;
    std::chrono::steady_clock::time_point deadline_;
};

// The visible top-level window of this thread with that class; null when there is none.
HWND FindThreadWindow(const wchar_t* className);
