// What the report shows of the log and of the crash dumps, and the zone in which the log's times are.
#include <gmock/gmock.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "diagnostics/Sections.h"
#include "suite/common/LocalFolder.h"
#include "tests/support/Harness.h"
#include "tests/support/ImportHook.h"

namespace diagnostics {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

// A local data folder of the test's own.
class LogSectionTest : public testing::Test {
  protected:
    LogSectionTest() { SetEnvironmentVariableW(L"LOCALAPPDATA", folder_.c_str()); }
    ~LogSectionTest() override {
        SetEnvironmentVariableW(L"LOCALAPPDATA", before_.c_str());
        harness::RemoveTree(folder_);
    }
    static std::string Log() {
        Report report;
        AddLog(report, PersonalData({}));
        EXPECT_EQ(report.WrongCount(), 0);
        return report.Text();
    }
    void Write(const fs::path& name, const std::string& text) const {
        fs::create_directories((folder_ / name).parent_path());
        std::ofstream(folder_ / name, std::ios::binary) << text;
    }
    void WriteLines(int count) const {
        std::string lines;
        for (int line = 1; line <= count; ++line) {
            lines += "line " + std::to_string(line) + ".\n";
        }
        Write(L"Velmora/Quillon/Logs/Pixora.log", lines);
    }
    static DWORD WINAPI Zone(TIME_ZONE_INFORMATION* zone) {
        *zone = zone_;
        return season_;
    }
    static std::string TimesIn(DWORD season, LONG bias, LONG standard, LONG daylight) {
        const harness::ImportHook hook(nullptr, "GetTimeZoneInformation", &Zone);
        season_ = season;
        zone_.Bias = bias;
        zone_.StandardBias = standard;
        zone_.DaylightBias = daylight;
        const std::string text = Log();
        const std::size_t begin = text.find("Pixora.log, its times are ") + 26;
        return text.substr(begin, text.find('\n', begin) - begin);
    }

  private:
    static inline TIME_ZONE_INFORMATION zone_{};
    static inline DWORD season_ = 0;
    const fs::path folder_ = fs::temp_directory_path() / ("log-section-" + std::to_string(GetCurrentProcessId()));
    const std::wstring before_ = suite::LocalDataFolder();
};

TEST_F(LogSectionTest, WithoutALogThereAreNone) {
    EXPECT_THAT(Log(), testing::StartsWith("Last lines of Pixora's log\n"));
    EXPECT_THAT(Log(), HasSubstr("\\Velmora\\Quillon\\Logs\\Pixora.log, its times are UTC"));
    EXPECT_THAT(Log(), HasSubstr("         there are none\n"));
    EXPECT_THAT(Log(), HasSubstr("         crash dumps of Pixora: 0\n"));
}

TEST_F(LogSectionTest, TheLastFortyLinesAreShown) {
    WriteLines(40);
    EXPECT_THAT(Log(), HasSubstr("         line 1.\n"));
    WriteLines(41);
    const std::string text = Log();
    EXPECT_THAT(text, Not(HasSubstr("         line 1.\n")));
    EXPECT_THAT(text, HasSubstr("         line 2.\n         line 3.\n"));
    EXPECT_THAT(text, HasSubstr("         line 41.\n"));
    EXPECT_THAT(text, Not(HasSubstr("there are none")));
}

TEST_F(LogSectionTest, LossesOfTheGraphicsDeviceAreCounted) {
    Write(L"Velmora/Quillon/Logs/Pixora.log",
          "2026-11-21 10:00:00.000 [L3] [1] the graphics device is lost(LivePreview::RecoverDevice)\n");
    EXPECT_THAT(Log(), HasSubstr("         graphics device lost: 1 times, back: 0 times"));
}

TEST_F(LogSectionTest, DumpsOfPixoraAreCounted) {
    for (const wchar_t* name : {L"Pixora-1.dmp", L"Pixora-2.dmp", L"Other-3.dmp", L"Pixora-4.txt"}) {
        Write(fs::path(L"QUILLON/CrashDumps") / name, "x");
    }
    EXPECT_THAT(Log(), HasSubstr("         crash dumps of Pixora: 2\n"));
}

TEST_F(LogSectionTest, ItsTimesAreTheLocalOnes) {
    EXPECT_EQ(TimesIn(TIME_ZONE_ID_UNKNOWN, 0, 7, 8), "UTC+00:00");
    EXPECT_EQ(TimesIn(TIME_ZONE_ID_UNKNOWN, -345, 7, 8), "UTC+05:45");
    EXPECT_EQ(TimesIn(TIME_ZONE_ID_UNKNOWN, 210, 7, 8), "UTC-03:30");
    EXPECT_EQ(TimesIn(TIME_ZONE_ID_STANDARD, -60, 0, -60), "UTC+01:00");
    EXPECT_EQ(TimesIn(TIME_ZONE_ID_DAYLIGHT, -60, 0, -60), "UTC+02:00");
    EXPECT_EQ(TimesIn(TIME_ZONE_ID_STANDARD, 0, 60, 0), "UTC-01:00");
}

}  // namespace
}  // namespace diagnostics
