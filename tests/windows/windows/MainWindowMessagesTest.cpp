// What the settings window tells the pages of its own messages, and the add button's click.
#include <windows.h>

#include <wtsapi32.h>

#include "DuiLib/ButtonUI.h"
#include "DuiLib/SliderUI.h"
#include "tests/windows/windows/WindowTests.h"

namespace {

using GlobalUtils::BeautyKind;
using GlobalUtils::OnListenKindInfo;
using GlobalUtils::PowerKind;
using GlobalUtils::PreviewPlaceKind;
using GlobalUtils::ScreenLockKind;
using GlobalUtils::WndMoveKind;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class MainWindowMessagesTest : public MainWindowTest {
  protected:
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
        return SendMessageW(Window().GetHWND(), message, wParam, lParam);
    }

    void SetUp() override {
        MainWindowTest::SetUp();
        moves_.emplace(4);
        places_.emplace(2);
        locks_.emplace(3);
        listens_.emplace(6);
        beauty_.emplace(1);
    }

    std::optional<HubRecorder<WndMoveKind>> moves_;
    std::optional<HubRecorder<PreviewPlaceKind>> places_;
    std::optional<HubRecorder<ScreenLockKind>> locks_;
    std::optional<HubRecorder<OnListenKindInfo>> listens_;
    std::optional<HubRecorder<BeautyKind>> beauty_;
};

TEST_F(MainWindowMessagesTest, ADpiChangeIsOneMoveAndGoesNoFurther) {
    PassedOnMessages passedOn(Manager());
    const RECT suggested{100, 50, 100 + 1560, 50 + 906};
    EXPECT_EQ(Send(WM_DPICHANGED, MAKEWPARAM(144, 144), reinterpret_cast<LPARAM>(&suggested)), 0);
    EXPECT_THAT(moves_->Kinds(), ElementsAre(WndMoveKind(0)));
    EXPECT_THAT(places_->Kinds(), testing::Not(IsEmpty()));
    EXPECT_EQ(passedOn.Count(WM_DPICHANGED), 0);
    EXPECT_EQ(Manager().GetDPI(), 144);
    RECT place = {};
    GetWindowRect(Window().GetHWND(), &place);
    EXPECT_TRUE(EqualRect(&place, &suggested));
    Manager().UpdateLayout();
    EXPECT_EQ(Control(L"title_bar").GetPos().Height(), 72);
}

TEST_F(MainWindowMessagesTest, ADpiChangeThatKeepsTheSizeIsOneMoveToo) {
    RECT suggested = {};
    GetWindowRect(Window().GetHWND(), &suggested);
    EXPECT_EQ(Send(WM_DPICHANGED, MAKEWPARAM(96, 96), reinterpret_cast<LPARAM>(&suggested)), 0);
    EXPECT_THAT(moves_->Kinds(), ElementsAre(WndMoveKind(0)));
}

TEST_F(MainWindowMessagesTest, AfterADpiChangeSizesCountAgain) {
    const RECT suggested{100, 50, 100 + 1300, 50 + 755};
    Send(WM_DPICHANGED, MAKEWPARAM(120, 120), reinterpret_cast<LPARAM>(&suggested));
    Send(WM_SIZE, SIZE_RESTORED, MAKELPARAM(1300, 755));
    EXPECT_THAT(moves_->Kinds(), SizeIs(2));
}

TEST_F(MainWindowMessagesTest, EachMessageOfASizeIsAMoveAndReachesTheBase) {
    for (const UINT message : std::initializer_list<UINT>{WM_SIZE, WM_SIZING, 0x030B}) {
        PassedOnMessages passedOn(Manager());
        HubRecorder<WndMoveKind> moves(4);
        RECT place{0, 0, 1040, 604};
        Send(message, message == WM_SIZING ? WMSZ_LEFT : 0,
             message == WM_SIZING ? reinterpret_cast<LPARAM>(&place) : MAKELPARAM(1040, 604));
        EXPECT_THAT(moves.Kinds(), ElementsAre(WndMoveKind(0))) << message;
        EXPECT_EQ(passedOn.Count(message), 1) << message;
    }
    EXPECT_THAT(places_->Kinds(), SizeIs(3));
}

