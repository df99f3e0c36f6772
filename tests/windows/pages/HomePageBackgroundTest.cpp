// Choosing a built-in background.
#include "DuiLib/OptionUI.h"
#include "tests/support/CallTrace.h"
#include "tests/support/Protocol.h"
#include "tests/windows/pages/PageTests.h"

namespace {

using testing::ElementsAre;

constexpr std::int32_t kPing = harness::Protocol::kSettingsChangedCode;

class HomePageBackgroundTest : public HomePageTest {};

TEST_F(HomePageBackgroundTest, EachEntryWritesItsNumber) {
    const std::vector<std::pair<const wchar_t*, int>> entries = {
        {L"img_one_background_btn", 1},        {L"img_two_background_btn", 2},   {L"img_three_background_btn", 3},
        {L"virtual_background_btn", 4},        {L"img_four_background_btn", 6},  {L"img_five_background_btn", 7},
        {L"img_six_background_btn", 8},        {L"img_seven_background_btn", 9}, {L"img_eight_background_btn", 10},
        {L"img_nine_background_btn", 11},      {L"img_ten_background_btn", 12},  {L"img_eleven_background_btn", 13},
        {L"img_animation_background_btn", 14}, {L"none_background_btn", 0}};
    for (const auto& [name, index] : entries) {
        Press(name);
        EXPECT_EQ(Number(L"lumi_camera_background_replacement"), index);
        EXPECT_TRUE(IsSelected(name)) << index;
    }
}

TEST_F(HomePageBackgroundTest, TurnsFramingOffAfterAMoment) {
    Write(L"lumi_camera_person_track", 1);
    Refresh();
    harness::CallTrace trace;
    Press(L"img_one_background_btn");
    EXPECT_THAT(trace.Take(),
                ElementsAre("lumi_camera_background_replacement=1", "report Background replacement:1", "ping",
                            "wait 100", "lumi_camera_person_track=0", "report close focus person", "ping"));
    EXPECT_EQ(Number(L"lumi_camera_background_replacement"), 1);
    EXPECT_EQ(Number(L"lumi_camera_person_track"), 0);
    EXPECT_THAT(SentMessages(), ElementsAre(kPing, kPing));
    EXPECT_THAT(UsageEvents(), ElementsAre("\"event\":\"631770002\",\"text\":\"Background replacement:1\"}",
                                           "\"event\":\"631770003\",\"text\":\"close focus person\"}"));
    EXPECT_TRUE(Input::PumpUntil([this] { return IsDrawnOff(L"focus_person_btn"); }));
}

TEST_F(HomePageBackgroundTest, NoneLeavesFramingAlone) {
    Write(L"lumi_camera_person_track", 1);
    Write(L"lumi_camera_background_replacement", 2);
    Write(L"pre_background_replacement", 2);
    Refresh();
    harness::CallTrace trace;
    Press(L"none_background_btn");
    EXPECT_THAT(trace.Take(), ElementsAre("pre_background_replacement=0", "lumi_camera_background_replacement=0",
                                          "report Background replacement:0", "ping"));
    EXPECT_EQ(Number(L"lumi_camera_background_replacement"), 0);
    EXPECT_EQ(Number(L"pre_background_replacement"), 0);
    EXPECT_EQ(Number(L"lumi_camera_person_track"), 1);
    EXPECT_THAT(SentMessages(), ElementsAre(kPing));
}

TEST_F(HomePageBackgroundTest, TheMouseChooses) {
    Input::Activate(Host().GetHWND());
    Input::Click(Control(L"img_three_background_btn"));
    EXPECT_EQ(Number(L"lumi_camera_background_replacement"), 3);
    EXPECT_TRUE(IsSelected(L"img_three_background_btn"));
    EXPECT_FALSE(IsSelected(L"none_background_btn"));
}

TEST_F(HomePageBackgroundTest, ChosenAgainItIsToldAgain) {
    Press(L"img_one_background_btn");
    SentMessages();
    Press(L"img_one_background_btn");
    EXPECT_THAT(SentMessages(), ElementsAre(kPing, kPing));
    EXPECT_TRUE(IsSelected(L"img_one_background_btn"));
}

TEST_F(HomePageBackgroundTest, OneOfTheGroupIsSelected) {
    Press(L"img_one_background_btn");
    Press(L"virtual_background_btn");
    int selected = 0;
    Manager().GetRoot()->Visit([&](DuiLib::CControlUI& control) {
        const auto* option = dynamic_cast<DuiLib::COptionUI*>(&control);
        selected += option && option->GetGroup() == L"background_replace_group" && option->IsSelected() ? 1 : 0;
        return true;
    });
    EXPECT_EQ(selected, 1);
}

}  // namespace
