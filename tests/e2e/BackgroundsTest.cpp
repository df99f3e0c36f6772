// The user's own backgrounds in the real program: added through the system's file dialog, found again after a restart,
// chosen, refused, deleted.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "service/CustomImageGroup.h"
#include "tests/e2e/support/FileDialog.h"
#include "tests/e2e/support/Machine.h"
#include "tests/e2e/support/Program.h"
#include "tools/service/PipeServer.h"

namespace e2e {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

namespace Protocol = harness::Protocol;
constexpr wchar_t kBaseFolder[] = L"C:\\ProgramData\\Comms\\LumiCamera";

std::wstring Item(int number) {
    return L"custom_background_btn_" + std::to_wstring(number);
}

std::vector<CustomImageRecord> Stored() {
    return CustomImageGroup::Parse(Machine::Text(L"lumi_camera_custom_img_group").value_or(L""));
}

std::vector<std::wstring> StoredNames() {
    std::vector<std::wstring> names;
    for (const CustomImageRecord& record : Stored())
        names.push_back(record.name);
    return names;
}

class BackgroundsTest : public testing::Test {
  protected:
    void SetUp() override {
        Machine::ResetToInstalled();
        fs::remove_all(kBaseFolder);
        Machine::SetNumber(L"lumi_camera_switch", 1);
        for (const wchar_t* name : {L"lumi_camera_background_replacement", L"lumi_camera_eye_correction",
                                    L"lumi_camera_person_track", L"lumi_camera_beauty_person"})
            Machine::SetNumber(name, 0);
        own_ = fs::temp_directory_path() / L"pixora-own";
        fs::remove_all(own_);
        fs::create_directories(own_);
        ASSERT_TRUE(service_.Start(Protocol::kPipeName));
    }
    void TearDown() override {
        program_.reset();
        fs::remove_all(kBaseFolder);
    }

    static fs::path Media(const std::wstring& name) {
        return fs::path(ProgramFolder()) / L"..\\test-media\\backgrounds" / name;
    }
    // A file of the user's own, under that name.
    fs::path Own(const std::wstring& medium, const std::wstring& name) const {
        fs::copy_file(Media(medium), own_ / name);
        return own_ / name;
    }

    void Open() {
        program_.emplace();
        ASSERT_TRUE(program_->WaitForWindow());
        SetForegroundWindow(program_->Window());
    }
    void Restart() {
        program_->Click(L"closebtn");
        ASSERT_EQ(program_->WaitForEnd(), 0U);
        Open();
    }

    void OpenDialog(FileDialog& dialog) {
        ShowControl(L"custom_background_btn");
        program_->Click(L"custom_background_btn");
        ASSERT_TRUE(dialog.WaitFor(program_->Window())) << program_->InputState();
    }
    void Choose(const fs::path& path) {
        FileDialog dialog;
        ASSERT_NO_FATAL_FAILURE(OpenDialog(dialog));
        dialog.Choose(path.wstring());
        ASSERT_TRUE(dialog.WaitForEnd());
    }
    void Add(const fs::path& path, int number) {
        ASSERT_NO_FATAL_FAILURE(Choose(path));
        ASSERT_TRUE(WaitUntil([&] { return Machine::Text(L"background_selected_btnName") == Item(number); }));
        ASSERT_TRUE(WaitUntil([&] { return IsChecked(Item(number)); }));
    }

    // The gallery may have to be scrolled until the control can be clicked on.
    void ShowControl(const std::wstring& name) const { program_->Reveal(name); }
    void Select(const std::wstring& name) const {
        ShowControl(name);
        program_->Click(name);
    }
    bool IsChecked(const std::wstring& control) const {
        const auto found = program_->Find(control);
        return found && (found->state & STATE_SYSTEM_CHECKED) != 0;
    }
    bool PingComes() {
        const auto event = service_.WaitFor(ServerEvent::Kind::kMessage, kPatience);
        return event && event->frame.slot[2] == Protocol::kSettingsChangedCode;
    }

