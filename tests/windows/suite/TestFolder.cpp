#include "tests/windows/suite/TestFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "suite/common/LocalFolder.h"

namespace fs = std::filesystem;

namespace {

constexpr DWORD kPatienceMs = 120'000;

// One pass: a file that is still open in this process keeps its name, and std::filesystem::remove_all would try to
// empty its folder for ever.
void RemoveTree(const fs::path& folder) {
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored)) {
        if (entry.is_directory(ignored)) {
            RemoveTree(entry.path());
        } else {
            fs::remove(entry.path(), ignored);
        }
    }
    fs::remove(folder, ignored);
}

}  // namespace

Helper::Helper(const std::wstring& arguments) {
    const fs::path program = fs::path(suite::ProgramPath()).parent_path() / L"suite_helper.exe";
    std::wstring commandLine = L"\"" + program.wstring() + L"\" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process)) {
        ADD_FAILURE() << "suite_helper.exe does not start: " << GetLastError();
        return;
    }
    CloseHandle(process.hThread);
    process_ = suite::Handle(process.hProcess);
}

Helper::~Helper() {
    if (process_ && WaitForSingleObject(process_.Get(), 0) == WAIT_TIMEOUT) {
        Kill();
    }
}

DWORD Helper::Wait() {
    DWORD code = 0xFFFFFFFF;
    EXPECT_EQ(WaitForSingleObject(process_.Get(), kPatienceMs), WAIT_OBJECT_0) << "suite_helper.exe hangs";
    GetExitCodeProcess(process_.Get(), &code);
    return code;
}

void Helper::Kill() {
    TerminateProcess(process_.Get(), 99);
    WaitForSingleObject(process_.Get(), kPatienceMs);
}

TestFolder::TestFolder() {
    static int number = 0;
    path_ = fs::temp_directory_path() /
            (L"suite-\u00e4\u65e5\u05d0-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++number));
    fs::create_directories(path_);
    before_ = suite::LocalDataFolder();
    SetEnvironmentVariableW(L"LOCALAPPDATA", path_.c_str());
}

TestFolder::~TestFolder() {
    SetEnvironmentVariableW(L"LOCALAPPDATA", before_.c_str());
    RemoveTree(path_);
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
