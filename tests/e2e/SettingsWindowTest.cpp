// The settings window: its frame, another scale while it is open, mouse and keyboard, damaged resources.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/e2e/support/Machine.h"
#include "tests/e2e/support/Program.h"
#include "tests/e2e/support/UsersLook.h"
#include "tests/support/TestLog.h"
#include "tests/support/WineOnly.h"
#include "tools/service/PipeServer.h"

namespace e2e {
namespace {

namespace fs = std::filesystem;

using testing::Contains;
using testing::HasSubstr;
namespace Protocol = harness::Protocol;

class SettingsWindowTest : public testing::Test {
  protected:
    void SetUp() override {
        Machine::ResetToInstalled();
        Machine::SetNumber(L"lumi_camera_switch", 1);
        for (const wchar_t* name : {L"lumi_camera_background_replacement", L"lumi_camera_eye_correction",
                                    L"lumi_camera_person_track", L"lumi_camera_beauty_person"}) {
            Machine::SetNumber(name, 0);
        }
    }

    void Open() {
        program_.emplace();
        ASSERT_TRUE(program_->WaitForWindow());
    }

    void OpenWithService() {
        ASSERT_TRUE(service_.Start(Protocol::kPipeName));
        Open();
        ASSERT_TRUE(service_.WaitFor(ServerEvent::Kind::kHello, kPatience));
    }

    bool PingComes() {
        const auto event = service_.WaitFor(ServerEvent::Kind::kMessage, kPatience);
        return event && event->frame.slot[2] == Protocol::kSettingsChangedCode;
    }

    static bool Becomes(const wchar_t* name, DWORD value) {
        return WaitUntil([&] { return Machine::Number(name) == value; });
    }

    bool IsChecked(const wchar_t* control) const {
        const auto found = program_->Find(control);
        return found && (found->state & STATE_SYSTEM_CHECKED) != 0;
    }