    void HoverOver(const std::wstring& name) const {
        ShowControl(name);
        const auto control = program_->WaitFor(name);
        ASSERT_TRUE(control);
        const RECT& r = control->screenPx;
        program_->MoveTo({r.left + 8, r.bottom - 6});
    }
    // Clicks on the item's delete button; the question is open then.
    void AskToDelete(int number) const {
        ASSERT_NO_FATAL_FAILURE(HoverOver(Item(number)));
        ASSERT_TRUE(program_->WaitFor(Item(number) + L"_del"));
        program_->Click(Item(number) + L"_del");
        ASSERT_TRUE(WaitUntil([] { return CountWindows(kQuestion) == 1; }));
    }
    void Delete(int number) const {
        ASSERT_NO_FATAL_FAILURE(AskToDelete(number));
        AnswerWith(VK_RETURN, kQuestion);
        ASSERT_TRUE(WaitUntil([&] { return !program_->Find(Item(number)); }));
    }
    void AnswerWith(WORD key, const wchar_t* window) const {
        const HWND box = FindWindowW(window, nullptr);
        ASSERT_TRUE(WaitUntil([box] { return GetForegroundWindow() == box; }));
        program_->PressKey(key);
        ASSERT_TRUE(WaitUntil([window] { return CountWindows(window) == 0; }));
    }
    // Of a box that is visible; its controls may come a moment later.
    static std::wstring BoxText(const wchar_t* window) {
        const AccessibleWindow box(FindWindowW(window, nullptr));
        std::optional<AccessibleControl> content;
        WaitUntil([&] { return (content = box.Find(L"msgbox_content")).has_value(); });
        return content ? content->name : std::wstring();
    }
    // What the gallery, the registry and the camera service each say of the background in use.
    void ExpectInUse(const std::wstring& control, const std::wstring& path) {
        EXPECT_TRUE(WaitUntil([&] { return IsChecked(control); }));
        EXPECT_EQ(Machine::Number(L"lumi_camera_background_replacement"), 5U);
        EXPECT_EQ(Machine::Text(L"background_selected_btnName"), control);
        EXPECT_EQ(Machine::Text(L"lumi_camera_background_image_path"), path);
    }

    static constexpr const wchar_t* kQuestion = Protocol::kQuestionClass;

