// The names that the pages' layouts give to the program, and to the tools that drive it.
#include "DuiLib/OptionUI.h"
#include "DuiLib/SliderUI.h"
#include "tests/windows/pages/PageTests.h"

namespace {

class LayoutNamesTest : public HomePageTest {};

TEST_F(LayoutNamesTest, TheHomePageHasThem) {
    for (const wchar_t* name :
         {L"camera_swith_layout", L"open_camera_btn", L"correct_sight_btn", L"focus_person_btn", L"beauty_person_btn",
          L"background_replace_btn_group", L"virtual_background", L"custom_option_container", L"beauty_layout",
          L"beauty_sliders", L"preview_switch", L"preview_wnd", L"preview_text", L"option_tool_tip", L"show_detail_btn",
          L"show_introduction_btn", L"Pixora_Introduce_Url"}) {
        EXPECT_NE(Manager().FindControl(name), nullptr) << testing::PrintToString(std::wstring(name));
    }
    for (const wchar_t* name : {L"slider_smooth", L"slider_white", L"slider_eye", L"slider_face"})
        EXPECT_NE(Manager().FindControlAs<DuiLib::CSliderUI>(name), nullptr);
    for (const wchar_t* name :
         {L"custom_background_btn", L"none_background_btn", L"img_one_background_btn", L"img_two_background_btn",
          L"img_three_background_btn", L"img_four_background_btn", L"img_five_background_btn",
          L"img_six_background_btn", L"img_seven_background_btn", L"img_eight_background_btn",
          L"img_nine_background_btn", L"img_ten_background_btn", L"img_eleven_background_btn",
          L"img_animation_background_btn", L"virtual_background_btn"}) {
        EXPECT_NE(Manager().FindControlAs<DuiLib::COptionUI>(name), nullptr);
    }
}

}  // namespace
