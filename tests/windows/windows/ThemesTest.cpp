// The windows of the program in the dark and in a contrast theme, with another size of text, and from right to left.
#include "DuiLib/Theme.h"

#include "DuiLib/ButtonUI.h"
#include "DuiLib/ContainerUI.h"
#include "DuiLib/OptionUI.h"
#include "DuiLib/SliderUI.h"
#include "DuiLib/UICulture.h"
#include "tests/support/FakeLook.h"
#include "tests/windows/support/Screen.h"
#include "tests/windows/windows/WindowTests.h"
#include "windows/DelDoubleCheckPage.h"
#include "windows/PxDialogWnd.h"
#include "windows/SimpleMessageBox.h"
#include "windows/ToolTipWnd.h"

namespace {

using DuiLib::Rect;

// A contrast theme of black and red only: a pixel with green or blue in it has a colour that is not the system's.
const std::map<int, COLORREF> kBlackAndRed = {{COLOR_WINDOW, RGB(0, 0, 0)},      {COLOR_WINDOWTEXT, RGB(255, 0, 0)},
                                              {COLOR_HOTLIGHT, RGB(255, 0, 0)},  {COLOR_GRAYTEXT, RGB(255, 0, 0)},
                                              {COLOR_BTNFACE, RGB(0, 0, 0)},     {COLOR_BTNTEXT, RGB(255, 0, 0)},
                                              {COLOR_HIGHLIGHT, RGB(255, 0, 0)}, {COLOR_HIGHLIGHTTEXT, RGB(0, 0, 0)}};

// Photographs and illustrations keep their colours.
bool IsPicture(const DuiLib::CControlUI& control) {
    const std::wstring& image = control.GetBkImage();
    const std::wstring& name = control.GetName();
    return image.find(L"thumb_img") != std::wstring::npos || image.find(L"thumb_virtual") != std::wstring::npos ||
           image.find(L"intro_") != std::wstring::npos || name == L"preview_wnd" || name == L"title_icon";
}

std::string Narrow(const std::wstring& text) {
    return {text.begin(), text.end()};
}

Rect Seen(const DuiLib::CControlUI& control) {
    Rect seen = control.GetPos();
    for (const DuiLib::CControlUI* parent = control.GetParent(); parent; parent = parent->GetParent()) {
        seen = seen.Intersect(parent->GetPos());
    }
    return seen;
}

template <typename Visit>
void ForEachShown(DuiLib::CPaintManagerUI& manager, Visit visit) {
    manager.UpdateLayout();
    manager.GetRoot()->Visit([&](DuiLib::CControlUI& control) {
        if (control.IsShown() && !Seen(control).IsEmpty()) {
            visit(control);
        }
        return true;
    });
}

class ThemesTest : public MainWindowTest {
  protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        Write(L"lumi_camera_beauty_person", 1);
        HomeService::GetInstance()->NotifyStatus();
        Manager().UpdateLayout();
        Input::Park();
    }
    void TearDown() override {
        look_.highContrast = false;
        look_.appsUseLightTheme.reset();
        look_.textScaleFactor.reset();
        Tell();
        MainWindowTest::TearDown();
    }
    static void Tell() {
        harness::FakeLook::Tell(Window().GetHWND());
        Manager().UpdateLayout();
    }
    void UseContrast() {
        look_.highContrast = true;
        look_.colors = kBlackAndRed;
        Tell();
    }
    // What a person sees of each screen; `look` is called for each.
    void ForEachScreen(const std::function<void(DuiLib::CPaintManagerUI&, const std::wstring&)>& look) {
        look(Manager(), L"home");
        Reveal(L"beauty_layout");
        look(Manager(), L"home-beauty");
        Manager().SendNotify(&Control(L"show_detail_btn"), DuiLib::NotifyType::kClick);
        for (const wchar_t* tab : {L"custom_background_option", L"correct_sight_option", L"focus_person_option"}) {
            Control<DuiLib::CButtonUI>(tab).Activate();
            look(Manager(), tab);
        }
        Manager().SendNotify(&Control(L"back_btn"), DuiLib::NotifyType::kClick);
        {
            SimpleMessageBox box(&Manager());
            box.SetContent(L"Something happened.");
            look(box.PaintManager(), L"message");
        }
        for (const bool notice : {false, true}) {
            DelDoubleCheckPage box(&Manager());
            if (notice) {
                box.SetMaxLimitText(L"There are enough.");
            }
            look(box.PaintManager(), notice ? L"notice" : L"question");
        }
        ToolTipWnd& hint = ToolTipWnd::GetInstance(&Manager());
        hint.SetAnchor(&Control(L"none_background_btn"));
        hint.SetPosition(0, 0);
        hint.SetToolTipText(L"None");
        hint.Show(true);
        look(hint.PaintManager(), L"hint");
        hint.Show(false);
    }

