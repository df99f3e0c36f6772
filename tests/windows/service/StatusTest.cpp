// Snapshots of the registry.
#include "tests/windows/service/ServiceTest.h"

namespace {

using GlobalUtils::CustBkgrdInfo;
using GlobalUtils::FeatureStatus;
using testing::Pair;
using testing::UnorderedElementsAre;

class StatusTest : public ServiceTest {
  protected:
    static constexpr FeatureStatus kOff = FeatureStatus::kOff;
    static constexpr FeatureStatus kOn = FeatureStatus::kOn;

    // The states of camera, beauty, sight and focus.
    static std::vector<int> Switches(HomeService& model) {
        auto states = std::get<0>(model.GetFeatureStatus());
        return {static_cast<int>(states.at(L"open_camera_btn")), static_cast<int>(states.at(L"beauty_person_btn")),
                static_cast<int>(states.at(L"correct_sight_btn")), static_cast<int>(states.at(L"focus_person_btn"))};
    }
    // The levels of smooth, white, eye and face.
    static std::vector<int> Levels(HomeService& model) {
        auto levels = std::get<1>(model.GetFeatureStatus());
        return {levels.at(L"slider_smooth"), levels.at(L"slider_white"), levels.at(L"slider_eye"),
                levels.at(L"slider_face")};
    }
    static CustBkgrdInfo Background(HomeService& model) { return std::get<2>(model.GetFeatureStatus()); }
};

TEST_F(StatusTest, OfTheFirstRun) {
    const auto model = MakeModel();
    const auto [switches, levels, background] = model->GetFeatureStatus();
    EXPECT_THAT(switches, UnorderedElementsAre(Pair(L"open_camera_btn", kOn), Pair(L"beauty_person_btn", kOff),
                                               Pair(L"correct_sight_btn", kOff), Pair(L"focus_person_btn", kOff)));
    EXPECT_THAT(levels, UnorderedElementsAre(Pair(L"slider_smooth", 5), Pair(L"slider_white", 5),
                                             Pair(L"slider_eye", 5), Pair(L"slider_face", 5)));
    EXPECT_EQ(background.btnName, L"none_background_btn");
    EXPECT_EQ(background.path, L"");
}

TEST_F(StatusTest, OfAnEmptyKey) {
    MakeEmptyKey();
    const auto model = MakeModel();
    EXPECT_EQ(Switches(*model), (std::vector<int>{0, 0, 0, 0}));
    EXPECT_EQ(Levels(*model), (std::vector<int>{5, 5, 5, 5}));
    EXPECT_EQ(Background(*model).btnName, L"none_background_btn");
    EXPECT_EQ(Background(*model).path, L"");
}

TEST_F(StatusTest, OfNoKeyAtAll) {
    const auto model = MakeModel();
    DeleteKey();
    EXPECT_EQ(Switches(*model), (std::vector<int>{0, 0, 0, 0}));
    EXPECT_EQ(Levels(*model), (std::vector<int>{5, 5, 5, 5}));
}

TEST_F(StatusTest, EveryValueHasItsPlace) {
    Write(L"lumi_camera_switch", 0);
    Write(L"lumi_camera_beauty_person", 1);
    Write(L"lumi_camera_eye_correction", 2);
    Write(L"lumi_camera_person_track", 3);
    Write(L"lumi_camera_beauty_smooth", 1);
    Write(L"lumi_camera_beauty_white", 2);
    Write(L"lumi_camera_beauty_eye", 3);
    Write(L"lumi_camera_beauty_thin", 40);
    Write(L"lumi_camera_background_replacement", 12);
    Write(L"lumi_camera_background_image_path", std::wstring(L"D:\\a.mp4"));
    const auto model = MakeModel();
    EXPECT_EQ(Switches(*model), (std::vector<int>{0, 1, 2, 3}));
    EXPECT_EQ(Levels(*model), (std::vector<int>{1, 2, 3, 40}));
    EXPECT_EQ(Background(*model).btnName, L"img_ten_background_btn");
    EXPECT_EQ(Background(*model).path, L"D:\\a.mp4");
    EXPECT_EQ(model->GetBackgroundImagePath(), L"D:\\a.mp4");
}

TEST_F(StatusTest, AMissingSwitchHasTheStateOfTheOneBefore) {
    Write(L"lumi_camera_switch", 1);
    const auto model = MakeModel();
    EXPECT_EQ(Switches(*model), (std::vector<int>{1, 1, 1, 1}));
    Write(L"lumi_camera_eye_correction", 0);
    EXPECT_EQ(Switches(*model), (std::vector<int>{1, 1, 0, 0}));
    Write(L"lumi_camera_person_track", 1);
    Write(L"lumi_camera_beauty_person", 0);
    EXPECT_EQ(Switches(*model), (std::vector<int>{1, 0, 0, 1}));
}

TEST_F(StatusTest, AMissingBackgroundHasTheStateOfTheLastSwitch) {
    Write(L"lumi_camera_person_track", 1);
    const auto model = MakeModel();
    EXPECT_EQ(Background(*model).btnName, L"img_one_background_btn");
}

TEST_F(StatusTest, AMissingLevelHasTheValueOfTheOneBefore) {
    Write(L"lumi_camera_beauty_white", 8);
    const auto model = MakeModel();
    EXPECT_EQ(Levels(*model), (std::vector<int>{5, 8, 8, 8}));
    Write(L"lumi_camera_beauty_smooth", 2);
    Write(L"lumi_camera_beauty_thin", 0);
    EXPECT_EQ(Levels(*model), (std::vector<int>{2, 8, 8, 0}));
}

TEST_F(StatusTest, AValueOfAnotherTypeIsMissing) {
    Write(L"lumi_camera_switch", 1);
    Write(L"lumi_camera_beauty_person", std::wstring(L"0"));
    Write(L"lumi_camera_background_image_path", 7);
    const auto model = MakeModel();
    EXPECT_EQ(Switches(*model)[1], 1);
    EXPECT_EQ(Background(*model).path, L"");
}

TEST_F(StatusTest, EveryBackgroundNumberHasItsButton) {
    const std::vector<std::wstring> buttons{
        L"none_background_btn",      L"img_one_background_btn",    L"img_two_background_btn",
        L"img_three_background_btn", L"virtual_background_btn",    L"",
        L"img_four_background_btn",  L"img_five_background_btn",   L"img_six_background_btn",
        L"img_seven_background_btn", L"img_eight_background_btn",  L"img_nine_background_btn",
        L"img_ten_background_btn",   L"img_eleven_background_btn", L"img_animation_background_btn"};
    const auto model = MakeModel();
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        Write(L"lumi_camera_background_replacement", static_cast<int>(i));
        EXPECT_EQ(Background(*model).btnName, buttons[i]) << i;
    }
}

