#include "tests/support/Harness.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <iostream>

#include "suite/common/LocalFolder.h"
#include "suite/logger/QxLogger.h"
#include "tests/support/TestLog.h"

namespace harness {

namespace {

namespace fs = std::filesystem;

constexpr std::ptrdiff_t kLinesShown = 40;

// Ends a test with a look at the logs.
class LogGuard : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override { TestLog::BeginTest(); }
    void OnTestEnd(const testing::TestInfo& test) override {
        TestLog::EndTest();
        if (test.result()->Failed()) {
            Show(TestLog::Everything());
        }
    }
    void OnTestSuiteEnd(const testing::TestSuite&) override { TestLog::JudgeLines(); }
    void OnTestIterationEnd(const testing::UnitTest&, int) override { TestLog::JudgeLines(); }

    // For whoever looks for the reason of a failure.
    static void Show(const std::vector<std::string>& lines) {
        const auto shown = std::min(static_cast<std::ptrdiff_t>(lines.size()), kLinesShown);
        std::for_each(lines.end() - shown, lines.end(),
                      [](const std::string& line) { std::cout << "  log: " << line << "\n"; });
    }
};

}  // namespace

const fs::path& LocalDataFolder() {
    static const fs::path folder = fs::temp_directory_path() / ("PixoraTest-" + std::to_string(GetCurrentProcessId()));
    return folder;
}

std::wstring ProgramFolder() {
    const std::wstring path = suite::ProgramPath();
    return path.substr(0, path.rfind(L'\\') + 1);
}

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

namespace {

// The log is still open, so its folder can only go without it; the system removes the file when the program ends.
void RemoveOwnFolder() {
    const fs::path log = QxLogger::GetInstance()->FilePath();
    const fs::path aside = fs::temp_directory_path() / (LocalDataFolder().filename().wstring() + L".log");
    MoveFileExW(log.c_str(), aside.c_str(), MOVEFILE_REPLACE_EXISTING);
    DeleteFileW(aside.c_str());
    RemoveTree(LocalDataFolder());
}

}  // namespace

int RunTests(int argc, char** argv, End end) {
    testing::InitGoogleMock(&argc, argv);
    // An earlier program with the same number may have been cut off.
    RemoveTree(LocalDataFolder());
    fs::create_directories(LocalDataFolder());
    SetEnvironmentVariableW(L"LOCALAPPDATA", LocalDataFolder().c_str());
    if (!QxLogger::GetInstance()->InitProcessLogger()) {
        std::cerr << "no log can be written in " << LocalDataFolder() << "\n";
        return 1;
    }
    TestLog::Watch(fs::path(QxLogger::GetInstance()->FilePath()).parent_path());
    testing::UnitTest::GetInstance()->listeners().Append(new LogGuard);
    const int status = RUN_ALL_TESTS();
    RemoveOwnFolder();
    if (end == End::kAtOnce) {
        std::fflush(nullptr);
        TerminateProcess(GetCurrentProcess(), static_cast<UINT>(status));
    }
    return status;
}

}  // namespace harness