    harness::FakeLook look_;
};

// --- dark

TEST_F(ThemesTest, DarkReachesEveryScreenWhileItIsOpen) {
    look_.SetDark(true);
    Tell();
    ForEachScreen([](DuiLib::CPaintManagerUI& manager, const std::wstring& name) {
        const Picture picture = PaintedBy(manager, L"dark-" + name);
        // Light grounds are gone, the window's, the cards' and the boxes'.
        std::size_t light = 0;
        for (const DWORD pixel : picture.pixels) {
            light += pixel == 0xF1F3F8 || pixel == 0xFFFFFF ? 1 : 0;
        }
        EXPECT_LT(light, picture.pixels.size() / 200) << Narrow(name);
    });
    EXPECT_EQ(PaintedBy(Manager()).At({20, 590}), 0x15181EU);
    EXPECT_EQ(PaintedBy(Manager()).At(DuiLib::Point{46, 70}), 0x1E222AU);  // the card of the preview
    look_.SetDark(false);
    Tell();
    EXPECT_EQ(PaintedBy(Manager(), L"light-again").At({20, 590}), 0xF1F3F8U);
}

TEST_F(ThemesTest, APopupThatIsOpenFollows) {
    SimpleMessageBox box(&Manager());
    const DWORD before = PaintedBy(box.PaintManager()).At({210, 250});
    look_.SetDark(true);
    Tell();  // the settings window is told; the box is told by it
    EXPECT_EQ(before, 0xFFFFFFU);
    EXPECT_EQ(PaintedBy(box.PaintManager()).At({210, 250}), 0x22272FU);
}

TEST_F(ThemesTest, TheNumbersOfTheQuestionStayNumbersInTheDark) {
    look_.SetDark(true);
    Tell();
    DelDoubleCheckPage box(&Manager());
    DuiLib::CControlUI& confirm = *box.PaintManager().FindControl(L"confirm");
    DuiLib::CControlUI& cancel = *box.PaintManager().FindControl(L"cancel");
    EXPECT_EQ(confirm.GetBkColor(), 0xFF0A59F7U);
    EXPECT_EQ(cancel.GetBkColor(), 0x0C000000U);
    box.PaintManager().SendNotify(&confirm, DuiLib::NotifyType::kMouseEnter);
    EXPECT_EQ(confirm.GetBkColor(), 0xFF0954EBU);
    box.PaintManager().SendNotify(&confirm, DuiLib::NotifyType::kMouseLeave);
    EXPECT_EQ(confirm.GetBkColor(), 0xFF0A59F7U);
    box.PaintManager().UpdateLayout();
    const Rect px = confirm.GetPos();
    EXPECT_EQ(PaintedBy(box.PaintManager()).At({px.left + 8, px.top + 6}), 0x0A59F7U);
}

// --- contrast

TEST_F(ThemesTest, AContrastThemeHasTheSystemsColoursOnly) {
    UseContrast();
    ForEachScreen([](DuiLib::CPaintManagerUI& manager, const std::wstring& name) {
        std::vector<Rect> pictures;
        ForEachShown(manager, [&](DuiLib::CControlUI& control) {
            if (IsPicture(control)) {
                pictures.push_back(Seen(control));
            }
        });
        const Picture picture = PaintedBy(manager, L"contrast-" + name);
        int strange = 0;
        for (int y = 0; y < picture.heightPx; ++y) {
            for (int x = 0; x < picture.widthPx; ++x) {
                const DuiLib::Point px{x, y};
                const bool exempt =
                    std::any_of(pictures.begin(), pictures.end(), [&](const Rect& each) { return each.Contains(px); });
                if (!exempt && (picture.At(px) & 0x00FFFF) != 0 && ++strange == 1) {
                    ADD_FAILURE() << Narrow(name) << ": " << std::hex << picture.At(px) << std::dec << " at " << x
                                  << "," << y;
                }
            }
        }
        EXPECT_EQ(strange, 0) << Narrow(name);
    });
}

