// The real PixoraDiagnostics.exe: exit codes, output, and that the report names nobody.
#include <gmock/gmock.h>
#include <windows.h>

#include <lmcons.h>

#include <cwctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "diagnostics/Options.h"
#include "service/link/ServiceMessages.h"
#include "suite/common/Handle.h"
#include "suite/common/LocalFolder.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/MissingDll.h"
#include "tests/support/SettingsKey.h"
#include "tests/support/TestLog.h"
#include "tools/service/PipeServer.h"

namespace diagnostics {
namespace {

using testing::HasSubstr;
using testing::Not;
namespace fs = std::filesystem;

std::string ContentOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A value of the settings key while one lives.
class SettingsValue {
  public:
    SettingsValue(const wchar_t* name, const harness::SettingsKey::Value& value) : name_(name) {
        harness::SettingsKey::Set(name, value);
    }
    ~SettingsValue() { harness::SettingsKey::Remove(name_); }
    SettingsValue(const SettingsValue&) = delete;
    SettingsValue& operator=(const SettingsValue&) = delete;

  private:
    const wchar_t* const name_;
};

// A line of Pixora's.
void AppendToLog(const std::string& text, int level) {
    const std::wstring log = suite::LocalDataFolder() + L"\\Velmora\\Quillon\\Logs";
    ASSERT_TRUE(suite::MakeFolders(log));
    std::ofstream(fs::path(log + L"\\Pixora.log"), std::ios::app)
        << "2026-11-21 10:00:00.000 [L" << level << "] [1] " << text << "\n";
}

// A failure that Pixora tells of.
void AppendToLog(const std::string& text) {
    harness::TestLog::Expect("[L4] " + text);
    AppendToLog(text, 4);
}

class DiagnosticsProgramTest : public testing::Test {
  protected:
    void SetUp() override {
        wchar_t temp[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, temp);
        const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
        folder_ = fs::path(temp) / (L"pixora-diagnostics-" + std::wstring(test.begin(), test.end()));
        fs::create_directories(folder_);
    }
    void TearDown() override {
        // The system may let go of the ended program's output a moment later.
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }

    // The exit code; what it wrote to standard output is in shown_.
    DWORD Run(const std::wstring& arguments, const wchar_t* name = L"PixoraDiagnostics.exe") {
        const fs::path shown = folder_ / L"shown.txt";
        const DWORD code = harness::ChildProcess(name, arguments, shown).WaitForEnd(std::chrono::minutes(1));
        shown_ = ContentOf(shown);
        return code;
    }

