// Adding and choosing a background of the user's own: what each does, in its order, and what it leaves alone.
#include <array>
#include <fstream>

#include "DuiLib/UIMainQueue.h"
#include "tests/support/CallTrace.h"
#include "tests/windows/pages/PageTests.h"
#include "tests/windows/support/FakeFileDialog.h"
#include "tests/windows/support/HangingDecoder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr wchar_t kAddButton[] = L"custom_background_btn";

class HomePageOwnFileTest : public HomePageTest {
  protected:
    void SetUp() override {
        HomePageTest::SetUp();
        Write(L"lumi_camera_person_track", 1);
        Refresh();
    }
    void TearDown() override {
        for (const std::wstring& name : added_)
            HomeService::GetInstance()->DeleteCustomBackground(name);
        HomePageTest::TearDown();
    }

    static std::wstring Name(int number) { return L"custom_background_btn_" + std::to_wstring(number); }
    // A picture file of the smallest kind.
    static std::wstring MakePicture(const std::wstring& name) {
        constexpr std::array<unsigned char, 70> kBitmap = {'B', 'M', 70, 0, 0, 0, 0, 0, 0,  0, 54, 0, 0,
                                                           0,   40,  0,  0, 0, 2, 0, 0, 0,  2, 0,  0, 0,
                                                           1,   0,   24, 0, 0, 0, 0, 0, 16, 0, 0,  0};
        const std::wstring path = OwnFolder() + name;
        std::ofstream(path.c_str(), std::ios::binary)
            .write(reinterpret_cast<const char*>(kBitmap.data()), kBitmap.size());
        return path;
    }
    // What a click on that entry does to the outside.
    std::vector<std::string> CallsOf(const std::wstring& name) {
        harness::CallTrace trace;
        Press(name);
        return trace.Take();
    }
    std::vector<std::string> CallsOfAdding(const std::wstring& path, int number) {
        dialog_.chosen = path;
        added_.push_back(Name(number));
        return CallsOf(kAddButton);
    }

    // File names hold the time.
    static std::vector<std::string> WithoutNames(std::vector<std::string> calls) {
        for (std::string& call : calls) {
            if (const std::size_t folder = call.find("C:\\"); folder != std::string::npos) {
                call.resize(folder);
            }
        }
        return calls;
    }

    FakeFileDialog dialog_;
    std::vector<std::wstring> added_;
};

TEST_F(HomePageOwnFileTest, AnAddedFileTurnsFramingOffWithoutAWait) {
    const std::wstring path = MakePicture(L"one.bmp");
    dialog_.whileOpen = [this] { EXPECT_FALSE(Control(kAddButton).IsEnabled()) << "a second dialog could be opened"; };
    EXPECT_THAT(
        CallsOfAdding(path, 0),
        ElementsAre("report Background replacement:5", "ping",
                    StartsWith("lumi_camera_background_image_path=C:\\ProgramData\\Comms\\LumiCamera\\"),
                    StartsWith("lumi_camera_custom_img_group=custom_background_btn_0[(&,f!=)]"),
                    "lumi_camera_background_replacement=5", "background_selected_btnName=custom_background_btn_0",
                    "lumi_camera_person_track=0", "report close focus person", "ping"));
    EXPECT_TRUE(Control(kAddButton).IsEnabled());
    EXPECT_EQ(dialog_.asked.hwndOwner, Host().GetHWND());
    EXPECT_TRUE(IsSelected(Name(0)));
    EXPECT_TRUE(Input::PumpUntil([this] { return IsDrawnOff(L"focus_person_btn"); }));
}

TEST_F(HomePageOwnFileTest, AChosenFileTurnsFramingOffWithoutAWait) {
    CallsOfAdding(MakePicture(L"one.bmp"), 0);
    Press(L"none_background_btn");
    Write(L"lumi_camera_person_track", 1);
    Refresh();
    EXPECT_THAT(CallsOf(Name(0)), ElementsAre("lumi_camera_background_replacement=5",
                                              StartsWith("lumi_camera_background_image_path=C:\\"),
                                              "background_selected_btnName=custom_background_btn_0",
                                              "lumi_camera_person_track=0", "report close focus person", "ping"));
    EXPECT_TRUE(IsSelected(Name(0)));
}

