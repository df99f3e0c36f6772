#include "suite/logger/QxLogger.h"

#include <gmock/gmock.h>

#include <fstream>
#include <future>
#include <map>
#include <regex>
#include <set>
#include <thread>

#include "suite/common/SharedAppendFile.h"
#include "suite/common/Utf8.h"
#include "suite/logger/LogEnd.h"
#include "tests/support/Harness.h"
#include "tests/support/TestLog.h"
#include "tests/support/Wait.h"
#include "tests/windows/suite/TestFolder.h"
#include "tests/windows/support/KeptWriter.h"
#include "tests/windows/support/LockHolder.h"

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

namespace {

// The texts of lines that have the right form; a line that has not fails the test.
std::vector<std::string> Texts(const std::vector<std::string>& lines) {
    static const std::regex form(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \[L(\d+)\] \[\d+\] (.*))");
    std::vector<std::string> texts;
    for (const std::string& line : lines) {
        std::smatch parts;
        if (std::regex_match(line, parts, form)) {
            texts.push_back(parts[1].str() + " " + parts[2].str());
        } else {
            ADD_FAILURE() << "not a log line: " << line.substr(0, 200);
        }
    }
    return texts;
}

// Each line of each thread of each name exactly once, and in the order in which the thread wrote them.
void ExpectAllLines(const std::vector<std::string>& texts, const std::set<std::string>& names, int threads, int lines) {
    std::map<std::string, int> next;
    for (const std::string& text : texts) {
        static const std::regex form(R"(3 (\w+-\d+)-(\d+) x*\(LogMany\))");
        std::smatch parts;
        ASSERT_TRUE(std::regex_match(text, parts, form)) << text.substr(0, 100);
        int& expected = next[parts[1].str()];
        ASSERT_EQ(std::stoi(parts[2].str()), expected) << "of " << parts[1].str();
        ++expected;
    }
    EXPECT_EQ(next.size(), names.size() * static_cast<std::size_t>(threads));
    for (const auto& [writer, count] : next) {
        EXPECT_EQ(count, lines) << writer;
    }
}

}  // namespace

TEST(LoggerTest, WritesTheFormedLine) {
    // The harness has opened it.
    const fs::path path = QxLogger::GetInstance()->FilePath();
    EXPECT_EQ(path, harness::LocalDataFolder() / L"Velmora\\Quillon\\Logs\\suite_logger_test.log");
    const std::size_t before = ReadLines(path).size();
    harness::TestLog::Expect("[L4] Path append res fail!(PxMainWnd::SetValuePath)");

    LogLine(4, L"PxMainWnd::SetValuePath", L"Path append res fail!");
    LogLine(3, L"PixoraMutex::IsAlreadyRunning", L"CloseHandle error: ", DWORD{6});
    LogLine(3, L"Unicode::Test", L"\u00e4\u65e5\U0001F600", L" two\r\nlines ", "narrow");
    std::wostringstream stream;
    stream << L"streamed(" << L"A::B)";
    QxLogger::Log(3, stream);

    std::vector<std::string> lines = ReadLines(path);
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(before));
    EXPECT_THAT(Texts(lines), ElementsAre("4 Path append res fail!(PxMainWnd::SetValuePath)",
                                          "3 CloseHandle error: 6(PixoraMutex::IsAlreadyRunning)",
                                          "3 \xC3\xA4\xE6\x97\xA5\xF0\x9F\x98\x80 two lines narrow(Unicode::Test)",
                                          "3 streamed(A::B)"));
    // The line tells who wrote it.
    EXPECT_THAT(lines.back(), testing::HasSubstr("[" + std::to_string(GetCurrentThreadId()) + "]"));
}

TEST(LoggerTest, KeepsLinesThatAreLoggedBeforeTheFileIsOpen) {
    TestFolder folder;
    harness::TestLog::Expect("[L4] second(LogEarly)");
    EXPECT_EQ(Helper(L"early").Wait(), 0u);
    EXPECT_THAT(Texts(folder.HelperLogLines()),
                ElementsAre("3 first(LogEarly)", "4 second(LogEarly)", "3 third(LogEarly)", "3 fourth(LogEarly)"));
}

TEST(LoggerTest, TwoProcessesShareAFileAndLoseNothing) {
    TestFolder folder;
    Helper one(L"log one 4 250 20");
    Helper two(L"log two 4 250 20");
    EXPECT_EQ(one.Wait(), 0u);
    EXPECT_EQ(two.Wait(), 0u);
    EXPECT_EQ(folder.HelperLogs().size(), 1u);
    ExpectAllLines(Texts(folder.HelperLogLines()), {"one", "two"}, 4, 250);
}

