#include <windows.h>

#include <dbghelp.h>
#include <gmock/gmock.h>

#include <cstring>
#include <fstream>
#include <regex>

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

// The dump's exception stream; zeros when it has none.
MINIDUMP_EXCEPTION_STREAM ExceptionOf(const std::string& dump) {
    MINIDUMP_EXCEPTION_STREAM exception{};
    MINIDUMP_HEADER header{};
    const auto read = [&](auto& part, std::size_t place) {
        EXPECT_LE(place + sizeof part, dump.size());
        std::memcpy(&part, dump.data() + place, std::min(sizeof part, dump.size() - std::min(dump.size(), place)));
    };
    read(header, 0);
    for (ULONG32 i = 0; i < header.NumberOfStreams; ++i) {
        MINIDUMP_DIRECTORY stream{};
        read(stream, header.StreamDirectoryRva + i * sizeof stream);
        if (stream.StreamType == ExceptionStream) {
            read(exception, stream.Location.Rva);
        }
    }
    return exception;
}

// As the names of dumps have it: "yyyymmdd-hhmmssmmm".
std::string Stamp() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    char text[32];
    std::snprintf(text, sizeof text, "%04d%02d%02d-%02d%02d%02d%03d", now.wYear, now.wMonth, now.wDay, now.wHour,
                  now.wMinute, now.wSecond, now.wMilliseconds);
    return text;
}

std::smatch Match(const std::string& text, const char* pattern) {
    std::smatch match;
    EXPECT_TRUE(std::regex_search(text, match, std::regex(pattern))) << text << " is not like " << pattern;
    return match;
}

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
        const std::string before = Stamp();
        Helper helper(L"crash " + kind + L" " + how);
        const DWORD process = helper.Id();
        EXPECT_EQ(helper.Wait(), code);
        const std::string after = Stamp();
        ASSERT_THAT(Dumps(), SizeIs(1));
        const std::string bytes = ReadBytes(Dumps()[0]);
        ASSERT_GT(bytes.size(), sizeof(MINIDUMP_HEADER));
        EXPECT_EQ(bytes.substr(0, 4), "MDMP");
        MINIDUMP_HEADER header;
        std::memcpy(&header, bytes.data(), sizeof header);
        const ULONG64 contents = header.Flags;
        EXPECT_EQ(contents, 0x1060u) << "what the stacks point at, times of threads, libraries that have gone";
        EXPECT_GT(fs::file_size(Dumps()[0]), 1000u);
        const std::string name = Dumps()[0].filename().string();
        const std::smatch parts = Match(name, R"(^suite_helper-(\d{8}-\d{9})-(\d+)\.dmp$)");
        EXPECT_GE(parts.str(1), before);
        EXPECT_LE(parts.str(1), after);
        EXPECT_EQ(parts.str(2), std::to_string(process));
        const std::vector<std::string> lines = folder_.HelperLogLines();
        EXPECT_THAT(lines,
                    Contains(AllOf(HasSubstr("[L4]"), HasSubstr(text), HasSubstr(", dump: "),
                                   HasSubstr(Dumps()[0].filename().string()), EndsWith("(DumpWriter::WaitAndWrite)")))
                        .Times(1))
            << testing::PrintToString(lines);
        EXPECT_THAT(lines, Contains(HasSubstr("[L4]")).Times(1));
        ExpectSameCrash(lines, ExceptionOf(ReadBytes(Dumps()[0])), kind, how);
    }

    // The log's line and the dump tell of one crash, and of the thread that it was on.
    static void ExpectSameCrash(const std::vector<std::string>& lines, const MINIDUMP_EXCEPTION_STREAM& dumped,
                                const std::wstring& kind, const std::wstring& how) {
        std::string before;
        std::string crash;
        for (const std::string& line : lines) {
            (line.find("[L4]") == std::string::npos ? before : crash) = line;
        }
        const std::smatch told = Match(
            crash, R"( 0x([0-9A-F]{8}) at (suite_helper\.exe|QxCrashDump\.dll)\+0x[0-9A-F]{1,6} on thread (\d+), )");
        const DWORD code = dumped.ExceptionRecord.ExceptionCode;
        const DWORD flags = dumped.ExceptionRecord.ExceptionFlags;
        const bool hasAddress = dumped.ExceptionRecord.ExceptionAddress != 0;
        EXPECT_EQ(std::stoul(told.str(1), nullptr, 16), code);
        EXPECT_EQ(told.str(3), std::to_string(dumped.ThreadId));
        EXPECT_TRUE(hasAddress);
        const bool made = told.str(2) == "QxCrashDump.dll";  // by the handler itself, where no exception was raised
        EXPECT_EQ(flags, made ? DWORD{EXCEPTION_NONCONTINUABLE} : 0);
        if (kind != L"two-threads") {
            EXPECT_EQ(told.str(3) == Match(before, R"(\[L3\] \[(\d+)\] )").str(1), how != L"thread");
        }
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
    ExpectDump(L"throw", L"registered",
               "std::terminate, uncaught exception: thrown on purpose 0x40000015 at QxCrashDump");
}

