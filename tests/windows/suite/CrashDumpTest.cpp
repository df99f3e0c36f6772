#include <gmock/gmock.h>

#include <fstream>

#include "tests/support/TestLog.h"
#include "tests/windows/suite/TestFolder.h"

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class CrashDumpTest : public testing::Test {
  protected:
    fs::path DumpFolder() const { return folder_.Path() / L"QUILLON" / L"CrashDumps"; }

    std::vector<fs::path> Dumps() const {
        std::vector<fs::path> dumps;
        if (fs::exists(DumpFolder())) {
            for (const fs::directory_entry& entry : fs::directory_iterator(DumpFolder())) {
                dumps.push_back(entry.path());
            }
        }
        return dumps;
    }

    // Ends with one dump, one line about it that holds `text`, and the code that it ends with without the handler.
    void ExpectDump(const std::wstring& kind, const std::wstring& how, const std::string& text) {
        const DWORD plain = Helper(L"crash " + kind + L" plain").Wait();
        ASSERT_THAT(Dumps(), IsEmpty());
        EXPECT_NE(plain, 0u);
        ExpectDump(kind, how, text, plain);
        EXPECT_THAT(folder_.HelperLogLines(), Contains(HasSubstr("before(Crash)")).Times(2));
    }

    void ExpectDump(const std::wstring& kind, const std::wstring& how, const std::string& text, DWORD code) {
        harness::TestLog::Expect(HasSubstr(text));
        EXPECT_EQ(Helper(L"crash " + kind + L" " + how).Wait(), code);
        ASSERT_THAT(Dumps(), SizeIs(1));
        EXPECT_EQ(ReadBytes(Dumps()[0]).substr(0, 4), "MDMP");
        EXPECT_GT(fs::file_size(Dumps()[0]), 1000u);
        EXPECT_THAT(Dumps()[0].filename().string(), testing::MatchesRegex("suite_helper-\\d+-\\d+-\\d+\\.dmp"));
        const std::vector<std::string> lines = folder_.HelperLogLines();
        EXPECT_THAT(lines, Contains(AllOf(HasSubstr("[L4]"), HasSubstr(text), HasSubstr(", dump: "),
                                          HasSubstr(Dumps()[0].filename().string()), EndsWith(")")))
                               .Times(1))
            << testing::PrintToString(lines);
        EXPECT_THAT(lines, Contains(HasSubstr("[L4]")).Times(1));
    }

    // REQUIRES: no dump can be written.
    void ExpectLine(const std::wstring& kind, const std::wstring& how, const std::string& text) {
        harness::TestLog::Expect(HasSubstr(text));
        harness::TestLog::Expect(HasSubstr("the crash dump cannot be written: 3"));
        harness::TestLog::Expect(HasSubstr("no folder for crash dumps"));
        const std::size_t linesBefore = folder_.HelperLogLines().size();
        EXPECT_EQ(Helper(L"crash " + kind + L" " + how).Wait(), Helper(L"crash " + kind + L" plain").Wait());
        std::vector<std::string> lines = folder_.HelperLogLines();
        lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(linesBefore));
        EXPECT_THAT(lines, Contains(AllOf(HasSubstr("[L4]"), HasSubstr(text))).Times(1)) << testing::PrintToString(how);
        EXPECT_THAT(lines, Contains(HasSubstr("the crash dump cannot be written: 3")).Times(1));
    }

    TestFolder folder_;
};

}  // namespace

TEST_F(CrashDumpTest, AccessViolation) {
    ExpectDump(L"access", L"registered", "unhandled exception 0xC0000005 at suite_helper.exe+0x");
}

TEST_F(CrashDumpTest, AccessViolationOnAnotherThread) {
    ExpectDump(L"access", L"thread", "unhandled exception 0xC0000005 at suite_helper.exe+0x");
}

TEST_F(CrashDumpTest, CrashesOnTwoThreadsAtOnceGiveOneDump) {
    ExpectDump(L"two-threads", L"registered", "unhandled exception 0xC0000005");
}

