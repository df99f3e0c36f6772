// The sections against a real registry key, real folders, the real pipe, and cameras that exist in memory.
#include <gmock/gmock.h>
#include <windows.h>

#include <memory>
#include <string>

#include "diagnostics/Sections.h"
#include "service/link/ServiceMessages.h"
#include "suite/common/Handle.h"
#include "tests/support/PrivateRegistry.h"
#include "tests/support/SettingsKey.h"
#include "tools/democamera/DemoCameraSystem.h"
#include "tools/service/PipeServer.h"

namespace diagnostics {
namespace {

using testing::HasSubstr;
using testing::Not;

const PersonalData kNobody({});

// A HKEY_CURRENT_USER of the test's own, empty at first.
class SettingsSectionTest : public testing::Test {
  protected:
    static void Number(const wchar_t* name, DWORD value) { harness::SettingsKey::Set(name, static_cast<int>(value)); }
    static void Text(const wchar_t* name, const std::wstring& value) { harness::SettingsKey::Set(name, value); }
    static Report Settings() {
        Report report;
        AddSettings(report);
        return report;
    }

  private:
    const harness::PrivateRegistry registry_;
};

TEST_F(SettingsSectionTest, WithoutAKeyTheDriverIsMissing) {
    const Report report = Settings();
    EXPECT_EQ(report.WrongCount(), 1);
    EXPECT_THAT(report.Text(), HasSubstr("WRONG  filter_driver_install is not there"));
    EXPECT_THAT(report.Text(), HasSubstr("ok     init_algorithm is not there"));
    EXPECT_THAT(report.Text(), HasSubstr("there are none yet"));
}

TEST_F(SettingsSectionTest, OnlyOneIsAnInstalledDriver) {
    Number(L"filter_driver_install", 1);
    EXPECT_EQ(Settings().WrongCount(), 0);
    Number(L"filter_driver_install", 2);
    EXPECT_EQ(Settings().WrongCount(), 1);
}

TEST_F(SettingsSectionTest, OnlyZeroIsAFailedAlgorithm) {
    Number(L"filter_driver_install", 1);
    Number(L"init_algorithm", 7);
    EXPECT_EQ(Settings().WrongCount(), 0);
    Number(L"init_algorithm", 0);
    const Report report = Settings();
    EXPECT_EQ(report.WrongCount(), 1);
    EXPECT_THAT(report.Text(), HasSubstr("WRONG  init_algorithm is 0"));
}

TEST_F(SettingsSectionTest, ValuesAreShownAndPathsAreNot) {
    Number(L"filter_driver_install", 1);
    Number(L"lumi_camera_beauty_eye", 9);
    Text(L"lumi_camera_background_image_path", L"C:\\Users\\anna\\holiday.mp4");
    Text(L"lumi_camera_custom_img_group",
         L"custom_background_btn_0[(&,f!=)]1[(&,f!=)]1[(&,f!=)]C:\\anna.jpg[(&,f!=)]C:\\holiday.mp4[(&;i!-)]");
    const std::string text = Settings().Text();
    EXPECT_THAT(text, HasSubstr("lumi_camera_beauty_eye 9"));
    EXPECT_THAT(text, HasSubstr("lumi_camera_background_image_path: a file .mp4, is gone"));
    EXPECT_THAT(text, HasSubstr("own backgrounds: 1, of them without picture: 1"));
    EXPECT_THAT(text, Not(HasSubstr("anna")));
    EXPECT_THAT(text, Not(HasSubstr("holiday")));
}

TEST_F(SettingsSectionTest, AnOwnBackgroundInUseThatIsGoneIsWrong) {
    Number(L"filter_driver_install", 1);
    Text(L"lumi_camera_background_image_path", L"C:\\holiday.mp4");
    EXPECT_EQ(Settings().WrongCount(), 0);
    Number(L"lumi_camera_background_replacement", 5);
    EXPECT_THAT(Settings().Text(), HasSubstr("WRONG  the own background in use is gone"));
}

class PrivacyTest : public SettingsSectionTest, public testing::WithParamInterface<const wchar_t*> {};

TEST_P(PrivacyTest, ADeniedCameraIsWrong) {
    const auto set = [](const std::wstring& value) {
        const std::wstring key =
            std::wstring(
                L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\CapabilityAccessManager\\ConsentStore\\webcam") +
            GetParam();
        RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), L"Value", REG_SZ, value.c_str(),
                        static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
        Report report;
        AddCameras(report, kNobody);
        return report.Text();
    };
    EXPECT_THAT(set(L"Allow"), HasSubstr("ok     Windows' privacy settings let programs use the camera"));
    EXPECT_THAT(set(L"Deny"), HasSubstr("programs away from the camera"));
}

INSTANTIATE_TEST_SUITE_P(All, PrivacyTest, testing::Values(L"", L"\\NonPackaged"));

class CameraSectionTest : public testing::Test {
  protected:
    void TearDown() override {
        democamera::SetCameras({});
        democamera::SetEnumerationResult(S_OK);
    }
    static std::shared_ptr<democamera::DemoCamera> Camera(const std::wstring& name, const std::wstring& link) {
        democamera::CameraSettings settings;
        settings.friendlyName = name;
        settings.symbolicLink = link;
        return democamera::DemoCamera::Make(settings);
    }
    static Report Cameras() {
        Report report;
        AddCameras(report, kNobody);
        return report;
    }
};

TEST_F(CameraSectionTest, EachCameraIsAcceptedOrRefusedWithTheReason) {
    democamera::SetCameras({Camera(L"Cheap", L"\\\\?\\usb#vid_1234&pid_0001#serial7#{x}"),
                            Camera(L"Good", L"\\\\?\\usb#vid_30c9&pid_0002#serial8#{x}"),
                            Camera(L"Spare", L"\\\\?\\acpi#int3480#serial9#{x}")});
    const Report report = Cameras();
    EXPECT_EQ(report.WrongCount(), 0);
    const std::string text = report.Text();
    EXPECT_THAT(text,
                HasSubstr("\"Cheap\" \\\\?\\usb#vid_1234&pid_0001: refused, its link names no maker of the list"));
    EXPECT_THAT(text, HasSubstr("ok     \"Good\" \\\\?\\usb#vid_30c9&pid_0002: accepted by VID_30C9\n"));
    EXPECT_THAT(text, HasSubstr("\"Spare\" \\\\?\\acpi#int3480: accepted by INT3480, but not taken"));
    EXPECT_THAT(text, Not(HasSubstr("serial")));
}

TEST_F(CameraSectionTest, ForeignCamerasAloneAreWrong) {
    democamera::SetCameras({Camera(L"Cheap", L"\\\\?\\usb#vid_1234&pid_0001#s#{x}")});
    EXPECT_THAT(Cameras().Text(), HasSubstr("WRONG  no camera is of a maker that the effects work with"));
}

TEST_F(CameraSectionTest, NoCameraAndNoListAreWrong) {
    democamera::SetCameras({});
    EXPECT_THAT(Cameras().Text(), HasSubstr("WRONG  the system knows no camera"));
    democamera::SetEnumerationResult(E_FAIL);
    EXPECT_THAT(Cameras().Text(), HasSubstr("WRONG  the cameras cannot be listed"));
    EXPECT_EQ(Cameras().WrongCount(), 1);
}

Report Service() {
    Report report;
    AddService(report);
    return report;
}

TEST(ServiceSection, ARunningServiceIsSeenAndNotDisturbed) {
    PipeServer server;
    ASSERT_TRUE(server.Start(ServiceMessages::kPipeName));
    EXPECT_EQ(Service().WrongCount(), 0);
    EXPECT_FALSE(server.WaitForEvent(std::chrono::milliseconds(100)));
}

TEST(ServiceSection, AnAbsentServiceIsWrong) {
    const Report report = Service();
    EXPECT_EQ(report.WrongCount(), 1);
    EXPECT_THAT(report.Text(), HasSubstr("is not there, error 2"));
}

TEST(FolderSection, LeavesNothingBehind) {
    CreateDirectoryW(L"C:\\ProgramData\\Comms", nullptr);
    Report report;
    AddFolders(report, kNobody);
    EXPECT_THAT(report.Text(), HasSubstr("ok     C:\\ProgramData\\Comms"));
    WIN32_FIND_DATAW found{};
    EXPECT_EQ(FindFirstFileW(L"C:\\ProgramData\\Comms\\PixoraDiagnostics-*", &found), INVALID_HANDLE_VALUE);
}

TEST(ScreenSection, TheMainScreenIsThereWithItsScale) {
    Report report;
    AddScreens(report);
    EXPECT_THAT(report.Text(), HasSubstr("DPI ("));
    EXPECT_THAT(report.Text(), HasSubstr("the main screen"));
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    EXPECT_THAT(report.Text(), HasSubstr("work area " + std::to_string(work.right - work.left) + " x " +
                                         std::to_string(work.bottom - work.top)));
}

}  // namespace
}  // namespace diagnostics
