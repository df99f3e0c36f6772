#pragma once
// A program of this tree that a test starts, by its file name in the tests' own folder. It ends with the object at the
// latest. Thread: the test's.
#include <windows.h>

#include <filesystem>
#include <string>

#include "suite/common/Handle.h"
#include "tests/support/Wait.h"

namespace harness {

class ChildProcess {
  public:
    // What WaitForEnd answers when the program did not start or does not end.
    static constexpr DWORD kDidNotEnd = 0xFFFFFFFF;

    // Nothing runs; for an object that gets its program later.
    ChildProcess() = default;
    // Fails the test when it does not start. With `output`, standard output and errors go into that file.
    explicit ChildProcess(const std::wstring& program, const std::wstring& arguments = {},
                          const std::filesystem::path& output = {});
    ~ChildProcess() { Kill(); }
    ChildProcess(ChildProcess&&) = default;
    ChildProcess& operator=(ChildProcess&& other) noexcept;

    HANDLE Process() const { return process_.Get(); }
    bool Runs() const { return process_ && WaitForSingleObject(process_.Get(), 0) == WAIT_TIMEOUT; }
    // The exit code. A program that does not end in time fails the test and is ended.
    DWORD WaitForEnd(std::chrono::milliseconds atMost = kPatience);
    // Ends it at once, as a user or the system may.
    void Kill();

  private:
    std::wstring program_;
    suite::Handle process_;
};

}  // namespace harness