TEST_F(CrashDumpTest, Abort) {
    ExpectDump(L"abort", L"registered", "abort 0x40000015 at QxCrashDump");
}

// A dump takes seconds under Wine, so the other kinds go without: a file stands where the folder should be.
TEST_F(CrashDumpTest, EveryKindIsLoggedAndKeepsItsCodeThoughNoDumpCanBeWritten) {
    std::ofstream(folder_.Path() / L"QUILLON") << "no folder";
    ExpectLine(L"access", L"registered", "unhandled exception 0xC0000005 at suite_helper.exe+0x");
    ExpectLine(L"access", L"unloaded", "unhandled exception 0xC0000005 at suite_helper.exe+0x");
    ExpectLine(L"illegal", L"registered", "unhandled exception 0xC000001D");
    ExpectLine(L"own-code", L"registered", "unhandled exception 0xE0001234");
    ExpectLine(L"throw", L"thread", "std::terminate, uncaught exception: thrown on purpose 0x40000015");
    ExpectLine(L"throw", L"raw-thread", "std::terminate, uncaught exception: thrown on purpose 0x40000015");
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

TEST_F(CrashDumpTest, NothingIsLeftOfADumpThatCannotBeWritten) {
    for (const auto& [how, line] : {std::pair{L"full", "the crash dump cannot be written: 112"},
                                    std::pair{L"refused", "the crash dump cannot be written: 5"}}) {
        harness::TestLog::Expect(HasSubstr("unhandled exception 0xC0000005"));
        harness::TestLog::Expect(HasSubstr(line));
        const std::wstring command = L"crash access ";
        EXPECT_EQ(Helper(command + how).Wait(), Helper(command + L"plain").Wait());
        EXPECT_THAT(Dumps(), IsEmpty());
        EXPECT_THAT(folder_.HelperLogLines(), Contains(HasSubstr(line)).Times(1));
    }
}

// Nobody waits for it until the writer's patience ends.
TEST_F(CrashDumpTest, AWriterThatCrashesItselfEndsTheProgramAtOnce) {
    for (const wchar_t* how : {L"writer-access", L"writer-abort"}) {
        harness::TestLog::Expect(HasSubstr("unhandled exception 0xC0000005"));
        const std::wstring command = L"crash access ";
        const DWORD plain = Helper(command + L"plain").Wait();
        const ULONGLONG begin = GetTickCount64();
        EXPECT_EQ(Helper(command + how).Wait(), plain);
        EXPECT_LT(GetTickCount64() - begin, 30'000U);
    }
}

TEST_F(CrashDumpTest, HandlersThatWereThereBeforeEndTheProgram) {
    std::ofstream(folder_.Path() / L"QUILLON") << "no folder";
    harness::TestLog::Expect(HasSubstr("the crash dump cannot be written: 3"));
    harness::TestLog::Expect(HasSubstr("no folder for crash dumps"));
    harness::TestLog::Expect(HasSubstr("unhandled exception 0xC0000005"));
    EXPECT_EQ(Helper(L"crash access others").Wait(), 91u);
    harness::TestLog::Expect(HasSubstr("std::terminate, uncaught exception: thrown on purpose"));
    EXPECT_EQ(Helper(L"crash throw others").Wait(), 92u);
    harness::TestLog::Expect(HasSubstr("abort 0x40000015"));
    EXPECT_EQ(Helper(L"crash abort others").Wait(), 93u);
    EXPECT_THAT(folder_.HelperLogLines(), Contains(HasSubstr("the crash dump cannot be written")).Times(3));
}

TEST_F(CrashDumpTest, TheProductsNameBecomesAFolder) {
    const auto expect = [&](const std::wstring& product, const std::wstring& folder) {
        EXPECT_EQ(Helper(L"crash nothing registered \"" + product + L"\"").Wait(), 7u);
        EXPECT_TRUE(fs::exists(folder_.Path() / folder / L"CrashDumps")) << fs::path(folder);
    };
    expect(L" A B!", L" A B!");
    expect(L"a/b:c*d?e\\\"f<g>h|i\x01j\\k", L"a_b_c_d_e_f_g_h_i_j_k");
    expect(L"Last. ..", L"Last");
    expect(L"..", L"suite_helper");
    expect(L"", L"suite_helper");
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
