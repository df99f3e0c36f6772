// The beauty sliders in the settings window, from the hand to the registry and back.
#include "DuiLib/SliderUI.h"
#include "tests/windows/support/Screen.h"
#include "tests/windows/windows/WindowTests.h"

namespace {

using testing::IsEmpty;

class MainWindowBeautyTest : public MainWindowTest {
  protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        Write(L"lumi_camera_beauty_person", 1);
        HomeService::GetInstance()->NotifyStatus();
        Manager().UpdateLayout();
        Reveal(L"slider_face");
        Reveal(L"slider_smooth");
    }

    static DuiLib::CSliderUI& Slider(const wchar_t* name) { return Control<DuiLib::CSliderUI>(name); }
    // A point on the bar, `tenths` of its travel from the low end.
    static void MoveToTenth(const wchar_t* name, int tenths) {
        const DuiLib::Rect place = Slider(name).GetTrackPos();
        constexpr int kThumb = 20;
        Input::MoveTo(Manager(), {place.left + kThumb / 2 + (place.Width() - kThumb) * tenths / 10,
                                  (place.top + place.bottom) / 2});
    }
};

TEST_F(MainWindowBeautyTest, DraggingWritesEveryLevelOnTheWay) {
    HubRecorder<GlobalUtils::BeautyKind> kinds(1);
    MoveToTenth(L"slider_white", 5);
    Input::ButtonDown();
    EXPECT_EQ(Number(L"lumi_camera_beauty_white"), 5);
    for (const int level : {6, 7, 9, 10, 3}) {
        MoveToTenth(L"slider_white", level);
        EXPECT_EQ(Slider(L"slider_white").GetValue(), level);
        EXPECT_EQ(Number(L"lumi_camera_beauty_white"), level);
    }
    EXPECT_EQ(kinds.Kinds().size(), 5U);
    Input::ButtonUp();
    EXPECT_EQ(kinds.Kinds().size(), 6U);
    EXPECT_EQ(Number(L"lumi_camera_beauty_white"), 3);
    for (const wchar_t* other : {L"lumi_camera_beauty_smooth", L"lumi_camera_beauty_eye", L"lumi_camera_beauty_thin"})
        EXPECT_EQ(Number(other), 5);
    PaintedBy(Manager(), L"beauty-panel");
}

TEST_F(MainWindowBeautyTest, EachSliderHasItsLevel) {
    const std::vector<std::pair<const wchar_t*, const wchar_t*>> sliders = {
        {L"slider_smooth", L"lumi_camera_beauty_smooth"},
        {L"slider_white", L"lumi_camera_beauty_white"},
        {L"slider_eye", L"lumi_camera_beauty_eye"},
        {L"slider_face", L"lumi_camera_beauty_thin"}};
    int level = 0;
    for (const auto& [slider, value] : sliders) {
        Reveal(slider);
        MoveToTenth(slider, ++level);
        Input::ButtonDown();
        Input::ButtonUp();
        EXPECT_EQ(Number(value), level);
    }
    EXPECT_EQ(Number(L"lumi_camera_beauty_smooth"), 1);
    EXPECT_FALSE(Number(L"lumi_camera_beauty_face"));
}

TEST_F(MainWindowBeautyTest, TheServiceIsNotPinged) {
    MoveToTenth(L"slider_eye", 8);
    Input::ButtonDown();
    Input::ButtonUp();
    EXPECT_EQ(Number(L"lumi_camera_beauty_eye"), 8);
    EXPECT_THAT(SentMessages(), IsEmpty());
}

TEST_F(MainWindowBeautyTest, TheChangeIsReported) {
    MoveToTenth(L"slider_eye", 8);
    Input::ButtonDown();
    Input::ButtonUp();
    const auto reported = [this] {
        for (const std::string& event : UsageEvents()) {
            if (event.find("992612801") != std::string::npos && event.find("\"EYE\":8") != std::string::npos)
                return true;
        }
        return false;
    };
    EXPECT_TRUE(Input::PumpUntil(reported));
}

TEST_F(MainWindowBeautyTest, TheWheelStepsTheSliderUnderThePointer) {
    Input::MoveTo(Slider(L"slider_smooth"));
    Input::Wheel(1);
    EXPECT_EQ(Number(L"lumi_camera_beauty_smooth"), 6);
    Input::Wheel(-2);
    EXPECT_EQ(Number(L"lumi_camera_beauty_smooth"), 4);
    for (int notch = 0; notch < 12; ++notch)
        Input::Wheel(1);
    EXPECT_EQ(Number(L"lumi_camera_beauty_smooth"), 10);
}