TEST_F(HomePageOwnFileTest, ACancelledDialogChangesNothing) {
    ASSERT_TRUE(IsSelected(L"none_background_btn"));
    dialog_.whileOpen = [this] {
        EXPECT_TRUE(IsSelected(L"none_background_btn")) << "chosen until a file has been accepted";
        EXPECT_FALSE(IsSelected(kAddButton));
    };
    EXPECT_THAT(CallsOfAdding(L"", 0), IsEmpty());
    EXPECT_EQ(dialog_.shown, 1);
    EXPECT_EQ(Number(L"lumi_camera_person_track"), 1);
    EXPECT_TRUE(Control(kAddButton).IsEnabled());
    EXPECT_TRUE(IsSelected(L"none_background_btn"));
}

TEST_F(HomePageOwnFileTest, AnArrowComesToTheAddButtonAndNoFurther) {
    Manager().UpdateLayout();
    Manager().SetFocus(&Control(L"none_background_btn"), true);
    SendMessageW(Host().GetHWND(), WM_KEYDOWN, VK_LEFT, 1);
    EXPECT_EQ(Manager().GetFocus(), &Control(kAddButton));
    bool later = false;
    DuiLib::UIMainQueue::getInstance()->dispatchAfter(250, [&] { later = true; });
    EXPECT_TRUE(Input::PumpUntil([&] { return later; }));
    EXPECT_EQ(dialog_.shown, 0);
    EXPECT_TRUE(IsSelected(L"none_background_btn"));
    SendMessageW(Host().GetHWND(), WM_KEYDOWN, VK_RETURN, 1);
    EXPECT_EQ(dialog_.shown, 1);
}

TEST_F(HomePageOwnFileTest, ADroppedFileIsAddedAsIfChosen) {
    const std::vector<std::string> chosen = CallsOfAdding(MakePicture(L"one.bmp"), 0);
    HomeService::GetInstance()->DeleteCustomBackground(Name(0));
    Write(L"lumi_camera_person_track", 1);
    Refresh();
    harness::CallTrace trace;
    Page().AddDroppedFiles({MakePicture(L"one.bmp")});
    EXPECT_EQ(WithoutNames(trace.Take()), WithoutNames(chosen));
    EXPECT_EQ(dialog_.shown, 1) << "that of the chosen one";
    EXPECT_TRUE(IsSelected(Name(0)));
    EXPECT_TRUE(Control(kAddButton).IsEnabled());
}

TEST_F(HomePageOwnFileTest, UntilADroppedFileIsAddedNothingElseIsChosen) {
    added_.push_back(Name(0));
    const std::wstring path = MakePicture(L"one.bmp");
    const HangingDecoder decoder;
    bool served = false;
    DuiLib::UIMainQueue::getInstance()->dispatch([&] {
        served = true;
        EXPECT_FALSE(Control(kAddButton).IsEnabled());
        harness::CallTrace trace;
        Press(L"img_one_background_btn");
        EXPECT_THAT(trace.Take(), IsEmpty());
        HangingDecoder::LetGo();
    });
    Page().AddDroppedFiles({path});
    EXPECT_TRUE(served);
    EXPECT_TRUE(IsSelected(Name(0)));
}

TEST_F(HomePageOwnFileTest, SeveralDroppedFilesAreAddedWithoutTheWrongOnes) {
    added_ = {Name(0), Name(1)};
    const std::wstring text = OwnFolder() + L"no picture.txt";
    std::ofstream(text.c_str()) << "no picture";
    Page().AddDroppedFiles({MakePicture(L"one.bmp"), text, MakePicture(L"two.bmp")});
    EXPECT_TRUE(IsSelected(Name(1)));
    EXPECT_TRUE(Manager().FindControl(Name(0)));
    EXPECT_FALSE(Manager().FindControl(Name(2)));
    EXPECT_THAT(Host().Messages(), ElementsAre(0));
    EXPECT_EQ(Number(L"lumi_camera_person_track"), 0);
    EXPECT_EQ(Host().limitNotices, 0);
}

TEST_F(HomePageOwnFileTest, WrongDroppedFilesChangeNothing) {
    const std::wstring text = OwnFolder() + L"no picture.txt";
    std::ofstream(text.c_str()) << "no picture";
    harness::CallTrace trace;
    Page().AddDroppedFiles({text, OwnFolder()});
    EXPECT_THAT(trace.Take(), IsEmpty());
    EXPECT_TRUE(IsSelected(L"none_background_btn"));
    EXPECT_EQ(Number(L"lumi_camera_person_track"), 1);
    EXPECT_TRUE(Control(kAddButton).IsEnabled());
}