// Something is drawn near each edge of the rectangle.
bool HasBorder(const Picture& picture, const Rect& px) {
    constexpr int kNear = 3;
    const auto drawn = [&](const Rect& edge) {
        int ink = 0;
        for (int y = edge.top; y < edge.bottom; ++y) {
            for (int x = edge.left; x < edge.right; ++x) {
                ink += (picture.At({x, y}) >> 16) > 0x60 ? 1 : 0;
            }
        }
        return ink >= std::max(edge.Width(), edge.Height()) / 3;
    };
    return drawn({px.left, px.top, px.right, px.top + kNear}) &&
           drawn({px.left, px.bottom - kNear, px.right, px.bottom}) &&
           drawn({px.left, px.top, px.left + kNear, px.bottom}) &&
           drawn({px.right - kNear, px.top, px.right, px.bottom});
}

TEST_F(ThemesTest, InAContrastThemeWhatCanBePressedHasABorder) {
    UseContrast();
    ForEachScreen([](DuiLib::CPaintManagerUI& manager, const std::wstring& name) {
        const Picture picture = PaintedBy(manager);
        ForEachShown(manager, [&](DuiLib::CControlUI& control) {
            const auto* button = dynamic_cast<DuiLib::CButtonUI*>(&control);
            if (button && Seen(control) == control.GetPos()) {
                EXPECT_TRUE(HasBorder(picture, control.GetPos()))
                    << Narrow(name) << ": " << Narrow(control.GetName()) << " of " << Narrow(control.GetClass());
            }
        });
    });
}

// Where the red is, whatever its brightness.
std::vector<bool> Form(const Picture& picture, const Rect& px) {
    std::vector<bool> form;
    for (int y = px.top; y < px.bottom; ++y) {
        for (int x = px.left; x < px.right; ++x) {
            form.push_back((picture.At({x, y}) >> 16) > 0x80);
        }
    }
    return form;
}

TEST_F(ThemesTest, ChoiceAndFocusAreSeenWithoutColour) {
    UseContrast();
    const auto formOf = [](const wchar_t* name) { return Form(PaintedBy(Manager()), Control(name).GetPos()); };
    const auto differs = [](const std::vector<bool>& one, const std::vector<bool>& other) {
        int count = 0;
        for (std::size_t i = 0; i < one.size(); ++i) {
            count += one[i] != other[i] ? 1 : 0;
        }
        return count > 20;
    };
    // A switch.
    Write(L"lumi_camera_switch", 0);
    HomeService::GetInstance()->NotifyStatus();
    const auto off = formOf(L"open_camera_btn");
    Write(L"lumi_camera_switch", 1);
    HomeService::GetInstance()->NotifyStatus();
    EXPECT_TRUE(differs(off, formOf(L"open_camera_btn")));
    // A background.
    auto& none = Control<DuiLib::COptionUI>(L"none_background_btn");
    none.SetSelected(false);
    const auto plain = formOf(L"none_background_btn");
    none.SetSelected(true);
    EXPECT_TRUE(differs(plain, formOf(L"none_background_btn")));
    // The focus.
    const auto unfocused = formOf(L"none_background_btn");
    Manager().SetFocus(&none, true);
    EXPECT_TRUE(differs(unfocused, formOf(L"none_background_btn")));
    // A tab.
    Manager().SendNotify(&Control(L"show_detail_btn"), DuiLib::NotifyType::kClick);
    Manager().SetFocus(nullptr);
    Control<DuiLib::CButtonUI>(L"correct_sight_option").Activate();
    Manager().UpdateLayout();
    const Rect tab = Control(L"correct_sight_option").GetParent()->GetPos();  // with the line below it
    ASSERT_FALSE(tab.IsEmpty());
    const auto chosen = Form(PaintedBy(Manager(), L"contrast-tab"), tab);
    Control<DuiLib::CButtonUI>(L"focus_person_option").Activate();
    Manager().UpdateLayout();
    EXPECT_TRUE(differs(chosen, Form(PaintedBy(Manager(), L"contrast-other-tab"), tab)));
}

TEST_F(ThemesTest, InAContrastThemeTheQuestionsNumbersAreNotPainted) {
    UseContrast();
    DelDoubleCheckPage box(&Manager());
    DuiLib::CControlUI& confirm = *box.PaintManager().FindControl(L"confirm");
    box.PaintManager().SendNotify(&confirm, DuiLib::NotifyType::kMouseEnter);
    box.PaintManager().SendNotify(&confirm, DuiLib::NotifyType::kMouseLeave);
    EXPECT_EQ(confirm.GetBkColor(), 0xFF0A59F7U);
    box.PaintManager().UpdateLayout();
    const Rect px = confirm.GetPos();
    EXPECT_EQ(PaintedBy(box.PaintManager()).At({px.left + 8, px.top + 6}), 0xFF0000U);
}

