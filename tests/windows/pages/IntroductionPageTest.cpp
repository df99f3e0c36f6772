#include "pages/IntroductionPage.h"

#include "DuiLib/ContainerUI.h"
#include "DuiLib/OptionUI.h"
#include "DuiLib/RenderEngine.h"
#include "pages/IntroductionHeader.h"
#include "tests/windows/pages/PageTests.h"
#include "tests/windows/support/Screen.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Tab {
    const wchar_t* option;
    const wchar_t* container;
    const wchar_t* underline;
    const wchar_t* layout;
};
constexpr Tab kTabs[] = {
    {L"custom_background_option", L"custom_background_container", L"custom_background_underline",
     L"custom_background_layout"},
    {L"correct_sight_option", L"correct_sight_container", L"correct_sight_underline", L"correct_sight_layout"},
    {L"focus_person_option", L"focus_person_container", L"focus_person_underline", L"focus_person_layout"}};

class IntroductionPageTest : public PageTest {
  protected:
    void SetUp() override {
        PageTest::SetUp();
        page_ = std::make_unique<IntroductionPage>(&Manager());
    }
    void TearDown() override {
        Host().RemoveVirtualWnd(L"IntroductionPage");
        page_.reset();
        PageTest::TearDown();
    }

    void Open() {
        page_->SelectTab(Host().Tabs(), &Host());
        Manager().UpdateLayout();
    }
    int WidthOf(const wchar_t* name) {
        DuiLib::Rect rect;
        DuiLib::CRenderEngine::DrawText(Manager().GetPaintDC(), &Manager(), rect, Control(name).GetText(), 0, 23,
                                        DT_CALCRECT);
        return DuiLib::PxToDip(rect.Width(), Manager().GetDPI());
    }
    // Exactly this tab is shown, and its header marked.
    void ExpectShown(const Tab& shown) {
        for (const Tab& tab : kTabs) {
            const bool is = &tab == &shown;
            EXPECT_EQ(Control(tab.container).IsVisible(), is) << std::wstring(tab.container).size();
            EXPECT_EQ(Control(tab.underline).IsVisible(), is);
            EXPECT_EQ(Control<DuiLib::COptionUI>(tab.option).GetFont(), is ? 23 : 13);
            EXPECT_EQ(Control<DuiLib::COptionUI>(tab.option).IsSelected(), is);
        }
    }

    std::unique_ptr<IntroductionPage> page_;
};

TEST_F(IntroductionPageTest, BeginsWithTheBackgrounds) {
    Open();
    ExpectShown(kTabs[0]);
    PaintedBy(Manager(), L"introduction");
}

TEST_F(IntroductionPageTest, AClickShowsAnotherTab) {
    Open();
    for (const int index : {2, 1, 0, 1}) {
        Press(kTabs[index].option);
        ExpectShown(kTabs[index]);
    }
}

// The bar lies over the end of what it scrolls, the texts' too where they are larger.
TEST_F(IntroductionPageTest, EachTextLeavesRoomForItsScrollBar) {
    Open();
    for (const Tab& tab : kTabs) {
        Press(tab.option);
        Manager().UpdateLayout();
        const auto& texts = Control<DuiLib::CContainerUI>(std::wstring(tab.container) + L"_text");
        ASSERT_GT(texts.GetCount(), 0);
        for (int i = 0; i < texts.GetCount(); ++i) {
            EXPECT_EQ(texts.GetPos().right - texts.GetItemAt(i)->GetPos().right, 12);
        }
        // Insets stay where they are from right to left: both sides are alike.
        EXPECT_EQ(texts.GetItemAt(0)->GetPos().left - texts.GetPos().left, 12);
        const DuiLib::Rect& page = Control(tab.container).GetPos();
        EXPECT_EQ(page.right - texts.GetPos().right, 28);
        EXPECT_EQ(texts.GetPos().left - page.left, 28 + 12 + 480 + 28);
    }
}

TEST_F(IntroductionPageTest, TheMouseAndTheKeyboardChooseToo) {
    Open();
    ASSERT_TRUE(Input::Activate(Host().GetHWND()));
    Input::Click(Control(kTabs[1].option));
    ExpectShown(kTabs[1]);
    Input::Key(VK_RIGHT);
    EXPECT_TRUE(Input::PumpUntil([this] { return Control<DuiLib::COptionUI>(kTabs[2].option).IsSelected(); }));
    ExpectShown(kTabs[2]);
}