TEST(LoggerTest, RotationLosesNothingWhileAnotherProcessHoldsTheFile) {
    TestFolder folder;
    Helper one(L"log one 2 500 4000");
    Helper two(L"log two 2 500 4000");
    EXPECT_EQ(one.Wait(), 0u);
    EXPECT_EQ(two.Wait(), 0u);
    EXPECT_EQ(folder.HelperLogs().size(), 4u);
    ExpectAllLines(Texts(folder.HelperLogLines()), {"one", "two"}, 2, 500);
}

TEST(LoggerTest, KeepsFiveFilesOfTwoMebibytes) {
    TestFolder folder;
    EXPECT_EQ(Helper(L"log one 1 1800 8000").Wait(), 0u);
    const std::vector<fs::path> logs = folder.HelperLogs();
    ASSERT_EQ(logs.size(), 5u);
    EXPECT_EQ(logs.front().filename(), "suite_helper.4.log");
    for (const fs::path& log : logs) {
        EXPECT_LE(fs::file_size(log), 2u * 1024 * 1024 + 9000);
    }
    EXPECT_THAT(folder.HelperLogLines().back(), EndsWith("x(LogMany)"));
    EXPECT_THAT(folder.HelperLogLines().back(), testing::HasSubstr("one-0-1799"));
}

TEST(LoggerTest, AFileIsFullAtTwoMebibytes) {
    for (const bool full : {false, true}) {
        TestFolder folder;
        fs::create_directories(folder.LogFolder());
        std::string line = "2026-11-22 10:00:00.000 [L3] [1] ";
        line.resize(2 * 1024 * 1024 - (full ? 1 : 2), 'x');
        std::ofstream(folder.LogFolder() / L"suite_helper.log", std::ios::binary) << line << '\n';
        ASSERT_EQ(Helper(L"log one 1 1 10").Wait(), 0u);
        EXPECT_EQ(folder.HelperLogs().size(), full ? 2u : 1u);
    }
}