TEST_F(HomePageOwnFileTest, DroppedWhileAFileIsBeingChosenNothingHappens) {
    const std::wstring path = MakePicture(L"one.bmp");
    dialog_.whileOpen = [&] { Page().AddDroppedFiles({path}); };
    EXPECT_THAT(CallsOf(kAddButton), IsEmpty());
    EXPECT_FALSE(Manager().FindControl(Name(0)));
}

TEST_F(HomePageOwnFileTest, ThereIsRoomForSoManyDroppedFiles) {
    HomeServiceTestAccess::Clear();
    for (int i = 0; i < 32; ++i) {
        HomeServiceTestAccess::AddCustomItem({Name(i), 0, 14 + i, L"C:\\nowhere.jpg", L"C:\\nowhere.png"});
    }
    Page().AddDroppedFiles({MakePicture(L"one.bmp"), MakePicture(L"two.bmp")});
    EXPECT_EQ(Host().limitNotices, 1) << "once";
    EXPECT_EQ(Number(L"lumi_camera_person_track"), 1);
    EXPECT_TRUE(Control(kAddButton).IsEnabled());
    HomeServiceTestAccess::Clear();
}

TEST_F(HomePageOwnFileTest, AnEntryTellsItsPlaceInTheGallery) {
    Manager().UpdateLayout();
    EXPECT_EQ(Control(L"none_background_btn").GetAccessibleDescription(), L"Background, 1 of 15");
    EXPECT_EQ(Control(kAddButton).GetAccessibleDescription(), L"Background, 15 of 15");
    EXPECT_EQ(Control(L"background_replace_btn_group").GetAccessibleInfo().name, L"Background");
}

TEST_F(HomePageOwnFileTest, ARefusedFileChangesNothing) {
    Expect("[L4] open error creatDecoder(ImageReader::Open)");
    const std::wstring path = OwnFolder() + L"no picture.png";
    std::ofstream(path.c_str()) << "no picture";
    EXPECT_THAT(CallsOfAdding(path, 0), IsEmpty());
    EXPECT_EQ(Number(L"lumi_camera_person_track"), 1);
    EXPECT_THAT(Host().Messages(), ElementsAre(0));
    EXPECT_TRUE(Control(kAddButton).IsEnabled());
}

TEST_F(HomePageOwnFileTest, AFullListShowsTheNoticeAndNoDialog) {
    const auto fill = [](int count) {
        HomeServiceTestAccess::Clear();
        for (int i = 0; i < count; ++i) {
            HomeServiceTestAccess::AddCustomItem({Name(i), 0, 14 + i, L"C:\\nowhere.jpg", L"C:\\nowhere.png"});
        }
    };
    fill(32);
    EXPECT_THAT(CallsOf(kAddButton), IsEmpty());
    EXPECT_EQ(Host().limitNotices, 1);
    EXPECT_EQ(dialog_.shown, 0);
    EXPECT_EQ(Number(L"lumi_camera_person_track"), 1);
    EXPECT_TRUE(Control(kAddButton).IsEnabled());
    fill(31);
    EXPECT_THAT(CallsOf(kAddButton), IsEmpty());
    EXPECT_EQ(dialog_.shown, 1) << "thirty-one leave room";
}

// A video that is gone takes its entry with it.
TEST_F(HomePageOwnFileTest, AVideoThatIsGoneLeavesFramingOn) {
    Expect("[L4] Get option null!(HomePage::ClickChangeBackground)");
    const int index = Page().AddCustomItem(Name(0), L"drawable/LumiCamera/thumb_add.png", true);
    HomeServiceTestAccess::AddCustomItem({Name(0), 1, index, L"C:\\nowhere.jpg", L"C:\\nowhere.mp4"});
    EXPECT_THAT(CallsOf(Name(0)), ElementsAre("lumi_camera_custom_img_group="));
    EXPECT_EQ(Number(L"lumi_camera_person_track"), 1);
    EXPECT_THAT(Host().Messages(), ElementsAre(1));
    EXPECT_EQ(Manager().FindControl(Name(0)), nullptr);
}

}  // namespace
