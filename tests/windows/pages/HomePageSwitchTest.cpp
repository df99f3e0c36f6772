// The effects' switches of the home page: what a click writes, says and draws, and which effects exclude each other.
#include "tests/support/CallTrace.h"
#include "tests/support/Protocol.h"
#include "tests/windows/pages/PageTests.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int32_t kPing = harness::Protocol::kSettingsChangedCode;
constexpr std::int32_t kSwitchState = harness::Protocol::kSwitchStateCode;

const std::vector<std::pair<const wchar_t*, const wchar_t*>> kSwitches = {
    {L"open_camera_btn", L"lumi_camera_switch"},
    {L"focus_person_btn", L"lumi_camera_person_track"},
    {L"correct_sight_btn", L"lumi_camera_eye_correction"},
    {L"beauty_person_btn", L"lumi_camera_beauty_person"}};

class HomePageSwitchTest : public HomePageTest {
  protected:
    void TurnOn(const wchar_t* value) {
        Write(value, 1);
        Refresh();
    }
    static std::string Event(const std::string& id, const std::string& text) {
        return "\"event\":\"" + id + "\",\"text\":\"" + text + "\"}";
    }
    // The sliders and the card that holds switch and sliders, as high as they may be or are.
    std::pair<int, int> Panel() {
        return {Control(L"beauty_sliders").GetMaxHeight(), Control(L"beauty_layout").GetHeight().value};
    }
};

TEST_F(HomePageSwitchTest, AClickTurnsItOnAndTheNextOneOff) {
    for (const auto& [name, value] : kSwitches) {
        EXPECT_TRUE(IsDrawnOff(name));
        Press(name);
        EXPECT_EQ(Number(value), 1);
        EXPECT_TRUE(IsDrawnOn(name));
        Press(name);
        EXPECT_EQ(Number(value), 0);
        EXPECT_TRUE(IsDrawnOff(name));
    }
}

TEST_F(HomePageSwitchTest, EachClickIsLogged) {
    for (const auto& [name, value] : kSwitches)
        Press(name);
    EXPECT_THAT(LogOf("HomePage::OnClick"),
                ElementsAre("[L3] Click Set Camera State btnName:open_camera_btn(HomePage::OnClick)",
                            "[L3] Click Set Camera State btnName:focus_person_btn(HomePage::OnClick)",
                            "[L3] Click Set Camera State btnName:correct_sight_btn(HomePage::OnClick)",
                            "[L3] Click Set Camera State btnName:beauty_person_btn(HomePage::OnClick)"));
}

TEST_F(HomePageSwitchTest, TheMouseAndTheKeyboardPressThem) {
    ASSERT_TRUE(Input::Activate(Host().GetHWND()));
    Input::Click(Control(L"open_camera_btn"));
    EXPECT_EQ(Number(L"lumi_camera_switch"), 1);
    Input::Key(VK_SPACE);
    EXPECT_EQ(Number(L"lumi_camera_switch"), 0);
    Input::Key(VK_RETURN);
    EXPECT_EQ(Number(L"lumi_camera_switch"), 1);
}

TEST_F(HomePageSwitchTest, TheMainSwitchExcludesNothing) {
    for (const auto& [name, value] : kSwitches)
        Write(value, 1);
    Write(L"lumi_camera_switch", 0);
    Refresh();
    {
        harness::CallTrace trace;
        Press(L"open_camera_btn");
        EXPECT_THAT(trace.Take(), ElementsAre("lumi_camera_switch=1", "switch state", "report open camera", "ping"));
    }
    EXPECT_THAT(SentMessages(), ElementsAre(kSwitchState, kPing));
    for (const auto& [name, value] : kSwitches)
        EXPECT_EQ(Number(value), 1);
}

TEST_F(HomePageSwitchTest, FramingTurnsTheBackgroundOff) {
    Write(L"lumi_camera_background_replacement", 3);
    Write(L"pre_background_replacement", 3);
    Refresh();
    ASSERT_TRUE(IsSelected(L"img_three_background_btn"));
    harness::CallTrace trace;
    Press(L"focus_person_btn");
    EXPECT_THAT(trace.Take(), ElementsAre("lumi_camera_person_track=1", "report open focus person", "ping", "wait 100",
                                          "pre_background_replacement=0", "lumi_camera_background_replacement=0",
                                          "report Background replacement:0", "ping"));
    // The page waits for the model to tell it.
    EXPECT_TRUE(IsSelected(L"img_three_background_btn"));
    EXPECT_EQ(Number(L"lumi_camera_person_track"), 1);
    EXPECT_EQ(Number(L"lumi_camera_background_replacement"), 0);
    EXPECT_EQ(Number(L"pre_background_replacement"), 0);
    EXPECT_THAT(SentMessages(), ElementsAre(kPing, kPing));
    EXPECT_THAT(UsageEvents(),
                ElementsAre(Event("631770003", "open focus person"), Event("631770002", "Background replacement:0")));
    EXPECT_TRUE(Input::PumpUntil([this] { return IsSelected(L"none_background_btn"); }));
}

