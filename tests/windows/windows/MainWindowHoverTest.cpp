// The pointer over the gallery of the settings window: delete buttons and hints.
#include "DuiLib/ButtonUI.h"
#include "tests/windows/support/Screen.h"
#include "tests/windows/windows/WindowTests.h"
#include "windows/DelButtonToolTip.h"
#include "windows/ToolTipWnd.h"

namespace {

HWND Hint() {
    return ToolTipWnd::GetInstance(nullptr).GetHWND();
}

HWND DeleteHint() {
    return DelButtonToolTip::GetInstance(nullptr).GetHWND();
}

std::wstring TextOf(ToolTipWnd& hint) {
    return hint.PaintManager().FindControl(L"tooltip_text")->GetText();
}

class MainWindowHoverTest : public MainWindowTest {
  protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        for (const wchar_t* name : {L"custom_background_btn_0", L"custom_background_btn_1"})
            Home().AddCustomItem(name, L"drawable/LumiCamera/thumb_add.png", false);
        Reveal(L"custom_background_btn_1");
    }

    bool CanDelete(const std::wstring& item) { return Control(item + L"_del").IsVisible(); }
    void MoveTo(const std::wstring& name) { Input::MoveTo(Control(name)); }
};

TEST_F(MainWindowHoverTest, TheDeleteButtonIsSeenWhileThePointerIsOnItsItem) {
    EXPECT_FALSE(CanDelete(L"custom_background_btn_0"));
    MoveTo(L"custom_background_btn_0");
    EXPECT_TRUE(CanDelete(L"custom_background_btn_0"));
    EXPECT_FALSE(CanDelete(L"custom_background_btn_1"));
    PaintedBy(Manager(), L"gallery-delete-button");
    MoveTo(L"custom_background_btn_0_del");
    EXPECT_EQ(Manager().GetHot(), &Control(L"custom_background_btn_0_del"));
    EXPECT_TRUE(CanDelete(L"custom_background_btn_0"));
    MoveTo(L"custom_background_btn_0");
    EXPECT_TRUE(CanDelete(L"custom_background_btn_0"));
}

TEST_F(MainWindowHoverTest, OnTheNextItemTheFormersDeleteButtonGoes) {
    MoveTo(L"custom_background_btn_0");
    MoveTo(L"custom_background_btn_1");
    EXPECT_FALSE(CanDelete(L"custom_background_btn_0"));
    EXPECT_TRUE(CanDelete(L"custom_background_btn_1"));
    MoveTo(L"none_background_btn");
    EXPECT_FALSE(CanDelete(L"custom_background_btn_1"));
}

TEST_F(MainWindowHoverTest, AControlWithoutANameChangesNothing) {
    MoveTo(L"custom_background_btn_0");
    // The room beside an item within its cell belongs to the cell, which has no name.
    DuiLib::CControlUI& cell = *Control(L"custom_background_btn_0_item").GetParent();
    ASSERT_EQ(cell.GetName(), L"");
    const DuiLib::Rect& place = cell.GetPos();
    const DuiLib::Rect item = Control(L"custom_background_btn_0_item").GetPos();
    ASSERT_GT(place.right, item.right);
    Input::MoveTo(Manager(), {place.right - 2, (item.top + item.bottom) / 2});
    EXPECT_EQ(Manager().GetHot(), &cell);
    EXPECT_TRUE(CanDelete(L"custom_background_btn_0"));
    // The name is still remembered: from here to another named control the button goes.
    MoveTo(L"preview_wnd");
    EXPECT_FALSE(CanDelete(L"custom_background_btn_0"));
}

TEST_F(MainWindowHoverTest, OutOfTheWindowTheDeleteButtonGoes) {
    MoveTo(L"custom_background_btn_0");
    ASSERT_TRUE(CanDelete(L"custom_background_btn_0"));
    Input::Park();
    EXPECT_TRUE(Input::PumpUntil([this] { return !CanDelete(L"custom_background_btn_0"); }));
    MoveTo(L"custom_background_btn_0");
    EXPECT_TRUE(CanDelete(L"custom_background_btn_0"));
}

TEST_F(MainWindowHoverTest, ScrolledAwayTheDeleteButtonGoes) {
    for (int i = 2; i < 32; ++i)
        Home().AddCustomItem(L"custom_background_btn_" + std::to_wstring(i), L"drawable/LumiCamera/thumb_add.png",
                             false);
    Reveal(L"custom_background_btn_0");
    MoveTo(L"custom_background_btn_0");
    ASSERT_TRUE(CanDelete(L"custom_background_btn_0"));
    Input::Wheel(-1);
    Manager().UpdateLayout();
    ASSERT_NE(Manager().GetHot(), &Control(L"custom_background_btn_0"));
    EXPECT_FALSE(CanDelete(L"custom_background_btn_0"));
}

TEST_F(MainWindowHoverTest, AnItemThatWasDeletedMeanwhileIsForgotten) {
    MoveTo(L"custom_background_btn_1");
    const int last = dynamic_cast<DuiLib::CContainerUI&>(Control(L"background_replace_btn_group")).GetCount();
    EXPECT_TRUE(Home().DelBackgroudItem(last - 2, L"custom_background_btn_1"));
    MoveTo(L"custom_background_btn_0");
    EXPECT_TRUE(CanDelete(L"custom_background_btn_0"));
}

