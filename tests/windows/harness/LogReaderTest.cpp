// Each line once, whoever writes it and however the file is called by then.
#include "tests/support/LogReader.h"

#include <gmock/gmock.h>

#include <fstream>

#include "tests/support/Harness.h"

namespace harness {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

class LogReaderTest : public testing::Test {
  protected:
    void SetUp() override { fs::create_directories(folder_); }
    void TearDown() override { RemoveTree(folder_); }

    void Write(const std::string& file, const std::string& text) const {
        std::ofstream(folder_ / file, std::ios::app | std::ios::binary) << text;
    }
    static std::string Line(int level, const std::string& text) {
        return "2026-11-21 10:15:30.123 [L" + std::to_string(level) + "] [77] " + text + "\n";
    }
    std::vector<std::string> Take() {
        std::vector<std::string> lines;
        for (const LoggedLine& line : reader_.TakeNew()) {
            lines.push_back(line.program + " " + line.Form());
        }
        return lines;
    }

    const fs::path folder_ = LocalDataFolder() / "reader";
    LogReader reader_{folder_};
};

TEST_F(LogReaderTest, ALineHasLevelThreadAndText) {
    const LoggedLine line = ParseLogLine("P", Line(4, "what [L3] [1] went wrong(A::B)"));
    EXPECT_EQ(line.program, "P");
    EXPECT_EQ(line.level, 4);
    EXPECT_EQ(line.thread, 77U);
    EXPECT_EQ(line.text, "what [L3] [1] went wrong(A::B)");
    EXPECT_EQ(line.Form(), "[L4] what [L3] [1] went wrong(A::B)");
}

TEST_F(LogReaderTest, AnythingElseIsNoLine) {
    for (const char* text : {"", "text", "2026-11-21 10:15:30.123 [L4] text", "x2026-11-21 10:15:30.123 [L4] [1] text",
                             "2026-11-21 10:15:30.123 [Lx] [1] text"}) {
        EXPECT_EQ(ParseLogLine("P", text).level, 0) << text;
        EXPECT_EQ(ParseLogLine("P", text).text, text);
    }
}

TEST_F(LogReaderTest, EachLineIsTakenOnce) {
    EXPECT_THAT(Take(), IsEmpty());
    Write("P.log", Line(3, "one") + Line(4, "two"));
    EXPECT_THAT(Take(), ElementsAre("P [L3] one", "P [L4] two"));
    EXPECT_THAT(Take(), IsEmpty());
    Write("P.log", Line(3, "three"));
    EXPECT_THAT(Take(), ElementsAre("P [L3] three"));
}

TEST_F(LogReaderTest, ALineThatIsBeingWrittenComesWhenItIsWhole) {
    Write("P.log", Line(3, "one") + "2026-11-21 10:15");
    EXPECT_THAT(Take(), ElementsAre("P [L3] one"));
    Write("P.log", ":30.123 [L4] [1] two\n");
    EXPECT_THAT(Take(), ElementsAre("P [L4] two"));
}

TEST_F(LogReaderTest, AFullFileIsReadToItsEnd) {
    Write("P.log", Line(3, "one"));
    EXPECT_THAT(Take(), ElementsAre("P [L3] one"));
    Write("P.log", Line(3, "two"));
    fs::rename(folder_ / "P.log", folder_ / "P.1.log");
    Write("P.log", Line(3, "three"));
    fs::rename(folder_ / "P.1.log", folder_ / "P.2.log");
    fs::rename(folder_ / "P.log", folder_ / "P.1.log");
    Write("P.log", Line(3, "four"));
    EXPECT_THAT(Take(), ElementsAre("P [L3] two", "P [L3] three", "P [L3] four"));
    EXPECT_THAT(Take(), IsEmpty());
    Write("P.log", Line(3, "five"));
    EXPECT_THAT(Take(), ElementsAre("P [L3] five"));
}

TEST_F(LogReaderTest, AFileThatWasRemovedBeginsAnew) {
    Write("P.log", Line(3, "one") + Line(3, "two"));
    EXPECT_EQ(Take().size(), 2U);
    fs::remove(folder_ / "P.log");
    Write("P.log", Line(4, "three"));
    EXPECT_THAT(Take(), ElementsAre("P [L4] three"));
}

TEST_F(LogReaderTest, ProgramsAreToldApartAndOtherFilesLeftAlone) {
    Write("P.log", Line(3, "one"));
    Write("P-ui.log", Line(3, "two"));
    Write("P.txt", "nothing\n");
    EXPECT_THAT(Take(), testing::UnorderedElementsAre("P [L3] one", "P-ui [L3] two"));
}

}  // namespace
}  // namespace harness