TEST(LoggerTest, AReaderThatForbidsRenamingStopsRotationButNoLine) {
    TestFolder folder;
    ASSERT_EQ(Helper(L"log zero 1 1 10").Wait(), 0u);
    const fs::path log = folder.LogFolder() / L"suite_helper.log";
    suite::Handle reader(
        CreateFileW(log.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(reader);
    ASSERT_EQ(Helper(L"log one 1 700 4000").Wait(), 0u);
    EXPECT_EQ(folder.HelperLogs().size(), 1u);
    EXPECT_EQ(folder.HelperLogLines().size(), 701u);

    reader.Reset();
    ASSERT_EQ(Helper(L"log two 1 1 10").Wait(), 0u);
    EXPECT_EQ(folder.HelperLogs().size(), 2u);
    EXPECT_EQ(folder.HelperLogLines().size(), 702u);
}

TEST(LoggerTest, AKilledWriterBlocksNobody) {
    TestFolder folder;
    const fs::path log = folder.LogFolder() / L"suite_helper.log";
    for (int round = 0; round < 5; ++round) {
        const std::uintmax_t before = fs::exists(log) ? fs::file_size(log) : 0;
        Helper endless(L"forever");
        ASSERT_TRUE(harness::WaitUntil([&] { return fs::exists(log) && fs::file_size(log) > before + 1000; }));
        endless.Kill();
    }
    ASSERT_EQ(Helper(L"log one 1 20 10").Wait(), 0u);
    const std::vector<std::string> texts = Texts(folder.HelperLogLines());
    ASSERT_GE(texts.size(), 20u);
    ExpectAllLines({texts.end() - 20, texts.end()}, {"one"}, 1, 20);
}

TEST(LoggerTest, ALockThatSomebodyKeepsCostsTheCallersNothing) {
    const fs::path log = QxLogger::GetInstance()->FilePath();
    const std::size_t before = ReadLines(log).size();
    std::vector<std::string> expected;
    {
        const LockHolder holder(log);
        for (int line = 0; line < 50; ++line) {
            LogLine(3, L"Held", line);
            expected.push_back("3 " + std::to_string(line) + "(Held)");
        }
        EXPECT_LT(ReadLines(log).size(), before + 50) << "they came back before the lines were written";
        ASSERT_TRUE(harness::WaitUntil([&] { return ReadLines(log).size() >= before + 50; })) << "yet none is lost";
    }
    LogLine(3, L"Held", L"last");
    expected.push_back("3 last(Held)");
    ASSERT_TRUE(harness::WaitUntil([&] { return ReadLines(log).size() >= before + 51; }));
    std::vector<std::string> lines = ReadLines(log);
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(before));
    EXPECT_EQ(Texts(lines), expected) << "in their order";
}

TEST(LoggerTest, WhatWaitsIsWrittenOutOnRequest) {
    const fs::path log = QxLogger::GetInstance()->FilePath();
    const LockHolder holder(log);
    LogLine(3, L"Held", L"at the end");
    suite::WriteOutLog();
    EXPECT_THAT(ReadLines(log), testing::Contains(EndsWith("at the end(Held)")));
}

TEST(LoggerTest, WritingOutIsGivenUpAfterTwoSeconds) {
    KeptWriter writer(L"QxLogger.dll");
    LogLine(3, L"Kept", L"too long");
    suite::WriteOutLog();
    EXPECT_THAT(writer.Sleeps(), ElementsAre(2000));
    EXPECT_THAT(harness::TestLog::LinesOf("Kept"), IsEmpty());
    writer.Release();
    EXPECT_TRUE(harness::TestLog::WaitFor("[L3] too long(Kept)")) << "yet it is not lost";
}

TEST(LoggerTest, FourThousandLinesWaitAtMost) {
    constexpr std::size_t kMost = 4096;
    const auto lines = [] { return harness::TestLog::LinesOf("Full"); };
    KeptWriter writer(L"QxLogger.dll");
    for (std::size_t line = 0; line < kMost + 100; ++line) {
        LogLine(3, L"Full", line);
    }
    writer.Release();
    ASSERT_TRUE(harness::WaitUntil([&] { return lines().size() >= kMost; }));
    LogLine(3, L"Full", L"after");
    ASSERT_TRUE(harness::TestLog::WaitFor("[L3] after(Full)"));
    ASSERT_EQ(lines().size(), kMost + 1);
    EXPECT_EQ(lines()[kMost - 1], "[L3] 4095(Full)");
}

TEST(LoggerTest, ARunWhoseStartFindsTheLockKeptHasALogAllTheSame) {
    TestFolder folder;
    const LockHolder holder(folder.LogFolder() / L"suite_helper.log");
    EXPECT_EQ(Helper(L"log one 1 200 20").Wait(), 0u);
    ExpectAllLines(Texts(folder.HelperLogLines()), {"one"}, 1, 200);
}

std::string FirstLine(const fs::path& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

// Takes the name from a file that others have open, as deleting does on Windows; under Wine only the host can.
void RemoveOpenFile(const fs::path& path) {
    using UnixName = char*(CDECL*)(const wchar_t*);
    const auto unixName = reinterpret_cast<UnixName>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
    if (unixName == nullptr) {
        EXPECT_TRUE(DeleteFileW(path.c_str()));
        return;
    }
    char* const name = unixName(path.c_str());
    ASSERT_NE(name, nullptr);
    std::wstring commandLine = L"Z:\\bin\\rm \"" + suite::FromUtf8(name) + L"\"";
    HeapFree(GetProcessHeap(), 0, name);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    ASSERT_TRUE(
        CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

TEST(LoggerTest, AFileThatIsRemovedIsMadeAnew) {
    TestFolder folder;
    const fs::path log = folder.LogFolder() / L"suite_helper.log";
    Helper endless(L"forever 2");  // slowly, so that no rotation makes the file anew
    ASSERT_TRUE(harness::WaitUntil([&] { return fs::exists(log) && fs::file_size(log) > 1000; }));
    const std::string firstLine = FirstLine(log);
    RemoveOpenFile(log);
    EXPECT_TRUE(harness::WaitUntil([&] {
        const std::string line = FirstLine(log);
        return !line.empty() && line != firstLine;
    }));
    endless.Kill();
    EXPECT_EQ(folder.HelperLogs().size(), 1u);
}

TEST(LoggerTest, AFileThatIsRenamedByHandIsNotLost) {
    TestFolder folder;
    const fs::path log = folder.LogFolder() / L"suite_helper.log";
    Helper endless(L"forever");
    ASSERT_TRUE(harness::WaitUntil([&] { return fs::exists(log) && fs::file_size(log) > 1000; }));
    const fs::path away = folder.Path() / L"away.log";
    ASSERT_TRUE(MoveFileW(log.c_str(), away.c_str()));
    const std::uintmax_t size = fs::file_size(away);
    EXPECT_TRUE(harness::WaitUntil([&] { return fs::file_size(away) > size || fs::exists(log); }));
}

TEST(LoggerTest, SaysFalseAndStaysSilentWithoutAFolder) {
    TestFolder folder;
    std::ofstream(folder.Path() / L"Velmora") << "a file where the folder should be";
    EXPECT_EQ(Helper(L"log one 2 10 10").Wait(), 1u);
    EXPECT_THAT(folder.HelperLogLines(), IsEmpty());
}

TEST(LoggerTest, SaysFalseAndStaysSilentWhenSomebodyHasTheFileForHimself) {
    TestFolder folder;
    fs::create_directories(folder.LogFolder());
    const fs::path log = folder.LogFolder() / L"suite_helper.log";
    suite::Handle owner(CreateFileW(log.c_str(), GENERIC_READ, 0, nullptr, CREATE_NEW, 0, nullptr));
    ASSERT_TRUE(owner);
    EXPECT_EQ(Helper(L"log one 2 10 10").Wait(), 1u);
    owner.Reset();
    EXPECT_EQ(ReadBytes(log), "");
}