TEST_F(HomePageSwitchTest, FramingTurnedOffChangesNoBackground) {
    Write(L"lumi_camera_background_replacement", 3);
    TurnOn(L"lumi_camera_person_track");
    Press(L"focus_person_btn");
    EXPECT_EQ(Number(L"lumi_camera_person_track"), 0);
    EXPECT_EQ(Number(L"lumi_camera_background_replacement"), 3);
    EXPECT_THAT(SentMessages(), ElementsAre(kPing));
}

TEST_F(HomePageSwitchTest, BeautyTurnsEyeContactOffAndOpensThePanel) {
    TurnOn(L"lumi_camera_eye_correction");
    EXPECT_EQ(Panel(), std::pair(0, 64));
    harness::CallTrace trace;
    Press(L"beauty_person_btn");
    EXPECT_THAT(trace.Take(), ElementsAre("lumi_camera_beauty_person=1", "wait 100", "lumi_camera_eye_correction=0",
                                          "report close correct sight", "ping"));
    EXPECT_EQ(Number(L"lumi_camera_beauty_person"), 1);
    EXPECT_EQ(Number(L"lumi_camera_eye_correction"), 0);
    EXPECT_THAT(SentMessages(), ElementsAre(kPing));  // beauty itself is not told
    EXPECT_EQ(Panel(), std::pair(230, 294));
    Manager().UpdateLayout();
    EXPECT_EQ(Control(L"beauty_layout").GetPos().Height(), 294);
    EXPECT_TRUE(Control(L"slider_smooth").IsShown());
    // Eye contact is drawn as it was until the model tells.
    EXPECT_TRUE(IsDrawnOn(L"correct_sight_btn"));
    EXPECT_TRUE(Input::PumpUntil([this] { return IsDrawnOff(L"correct_sight_btn"); }));
}

TEST_F(HomePageSwitchTest, EyeContactTurnsBeautyOffAndTheNextRefreshClosesThePanel) {
    TurnOn(L"lumi_camera_beauty_person");
    ASSERT_EQ(Panel(), std::pair(230, 294));
    harness::CallTrace trace;
    Press(L"correct_sight_btn");
    EXPECT_THAT(trace.Take(), ElementsAre("lumi_camera_eye_correction=1", "report open correct sight", "ping",
                                          "wait 100", "lumi_camera_beauty_person=0"));
    EXPECT_EQ(Number(L"lumi_camera_eye_correction"), 1);
    EXPECT_EQ(Number(L"lumi_camera_beauty_person"), 0);
    EXPECT_THAT(SentMessages(), ElementsAre(kPing));
    EXPECT_THAT(UsageEvents(), Contains(Event("631770004", "open correct sight")));
    Refresh();
    EXPECT_EQ(Panel(), std::pair(0, 64));
    EXPECT_TRUE(IsDrawnOff(L"beauty_person_btn"));
    Manager().UpdateLayout();
    EXPECT_EQ(Control(L"beauty_layout").GetPos().Height(), 64);
    EXPECT_FALSE(Control(L"slider_smooth").IsShown());
}

TEST_F(HomePageSwitchTest, TurningOffExcludesNothing) {
    for (const auto& [name, value] : kSwitches)
        Write(value, 1);
    Write(L"lumi_camera_background_replacement", 7);
    Refresh();
    {
        // Nor is anything waited for.
        harness::CallTrace trace;
        for (const wchar_t* name : {L"beauty_person_btn", L"correct_sight_btn", L"focus_person_btn"})
            Press(name);
        EXPECT_THAT(trace.Take(), ElementsAre("lumi_camera_beauty_person=0", "lumi_camera_eye_correction=0",
                                              "report close correct sight", "ping", "lumi_camera_person_track=0",
                                              "report close focus person", "ping"));
    }
    SentMessages();
    for (const auto& [name, value] : kSwitches)
        Write(value, 1);
    Refresh();
    Press(L"beauty_person_btn");
    EXPECT_EQ(Number(L"lumi_camera_eye_correction"), 1);
    EXPECT_EQ(Panel(), std::pair(0, 64));
    EXPECT_THAT(SentMessages(), IsEmpty());
    Press(L"correct_sight_btn");
    Press(L"focus_person_btn");
    EXPECT_THAT(SentMessages(), ElementsAre(kPing, kPing));
    EXPECT_EQ(Number(L"lumi_camera_background_replacement"), 7);
    EXPECT_EQ(Number(L"lumi_camera_switch"), 1);
}

