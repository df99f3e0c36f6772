#include <gmock/gmock.h>

#include <fstream>
#include <regex>

#include "tests/windows/suite/TestFolder.h"

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

fs::path SpoolPath(const TestFolder& folder) {
    return folder.Path() / L"Velmora" / L"Quillon" / L"Report" / L"events.jsonl";
}

// The lines of the spool file without their times; a line that has none fails the test.
std::vector<std::string> Events(const TestFolder& folder) {
    static const std::regex form(
        R"RE(\{"time":"2\d{3}-(?:0[1-9]|1[0-2])-(?:0[1-9]|[12]\d|3[01])T\d\d:\d\d:\d\d\.\d{3}Z",(.*)\})RE");
    std::vector<std::string> events;
    for (const std::string& line : ReadLines(SpoolPath(folder))) {
        std::smatch parts;
        if (std::regex_match(line, parts, form)) {
            events.push_back(parts[1].str());
        } else {
            ADD_FAILURE() << line.substr(0, 200);
        }
    }
    return events;
}

}  // namespace

// The helper ends right after its last event: what stands in the file was written by the thread or at the exit.
TEST(ReportTest, EventsReachTheSpoolFileInOrder) {
    TestFolder folder;
    EXPECT_EQ(Helper(L"report").Wait(), 0u);
    EXPECT_THAT(Events(folder),
                ElementsAre(R"("event":"631770001","text":"open camera")", R"("event":"7","text":"a\"b\\c\u000ad")",
                            R"("event":"992612801","fields":{"STATUS":1,"SMOOTH":-5,"THIN":0})"));
}

TEST(ReportTest, NothingQueuedIsLostWhenTheProcessEnds) {
    TestFolder folder;
    for (int round = 0; round < 10; ++round) {
        ASSERT_EQ(Helper(L"report-many 1 50").Wait(), 0u);
        ASSERT_THAT(ReadLines(SpoolPath(folder)), SizeIs(testing::Ge(50u)));
        std::vector<std::string> lines = ReadLines(SpoolPath(folder));
        // The one that was being written when the process ended may stand there twice.
        lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
        ASSERT_EQ(lines.size(), 50u);
        fs::remove(SpoolPath(folder));
    }
}

TEST(ReportTest, WhatIsQueuedIsWrittenOutOnRequest) {
    TestFolder folder;
    EXPECT_EQ(Helper(L"report-write-out").Wait(), 0u);
    EXPECT_THAT(Events(folder), ElementsAre(R"("event":"1","text":"last")"));
}

TEST(ReportTest, WritingOutIsGivenUpAfterTwoSeconds) {
    TestFolder folder;
    EXPECT_EQ(Helper(L"report-write-out-in-vain").Wait(), 0u);
    EXPECT_FALSE(fs::exists(SpoolPath(folder)));
}

TEST(ReportTest, ManyThreadsAndTwoProcessesLoseNothing) {
    TestFolder folder;
    Helper one(L"report-many 4 200 wait");
    Helper two(L"report-many 4 200 wait");
    EXPECT_EQ(one.Wait(), 0u);
    EXPECT_EQ(two.Wait(), 0u);
    EXPECT_THAT(Events(folder), SizeIs(1600));
}

TEST(ReportTest, AFileThatIsHeldChangesNothingForTheCaller) {
    TestFolder folder;
    fs::create_directories(SpoolPath(folder).parent_path());
    suite::Handle owner(CreateFileW(SpoolPath(folder).c_str(), GENERIC_READ, 0, nullptr, CREATE_NEW, 0, nullptr));
    ASSERT_TRUE(owner);
    EXPECT_EQ(Helper(L"report").Wait(), 0u);
    owner.Reset();
    EXPECT_EQ(ReadBytes(SpoolPath(folder)), "");
}

TEST(ReportTest, AMissingFolderChangesNothingForTheCaller) {
    TestFolder folder;
    std::ofstream(folder.Path() / L"Velmora") << "a file where the folder should be";
    EXPECT_EQ(Helper(L"report").Wait(), 0u);
    EXPECT_FALSE(fs::exists(SpoolPath(folder)));
}

TEST(ReportTest, TheFileStaysBelowFourMebibytes) {
    TestFolder folder;
    fs::create_directories(SpoolPath(folder).parent_path());
    std::ofstream(SpoolPath(folder), std::ios::binary) << std::string(4 * 1024 * 1024 - 8 * 1024 - 300, 'x') << '\n';
    EXPECT_EQ(Helper(L"report-many 1 500").Wait(), 0u);
    EXPECT_LT(fs::file_size(SpoolPath(folder)), 4u * 1024 * 1024);
    EXPECT_GE(fs::file_size(SpoolPath(folder)), 4u * 1024 * 1024 - 8 * 1024 - 1);
}

// One process keeps its writer asleep while the uploader takes the file away.
TEST(ReportTest, TheUploaderMayTakeTheFileAway) {
    TestFolder folder;
    EXPECT_EQ(Helper(L"report-uploader").Wait(), 0u);
    EXPECT_THAT(Events(folder), ElementsAre(R"("event":"1","text":"after")"));
}

TEST(ReportTest, AFullQueueRefusesAndNeverWaits) {
    TestFolder folder;
    EXPECT_EQ(Helper(L"report-full").Wait(), 0u);
}

TEST(ReportTest, NothingIsTakenWithoutAThreadNorBeyondTheLongestMessage) {
    TestFolder folder;
    EXPECT_EQ(Helper(L"report-limits").Wait(), 0u);
    EXPECT_THAT(ReadLines(SpoolPath(folder)), ElementsAre(std::string(8 * 1024, 'x')));
}