TEST_F(MainWindowBeautyTest, TheKeysMoveTheSliderThatHasTheFocus) {
    Manager().SetFocus(&Slider(L"slider_face"), true);
    const std::vector<std::pair<WORD, int>> keys = {{VK_RIGHT, 6}, {VK_UP, 7},   {VK_LEFT, 6}, {VK_DOWN, 5},
                                                    {VK_END, 10},  {VK_HOME, 0}, {VK_LEFT, 0}};
    for (const auto& [key, level] : keys) {
        Input::Key(key);
        EXPECT_EQ(Slider(L"slider_face").GetValue(), level);
        EXPECT_EQ(Number(L"lumi_camera_beauty_thin"), level);
    }
}

TEST_F(MainWindowBeautyTest, ChangesFromOutsideAreSeen) {
    HubRecorder<GlobalUtils::BeautyKind> kinds(1);
    Write(L"lumi_camera_beauty_smooth", 1);
    Write(L"lumi_camera_beauty_white", 2);
    Write(L"lumi_camera_beauty_eye", 3);
    Write(L"lumi_camera_beauty_thin", 4);
    EXPECT_TRUE(Input::PumpUntil([] {
        return Slider(L"slider_smooth").GetValue() == 1 && Slider(L"slider_white").GetValue() == 2 &&
               Slider(L"slider_eye").GetValue() == 3 && Slider(L"slider_face").GetValue() == 4;
    }));
    // What was read is not written back.
    EXPECT_THAT(kinds.Kinds(), IsEmpty());
}

TEST_F(MainWindowBeautyTest, ALevelOutsideTheRangeIsShownAsItIs) {
    Write(L"lumi_camera_beauty_smooth", 99);
    Write(L"lumi_camera_beauty_white", -7);
    HomeService::GetInstance()->NotifyStatus();
    EXPECT_EQ(Slider(L"slider_smooth").GetValue(), 99);
    EXPECT_EQ(Slider(L"slider_white").GetValue(), -7);
    EXPECT_EQ(Number(L"lumi_camera_beauty_smooth"), 99);
    PaintedBy(Manager(), L"beauty-out-of-range");
}

TEST_F(MainWindowBeautyTest, WhileItIsDraggedTheHandWins) {
    MoveToTenth(L"slider_white", 5);
    Input::ButtonDown();
    MoveToTenth(L"slider_white", 8);
    Write(L"lumi_camera_beauty_eye", 1);
    HomeService::GetInstance()->NotifyStatus();
    EXPECT_EQ(Slider(L"slider_white").GetValue(), 8);
    EXPECT_EQ(Slider(L"slider_eye").GetValue(), 1);
    MoveToTenth(L"slider_white", 9);
    Input::ButtonUp();
    EXPECT_EQ(Number(L"lumi_camera_beauty_white"), 9);
}

TEST_F(MainWindowBeautyTest, WithoutBeautyThePanelCannotBeReached) {
    Write(L"lumi_camera_beauty_person", 0);
    HomeService::GetInstance()->NotifyStatus();
    Manager().UpdateLayout();
    EXPECT_FALSE(Slider(L"slider_smooth").IsShown());
    EXPECT_FALSE(Slider(L"slider_smooth").CanHaveFocus());
}

TEST_F(MainWindowBeautyTest, ADoubleClickBringsFiveBack) {
    Write(L"lumi_camera_beauty_eye", 9);
    HomeService::GetInstance()->NotifyStatus();
    MoveToTenth(L"slider_eye", 9);
    for (int press = 0; press < 2; ++press) {
        Input::ButtonDown();
        Input::ButtonUp();
    }
    EXPECT_EQ(Slider(L"slider_eye").GetValue(), 5);
    EXPECT_EQ(Number(L"lumi_camera_beauty_eye"), 5);
    EXPECT_EQ(Slider(L"slider_eye").GetAccessibleInfo().value, L"5");
}

TEST_F(MainWindowBeautyTest, EachSliderShowsItsLevelAsANumber) {
    for (const wchar_t* name : {L"slider_smooth", L"slider_white", L"slider_eye", L"slider_face"}) {
        Reveal(name);
        Slider(name).SetValue(10);
        const DuiLib::Rect place = Slider(name).GetPos();
        const DuiLib::Rect track = Slider(name).GetTrackPos();
        EXPECT_LT(track.right, place.right);
        EXPECT_GT(PaintedBy(Manager()).ColorsIn({track.right + 2, place.top, place.right, place.bottom}), 4);
    }
}

}  // namespace