TEST_F(MainWindowMessagesTest, APlainMovePlacesThePreviewAgain) {
    SetWindowPos(Window().GetHWND(), nullptr, 20, 30, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    EXPECT_THAT(places_->Kinds(), ElementsAre(PreviewPlaceKind::kPlaceAgain));
    EXPECT_THAT(moves_->Kinds(), IsEmpty());
}

// At once: another program may have come to the front before a posted message is read.
TEST_F(MainWindowMessagesTest, TheFocusPlacesThePreviewAgainAtOnce) {
    PassedOnMessages passedOn(Manager());
    Send(WM_SETFOCUS);
    EXPECT_THAT(places_->Kinds(), ElementsAre(PreviewPlaceKind::kPlaceAgain));
    EXPECT_THAT(moves_->Kinds(), IsEmpty());
    EXPECT_EQ(passedOn.Count(WM_SETFOCUS), 1);
}

TEST_F(MainWindowMessagesTest, TheSessionsLockIsToldAndReachesTheBase) {
    PassedOnMessages passedOn(Manager());
    Send(WM_WTSSESSION_CHANGE, WTS_SESSION_LOCK, 1);
    EXPECT_THAT(locks_->Kinds(), ElementsAre(ScreenLockKind(0)));
    EXPECT_EQ(passedOn.Count(WM_WTSSESSION_CHANGE), 1);
}

TEST_F(MainWindowMessagesTest, SleepAndWakingAreToldAndReachTheBase) {
    HubRecorder<PowerKind> power(GlobalUtils::kPowerChannel);
    PassedOnMessages passedOn(Manager());
    for (const WPARAM event : {PBT_APMPOWERSTATUSCHANGE, PBT_APMSUSPEND, PBT_APMRESUMESUSPEND, PBT_APMRESUMEAUTOMATIC,
                               PBT_POWERSETTINGCHANGE}) {
        Send(WM_POWERBROADCAST, event);
    }
    EXPECT_THAT(power.Kinds(), ElementsAre(PowerKind::kSuspend, PowerKind::kResume));
    EXPECT_EQ(passedOn.Count(WM_POWERBROADCAST), 5);
}

TEST_F(MainWindowMessagesTest, UnlockingAndOtherSessionEventsAreNotTold) {
    PassedOnMessages passedOn(Manager());
    int others = 0;
    for (WPARAM event = 0; event <= 0x10; ++event) {
        if (event == WTS_SESSION_LOCK)
            continue;
        Send(WM_WTSSESSION_CHANGE, event, 1);
        ++others;
    }
    EXPECT_THAT(locks_->Kinds(), IsEmpty());
    EXPECT_EQ(passedOn.Count(WM_WTSSESSION_CHANGE), others);
}

TEST_F(MainWindowMessagesTest, ACaptureMessageIsPassedOnWhole) {
    PassedOnMessages passedOn(Manager());
    HubRecorder<OnListenKindInfo> listens(6);
    // No error: the pages are told and do nothing.
    PostMessageW(Window().GetHWND(), 0x8001, 0, -5);
    Input::Pump();
    ASSERT_THAT(listens.Kinds(), SizeIs(1));
    EXPECT_EQ(listens.Kinds()[0].wParam, 0U);
    EXPECT_EQ(listens.Kinds()[0].lParam, -5);
    EXPECT_EQ(passedOn.Count(0x8001), 1);
    Send(0x8000);
    Send(0x8002);
    EXPECT_THAT(listens.Kinds(), SizeIs(1));
}

TEST_F(MainWindowMessagesTest, APaintIsAnsweredHereAndNotPassedOn) {
    PassedOnMessages passedOn(Manager());
    InvalidateRect(Window().GetHWND(), nullptr, FALSE);
    EXPECT_EQ(Send(WM_PAINT), 0);
    EXPECT_FALSE(GetUpdateRect(Window().GetHWND(), nullptr, FALSE));
    EXPECT_EQ(passedOn.Count(WM_PAINT), 0);
}

TEST_F(MainWindowMessagesTest, NothingMovesNothingIsTold) {
    Send(WM_MOUSEMOVE, 0, MAKELPARAM(200, 200));
    Send(WM_ACTIVATE, WA_ACTIVE);
    Send(WM_NULL);
    // Looked at before any message is run: the system may still be raising the window, which is told later.
    EXPECT_THAT(places_->Kinds(), IsEmpty());
    Input::MoveTo(Control(L"preview_wnd"));
    EXPECT_THAT(moves_->Kinds(), IsEmpty());
    EXPECT_THAT(locks_->Kinds(), IsEmpty());
    EXPECT_THAT(listens_->Kinds(), IsEmpty());
}

// --- sliders

TEST_F(MainWindowMessagesTest, EachSlidersMoveIsToldByItsKind) {
    const std::vector<std::pair<const wchar_t*, int>> sliders = {
        {L"slider_smooth", 0}, {L"slider_white", 1}, {L"slider_eye", 2}, {L"slider_face", 3}};
    std::vector<BeautyKind> expected;
    for (const auto& [name, kind] : sliders) {
        for (const wchar_t* type : {L"valuechanged", L"movevaluechanged"}) {
            Manager().SendNotify(&Control(name), type, 3);
            expected.push_back(BeautyKind(kind));
        }
    }
    EXPECT_EQ(beauty_->Kinds(), expected);
}

TEST_F(MainWindowMessagesTest, ASliderOfAnotherNameTellsNothingButReachesTheBase) {
    DuiLib::CSliderUI slider;
    for (const wchar_t* name : {L"slider_volume", L"Slider_Smooth", L""}) {
        slider.SetName(name);
        Manager().SendNotify(&slider, L"valuechanged", 1);
    }
    EXPECT_THAT(beauty_->Kinds(), IsEmpty());
    EXPECT_THAT(Window().BaseNotifications(),
                ElementsAre(L"valuechanged slider_volume", L"valuechanged Slider_Smooth", L"valuechanged "));
}

TEST_F(MainWindowMessagesTest, AKnownSliderReachesTheBaseToo) {
    DuiLib::CSliderUI slider;
    slider.SetName(L"slider_eye");
    Manager().SendNotify(&slider, L"movevaluechanged", 1);
    EXPECT_THAT(beauty_->Kinds(), ElementsAre(BeautyKind(2)));
    EXPECT_THAT(Window().BaseNotifications(), ElementsAre(L"movevaluechanged slider_eye"));
}

TEST_F(MainWindowMessagesTest, OtherNotificationsOfASliderAndOnesWithoutASenderTellNothing) {
    for (const wchar_t* type : {L"click", L"setfocus", L"mouseenter", L"valuechanging"})
        Manager().SendNotify(&Control(L"slider_eye"), type);
    DuiLib::TNotifyUI nobody{L"valuechanged", nullptr, 0, 0};
    Window().Notify(nobody);
    EXPECT_THAT(beauty_->Kinds(), IsEmpty());
    EXPECT_THAT(Window().BaseNotifications(), ElementsAre(L"valuechanged -"));
}

// --- the add button

class AddButtonTest : public MainWindowTest {
  protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        Window().CountClicksOf(L"custom_background_btn");
        Reveal(L"custom_background_btn");
        button_ = &Control<DuiLib::CButtonUI>(L"custom_background_btn");
    }

    unsigned Held() const { return button_->GetState() & (DuiLib::kStatePushed | DuiLib::kStateCaptured); }

    DuiLib::CButtonUI* button_ = nullptr;
};