// --- size of text

TEST_F(ThemesTest, ThePagesMeasureTheirTextsAgain) {
    const int preview = Control(L"preview_text").GetWidth().value;
    Manager().SendNotify(&Control(L"show_detail_btn"), DuiLib::NotifyType::kClick);
    Manager().UpdateLayout();
    const int title = Control(L"introduction_title_txt").GetWidth().value;
    const int tabTop = Control(L"correct_sight_option").GetPos().top;
    look_.textScaleFactor = 200;
    Tell();
    EXPECT_NEAR(Control(L"preview_text").GetWidth().value, 2 * preview, 3);
    EXPECT_NEAR(Control(L"introduction_title_txt").GetWidth().value, 2 * title, 3);
    look_.textScaleFactor = 225;
    Tell();
    EXPECT_GT(Control(L"correct_sight_option").GetPos().top, tabTop);  // a row of their own
    look_.textScaleFactor = 100;
    Tell();
    EXPECT_EQ(Control(L"preview_text").GetWidth().value, preview);
    EXPECT_EQ(Control(L"correct_sight_option").GetPos().top, tabTop);
}

TEST_F(ThemesTest, AHintGoesWhenTextsGetAnotherSize) {
    ToolTipWnd& hint = ToolTipWnd::GetInstance(&Manager());
    hint.SetAnchor(&Control(L"none_background_btn"));
    hint.SetPosition(0, 0);
    hint.SetToolTipText(L"None");
    hint.Show(true);
    look_.SetDark(true);
    Tell();
    EXPECT_TRUE(IsWindowVisible(hint.GetHWND()));
    look_.textScaleFactor = 200;
    Tell();
    EXPECT_FALSE(IsWindowVisible(hint.GetHWND()));
}

TEST_F(ThemesTest, TheEffectsGrowAndTheirNumbersHoldAtTheUsualSize) {
    EXPECT_EQ(Control(L"beauty_layout").GetPos().Height(), 294);
    EXPECT_EQ(Control(L"beauty_sliders").GetPos().Height(), 230);
    look_.textScaleFactor = 225;
    Tell();
    EXPECT_GT(Control(L"beauty_layout").GetPos().Height(), 294);
    EXPECT_GT(Control(L"beauty_sliders").GetPos().Height(), 230);
    Write(L"lumi_camera_beauty_person", 0);
    HomeService::GetInstance()->NotifyStatus();
    Manager().UpdateLayout();
    EXPECT_FALSE(Control(L"slider_smooth").IsShown());
    EXPECT_GT(Control(L"beauty_layout").GetPos().Height(), 64);
    EXPECT_EQ(Control(L"preview_wnd").GetPos(), (Rect{80, 80, 598, 355}));  // the picture of the camera lies there
}

// --- right to left

TEST_F(ThemesTest, TheCheckMarkAndTheSignOfVideosAreNotMirrored) {
    auto& preview = Control<DuiLib::CButtonUI>(L"preview_switch");
    const auto form = [&] {
        preview.Invalidate();
        Manager().NeedUpdate();
        Manager().UpdateLayout();
        const Rect px = preview.GetPos();
        const Picture picture = PaintedBy(Manager());
        std::vector<DWORD> pixels;
        for (int y = px.top; y < px.bottom; ++y) {
            for (int x = px.left; x < px.right; ++x) {
                pixels.push_back(picture.At({x, y}));
            }
        }
        return pixels;
    };
    DuiLib::UICulture& culture = *DuiLib::UICulture::GetInstance();
    const std::wstring language = culture.GetLanguage();
    std::vector<DWORD> other;
    for (const wchar_t* name : {L"checked", L"video_icon"}) {
        preview.SetNormalImage(L"file='drawable/LumiCamera/" + std::wstring(name) + L".png' reverse='true'");
        const std::vector<DWORD> before = form();
        EXPECT_NE(before, other) << "nothing is painted";
        ASSERT_TRUE(culture.SelectLanguage(L"ar_SA", true));
        EXPECT_EQ(form(), before) << Narrow(name);
        culture.SelectLanguage(language, true);
        other = before;
    }
}

}  // namespace