    fs::path folder_;
    std::string shown_;
};

TEST_F(DiagnosticsProgramTest, HelpIsNoFailure) {
    EXPECT_EQ(Run(L"--help"), DWORD{kAllFine});
    EXPECT_EQ(shown_, kHelp);
}

TEST_F(DiagnosticsProgramTest, WrongUsageShowsTheHelp) {
    EXPECT_EQ(Run(L"--nonsense"), DWORD{kWrongUsage});
    EXPECT_EQ(shown_, kHelp);
}

// Under Wine there is never a camera, so something is always wrong.
TEST_F(DiagnosticsProgramTest, ShowsTheReport) {
    EXPECT_EQ(Run(L""), DWORD{kSomethingWrong});
    for (const char* section :
         {"Program\n", "System\n", "Driver and algorithm\n", "Settings of this user\n", "Cameras\n", "Camera service\n",
          "Folders\n", "Screens\n", "Look and input\n", "Last lines of Pixora's log\n", "Summary\n"}) {
        EXPECT_THAT(shown_, HasSubstr(section));
    }
    EXPECT_THAT(shown_, HasSubstr("ok     Pixora.exe "));
    EXPECT_THAT(shown_, HasSubstr("ok     layouts, texts, pictures and libraries are there"));
    EXPECT_THAT(shown_, HasSubstr("signed files: 0, files without a signature: "));
    for (const char* library : {"mfplat", "mf", "mfreadwrite"}) {
        EXPECT_THAT(shown_, HasSubstr("its " + std::string(library) + ".dll "));
    }
    EXPECT_THAT(shown_, testing::ContainsRegex("graphics driver .*\\d+\\.\\d+"));
}

TEST_F(DiagnosticsProgramTest, ASystemWithoutMediaFoundationIsTold) {
    if (!MissingDll::CanBe())
        GTEST_SKIP() << "this system cannot be told to do without a DLL";
    const MissingDll missing(L"PixoraDiagnostics.exe", L"mfplat");
    EXPECT_EQ(Run(L""), DWORD{kSomethingWrong});
    EXPECT_THAT(shown_, HasSubstr("WRONG  this system has no mfplat.dll, so there is no camera picture\n"));
    EXPECT_THAT(shown_, HasSubstr("Install the Media Feature Pack of Windows."));
    EXPECT_THAT(shown_, HasSubstr("the cameras cannot be listed without Media Foundation"));
    EXPECT_THAT(shown_, Not(HasSubstr("Media Foundation starts")));
}

TEST_F(DiagnosticsProgramTest, ASystemThatLacksAPartOfMediaFoundationIsTold) {
    if (!MissingDll::CanBe())
        GTEST_SKIP() << "this system cannot be told to do without a DLL";
    const ReplacedDll empty(L"PixoraDiagnostics.exe", L"mf",
                            fs::path(suite::ProgramPath()).parent_path() / L"FalseLibrary.dll");
    EXPECT_EQ(Run(L""), DWORD{kSomethingWrong});
    EXPECT_THAT(shown_, HasSubstr("this system has no MFEnumDeviceSources of mf.dll, so there is no camera picture\n"));
    EXPECT_THAT(shown_,
                HasSubstr("this system has no MFCreateDeviceSource of mf.dll, so there is no camera picture\n"));
    EXPECT_THAT(shown_, Not(HasSubstr("no mfplat.dll")));
    EXPECT_THAT(shown_, Not(HasSubstr("of mfplat.dll")));
    EXPECT_THAT(shown_, HasSubstr("Media Foundation starts"));
    EXPECT_THAT(shown_, HasSubstr("the cameras cannot be listed, error 0x8007007F"));
}

TEST_F(DiagnosticsProgramTest, ASystemWithoutDirect3dIsTold) {
    if (!MissingDll::CanBe())
        GTEST_SKIP() << "this system cannot be told to do without a DLL";
    const MissingDll missing(L"PixoraDiagnostics.exe", L"d3d9");
    EXPECT_EQ(Run(L""), DWORD{kSomethingWrong});
    EXPECT_THAT(shown_, HasSubstr("Direct3D 9 is not available without d3d9.dll, so there is no camera picture"));
}

// The same program with a camera that exists in memory.
TEST_F(DiagnosticsProgramTest, AMachineThatHasEverythingIsFine) {
    const SettingsValue driver(L"filter_driver_install", 1);
    const SettingsValue algorithm(L"init_algorithm", 1);
    CreateDirectoryW(L"C:\\ProgramData\\Comms", nullptr);
    PipeServer server;
    ASSERT_TRUE(server.Start(ServiceMessages::kPipeName));
    EXPECT_EQ(Run(L"", L"DiagnosticsWithCamera.exe"), DWORD{kAllFine}) << shown_;
    EXPECT_THAT(shown_, HasSubstr("Nothing wrong was found."));
    EXPECT_THAT(shown_, HasSubstr("accepted by VID_05C8"));
}

TEST_F(DiagnosticsProgramTest, WritesTheReportIntoAFile) {
    const fs::path file = folder_ / L"a report.txt";
    EXPECT_EQ(Run(L"--output \"" + file.wstring() + L"\""), DWORD{kSomethingWrong});
    EXPECT_THAT(shown_, HasSubstr("The report is written. What is wrong: "));
    EXPECT_THAT(ContentOf(file), HasSubstr("\nSummary\n"));
}

TEST_F(DiagnosticsProgramTest, AFileThatCannotBeWrittenHasItsOwnExitCode) {
    EXPECT_EQ(Run(L"--output \"" + (folder_ / L"missing" / L"report.txt").wstring() + L"\""), DWORD{kNotWritten});
}

TEST_F(DiagnosticsProgramTest, TheReportNamesNoFileOfTheUsers) {
    const SettingsValue group(L"lumi_camera_custom_img_group",
                              L"custom_background_btn_0[(&,f!=)]1[(&,f!=)]1[(&,f!=)]C:\\a.jpg[(&,f!=)]"
                              L"D:\\Films\\Anna's birthday.mp4[(&;i!-)]");
    AppendToLog("copyFile error:Anna's birthday.mp4(a)");
    Run(L"");
    EXPECT_THAT(shown_, HasSubstr("copyFile error:<name>(a)"));
    EXPECT_THAT(shown_, Not(HasSubstr("birthday")));
}

TEST_F(DiagnosticsProgramTest, LossesOfTheGraphicsDeviceInTheLastRunAreCounted) {
    AppendToLog("the graphics device is lost(LivePreview::RecoverDevice)", 3);
    AppendToLog("SetProcessDpiAwareness fail, error code: -2147024891(PxMainWnd::DPIAware)", 3);
    AppendToLog("the graphics device is lost(LivePreview::RecoverDevice)", 3);
    AppendToLog("the graphics device is back(LivePreview::RecoverDevice)", 3);
    Run(L"");
    EXPECT_THAT(shown_, HasSubstr("graphics device lost: 1 times, back: 1 times, in the last run, since 2026-11-21 "
                                  "10:00:00\n"));
}

TEST_F(DiagnosticsProgramTest, TheReportNamesNobody) {
    wchar_t user[UNLEN + 1] = {};
    DWORD size = UNLEN + 1;
    ASSERT_TRUE(GetUserNameW(user, &size));
    const std::string name(user, user + std::wcslen(user));
    AppendToLog("copyFile error:C:\\Users\\" + name + "\\marker.jpg(a)");
    Run(L"");
    EXPECT_THAT(shown_, HasSubstr("copyFile error:C:\\Users\\<user>\\marker.jpg(a)"));
    EXPECT_THAT(shown_, Not(HasSubstr("\\" + name + "\\")));
}

// A variable of the environment while one lives.
class Variable {
  public:
    Variable(const wchar_t* name, const wchar_t* value) : name_(name) { SetEnvironmentVariableW(name, value); }
    ~Variable() { SetEnvironmentVariableW(name_, nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    const wchar_t* const name_;
};

TEST_F(DiagnosticsProgramTest, AMachineFullOfPersonalDataLeavesNoneInTheReport) {
    const Variable domain(L"USERDOMAIN", L"MUSTERFIRMA");
    const Variable dnsDomain(L"USERDNSDOMAIN", L"intern.musterfirma.example");
    const Variable server(L"LOGONSERVER", L"\\\\DCSEVEN");
    wchar_t computer[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD size = MAX_COMPUTERNAME_LENGTH + 1;
    ASSERT_TRUE(GetComputerNameW(computer, &size));
    const std::string machine(computer, computer + std::wcslen(computer));
    const SettingsValue group(L"lumi_camera_custom_img_group",
                              L"custom_background_btn_0[(&,f!=)]1[(&,f!=)]1[(&,f!=)]C:\\a.jpg[(&,f!=)]"
                              L"\\\\heimserver\\erika\\Taufe 2021.mp4[(&;i!-)]");
    const SettingsValue path(L"lumi_camera_background_image_path", L"\\\\heimserver\\erika\\Taufe 2021.mp4");
    AppendToLog(
        "one \\\\heimserver\\share\\x.jpg two C:\\Users\\erika.muster.MUSTERFIRMA\\x.jpg three"
        " MUSTERFIRMA\\" +
        machine + " four " + machine +
        ".intern.musterfirma.example five"
        " erika@musterfirma.example six S-1-12-1-31415926-27182818-1-2 seven S-1-5-21-31415926-27182818-3-1001"
        " eight dcseven nine Taufe 2021.mp4 ten(a)");
    Run(L"");
    EXPECT_THAT(shown_,
                HasSubstr("one \\\\<machine>\\share\\x.jpg two C:\\Users\\<user>\\x.jpg three <name>\\<name> four"
                          " <name>.<name> five <address> six S-1-12-1-<account> seven S-1-5-21-<account>"
                          " eight <name> nine <name> ten(a)"));
    for (const char* personal :
         {"heimserver", "erika", "MUSTER", "muster", "intern.", "31415926", "27182818", "Taufe"}) {
        EXPECT_THAT(shown_, Not(HasSubstr(personal))) << personal;
    }
}

}  // namespace
}  // namespace diagnostics