TEST_F(AddButtonTest, AClickIsOneClick) {
    Input::Click(*button_);
    EXPECT_EQ(Window().Clicks(), 1);
    EXPECT_EQ(Held(), 0U);
    EXPECT_EQ(Manager().GetCapture(), nullptr);
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(AddButtonTest, PressedLeftAndReleasedElsewhereItIsStillOneClick) {
    for (const wchar_t* elsewhere : {L"none_background_btn", L"preview_wnd", L"title_bar"}) {
        const int before = Window().Clicks();
        Input::MoveTo(*button_);
        Input::ButtonDown();
        EXPECT_EQ(Held(), DuiLib::kStatePushed | DuiLib::kStateCaptured);
        Input::MoveTo(Control(elsewhere));
        EXPECT_EQ(Held(), DuiLib::kStateCaptured);
        Input::ButtonUp();
        EXPECT_EQ(Window().Clicks(), before + 1);
        EXPECT_EQ(Held(), 0U);
        EXPECT_EQ(Manager().GetCapture(), nullptr);
        EXPECT_EQ(GetCapture(), nullptr);
    }
}

TEST_F(AddButtonTest, ReleasedOutsideTheWindowItIsStillOneClick) {
    Input::MoveTo(*button_);
    Input::ButtonDown();
    Input::Park();
    Input::ButtonUp();
    EXPECT_EQ(Window().Clicks(), 1);
    EXPECT_EQ(Held(), 0U);
}

TEST_F(AddButtonTest, AReleaseOverItThatBeganElsewhereIsNone) {
    Input::MoveTo(Control(L"preview_wnd"));
    Input::ButtonDown();
    Input::MoveTo(*button_);
    Input::ButtonUp();
    EXPECT_EQ(Window().Clicks(), 0);
}

TEST_F(AddButtonTest, OtherButtonsGetNoClickWhenTheyAreLeft) {
    Window().CountClicksOf(L"img_one_background_btn");
    Reveal(L"img_one_background_btn");
    Input::MoveTo(Control(L"img_one_background_btn"));
    Input::ButtonDown();
    Input::MoveTo(*button_);
    Input::ButtonUp();
    EXPECT_EQ(Window().Clicks(), 0);
    Input::Click(Control(L"img_one_background_btn"));
    EXPECT_EQ(Window().Clicks(), 1);
}

TEST_F(AddButtonTest, AfterwardsTheMouseWorksAsBefore) {
    Input::MoveTo(*button_);
    Input::ButtonDown();
    Input::MoveTo(Control(L"preview_wnd"));
    Input::ButtonUp();
    Input::MoveTo(Control(L"minbtn"));
    EXPECT_EQ(Manager().GetHot(), &Control(L"minbtn"));
    Input::Click(*button_);
    EXPECT_EQ(Window().Clicks(), 2);
}

TEST_F(AddButtonTest, DisabledItIsNotClicked) {
    button_->SetEnabled(false);
    Input::Click(*button_);
    Input::MoveTo(*button_);
    Input::ButtonDown();
    Input::MoveTo(Control(L"preview_wnd"));
    Input::ButtonUp();
    EXPECT_EQ(Window().Clicks(), 0);
}

TEST_F(AddButtonTest, ALostCaptureIsNoClick) {
    Input::MoveTo(*button_);
    Input::ButtonDown();
    SendMessageW(Window().GetHWND(), WM_CANCELMODE, 0, 0);
    EXPECT_EQ(Held(), 0U);
    Input::ButtonUp();
    EXPECT_EQ(Window().Clicks(), 0);
}

}  // namespace
