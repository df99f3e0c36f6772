// A crash of the real program leaves a dump and a line in its log, as soon as the suite's reporter is installed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "app/InstallSettings.h"
#include "tests/e2e/support/Machine.h"
#include "tests/e2e/support/Program.h"
#include "tests/support/TestLog.h"

namespace e2e {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
namespace fs = std::filesystem;

// "MDMP", which every minidump begins with.
constexpr char kDumpSignature[] = {'M', 'D', 'M', 'P'};

class CrashTest : public testing::Test {
  protected:
    void SetUp() override {
        Machine::ResetToInstalled();
        fs::remove_all(DumpFolder());
    }
    void TearDown() override {
        if (madeReporter_)
            fs::remove(Reporter());
    }

    static fs::path Reporter() { return fs::path(InstallSettings::kInstallFolder) / InstallSettings::kCrashReporter; }
    static fs::path DumpFolder() {
        wchar_t folder[MAX_PATH] = {};
        GetEnvironmentVariableW(L"LOCALAPPDATA", folder, MAX_PATH);
        return fs::path(folder) / L"QUILLON" / L"CrashDumps";
    }
    static std::vector<fs::path> Dumps() {
        std::vector<fs::path> dumps;
        std::error_code error;
        for (const fs::directory_entry& entry : fs::directory_iterator(DumpFolder(), error))
            dumps.push_back(entry.path());
        return dumps;
    }
    void InstallReporter() {
        if (fs::exists(Reporter()))
            return;
        fs::create_directories(Reporter().parent_path());
        std::ofstream(Reporter()) << "";
        madeReporter_ = true;
    }
    // A thread that begins at address zero.
    static void Crash(const Program& program) {
        DWORD thread = 0;
        const suite::Handle handle(CreateRemoteThread(program.Process(), nullptr, 0, nullptr, nullptr, 0, &thread));
        ASSERT_NE(handle.Get(), nullptr);
    }

  private:
    bool madeReporter_ = false;
};

TEST_F(CrashTest, LeavesADumpAndALogLine) {
    InstallReporter();
    Program program;
    ASSERT_TRUE(program.WaitForWindow());
    EXPECT_THAT(Dumps(), IsEmpty());
    Crash(program);
    // A dump of the whole process takes its time on a busy machine.
    const auto code = program.WaitForEnd(std::chrono::minutes(2));
    ASSERT_TRUE(code);
    EXPECT_NE(*code, 0U);
    const std::vector<fs::path> dumps = Dumps();
    ASSERT_EQ(dumps.size(), 1U);
    EXPECT_EQ(dumps[0].filename().wstring().rfind(L"Pixora-", 0), 0U);
    std::ifstream file(dumps[0], std::ios::binary);
    char signature[sizeof(kDumpSignature)] = {};
    file.read(signature, sizeof(signature));
    EXPECT_EQ(std::memcmp(signature, kDumpSignature, sizeof(signature)), 0);
    EXPECT_GT(fs::file_size(dumps[0]), 1000U);
    const std::vector<std::string> failures = harness::TestLog::TakeFailures();
    ASSERT_EQ(failures.size(), 1U);
    EXPECT_THAT(failures[0], testing::StartsWith("unhandled exception 0xC0000005"));
    EXPECT_THAT(failures[0], HasSubstr(", dump: "));
    EXPECT_THAT(failures[0], HasSubstr(dumps[0].filename().string()));

    // The next start is a sound one.
    Program again;
    EXPECT_TRUE(again.WaitForWindow());
}

TEST_F(CrashTest, WithoutTheReporterNothingIsRegistered) {
    if (fs::exists(Reporter()))
        GTEST_SKIP() << "the suite's reporter is installed here";
    Program program;
    ASSERT_TRUE(program.WaitForWindow());
    Crash(program);
    EXPECT_TRUE(program.WaitForEnd());
    EXPECT_THAT(Dumps(), IsEmpty());
}

}  // namespace
}  // namespace e2e