TEST_F(StatusTest, ACustomBackgroundIsTheSelectedItem) {
    Write(L"lumi_camera_background_replacement", 5);
    Write(L"lumi_camera_background_image_path", std::wstring(L"C:\\u\\3.jpg"));
    const auto model = MakeModel();
    EXPECT_EQ(Background(*model).btnName, L"");
    Write(L"background_selected_btnName", std::wstring(L"custom_background_btn_3"));
    EXPECT_EQ(Background(*model).btnName, L"custom_background_btn_3");
    EXPECT_EQ(Background(*model).path, L"C:\\u\\3.jpg");
    Write(L"lumi_camera_background_replacement", 4);
    EXPECT_EQ(Background(*model).btnName, L"virtual_background_btn");
}

TEST_F(StatusTest, AnUnknownNumberHasNoButton) {
    const auto model = MakeModel();
    for (const int index : {15, -1, 2147483647, 15}) {
        Write(L"lumi_camera_background_replacement", index);
        EXPECT_EQ(Background(*model).btnName, L"") << index;
    }
    Write(L"lumi_camera_background_replacement", 14);
    EXPECT_EQ(Background(*model).btnName, L"img_animation_background_btn");
}

TEST_F(StatusTest, TheHardwareSwitchIsAbsentUnlessToldOtherwise) {
    const auto model = MakeModel();
    EXPECT_EQ(model->IsSupportHardSwitch(), 0);
    Write(L"support_hard_switch", 1);
    EXPECT_EQ(model->IsSupportHardSwitch(), 1);
}

TEST_F(StatusTest, NotifyReadsNothingWithoutAnObserver) {
    const auto model = MakeModel();
    model->NotifyStatus();
    EXPECT_FALSE(HomeServiceTestAccess::HasTakenASnapshot(*model));
    int calls = 0;
    model->SetStatusObserver([&calls](const GlobalUtils::FeatureStatusTuple& status) {
        ++calls;
        EXPECT_EQ(std::get<0>(status).at(L"open_camera_btn"), kOn);
    });
    model->NotifyStatus();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(HomeServiceTestAccess::HasTakenASnapshot(*model));
    model->SetStatusObserver({});
    model->NotifyStatus();
    EXPECT_EQ(calls, 1);
}

}  // namespace