    PipeServer service_;
    std::optional<Program> program_;
};

TEST_F(SettingsWindowTest, OpensPaintedWithTheCamerasPlaceAndCloses) {
    Open();
    EXPECT_TRUE(program_->Screenshot(L"settings", 200));
    const RECT preview = program_->ClientRect(L"preview_wnd");
    EXPECT_EQ(preview.left, 80);
    EXPECT_EQ(preview.top, 80);
    EXPECT_EQ(preview.right, 598);
    EXPECT_EQ(preview.bottom, 355);
    program_->Click(L"closebtn");
    EXPECT_EQ(program_->WaitForEnd(), 0U);
}

TEST_F(SettingsWindowTest, MinimisesWakesUpIntactAndClosesByAltF4) {
    Open();
    const COLORREF before = program_->PixelAt(300, 470);
    program_->Click(L"minbtn");
    ASSERT_TRUE(WaitUntil([this] { return IsIconic(program_->Window()) != FALSE; }));
    ShowWindow(program_->Window(), SW_RESTORE);
    ASSERT_TRUE(WaitUntil([this] { return !IsIconic(program_->Window()); }));
    EXPECT_TRUE(WaitUntil([&] { return program_->PixelAt(300, 470) == before; }));
    EXPECT_TRUE(program_->Screenshot(L"settings-restored", 200));
    SetForegroundWindow(program_->Window());
    program_->PressKey(VK_F4, true);
    EXPECT_EQ(program_->WaitForEnd(), 0U);
}

class AtAnotherScale : public SettingsWindowTest, public testing::WithParamInterface<int> {};

TEST_P(AtAnotherScale, TheOpenWindowIsLaidOutAnew) {
    const int dpi = GetParam();
    Open();
    // Near the corner: what is outside of the screen cannot be looked at.
    RECT window = {};
    GetWindowRect(program_->Window(), &window);
    const RECT suggested = program_->SetScale(dpi, {20 - window.left, 10 - window.top});
    GetWindowRect(program_->Window(), &window);
    EXPECT_TRUE(EqualRect(&window, &suggested));
    const RECT preview = program_->ClientRect(L"preview_wnd");
    EXPECT_EQ(preview.left, MulDiv(80, dpi, 96));
    EXPECT_EQ(preview.right, MulDiv(598, dpi, 96));
    RedrawWindow(program_->Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    SendMessageW(program_->Window(), WM_NULL, 0, 0);
    EXPECT_TRUE(program_->Screenshot(L"settings-" + std::to_wstring(dpi), 200));
}

INSTANTIATE_TEST_SUITE_P(Scales, AtAnotherScale, testing::Values(120, 144, 192, 96));

TEST_F(SettingsWindowTest, ASwitchWritesItsValueAndPingsTheService) {
    OpenWithService();
    program_->Click(L"focus_person_btn");
    EXPECT_TRUE(Becomes(L"lumi_camera_person_track", 1));
    EXPECT_TRUE(PingComes());
    EXPECT_TRUE(WaitUntil([this] { return IsChecked(L"focus_person_btn"); }));
    EXPECT_TRUE(Machine::LogHolds("[L3] Click Set Camera State btnName:focus_person_btn(HomePage::OnClick)"));
    program_->Click(L"focus_person_btn");
    EXPECT_TRUE(Becomes(L"lumi_camera_person_track", 0));
    EXPECT_TRUE(WaitUntil([this] { return !IsChecked(L"focus_person_btn"); }));
}

TEST_F(SettingsWindowTest, BeautyAndEyeContactExcludeEachOther) {
    OpenWithService();
    program_->Click(L"correct_sight_btn");
    EXPECT_TRUE(Becomes(L"lumi_camera_eye_correction", 1));
    program_->Click(L"beauty_person_btn");
    EXPECT_TRUE(Becomes(L"lumi_camera_beauty_person", 1));
    EXPECT_TRUE(Becomes(L"lumi_camera_eye_correction", 0));
    EXPECT_TRUE(WaitUntil([this] { return !IsChecked(L"correct_sight_btn") && IsChecked(L"beauty_person_btn"); }));
    EXPECT_TRUE(program_->WaitFor(L"slider_smooth"));
    EXPECT_TRUE(program_->Screenshot(L"settings-beauty", 200));
}

TEST_F(SettingsWindowTest, ABackgroundTurnsAutoFramingOff) {
    OpenWithService();
    program_->Click(L"focus_person_btn");
    EXPECT_TRUE(Becomes(L"lumi_camera_person_track", 1));
    program_->Click(L"img_five_background_btn");
    EXPECT_TRUE(Becomes(L"lumi_camera_background_replacement", 7));
    EXPECT_TRUE(Becomes(L"lumi_camera_person_track", 0));
    EXPECT_TRUE(WaitUntil([this] { return IsChecked(L"img_five_background_btn"); }));
    program_->Click(L"none_background_btn");
    EXPECT_TRUE(Becomes(L"lumi_camera_background_replacement", 0));
    EXPECT_TRUE(Becomes(L"pre_background_replacement", 0));
}

TEST_F(SettingsWindowTest, AChangeFromOutsideShowsInTheWindow) {
    Open();
    Machine::SetNumber(L"lumi_camera_person_track", 1);
    EXPECT_TRUE(WaitUntil([this] { return IsChecked(L"focus_person_btn"); }));
    Machine::SetNumber(L"lumi_camera_background_replacement", 9);
    EXPECT_TRUE(WaitUntil([this] { return IsChecked(L"img_seven_background_btn"); }));
    Machine::SetNumber(L"lumi_camera_person_track", 0);
    EXPECT_TRUE(WaitUntil([this] { return !IsChecked(L"focus_person_btn"); }));
}

TEST_F(SettingsWindowTest, TheKeyboardReachesAndPressesTheSwitches) {
    OpenWithService();
    SetForegroundWindow(program_->Window());
    const AccessibleWindow window(program_->Window());
    const auto target = program_->Find(L"open_camera_btn");
    ASSERT_TRUE(target);
    for (int tabs = 0; tabs < 20 && window.FocusedId() != target->id; ++tabs) {
        const long before = window.FocusedId();
        program_->PressKey(VK_TAB);
        ASSERT_TRUE(WaitUntil([&] { return window.FocusedId() != before; }));
    }
    ASSERT_EQ(window.FocusedId(), target->id);
    EXPECT_TRUE(program_->Screenshot(L"settings-focus", 200));
    program_->PressKey(VK_SPACE);
    EXPECT_TRUE(Becomes(L"lumi_camera_switch", 0));
}

TEST_F(SettingsWindowTest, TheServicesResetClosesTheWindow) {
    OpenWithService();
    EXPECT_EQ(service_.Send(Protocol::FromService(Protocol::kNotificationCode, Protocol::kResetSubCode + 1)), 1);
    EXPECT_EQ(service_.Send(Protocol::FromService(Protocol::kNotificationCode, Protocol::kResetSubCode)), 1);
    EXPECT_EQ(program_->WaitForEnd(), 0U);
}

TEST_F(SettingsWindowTest, TheIntroductionOpensAndRemembersItsTab) {
    Open();
    program_->Click(L"show_detail_btn");
    ASSERT_TRUE(program_->WaitFor(L"back_btn"));
    EXPECT_TRUE(IsChecked(L"custom_background_option"));
    EXPECT_TRUE(program_->Screenshot(L"introduction", 200));
    program_->Click(L"correct_sight_option");
    EXPECT_TRUE(WaitUntil([this] { return IsChecked(L"correct_sight_option"); }));
    program_->Click(L"back_btn");
    ASSERT_TRUE(program_->WaitFor(L"show_detail_btn"));
    program_->Click(L"show_detail_btn");
    ASSERT_TRUE(program_->WaitFor(L"back_btn"));
    EXPECT_TRUE(IsChecked(L"correct_sight_option"));
}

TEST_F(SettingsWindowTest, TheOnlineIntroductionOpensInTheBrowser) {
    PIXORA_WINE_ONLY(Machine::kNoLinks);
    Open();
    program_->Click(L"show_introduction_btn");
    ASSERT_TRUE(WaitUntil([] { return !Machine::OpenedLinks().empty(); }));
    EXPECT_THAT(Machine::OpenedLinks(), testing::ElementsAre("https://support.example.com/pixora/introduction"));
}

TEST_F(SettingsWindowTest, TheThemeAndTheSizeOfTextAreFollowedWhileItIsOpen) {
    Open();
    constexpr COLORREF kLightGround = 0xF1F3F8, kDarkGround = 0x15181E;
    const auto becomes = [this](COLORREF ground) {
        return WaitUntil([&] { return program_->PixelAt(20, 590) == ground; });
    };
    EXPECT_TRUE(becomes(kLightGround));
    const UsersLook look(program_->Window());
    look.SetDark(true);
    EXPECT_TRUE(becomes(kDarkGround));
    EXPECT_TRUE(program_->Screenshot(L"settings-dark", 200));
    const auto width = [this] {
        const RECT text = program_->ClientRect(L"preview_text");
        return text.right - text.left;
    };
    const LONG before = width();
    look.SetTextSize(200);
    EXPECT_TRUE(WaitUntil([&] { return width() > before * 3 / 2; }));
    EXPECT_TRUE(program_->Screenshot(L"settings-dark-large", 200));
    look.SetDark(false);
    look.SetTextSize(100);
    EXPECT_TRUE(becomes(kLightGround));
    EXPECT_TRUE(WaitUntil([&] { return width() == before; }));
}

// A copy of the installed program with something of its resources damaged.
class DamagedResources : public SettingsWindowTest {
  protected:
    void SetUp() override {
        SettingsWindowTest::SetUp();
        wchar_t temp[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, temp);
        folder_ = fs::path(temp) / L"pixora-damaged";
        fs::remove_all(folder_);
        fs::create_directories(folder_);
        for (const auto& entry : fs::directory_iterator(ProgramFolder())) {
            const bool module = entry.path().extension() == L".dll" || entry.path().filename() == L"Pixora.exe";
            if (module)
                fs::copy(entry.path(), folder_ / entry.path().filename());
        }
        fs::copy(fs::path(ProgramFolder()) / L"plugins", folder_ / L"plugins", fs::copy_options::recursive);
        fs::copy(fs::path(ProgramFolder()) / L"res", folder_ / L"res", fs::copy_options::recursive);
    }

    void Damage(const wchar_t* file, const std::string& content) const {
        std::ofstream(folder_ / file, std::ios::binary | std::ios::trunc) << content;
    }

    void OpenDamaged() { program_.emplace(L"run", folder_.wstring() + L"\\"); }

    // Closed from outside, because there may be no button.
    void ExpectCleanEnd() {
        HWND window = nullptr;
        ASSERT_TRUE(WaitUntil([&] { return (window = FindWindowW(Protocol::kWindowClass, nullptr)) != nullptr; }));
        ASSERT_TRUE(WaitUntil([&] { return IsWindowVisible(window) != FALSE; }));
        SendMessageW(window, WM_NULL, 0, 0);
        PostMessageW(window, WM_CLOSE, 0, 0);
        EXPECT_EQ(program_->WaitForEnd(), 0U);
    }

    fs::path folder_;
};

TEST_F(DamagedResources, ALayoutThatIsNoXmlLeavesALogLine) {
    Damage(L"res\\layout\\Pixora.xml", "<Window size=\"10,10\"><Vertical");
    OpenDamaged();
    ExpectCleanEnd();
    EXPECT_THAT(harness::TestLog::TakeFailures(), Contains(HasSubstr("layout\\Pixora.xml, line 1")));
}

TEST_F(DamagedResources, AMissingPageLayoutLeavesALogLine) {
    fs::remove(folder_ / L"res\\layout\\PixoraHomePage.xml");
    OpenDamaged();
    ExpectCleanEnd();
    EXPECT_THAT(harness::TestLog::TakeFailures(), Contains("exist control nullptr(PageBase::SelectTab)"));
}

TEST_F(DamagedResources, AnEmptyLayoutLeavesALogLine) {
    Damage(L"res\\layout\\PixoraHomePage.xml", "");
    OpenDamaged();
    ExpectCleanEnd();
    EXPECT_THAT(harness::TestLog::TakeFailures(), Contains("exist control nullptr(PageBase::SelectTab)"));
}

TEST_F(DamagedResources, WithoutItsColoursTheWindowIsLight) {
    fs::remove(folder_ / L"res\\themes.xml");
    OpenDamaged();
    ASSERT_TRUE(program_->WaitForWindow());
    const UsersLook look(program_->Window());
    look.SetDark(true);
    EXPECT_EQ(program_->PixelAt(20, 590), 0xF1F3F8U);
    ExpectCleanEnd();
    EXPECT_THAT(harness::TestLog::TakeFailures(),
                testing::ElementsAre(HasSubstr("the light theme of the library is used(UITheme::ReadFile)")));
}

TEST_F(DamagedResources, ABrokenStringTableLeavesALogLine) {
    Damage(L"res\\values\\en_US\\strings.xml", "<Strings><String id=\"IDS_LUMI_CAM");
    OpenDamaged();
    ExpectCleanEnd();
    EXPECT_THAT(harness::TestLog::TakeFailures(), Contains(HasSubstr("en_US\\strings.xml")));
}

TEST_F(DamagedResources, ABrokenAndAMissingImageLeaveALogLine) {
    Damage(L"res\\drawable\\LumiCamera\\ic_eye.png", "no picture");
    fs::remove(folder_ / L"res\\drawable\\LumiCamera\\ic_beauty.png");
    for (const wchar_t* scale : {L"125", L"150", L"200", L"300"}) {
        const std::wstring folder = std::wstring(L"res\\drawable-") + scale + L"\\LumiCamera\\";
        Damage((folder + L"ic_eye.png").c_str(), "no picture");
        fs::remove(folder_ / (folder + L"ic_beauty.png"));
    }
    OpenDamaged();
    ASSERT_TRUE(program_->WaitForWindow());
    ExpectCleanEnd();
    const std::vector<std::string> failures = harness::TestLog::TakeFailures();
    EXPECT_THAT(failures, Contains(HasSubstr("ic_eye.png")));
    EXPECT_THAT(failures, Contains(HasSubstr("ic_beauty.png")));
}

TEST_F(DamagedResources, AMissingFeatureFileShowsTheNotebook) {
    Machine::Expect("[L4] load lumi_camera_config Xml fail(HomePage::GetCameraXmlConfig)");
    fs::remove(folder_ / L"plugins\\lumi_camera_config.xml");
    OpenDamaged();
    ASSERT_TRUE(program_->WaitForWindow());
    ExpectCleanEnd();
}

}  // namespace
}  // namespace e2e