    fs::path own_;
    PipeServer service_;
    std::optional<Program> program_;
};

TEST_F(BackgroundsTest, APictureIsAddedThroughTheFileDialog) {
    Open();
    const fs::path photo = Own(L"baseline.jpg", L"holiday photo.JPG");
    ASSERT_NO_FATAL_FAILURE(Add(photo, 0));
    EXPECT_EQ(Machine::Number(L"lumi_camera_background_replacement"), 5U);
    const auto picture = Machine::Text(L"lumi_camera_background_image_path");
    ASSERT_TRUE(picture);
    EXPECT_TRUE(picture->ends_with(Item(0) + L".jpg"));
    EXPECT_TRUE(fs::exists(*picture));
    EXPECT_TRUE(fs::exists(photo));
    EXPECT_TRUE(PingComes());
    EXPECT_TRUE(program_->Screenshot(L"backgrounds-one", 200));
}

TEST_F(BackgroundsTest, ACancelledDialogChangesNothing) {
    Open();
    Select(L"img_two_background_btn");
    ASSERT_TRUE(WaitUntil([this] { return IsChecked(L"img_two_background_btn"); }));
    FileDialog dialog;
    ASSERT_NO_FATAL_FAILURE(OpenDialog(dialog));
    dialog.Cancel();
    ASSERT_TRUE(dialog.WaitForEnd());
    EXPECT_TRUE(WaitUntil([this] { return IsChecked(L"img_two_background_btn"); }));
    EXPECT_EQ(Machine::Number(L"lumi_camera_background_replacement"), 2U);
    EXPECT_THAT(Stored(), IsEmpty());
    // And the button serves again.
    ASSERT_NO_FATAL_FAILURE(Add(Own(L"plain.bmp", L"scan.bmp"), 0));
}

struct Refusal {
    const wchar_t* medium;
    const wchar_t* text;
};

TEST_F(BackgroundsTest, EachRefusalSaysWhatHappenedAndWhatToDo) {
    Machine::Expect("[L4] open error pixelFormat not support(ImageReader::Open)");
    Open();
    for (const Refusal& refusal : {Refusal{L"palette8.png", L"This file can’t be opened."},
                                   {L"too_wide.png", L"This picture is too large. Choose a picture of at most 4096"},
                                   {L"too_high.mov", L"This video is too large. Choose a video of at most 1920"}}) {
        ASSERT_NO_FATAL_FAILURE(Choose(Media(refusal.medium).lexically_normal()));
        ASSERT_TRUE(WaitUntil([] { return CountWindows(kMessageClass) == 1; }));
        EXPECT_TRUE(BoxText(kMessageClass).starts_with(refusal.text)) << refusal.medium;
        program_->Screenshot(std::wstring(L"backgrounds-refused-") + refusal.medium);
        ASSERT_NO_FATAL_FAILURE(AnswerWith(VK_RETURN, kMessageClass));
        EXPECT_TRUE(WaitUntil([this] { return IsChecked(L"none_background_btn"); }));
    }
    EXPECT_THAT(Stored(), IsEmpty());
}

TEST_F(BackgroundsTest, FiveSurviveARestartAndEachCanBeChosen) {
    Open();
    const std::vector<fs::path> files = {Own(L"red.jpg", L"with blanks in it.jpg"),
                                         Own(L"green.jpg", L"\u5047\u65E5.JPEG"), Own(L"clip.mp4", L"clip one.mp4"),
                                         Own(L"blue.png", L"\u00C4\u00D6.PNG"), Own(L"clip.mov", L"\u6D77\u6EE9.mov")};
    std::vector<std::wstring> used;
    for (std::size_t i = 0; i < files.size(); ++i) {
        ASSERT_NO_FATAL_FAILURE(Add(files[i], static_cast<int>(i)));
        used.push_back(Machine::Text(L"lumi_camera_background_image_path").value_or(L""));
    }
    EXPECT_EQ(used[2], files[2].wstring());
    EXPECT_EQ(used[4], files[4].wstring());
    program_->Screenshot(L"backgrounds-five");

    ASSERT_NO_FATAL_FAILURE(Restart());
    EXPECT_TRUE(WaitUntil([this] { return IsChecked(Item(4)); }));
    for (const int i : {2, 0, 4, 1, 3}) {
        while (service_.WaitForEvent(std::chrono::milliseconds(0))) {
        }
        Select(Item(i));
        EXPECT_TRUE(PingComes());
        ExpectInUse(Item(i), used[static_cast<std::size_t>(i)]);
    }
    EXPECT_THAT(StoredNames(), ElementsAre(Item(0), Item(1), Item(2), Item(3), Item(4)));
}

TEST_F(BackgroundsTest, ThreeGoInEveryOrder) {
    const std::vector<fs::path> files = {Own(L"red.jpg", L"red.jpg"), Own(L"clip.mp4", L"clip.mp4"),
                                         Own(L"blue.png", L"blue.png")};
    Open();
    std::vector<int> order = {0, 1, 2};
    do {
        for (int i = 0; i < 3; ++i)
            ASSERT_NO_FATAL_FAILURE(Add(files[static_cast<std::size_t>(i)], i));
        for (const int number : order)
            ASSERT_NO_FATAL_FAILURE(Delete(number));
        EXPECT_THAT(Stored(), IsEmpty());
        EXPECT_TRUE(WaitUntil([this] { return IsChecked(L"none_background_btn"); }));
        EXPECT_EQ(Machine::Number(L"lumi_camera_background_replacement"), 0U);
    } while (std::next_permutation(order.begin(), order.end()));
    for (const fs::path& file : files)
        EXPECT_TRUE(fs::exists(file)) << file;
    EXPECT_TRUE(program_->Find(L"custom_background_btn"));
}

TEST_F(BackgroundsTest, TheQuestionAnsweredWithEscKeepsTheBackground) {
    Open();
    ASSERT_NO_FATAL_FAILURE(Add(Own(L"red.jpg", L"red.jpg"), 0));
    ASSERT_NO_FATAL_FAILURE(AskToDelete(0));
    program_->Screenshot(L"backgrounds-question");
    ASSERT_NO_FATAL_FAILURE(AnswerWith(VK_ESCAPE, kQuestion));
    EXPECT_THAT(StoredNames(), ElementsAre(Item(0)));
    EXPECT_TRUE(program_->Find(Item(0)));
}

TEST_F(BackgroundsTest, AVideoThatIsGoneIsToldAndTakenAway) {
    Machine::Expect("[L4] Get option null!(HomePage::ClickChangeBackground)");
    const fs::path video = Own(L"clip.mp4", L"clip.mp4");
    Open();
    ASSERT_NO_FATAL_FAILURE(Add(video, 0));
    ASSERT_NO_FATAL_FAILURE(Add(Own(L"red.jpg", L"red.jpg"), 1));
    fs::remove(video);
    Select(Item(0));
    ASSERT_TRUE(WaitUntil([] { return CountWindows(kMessageClass) == 1; }));
    EXPECT_NE(BoxText(kMessageClass).find(L"may have been moved or deleted: add the video again"), std::wstring::npos);
    ASSERT_NO_FATAL_FAILURE(AnswerWith(VK_ESCAPE, kMessageClass));
    EXPECT_FALSE(program_->Find(Item(0)));
    EXPECT_TRUE(WaitUntil([this] { return IsChecked(Item(1)); }));
    EXPECT_THAT(StoredNames(), ElementsAre(Item(1)));
}

TEST_F(BackgroundsTest, TheThirtyThirdIsRefused) {
    Open();
    ASSERT_NO_FATAL_FAILURE(Add(Own(L"red.jpg", L"red.jpg"), 0));
    // The other thirty-one as an earlier run has left them.
    program_->Click(L"closebtn");
    ASSERT_EQ(program_->WaitForEnd(), 0U);
    std::vector<CustomImageRecord> records = Stored();
    ASSERT_EQ(records.size(), 1U);
    const fs::path folder = fs::path(records[0].thumbPath).parent_path();
    for (int i = 1; i < 32; ++i) {
        CustomImageRecord record = records[0];
        record.name = Item(i);
        record.thumbPath = (folder / (Item(i) + L".jpg")).wstring();
        fs::copy_file(records[0].thumbPath, record.thumbPath);
        records.push_back(record);
    }
    Machine::SetText(L"lumi_camera_custom_img_group", CustomImageGroup::Serialise(records));
    Open();
    ShowControl(L"custom_background_btn");
    program_->Screenshot(L"backgrounds-full");
    program_->Click(L"custom_background_btn");
    ASSERT_TRUE(WaitUntil([] { return CountWindows(kQuestion) == 1; }));
    EXPECT_EQ(CountWindows(L"#32770"), 0);
    EXPECT_TRUE(BoxText(kQuestion).starts_with(L"You already have 32 custom backgrounds."));
    ASSERT_NO_FATAL_FAILURE(AnswerWith(VK_RETURN, kQuestion));
    EXPECT_EQ(Stored().size(), 32U);

    // One less, and there is room again, under the name that became free.
    ASSERT_NO_FATAL_FAILURE(Delete(17));
    ASSERT_NO_FATAL_FAILURE(Add(Own(L"green.jpg", L"green.jpg"), 17));
    EXPECT_EQ(Stored().size(), 32U);
}

TEST_F(BackgroundsTest, TheLongestPathIsTakenAndALongerOneIsTold) {
    constexpr std::size_t kLongest = 259;
    const auto named = [this](std::size_t length) {
        return own_ / (std::wstring(length - own_.wstring().size() - 5, L'x') + L".jpg");
    };
    Open();
    fs::copy_file(Media(L"red.jpg"), named(kLongest));
    ASSERT_NO_FATAL_FAILURE(Add(named(kLongest), 0));
    EXPECT_EQ(Stored().at(0).sourcePath, named(kLongest).wstring());

    const std::wstring longer = LR"(\\?\)" + named(kLongest + 1).wstring();
    ASSERT_TRUE(CopyFileW(Media(L"red.jpg").c_str(), longer.c_str(), FALSE)) << GetLastError();
    FileDialog dialog;
    ASSERT_NO_FATAL_FAILURE(OpenDialog(dialog));
    dialog.Choose(named(kLongest + 1).wstring());
    // The system's dialog says so and stays, or it ends and the program says so.
    ASSERT_TRUE(WaitUntil([&] { return CountWindows(kMessageClass) == 1 || CountWindows(L"#32770") == 2; }));
    program_->Screenshot(L"backgrounds-longer-path");
    EXPECT_EQ(Stored().size(), 1U);
    DeleteFileW(longer.c_str());
}

// With the variant of the program whose camera shows what the service would make of the settings.
class OwnBackgroundInPreview : public BackgroundsTest {
  protected:
    void SetUp() override {
        Machine::UseProgram(L"PixoraDemo");
        BackgroundsTest::SetUp();
    }
    void TearDown() override {
        BackgroundsTest::TearDown();
        Machine::UseProgram(L"Pixora");
    }
    // The wall behind the person, left and right of them; the window is at 96 DPI.
    bool WallIs(COLORREF color) const {
        for (const POINT& wall : {POINT{95, 120}, POINT{585, 120}}) {
            const COLORREF pixel = program_->PixelAt(wall.x, wall.y);
            for (const int shift : {0, 8, 16}) {
                if (std::abs(static_cast<int>(pixel >> shift & 0xFF) - static_cast<int>(color >> shift & 0xFF)) > 12)
                    return false;
            }
        }
        return true;
    }
    bool WallBecomes(COLORREF color) const {
        return WaitUntil([&] { return WallIs(color); });
    }
    // On, and the program listens to clicks again.
    bool IsPreviewOn() const {
        const auto found = program_->Find(L"preview_switch");
        return found && (found->state & (STATE_SYSTEM_CHECKED | STATE_SYSTEM_UNAVAILABLE)) == STATE_SYSTEM_CHECKED;
    }

