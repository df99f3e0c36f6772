#pragma once
// A program with one window, from its start until that is painted and to its end. One thread.
#include <windows.h>

#include <string>

#include "suite/common/Handle.h"

namespace benchmark {

// Working set of a process, in MiB.
double MemoryMiB(HANDLE process);

class StartedProgram {
  public:
    // Starts it and waits until its window is visible and has answered after painting. Throws std::runtime_error when
    // it does not start or no window comes in 30 s.
    explicit StartedProgram(std::wstring commandLine);
    // Closes the window as its user would, and ends the process if that is not enough.
    ~StartedProgram();
    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;

    // From before the process was made until the window had answered.
    double StartMs() const { return startMs_; }
    HWND Window() const { return window_; }
    HANDLE Process() const { return process_.Get(); }
    double MemoryMiB() const { return benchmark::MemoryMiB(process_.Get()); }

  private:
    void End() const;

    suite::Handle process_;
    HWND window_ = nullptr;
    double startMs_ = 0;
};

}  // namespace benchmark
