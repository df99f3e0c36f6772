// Snapshots of the settings on the home page, whatever thread they come on, and what else the model tells it.
#include <fstream>
#include <future>
#include <memory>
#include <mutex>
#include <thread>

#include "DuiLib/LabelUI.h"
#include "DuiLib/OptionUI.h"
#include "DuiLib/RenderEngine.h"
#include "DuiLib/SliderUI.h"
#include "DuiLib/UIMainQueue.h"
#include "service/KindNotifier.h"
#include "tests/support/Protocol.h"
#include "tests/support/WineOnly.h"
#include "tests/windows/pages/PageTests.h"
#include "tests/windows/support/OpenedLinks.h"

namespace {

using GlobalUtils::BeautyKind;
using GlobalUtils::FeatureStatus;
using GlobalUtils::FeatureStatusTuple;
using GlobalUtils::MessageBoxKind;
using testing::ElementsAre;
using testing::IsEmpty;
namespace Protocol = harness::Protocol;

class HomePageRefreshTest : public HomePageTest {
  protected:
    static FeatureStatusTuple Snapshot(FeatureStatus camera, std::wstring button = {}, std::wstring path = {}) {
        return {{{L"open_camera_btn", camera}}, {}, {std::move(path), std::move(button)}};
    }
    DuiLib::CSliderUI& Slider(const wchar_t* name) { return Control<DuiLib::CSliderUI>(name); }
};

TEST_F(HomePageRefreshTest, ShowsTheRegistryWhenItIsMade) {
    EXPECT_TRUE(IsDrawnOff(L"open_camera_btn"));
    EXPECT_EQ(Slider(L"slider_smooth").GetValue(), 5);
    EXPECT_EQ(Slider(L"slider_face").GetValue(), 5);
    EXPECT_TRUE(IsSelected(L"none_background_btn"));
}

TEST_F(HomePageRefreshTest, ThePreviewsTextIsAsWideAsItsLetters) {
    auto& text = Control<DuiLib::CLabelUI>(L"preview_text");
    DuiLib::Rect rect;
    DuiLib::CRenderEngine::DrawText(Manager().GetPaintDC(), &Manager(), rect, text.GetText(), 0, 13, DT_CALCRECT);
    ASSERT_GT(rect.Width(), 0);
    EXPECT_EQ(text.GetWidth(), (DuiLib::LengthDip{DuiLib::LengthDip::Kind::kFixed, rect.Width()}));
    text.SetText(L"");
    Refresh();
    EXPECT_EQ(text.GetWidth().value, rect.Width());
}

TEST_F(HomePageRefreshTest, OnItsOwnThreadItIsShownAtOnce) {
    Page().Refresh(Snapshot(FeatureStatus::kOn));
    EXPECT_TRUE(IsDrawnOn(L"open_camera_btn"));
}

TEST_F(HomePageRefreshTest, FromAnotherThreadItIsShownByTheMessageLoop) {
    std::thread([this] { Page().Refresh(Snapshot(FeatureStatus::kOn)); }).join();
    EXPECT_TRUE(IsDrawnOff(L"open_camera_btn"));
    EXPECT_TRUE(Input::PumpUntil([this] { return IsDrawnOn(L"open_camera_btn"); }));
}

TEST_F(HomePageRefreshTest, FromManyThreadsTheLastOneStays) {
    // The watcher of the key may refresh at any moment, and shows what the others end with.
    Write(L"lumi_camera_switch", 1);
    Write(L"lumi_camera_background_replacement", 2);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([this] {
            for (int round = 0; round < 25; ++round)
                Page().Refresh(Snapshot(round % 2 ? FeatureStatus::kOn : FeatureStatus::kOff));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    std::thread([this] { Page().Refresh(Snapshot(FeatureStatus::kOn, L"img_two_background_btn")); }).join();
    EXPECT_TRUE(Input::PumpUntil([this] { return IsSelected(L"img_two_background_btn"); }));
    EXPECT_TRUE(IsDrawnOn(L"open_camera_btn"));
}

TEST_F(HomePageRefreshTest, WhatComesAfterItsEndIsDropped) {
    // A switch of the next page that the late snapshot would turn on if it still reached a page.
    std::thread([this] { Page().Refresh(Snapshot(FeatureStatus::kOn)); }).join();
    MakePageOnly();
    Page().Initialize();
    bool later = false;
    DuiLib::UIMainQueue::getInstance()->dispatchAfter(2 * SnapshotRelay::kApartMs, [&later] { later = true; });
    ASSERT_TRUE(Input::PumpUntil([&later] { return later; }));
    EXPECT_TRUE(IsDrawnOff(L"open_camera_btn"));
}

TEST_F(HomePageRefreshTest, AMessageOfTheServiceRefreshes) {
    Write(L"lumi_camera_beauty_eye", 9);
    SendFromService(Protocol::kSettingsChangedCode, -1);
    EXPECT_TRUE(Input::PumpUntil([this] { return Slider(L"slider_eye").GetValue() == 9; }));
}

TEST_F(HomePageRefreshTest, AnEmptySnapshotChangesNothingAndClicksFindNothing) {
    Write(L"lumi_camera_switch", 1);
    Refresh();
    Page().Refresh({{}, {{L"slider_eye", 1}}, {L"", L"img_two_background_btn"}});
    EXPECT_TRUE(IsDrawnOn(L"open_camera_btn"));
    EXPECT_EQ(Slider(L"slider_eye").GetValue(), 5);
    EXPECT_FALSE(IsSelected(L"img_two_background_btn"));
    Press(L"open_camera_btn");
    EXPECT_EQ(Number(L"lumi_camera_switch"), 1);
}

TEST_F(HomePageRefreshTest, NamesThatTheLayoutLacksAreSkipped) {
    Page().Refresh({{{L"nobody_btn", FeatureStatus::kOn},
                     {L"preview_text", FeatureStatus::kOn},
                     {L"open_camera_btn", FeatureStatus::kOn}},
                    {{L"slider_nobody", 3}, {L"preview_text", 3}, {L"slider_eye", 4}},
                    {L"", L"nobody_background_btn"}});
    EXPECT_TRUE(IsDrawnOn(L"open_camera_btn"));
    EXPECT_EQ(Slider(L"slider_eye").GetValue(), 4);
    EXPECT_TRUE(IsSelected(L"none_background_btn"));
}

TEST_F(HomePageRefreshTest, LevelsAreShownAsTheyAre) {
    Page().Refresh({{{L"open_camera_btn", FeatureStatus::kOn}},
                    {{L"slider_smooth", 99}, {L"slider_white", -4}, {L"slider_eye", 0}, {L"slider_face", 10}},
                    {}});
    EXPECT_EQ(Slider(L"slider_smooth").GetValue(), 99);
    EXPECT_EQ(Slider(L"slider_white").GetValue(), -4);
    EXPECT_EQ(Slider(L"slider_eye").GetValue(), 0);
    EXPECT_EQ(Slider(L"slider_face").GetValue(), 10);
    // What is shown is not written.
    EXPECT_EQ(Number(L"lumi_camera_beauty_smooth"), 5);
}

// --- which background is selected

TEST_F(HomePageRefreshTest, SelectsTheBackgroundOfTheRegistry) {
    const std::vector<std::pair<int, const wchar_t*>> backgrounds = {
        {1, L"img_one_background_btn"},     {4, L"virtual_background_btn"},        {6, L"img_four_background_btn"},
        {13, L"img_eleven_background_btn"}, {14, L"img_animation_background_btn"}, {0, L"none_background_btn"}};
    for (const auto& [index, name] : backgrounds) {
        Write(L"lumi_camera_background_replacement", index);
        Refresh();
        EXPECT_TRUE(IsSelected(name)) << index;
    }
}

TEST_F(HomePageRefreshTest, AChangeFromOutsideSelectsAnother) {
    Write(L"lumi_camera_background_replacement", 2);
    EXPECT_TRUE(Input::PumpUntil([this] { return IsSelected(L"img_two_background_btn"); }));
    EXPECT_FALSE(IsSelected(L"none_background_btn"));
}

TEST_F(HomePageRefreshTest, TheOptionsNameWithoutAFileBecomesNone) {
    Page().Refresh(Snapshot(FeatureStatus::kOn, L"img_two_background_btn"));
    Page().Refresh(Snapshot(FeatureStatus::kOn, L"custom_background_option"));
    EXPECT_TRUE(IsSelected(L"none_background_btn"));
    Page().Refresh(Snapshot(FeatureStatus::kOn, L"img_two_background_btn"));
    Page().Refresh(Snapshot(FeatureStatus::kOn, L"custom_background_option", OwnFolder() + L"nowhere.jpg"));
    EXPECT_TRUE(IsSelected(L"none_background_btn"));
}

TEST_F(HomePageRefreshTest, WithAFileTheNameIsKept) {
    const std::wstring picture = OwnFolder() + L"b\u00e4ckground \u65e5.jpg";
    std::ofstream(picture.c_str()) << "picture";
    Page().Refresh(Snapshot(FeatureStatus::kOn, L"img_two_background_btn"));
    // The page has no such option, so the selection stays.
    Page().Refresh(Snapshot(FeatureStatus::kOn, L"custom_background_option", picture));
    EXPECT_TRUE(IsSelected(L"img_two_background_btn"));
    Page().Refresh(Snapshot(FeatureStatus::kOn, L"img_one_background_btn", picture));
    EXPECT_TRUE(IsSelected(L"img_one_background_btn"));
}

TEST_F(HomePageRefreshTest, OtherNamesAreSelectedWithoutAFileToo) {
    Page().Refresh(Snapshot(FeatureStatus::kOn, L"custom_background_btn", OwnFolder() + L"nowhere.jpg"));
    EXPECT_TRUE(IsSelected(L"custom_background_btn"));
}

// --- sliders

TEST_F(HomePageRefreshTest, AMovedSliderWritesItsLevel) {
    const std::vector<std::tuple<int, const wchar_t*, const wchar_t*>> rows = {
        {0, L"slider_smooth", L"lumi_camera_beauty_smooth"},
        {1, L"slider_white", L"lumi_camera_beauty_white"},
        {2, L"slider_eye", L"lumi_camera_beauty_eye"},
        {3, L"slider_face", L"lumi_camera_beauty_thin"}};
    auto& hub = KindNotifier<BeautyKind>::GetInstance();
    for (const auto& [kind, slider, value] : rows) {
        Slider(slider).SetValue(kind + 1);
        EXPECT_EQ(Number(value), 5);
        hub.Publish(GlobalUtils::kBeautyChannel, BeautyKind(kind));
        EXPECT_EQ(Number(value), kind + 1);
    }
    EXPECT_FALSE(Number(L"lumi_camera_beauty_face"));
    EXPECT_THAT(SentMessages(), IsEmpty());
}

TEST_F(HomePageRefreshTest, OtherKindsDoNothing) {
    for (const wchar_t* slider : {L"slider_smooth", L"slider_white", L"slider_eye", L"slider_face"})
        Slider(slider).SetValue(1);
    for (const int kind : {4, -1, 99})
        KindNotifier<BeautyKind>::GetInstance().Publish(GlobalUtils::kBeautyChannel, BeautyKind(kind));
    for (const wchar_t* value : {L"lumi_camera_beauty_smooth", L"lumi_camera_beauty_white", L"lumi_camera_beauty_eye",
                                 L"lumi_camera_beauty_thin"})
        EXPECT_EQ(Number(value), 5);
}

TEST_F(HomePageRefreshTest, WithoutOneSliderTheOthersWork) {
    RemoveControl(L"slider_eye");
    auto& hub = KindNotifier<BeautyKind>::GetInstance();
    hub.Publish(GlobalUtils::kBeautyChannel, BeautyKind::kEye);
    EXPECT_EQ(Number(L"lumi_camera_beauty_eye"), 5);
    Slider(L"slider_white").SetValue(2);
    hub.Publish(GlobalUtils::kBeautyChannel, BeautyKind::kWhite);
    EXPECT_EQ(Number(L"lumi_camera_beauty_white"), 2);
    Write(L"lumi_camera_beauty_smooth", 7);
    Refresh();
    EXPECT_EQ(Slider(L"slider_smooth").GetValue(), 7);
}

// --- messages, reset, links

TEST_F(HomePageRefreshTest, MessageKindsGoToTheHost) {
    auto& hub = KindNotifier<MessageBoxKind>::GetInstance();
    hub.Publish(GlobalUtils::kMessageBoxChannel, MessageBoxKind(1));
    std::thread([&hub] { hub.Publish(GlobalUtils::kMessageBoxChannel, MessageBoxKind(7)); }).join();
    EXPECT_THAT(Host().Messages(), ElementsAre(1, 7));
}

TEST_F(HomePageRefreshTest, AFailedAlgorithmIsTold) {
    Write(L"init_algorithm", 0);
    ASSERT_TRUE(Input::PumpUntil([this] { return !Host().Messages().empty(); }));
    EXPECT_EQ(Host().Messages().front(), 9);
}

TEST_F(HomePageRefreshTest, TheServicesResetClosesTheWindow) {
    // Everything before it is handled when the model answers a change, on the pipe's thread; no other one runs here
    // meanwhile.
    const auto handled = [this](std::int32_t subCode) {
        const auto seen = std::make_shared<std::promise<void>>();
        const auto once = std::make_shared<std::once_flag>();
        HomeService::GetInstance()->SetStatusObserver(
            [=](const FeatureStatusTuple&) { std::call_once(*once, [&] { seen->set_value(); }); });
        SendFromService(Protocol::kSettingsChangedCode, subCode);
        const bool answered = seen->get_future().wait_for(harness::kPatience) == std::future_status::ready;
        HomeService::GetInstance()->SetStatusObserver({});
        return answered;
    };
    SendFromService(Protocol::kNotificationCode, Protocol::kResetSubCode + 1);
    SendFromService(Protocol::kNotificationCode, -1);
    ASSERT_TRUE(handled(Protocol::kResetSubCode));
    EXPECT_EQ(Host().closed, 0);
    SendFromService(Protocol::kNotificationCode, Protocol::kResetSubCode);
    ASSERT_TRUE(handled(-1));
    EXPECT_EQ(Host().closed, 1);
}

TEST_F(HomePageRefreshTest, AfterItsEndNothingReachesTheHost) {
    DestroyPage();
    KindNotifier<MessageBoxKind>::GetInstance().Publish(GlobalUtils::kMessageBoxChannel, MessageBoxKind(1));
    KindNotifier<BeautyKind>::GetInstance().Publish(GlobalUtils::kBeautyChannel, BeautyKind(1));
    Refresh();
    SendFromService(Protocol::kNotificationCode, Protocol::kResetSubCode);
    Write(L"init_algorithm", 0);
    // The model has handled that when its answer to what was sent afterwards has come.
    std::promise<void> seen;
    HomeService::GetInstance()->SetStatusObserver([&seen](const FeatureStatusTuple&) { seen.set_value(); });
    SendFromService(Protocol::kSettingsChangedCode, -1);
    EXPECT_EQ(seen.get_future().wait_for(harness::kPatience), std::future_status::ready);
    HomeService::GetInstance()->SetStatusObserver({});
    EXPECT_THAT(Host().Messages(), IsEmpty());
    EXPECT_EQ(Host().closed, 0);
    EXPECT_EQ(Number(L"lumi_camera_beauty_white"), 5);
}

TEST_F(HomePageRefreshTest, ManyPagesComeAndGoWhileTheServiceTalks) {
    for (int round = 0; round < 20; ++round) {
        SendFromService(Protocol::kSettingsChangedCode, -1);
        MakePageOnly();
        Page().Initialize();
        SendFromService(Protocol::kSettingsChangedCode, -1);
        Write(L"lumi_camera_beauty_eye", round % 10);
        Input::Pump();
    }
    EXPECT_TRUE(Input::PumpUntil([this] { return Slider(L"slider_eye").GetValue() == 9; }));
}

TEST_F(HomePageRefreshTest, ShowsTheDetailsPage) {
    Press(L"show_detail_btn");
    EXPECT_THAT(Host().shownPages, ElementsAre(L"IntroductionPage 0"));
}

TEST_F(HomePageRefreshTest, OpensTheIntroductionOfTheLabel) {
    PIXORA_WINE_ONLY(OpenedLinks::kWhy);
    Control(L"Pixora_Introduce_Url").SetText(L"https://support.example.com/three");
    const OpenedLinks links;
    Press(L"show_introduction_btn");
    EXPECT_THAT(links.WaitFor(1), ElementsAre("https://support.example.com/three"));
}

TEST_F(HomePageRefreshTest, WithoutAnAddressNothingIsOpened) {
    PIXORA_WINE_ONLY(OpenedLinks::kWhy);
    const OpenedLinks links;
    Control(L"Pixora_Introduce_Url").SetText(L"");
    Press(L"show_introduction_btn");
    RemoveControl(L"Pixora_Introduce_Url");
    Press(L"show_introduction_btn");
    // The next link is the first one.
    Control(L"preview_text").SetName(L"Pixora_Introduce_Url");
    Control(L"Pixora_Introduce_Url").SetText(L"https://support.example.com/four");
    Press(L"show_introduction_btn");
    EXPECT_THAT(links.WaitFor(1), ElementsAre("https://support.example.com/four"));
}

}  // namespace