    static constexpr COLORREF kRed = 0xC02020;  // 0x00RRGGBB
    static constexpr COLORREF kGreen = 0x20A040;
    static constexpr COLORREF kBlue = 0x2040C0;
    static constexpr COLORREF kWhite = 0xFFFFFF;
};

TEST_F(OwnBackgroundInPreview, IsTheOneThatRegistryAndGalleryName) {
    Open();
    program_->Click(L"preview_switch");
    ASSERT_TRUE(WaitUntil([this] { return IsPreviewOn(); }));
    const std::vector<fs::path> files = {Own(L"red.jpg", L"red.jpg"), Own(L"green.jpg", L"green.jpg"),
                                         Own(L"blue.png", L"blue.png"), Own(L"dark_start.mp4", L"light.mp4")};
    const std::vector<COLORREF> colors = {kRed, kGreen, kBlue, kWhite};
    std::vector<std::wstring> used;
    for (std::size_t i = 0; i < files.size(); ++i) {
        ASSERT_NO_FATAL_FAILURE(Add(files[i], static_cast<int>(i)));
        used.push_back(Machine::Text(L"lumi_camera_background_image_path").value_or(L""));
        EXPECT_TRUE(WallBecomes(colors[i])) << files[i];
    }
    program_->Screenshot(L"backgrounds-preview");
    for (const std::size_t i : {1U, 3U, 0U, 2U}) {
        while (service_.WaitForEvent(std::chrono::milliseconds(0))) {
        }
        Select(Item(static_cast<int>(i)));
        EXPECT_TRUE(PingComes());
        ExpectInUse(Item(static_cast<int>(i)), used[i]);
        EXPECT_TRUE(WallBecomes(colors[i])) << files[i];
    }
    // The one in use goes, and so does its wall.
    ASSERT_NO_FATAL_FAILURE(Delete(2));
    EXPECT_TRUE(WaitUntil([this] { return !WallIs(kBlue) && IsChecked(L"none_background_btn"); }));
}

}  // namespace
}  // namespace e2e
