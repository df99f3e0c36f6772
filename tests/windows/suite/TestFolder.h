#pragma once
// A folder of one test's own that takes the place of the user's local application data folder while the test runs,
// and the second process that works in it. Its name holds letters of several scripts on purpose. Test thread only.
#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

#include "suite/common/Handle.h"
#include "tests/support/ChildProcess.h"

// "suite_helper.exe", running. The destructor ends a process that still runs.
class Helper {
  public:
    explicit Helper(const std::wstring& arguments) : process_(L"suite_helper.exe", arguments) {}

    // The exit code. Writing a dump takes seconds under Wine, and many more on a busy machine.
    DWORD Wait() { return process_.WaitForEnd(std::chrono::minutes(2)); }
    void Kill() { process_.Kill(); }
    DWORD Id() const { return GetProcessId(process_.Process()); }

  private:
    harness::ChildProcess process_;
};

class TestFolder {
  public:
    TestFolder();
    ~TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    std::filesystem::path LogFolder() const { return path_ / L"Velmora" / L"Quillon" / L"Logs"; }
    // The helper's current log file and the full ones before it, oldest first.
    std::vector<std::filesystem::path> HelperLogs() const;
    std::vector<std::string> HelperLogLines() const;

  private:
    std::filesystem::path path_;
    std::wstring before_;
};

// The bytes of a file; empty when it cannot be read.
std::string ReadBytes(const std::filesystem::path& path);
std::vector<std::string> ReadLines(const std::filesystem::path& path);