TEST_F(HomePageSwitchTest, AnyOtherNumberIsOffAndTheNextClickTurnsItOn) {
    for (const int odd : {2, -1, 10}) {
        for (const auto& [name, value] : kSwitches)
            Write(value, odd);
        Refresh();
        for (const auto& [name, value] : kSwitches)
            EXPECT_TRUE(IsDrawnOff(name));
        EXPECT_EQ(Panel(), std::pair(0, 64));
        Press(L"open_camera_btn");
        EXPECT_EQ(Number(L"lumi_camera_switch"), 1);
        Press(L"beauty_person_btn");
        EXPECT_EQ(Number(L"lumi_camera_beauty_person"), 1);
        EXPECT_EQ(Panel(), std::pair(230, 294));
    }
}

TEST_F(HomePageSwitchTest, BeforeTheFirstSnapshotAClickDoesNothing) {
    MakePageOnly();
    for (const auto& [name, value] : kSwitches) {
        Press(name);
        EXPECT_EQ(Number(value), 0);
    }
    EXPECT_THAT(SentMessages(), IsEmpty());
    EXPECT_THAT(LogOf("HomePage::OnClick"), IsEmpty());
}

TEST_F(HomePageSwitchTest, UnknownNamesDoNothing) {
    for (const wchar_t* name : {L"", L"nobody_btn", L"open_camera", L"OPEN_CAMERA_BTN", L"some_del",
                                L"custom_background_option", L"lumi_camera_switch"}) {
        DuiLib::CButtonUI stranger;
        stranger.SetName(name);
        stranger.SetVirtualWnd(L"HomePage");
        Manager().SendNotify(&stranger, L"click");
    }
    EXPECT_THAT(SentMessages(), IsEmpty());
    EXPECT_THAT(LogOf("HomePage::OnClick"), IsEmpty());
    EXPECT_THAT(Host().shownPages, IsEmpty());
    EXPECT_THAT(Host().deletions, IsEmpty());
}

TEST_F(HomePageSwitchTest, TheHardwareSwitchHidesTheMainRow) {
    ASSERT_TRUE(Control(L"open_camera_btn").IsShown());
    Write(L"support_hard_switch", 1);
    Refresh();
    Manager().UpdateLayout();
    EXPECT_EQ(Control(L"camera_swith_layout").GetMaxHeight(), 0);
    EXPECT_FALSE(Control(L"open_camera_btn").IsShown());
    EXPECT_TRUE(Control(L"focus_person_btn").IsShown());
    for (const wchar_t* name : {L"focus_person_btn", L"correct_sight_btn", L"beauty_person_btn"}) {
        Press(name);
        EXPECT_TRUE(IsDrawnOn(name));
    }
}

TEST_F(HomePageSwitchTest, OnlyAValueOfOneMeansAHardwareSwitch) {
    for (const int value : {0, 2, -1}) {
        Write(L"support_hard_switch", value);
        Refresh();
        Manager().UpdateLayout();
        EXPECT_TRUE(Control(L"open_camera_btn").IsShown());
    }
}

TEST_F(HomePageSwitchTest, ChangesFromOutsideAreSeen) {
    for (const auto& [name, value] : kSwitches)
        Write(value, 1);
    EXPECT_TRUE(Input::PumpUntil([this] {
        return IsDrawnOn(L"open_camera_btn") && IsDrawnOn(L"focus_person_btn") && IsDrawnOn(L"correct_sight_btn") &&
               IsDrawnOn(L"beauty_person_btn");
    }));
    EXPECT_EQ(Panel(), std::pair(230, 294));
    // The next click inverts what came from outside.
    Press(L"open_camera_btn");
    EXPECT_EQ(Number(L"lumi_camera_switch"), 0);
}

TEST_F(HomePageSwitchTest, TheModelWinsOverThePagesLastClick) {
    Press(L"open_camera_btn");
    ASSERT_TRUE(IsDrawnOn(L"open_camera_btn"));
    Write(L"lumi_camera_switch", 0);
    Refresh();
    EXPECT_TRUE(IsDrawnOff(L"open_camera_btn"));
}

}  // namespace
