#include "tests/windows/suite/TestFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "suite/common/LocalFolder.h"
#include "tests/support/Harness.h"
#include "tests/support/TestLog.h"

namespace fs = std::filesystem;

TestFolder::TestFolder() {
    static int number = 0;
    path_ = fs::temp_directory_path() /
            (L"suite-\u00e4\u65e5\u05d0-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++number));
    fs::create_directories(path_);
    before_ = suite::LocalDataFolder();
    SetEnvironmentVariableW(L"LOCALAPPDATA", path_.c_str());
    harness::TestLog::Watch(LogFolder());
}

TestFolder::~TestFolder() {
    SetEnvironmentVariableW(L"LOCALAPPDATA", before_.c_str());
    harness::TestLog::Unwatch(LogFolder());
    harness::RemoveTree(path_);
}

std::vector<fs::path> TestFolder::HelperLogs() const {
    std::vector<fs::path> logs;
    for (int number = 9; number > 0; --number) {
        const fs::path older = LogFolder() / (L"suite_helper." + std::to_wstring(number) + L".log");
        if (fs::exists(older)) {
            logs.push_back(older);
        }
    }
    if (fs::exists(LogFolder() / L"suite_helper.log")) {
        logs.push_back(LogFolder() / L"suite_helper.log");
    }
    return logs;
}

std::vector<std::string> TestFolder::HelperLogLines() const {
    std::vector<std::string> lines;
    for (const fs::path& log : HelperLogs()) {
        const std::vector<std::string> more = ReadLines(log);
        lines.insert(lines.end(), more.begin(), more.end());
    }
    return lines;
}

std::string ReadBytes(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> ReadLines(const fs::path& path) {
    std::vector<std::string> lines;
    std::ifstream file(path, std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}
