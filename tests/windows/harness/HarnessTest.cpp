// A line of level 4 that nobody announced fails the test that caused it, whatever that test forgets.
#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>

#include <fstream>
#include <iterator>
#include <thread>

#include "suite/logger/QxLogger.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Harness.h"
#include "tests/support/PrivateRegistry.h"
#include "tests/support/SettingsKey.h"
#include "tests/support/TestLog.h"

namespace harness {
namespace {

using testing::HasSubstr;
namespace fs = std::filesystem;

class HarnessTest : public testing::Test {
  protected:
    // Runs tests of harness_child: whether they passed; what was printed is in shown_.
    bool Passes(const std::wstring& filter) {
        const fs::path output = LocalDataFolder() / "child.txt";
        const DWORD code = ChildProcess(L"harness_child.exe", L"--gtest_filter=" + filter, output).WaitForEnd();
        std::ifstream file(output, std::ios::binary);
        shown_.assign(std::istreambuf_iterator<char>(file), {});
        EXPECT_TRUE(code == 0 || code == 1) << code;
        return code == 0;
    }

    std::string shown_;
};

TEST_F(HarnessTest, AnUnannouncedFailureFailsTheTest) {
    EXPECT_FALSE(Passes(L"Child.Unannounced"));
    EXPECT_THAT(shown_, HasSubstr("unexpected in the log of harness_child: [L4] broken(Child::Fail)"));
    EXPECT_THAT(shown_, HasSubstr("[  FAILED  ] Child.Unannounced"));
}

TEST_F(HarnessTest, OtherLinesAndAnnouncedOnesPass) {
    EXPECT_TRUE(Passes(L"Child.Silent:Child.Announced:Child.AnnouncedAfterwards:Child.AllowedAndMissing:Child.Taken"))
        << shown_;
    EXPECT_THAT(shown_, HasSubstr("[  PASSED  ] 5 tests"));
}

TEST_F(HarnessTest, AnnouncingCoversThatLineOnly) {
    EXPECT_FALSE(Passes(L"Child.AnnouncedAnotherLine"));
    EXPECT_THAT(shown_, HasSubstr("[L4] broken otherwise(Child::Fail)"));
    EXPECT_FALSE(Passes(L"Child.FailsAfterItTook"));
}

TEST_F(HarnessTest, AnnouncingCoversThatTestOnly) {
    EXPECT_FALSE(Passes(L"Neighbours.*"));
    EXPECT_THAT(shown_, HasSubstr("[       OK ] Neighbours.First"));
    EXPECT_THAT(shown_, HasSubstr("[  FAILED  ] Neighbours.Second"));
}

TEST_F(HarnessTest, EveryProgramsLogCounts) {
    EXPECT_FALSE(Passes(L"Child.OfAnotherProgram"));
    EXPECT_THAT(shown_, HasSubstr("unexpected in the log of Other: [L4] broken elsewhere(Other::Run)"));
}

TEST_F(HarnessTest, HigherLevelsAndDamagedLogsCount) {
    EXPECT_FALSE(Passes(L"Child.HigherLevel"));
    EXPECT_FALSE(Passes(L"Child.NoLineOfALog"));
    EXPECT_THAT(shown_, HasSubstr("no line of a log, in that of Other"));
}

TEST_F(HarnessTest, WhatComesOutsideOfATestCountsToo) {
    EXPECT_FALSE(Passes(L"SuiteBegin.*"));
    EXPECT_FALSE(Passes(L"SuiteEnd.*"));
    EXPECT_FALSE(Passes(L"Destructor.*"));
    SetEnvironmentVariableA("PIXORA_FAIL_AT_THE_END", "1");
    EXPECT_FALSE(Passes(L"Child.Silent"));
    SetEnvironmentVariableA("PIXORA_FAIL_AT_THE_END", nullptr);
    EXPECT_TRUE(Passes(L"Child.Silent"));
}

TEST_F(HarnessTest, AnAnnouncedLineThatDoesNotComeFailsTheTest) {
    TestLog::Expect("[L4] never(Nobody::Run)");
    EXPECT_NONFATAL_FAILURE(TestLog::EndTest(std::chrono::milliseconds(0)), "announced and not in the log");
}

TEST_F(HarnessTest, AnAnnouncedLineIsWaitedFor) {
    TestLog::Expect("[L4] late(HarnessTest)");
    std::thread late([] {
        Sleep(50);
        LogLine(4, L"HarnessTest", L"late");
    });
    TestLog::EndTest();
    late.join();
}

TEST_F(HarnessTest, ATestSeesItsOwnLinesOnly) {
    LogLine(3, L"HarnessTest::One", L"one");
    LogLine(3, L"HarnessTest::Two", L"two");
    EXPECT_THAT(TestLog::Lines(), testing::ElementsAre("[L3] one(HarnessTest::One)", "[L3] two(HarnessTest::Two)"));
    EXPECT_THAT(TestLog::LinesOf("HarnessTest::Two"), testing::ElementsAre("[L3] two(HarnessTest::Two)"));
    EXPECT_EQ(TestLog::Count(HasSubstr("HarnessTest")), 2);
    TestLog::StartOver();
    EXPECT_THAT(TestLog::Lines(), testing::IsEmpty());
    EXPECT_THAT(TestLog::Lines("Other"), testing::IsEmpty());
}

TEST_F(HarnessTest, TheProgramHasAFolderOfItsOwnThatGoesWithIt) {
    wchar_t folder[MAX_PATH] = {};
    GetEnvironmentVariableW(L"LOCALAPPDATA", folder, MAX_PATH);
    EXPECT_EQ(fs::path(folder), LocalDataFolder());
    EXPECT_TRUE(fs::is_directory(LocalDataFolder()));
    ChildProcess child(L"harness_child.exe", L"--gtest_filter=Child.Silent");
    const DWORD id = GetProcessId(child.Process());
    EXPECT_EQ(child.WaitForEnd(), 0U);
    EXPECT_FALSE(fs::exists(fs::temp_directory_path() / ("PixoraTest-" + std::to_string(id))));
}

TEST_F(HarnessTest, TheRegistryIsPrivateWhileItIsWanted) {
    constexpr wchar_t kName[] = L"of the harness";
    {
        const PrivateRegistry own;
        EXPECT_FALSE(SettingsKey::Exists());
        SettingsKey::Set(kName, 7);
        EXPECT_EQ(SettingsKey::Number(kName), 7);
        SettingsKey::Set(kName, std::wstring(3000, L'x'));
        EXPECT_EQ(SettingsKey::Number(kName), std::nullopt);
        EXPECT_EQ(SettingsKey::Text(kName), std::wstring(3000, L'x'));
        EXPECT_EQ(SettingsKey::All().size(), 1U);
    }
    EXPECT_EQ(SettingsKey::Get(kName), std::nullopt);
    const PrivateRegistry next;
    EXPECT_FALSE(SettingsKey::Exists()) << "what the one before left";
}

TEST_F(HarnessTest, AProgramThatDoesNotEndIsEnded) {
    ChildProcess server(L"harness_child.exe", L"--gtest_filter=Child.Silent --gtest_repeat=-1",
                        LocalDataFolder() / "endless.txt");
    EXPECT_TRUE(server.Runs());
    DWORD code = 0;
    EXPECT_NONFATAL_FAILURE(code = server.WaitForEnd(std::chrono::milliseconds(0)), "does not end");
    EXPECT_EQ(code, ChildProcess::kDidNotEnd);
    EXPECT_FALSE(server.Runs());
}

}  // namespace
}  // namespace harness
