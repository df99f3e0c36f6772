// What the home page asks of the hint windows.
#include "tests/windows/pages/PageTests.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class HomePageHintTest : public HomePageTest {};

TEST_F(HomePageHintTest, AnEntryShowsItsNameBelowItsMiddle) {
    Host().optionHint.width = 100;
    Notify(L"img_five_background_btn", L"mouseenter");
    EXPECT_THAT(Host().optionHint.calls,
                ElementsAre(L"anchor img_five_background_btn", L"text Café", L"position -30,33", L"show"));
    EXPECT_THAT(Host().deleteHint.calls, IsEmpty());
}

TEST_F(HomePageHintTest, LeftItHides) {
    Notify(L"img_five_background_btn", L"mouseleave");
    EXPECT_THAT(Host().optionHint.calls, ElementsAre(L"hide"));
    EXPECT_THAT(Host().deleteHint.calls, IsEmpty());
}

TEST_F(HomePageHintTest, DistancesFollowTheScale) {
    Manager().SetDPI(192);
    Host().optionHint.width = 61;
    Notify(L"none_background_btn", L"mouseenter");
    // (40 - 61) / 2 is -10.
    EXPECT_THAT(Host().optionHint.calls,
                ElementsAre(L"anchor none_background_btn", L"text None", L"position -20,66", L"show"));
}

TEST_F(HomePageHintTest, TheDeleteButtonHasItsOwn) {
    Page().AddCustomItem(L"custom_background_btn_2", L"drawable/LumiCamera/thumb_add.png", false);
    Notify(L"custom_background_btn_2_del", L"mouseenter");
    EXPECT_THAT(Host().deleteHint.calls,
                ElementsAre(L"anchor custom_background_btn_2_del", L"text Delete", L"position -18,12", L"show"));
    Notify(L"custom_background_btn_2_del", L"mouseleave");
    EXPECT_EQ(Host().deleteHint.calls.back(), L"hide");
    EXPECT_THAT(Host().optionHint.calls, IsEmpty());
}

TEST_F(HomePageHintTest, OtherControlsHaveNone) {
    Page().AddCustomItem(L"custom_background_btn_2", L"drawable/LumiCamera/thumb_add.png", false);
    for (const wchar_t* name : {L"custom_background_btn_2", L"custom_background_btn_2_item", L"open_camera_btn",
                                L"preview_switch", L"preview_wnd", L"show_detail_btn"}) {
        Notify(name, L"mouseenter");
        Notify(name, L"mouseleave");
    }
    EXPECT_THAT(Host().optionHint.calls, IsEmpty());
    EXPECT_THAT(Host().deleteHint.calls, IsEmpty());
}

TEST_F(HomePageHintTest, ScrollingHidesBoth) {
    Notify(L"effects", L"scroll");
    EXPECT_THAT(Host().optionHint.calls, ElementsAre(L"hide"));
    EXPECT_THAT(Host().deleteHint.calls, ElementsAre(L"hide"));
}

TEST_F(HomePageHintTest, WithoutAHintWindowItIsLogged) {
    const std::string line = "[L4] get tooltipwnd failed(HomePage::ShowToolTip)";
    Expect(line);
    Host().hasHints = false;
    Page().AddCustomItem(L"custom_background_btn_2", L"drawable/LumiCamera/thumb_add.png", false);
    Notify(L"img_five_background_btn", L"mouseenter");
    Notify(L"img_five_background_btn", L"mouseleave");
    Notify(L"custom_background_btn_2_del", L"mouseenter");
    Notify(L"open_camera_btn", L"mouseenter");
    Notify(L"effects", L"scroll");
    EXPECT_THAT(LogOf("HomePage::ShowToolTip"), ElementsAre(line, line, line));
}

}  // namespace