TEST_F(IntroductionPageTest, TheSelectedOnesClickChangesNothing) {
    Open();
    Press(kTabs[1].option);
    Input::Pump();
    const Picture before = PaintedBy(Manager());
    Press(kTabs[1].option);
    EXPECT_EQ(PaintedBy(Manager()), before);
    ExpectShown(kTabs[1]);
}

TEST_F(IntroductionPageTest, ComingBackTheTabIsStillShown) {
    Open();
    Press(kTabs[2].option);
    Press(L"back_btn");
    EXPECT_THAT(Host().shownPages, ElementsAre(L"first"));
    Open();
    ExpectShown(kTabs[2]);
}

TEST_F(IntroductionPageTest, OtherClicksDoNothing) {
    Open();
    for (const wchar_t* name : {L"introduction_title_txt", L"custom_background_container", L"introduction_page"})
        Notify(name, L"click");
    ExpectShown(kTabs[0]);
    EXPECT_THAT(Host().shownPages, IsEmpty());
}

TEST_F(IntroductionPageTest, ItsHeaderIsLaidOutForItsTexts) {
    Open();
    const IntroductionHeaderLayout expected =
        LayOutIntroductionHeader({WidthOf(L"introduction_title_txt"), WidthOf(kTabs[0].option),
                                  WidthOf(kTabs[1].option), WidthOf(kTabs[2].option)});
    EXPECT_GT(expected.titleWidth, 50);
    EXPECT_EQ(Control(L"introduction_title_txt").GetWidth().value, expected.titleWidth);
    EXPECT_EQ(Control(kTabs[0].layout).GetWidth().value, expected.firstWidth);
    EXPECT_EQ(Control(kTabs[1].layout).GetWidth().value, expected.secondWidth);
    EXPECT_EQ(Control(kTabs[2].layout).GetWidth().value, expected.thirdWidth);
    EXPECT_EQ(Control(L"option_group_layout").GetPadding(), (DuiLib::Rect{expected.groupLeftPadding, 0, 0, 0}));
    // Neighbours are 40 apart, and nothing is cut.
    for (const int index : {0, 1})
        EXPECT_EQ(Control(kTabs[index + 1].layout).GetPos().left - Control(kTabs[index].layout).GetPos().right, 40);
    EXPECT_EQ(Control(kTabs[0].layout).GetPos().Width(), expected.firstWidth);
}

TEST_F(IntroductionPageTest, LongTextsAreNarrowed) {
    page_->GetRoot()->FindControlByName(kTabs[1].option)->SetText(std::wstring(60, L'w'));
    Open();
    const int total = WidthOf(kTabs[0].option) + WidthOf(kTabs[1].option) + WidthOf(kTabs[2].option) + 3 * 4 + 80;
    ASSERT_GT(total, 446);
    EXPECT_EQ(Control(kTabs[1].layout).GetWidth().value, WidthOf(kTabs[1].option) + 4 - (total - 446));
    EXPECT_EQ(Control(L"option_group_layout").GetPadding().left, 40);
}

TEST_F(IntroductionPageTest, IsLaidOutOnce) {
    Open();
    const int width = Control(L"introduction_title_txt").GetWidth().value;
    Control(L"introduction_title_txt").SetText(L"A title that is much longer than before");
    Open();
    EXPECT_EQ(Control(L"introduction_title_txt").GetWidth().value, width);
}

TEST_F(IntroductionPageTest, AtAnotherScaleTheUnitsStay) {
    Manager().SetDPI(192);
    Open();
    const IntroductionHeaderLayout expected =
        LayOutIntroductionHeader({WidthOf(L"introduction_title_txt"), WidthOf(kTabs[0].option),
                                  WidthOf(kTabs[1].option), WidthOf(kTabs[2].option)});
    EXPECT_EQ(Control(kTabs[2].layout).GetWidth().value, expected.thirdWidth);
    EXPECT_EQ(Control(kTabs[2].layout).GetPos().Width(), 2 * expected.thirdWidth);
}

TEST_F(IntroductionPageTest, ControlsThatAreMissingAreSkipped) {
    for (const wchar_t* name : {L"introduction_title_txt", L"focus_person_layout", L"introduction_page_tab"}) {
        DuiLib::CControlUI* control = page_->GetRoot()->FindControlByName(name);
        ASSERT_TRUE(control->GetParent()->Remove(control));
    }
    Open();
    Press(kTabs[1].option);
    EXPECT_TRUE(Control(kTabs[1].underline).IsVisible());
    EXPECT_FALSE(Control(kTabs[0].underline).IsVisible());
}

}  // namespace