TEST_F(MainWindowHoverTest, AnEntrysHintStandsBelowItWithItsName) {
    MoveTo(L"img_five_background_btn");
    ASSERT_TRUE(IsWindowVisible(Hint()));
    ToolTipWnd& hint = ToolTipWnd::GetInstance(nullptr);
    EXPECT_EQ(TextOf(hint), L"Café");
    const int width = hint.GetToolTipWidth();
    EXPECT_GT(width, 60);
    RECT place = {};
    GetWindowRect(Hint(), &place);
    RECT window = {};
    GetWindowRect(Window().GetHWND(), &window);
    const DuiLib::Rect entry = Control(L"img_five_background_btn").GetPos();
    EXPECT_EQ(place.right - place.left, width);
    EXPECT_EQ(place.bottom - place.top, 104);
    EXPECT_EQ(place.left, window.left + entry.left + (40 - width) / 2);
    EXPECT_EQ(place.top, window.top + entry.top + 33);
    EXPECT_EQ(GetFocus(), Window().GetHWND());
    PaintedBy(hint.PaintManager(), L"hint");
    MoveTo(L"preview_wnd");
    EXPECT_FALSE(IsWindowVisible(Hint()));
}

TEST_F(MainWindowHoverTest, EveryBuiltInEntryHasItsHint) {
    const std::vector<std::pair<const wchar_t*, const wchar_t*>> entries = {
        {L"none_background_btn", L"None"},
        {L"img_one_background_btn", L"Meeting room"},
        {L"img_two_background_btn", L"Meeting room"},
        {L"img_three_background_btn", L"Meeting room"},
        {L"img_four_background_btn", L"Office"},
        {L"img_five_background_btn", L"Café"},
        {L"img_six_background_btn", L"Living room"},
        {L"img_seven_background_btn", L"Study"},
        {L"img_eight_background_btn", L"City"},
        {L"img_nine_background_btn", L"Technology"},
        {L"img_ten_background_btn", L"Ink painting"},
        {L"img_eleven_background_btn", L"Wallpaper"},
        {L"img_animation_background_btn", L"Nature (animated)"},
        {L"virtual_background_btn", L"Virtual scene"},
        {L"custom_background_btn", L"Add your own"}};
    for (const auto& [name, text] : entries) {
        Reveal(name);
        MoveTo(name);
        EXPECT_TRUE(IsWindowVisible(Hint())) << std::wstring(name).size();
        EXPECT_EQ(TextOf(ToolTipWnd::GetInstance(nullptr)), text);
        MoveTo(L"preview_wnd");
        EXPECT_FALSE(IsWindowVisible(Hint()));
    }
}

TEST_F(MainWindowHoverTest, TheDeleteButtonHasAHintOfItsOwn) {
    MoveTo(L"custom_background_btn_0");
    EXPECT_FALSE(IsWindowVisible(Hint()));
    MoveTo(L"custom_background_btn_0_del");
    ASSERT_TRUE(IsWindowVisible(DeleteHint()));
    EXPECT_EQ(TextOf(DelButtonToolTip::GetInstance(nullptr)), L"Delete");
    RECT place = {};
    GetWindowRect(DeleteHint(), &place);
    RECT window = {};
    GetWindowRect(Window().GetHWND(), &window);
    const DuiLib::Rect button = Control(L"custom_background_btn_0_del").GetPos();
    EXPECT_EQ(place.left, window.left + button.left - 18);
    EXPECT_EQ(place.top, window.top + button.top + 12);
    EXPECT_FALSE(IsWindowVisible(Hint()));
    MoveTo(L"preview_wnd");
    EXPECT_FALSE(IsWindowVisible(DeleteHint()));
}

TEST_F(MainWindowHoverTest, HintsGoWithTheFocus) {
    MoveTo(L"img_five_background_btn");
    DelButtonToolTip::GetInstance(&Manager()).Show(true);
    ASSERT_TRUE(IsWindowVisible(Hint()));
    ASSERT_TRUE(IsWindowVisible(DeleteHint()));
    PassedOnMessages passedOn(Manager());
    SetFocus(nullptr);
    EXPECT_FALSE(IsWindowVisible(Hint()));
    EXPECT_FALSE(IsWindowVisible(DeleteHint()));
    EXPECT_EQ(passedOn.Count(WM_KILLFOCUS), 1);
}

TEST_F(MainWindowHoverTest, HintsGoWhenTheListScrolls) {
    MoveTo(L"img_five_background_btn");
    ASSERT_TRUE(IsWindowVisible(Hint()));
    Manager().SendNotify(&Control(L"effects"), L"scroll");
    EXPECT_FALSE(IsWindowVisible(Hint()));
}

TEST_F(MainWindowHoverTest, OnAMonitorOfAnotherScaleTheHintIsMadeAgain) {
    MoveTo(L"img_five_background_btn");
    const HWND before = Hint();
    MoveTo(L"preview_wnd");
    const RECT suggested{10, 10, 10 + 1560, 10 + 906};
    SendMessageW(Window().GetHWND(), WM_DPICHANGED, MAKEWPARAM(144, 144), reinterpret_cast<LPARAM>(&suggested));
    Reveal(L"img_five_background_btn");
    MoveTo(L"img_five_background_btn");
    ASSERT_TRUE(IsWindowVisible(Hint()));
    EXPECT_FALSE(IsWindow(before));
    RECT place = {};
    GetWindowRect(Hint(), &place);
    EXPECT_EQ(place.bottom - place.top, 156);
    const int width = ToolTipWnd::GetInstance(nullptr).GetToolTipWidth();
    EXPECT_EQ(place.right - place.left, MulDiv(width, 144, 96));
    const DuiLib::Rect entry = Control(L"img_five_background_btn").GetPos();
    EXPECT_EQ(place.left, 10 + entry.left + MulDiv((40 - width) / 2, 144, 96));
    EXPECT_EQ(place.top, 10 + entry.top + MulDiv(33, 144, 96));
}

}  // namespace