// Without the handler Wine does not get as far as this code: it ends the thread alone.
TEST_F(CrashDumpTest, StackOverflow) {
    ExpectDump(L"overflow", L"registered", "unhandled exception 0xC00000FD", 0xC00000FD);
}

TEST_F(CrashDumpTest, UncaughtException) {
    ExpectDump(L"throw", L"registered", "std::terminate, uncaught exception: thrown on purpose 0x40000015");
}

TEST_F(CrashDumpTest, Abort) {
    ExpectDump(L"abort", L"registered", "abort 0x40000015");
}

// A dump takes seconds under Wine, so the other kinds go without: a file stands where the folder should be.
TEST_F(CrashDumpTest, EveryKindIsLoggedAndKeepsItsCodeThoughNoDumpCanBeWritten) {
    std::ofstream(folder_.Path() / L"QUILLON") << "no folder";
    ExpectLine(L"access", L"registered", "unhandled exception 0xC0000005 at suite_helper.exe+0x");
    ExpectLine(L"access", L"unloaded", "unhandled exception 0xC0000005 at suite_helper.exe+0x");
    ExpectLine(L"illegal", L"registered", "unhandled exception 0xC000001D");
    ExpectLine(L"own-code", L"registered", "unhandled exception 0xE0001234");
    ExpectLine(L"throw", L"thread", "std::terminate, uncaught exception: thrown on purpose 0x40000015");
    ExpectLine(L"throw-int", L"registered", "std::terminate, uncaught exception of another type 0x40000015");
    ExpectLine(L"abort", L"thread", "abort 0x40000015");
    harness::TestLog::Expect(HasSubstr("unhandled exception 0xC00000FD"));
    EXPECT_EQ(Helper(L"crash overflow thread").Wait(), 0xC00000FD);
    EXPECT_THAT(folder_.HelperLogLines(), Contains(HasSubstr("unhandled exception 0xC00000FD")));
}

TEST_F(CrashDumpTest, ACrashBeforeTheLogIsOpenIsLoggedToo) {
    std::ofstream(folder_.Path() / L"QUILLON") << "no folder";
    ExpectLine(L"access", L"early", "unhandled exception 0xC0000005");
    EXPECT_THAT(folder_.HelperLogLines(), Contains(HasSubstr("before(Crash)")).Times(2));
}

TEST_F(CrashDumpTest, ASoundProgramLeavesNothing) {
    EXPECT_EQ(Helper(L"crash nothing registered").Wait(), 7u);
    EXPECT_THAT(Dumps(), IsEmpty());
    EXPECT_THAT(folder_.HelperLogLines(), SizeIs(1));
}

TEST_F(CrashDumpTest, TheEnableFlagCounts) {
    EXPECT_EQ(Helper(L"crash access disabled").Wait(), Helper(L"crash access plain").Wait());
    EXPECT_FALSE(fs::exists(DumpFolder()));
}

TEST_F(CrashDumpTest, TheNewestTenOfThisProgramStay) {
    fs::create_directories(DumpFolder());
    for (int i = 0; i < 12; ++i) {
        std::ofstream(DumpFolder() / (L"suite_helper-20200101-0000000" + std::to_wstring(10 + i) + L"-1.dmp")) << "x";
    }
    std::ofstream(DumpFolder() / L"other-20200101-000000000-1.dmp") << "x";
    std::ofstream(DumpFolder() / L"suite_helper-ui-20200101-000000000-1.dmp") << "x";
    harness::TestLog::Expect(HasSubstr("unhandled exception 0xC0000005"));
    Helper(L"crash access registered").Wait();
    EXPECT_THAT(Dumps(), SizeIs(12));
    EXPECT_TRUE(fs::exists(DumpFolder() / L"other-20200101-000000000-1.dmp"));
    EXPECT_TRUE(fs::exists(DumpFolder() / L"suite_helper-ui-20200101-000000000-1.dmp"));
    EXPECT_FALSE(fs::exists(DumpFolder() / L"suite_helper-20200101-000000012-1.dmp"));
    EXPECT_TRUE(fs::exists(DumpFolder() / L"suite_helper-20200101-000000013-1.dmp"));
}
