#include "pages/PageBase.h"

#include "DuiLib/LabelUI.h"
#include "pages/IntroductionPage.h"
#include "tests/support/Protocol.h"
#include "tests/windows/pages/PageTests.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A page that notes what is called.
class NotingPage : public PageBase {
  public:
    explicit NotingPage(DuiLib::CPaintManagerUI* manager,
                        const std::wstring& layout = L"layout\\PixoraIntroductionPage.xml")
        : PageBase(layout, L"NotingPage", manager) {}

    using PageBase::Find;
    using PageBase::Owner;
    using PageBase::TextWidth;

    std::vector<std::wstring> calls;

  protected:
    void OnActivate() override { calls.push_back(L"activate"); }
    void OnClick(DuiLib::TNotifyUI& msg) override { calls.push_back(L"click " + msg.sender->GetName()); }
    void OnMouseEnter(DuiLib::TNotifyUI& msg) override { calls.push_back(L"enter " + msg.sender->GetName()); }
    void OnMouseLeave(DuiLib::TNotifyUI& msg) override { calls.push_back(L"leave " + msg.sender->GetName()); }
    void OnScroll(DuiLib::TNotifyUI& msg) override { calls.push_back(L"scroll " + msg.sender->GetName()); }
};

class PageBaseTest : public PageTest {
  protected:
    void SetUp() override {
        PageTest::SetUp();
        page_ = std::make_unique<NotingPage>(&Manager());
    }
    void TearDown() override {
        Host().RemoveVirtualWnd(L"NotingPage");
        page_.reset();
        PageTest::TearDown();
    }

    std::unique_ptr<NotingPage> page_;
};

TEST_F(PageBaseTest, ItsTreeIsThereFromTheStart) {
    ASSERT_NE(page_->GetRoot(), nullptr);
    EXPECT_EQ(page_->GetRoot()->GetName(), L"introduction_page");
    EXPECT_EQ(page_->GetRoot()->GetParent(), nullptr);
    EXPECT_EQ(page_->GetPageName(), L"NotingPage");
    EXPECT_NE(page_->Find(L"back_btn"), nullptr);
    EXPECT_EQ(Manager().FindControl(L"back_btn"), nullptr);
    EXPECT_EQ(page_->Owner(), &Host());
    EXPECT_THAT(page_->calls, IsEmpty());
}

TEST_F(PageBaseTest, SelectedItIsInTheTabsAndShown) {
    page_->SelectTab(Host().Tabs(), &Host());
    EXPECT_EQ(Host().Tabs()->GetCount(), 1);
    EXPECT_EQ(page_->GetRoot()->GetParent(), Host().Tabs());
    EXPECT_EQ(page_->GetRoot()->GetVirtualWnd(), L"NotingPage");
    EXPECT_TRUE(page_->GetRoot()->IsVisible());
    EXPECT_NE(Manager().FindControl(L"back_btn"), nullptr);
    EXPECT_THAT(page_->calls, ElementsAre(L"activate"));
}

TEST_F(PageBaseTest, SelectedAgainItIsNotAddedAgain) {
    page_->SelectTab(Host().Tabs(), &Host());
    IntroductionPage other(&Manager());
    other.SelectTab(Host().Tabs(), &Host());
    EXPECT_FALSE(page_->GetRoot()->IsVisible());
    page_->SelectTab(Host().Tabs(), &Host());
    EXPECT_EQ(Host().Tabs()->GetCount(), 2);
    EXPECT_TRUE(page_->GetRoot()->IsVisible());
    EXPECT_FALSE(other.GetRoot()->IsVisible());
    EXPECT_THAT(page_->calls, ElementsAre(L"activate", L"activate"));
    Host().RemoveVirtualWnd(L"IntroductionPage");
}

TEST_F(PageBaseTest, ItsControlsTellThePage) {
    page_->SelectTab(Host().Tabs(), &Host());
    page_->calls.clear();
    for (const wchar_t* type : {L"click", L"mouseenter", L"mouseleave", L"scroll", L"setfocus"})
        Notify(L"back_btn", type);
    Notify(L"minbtn", L"click");  // of the window, not of the page
    EXPECT_THAT(page_->calls, ElementsAre(L"click back_btn", L"enter back_btn", L"leave back_btn", L"scroll back_btn"));
}

TEST_F(PageBaseTest, WithoutTabsOrPumpItIsNotShown) {
    const std::string line = "[L4] exist control nullptr(PageBase::SelectTab)";
    Expect(line);
    page_->SelectTab(nullptr, &Host());
    page_->SelectTab(Host().Tabs(), nullptr);
    EXPECT_THAT(LogOf("PageBase::SelectTab"), ElementsAre(line, line));
    EXPECT_EQ(Host().Tabs()->GetCount(), 0);
    EXPECT_THAT(page_->calls, IsEmpty());
}

TEST_F(PageBaseTest, WithoutALayoutThereIsNoRoot) {
    NotingPage broken(&Manager(), L"layout\\NoSuchPage.xml");
    for (const std::string& line : Log()) {
        if (line.find("NoSuchPage.xml") != std::string::npos)
            Expect(line);
    }
    Expect("[L4] exist control nullptr(PageBase::SelectTab)");
    EXPECT_EQ(broken.GetRoot(), nullptr);
    EXPECT_EQ(broken.Find(L"back_btn"), nullptr);
    broken.SelectTab(Host().Tabs(), &Host());
    EXPECT_THAT(LogOf("PageBase::SelectTab"), ElementsAre("[L4] exist control nullptr(PageBase::SelectTab)"));
    EXPECT_THAT(broken.calls, IsEmpty());
}

TEST_F(PageBaseTest, AsksItsOwnerForAnotherPage) {
    page_->ShowPage(L"IntroductionPage", 0);
    page_->ShowPage(L"Nobody", 7);
    EXPECT_THAT(Host().shownPages, ElementsAre(L"IntroductionPage 0", L"Nobody 7"));
}

TEST_F(PageBaseTest, WidthsAreInUnitsAtEveryScale) {
    const int width = page_->TextWidth(L"Introduction", 23);
    EXPECT_GT(width, 50);
    EXPECT_EQ(page_->TextWidth(L"", 23), 0);
    EXPECT_GT(page_->TextWidth(L"Introduction to it", 23), width);
    Manager().SetDPI(288);
    EXPECT_NEAR(page_->TextWidth(L"Introduction", 23), width, 4);
}

// Without a window there is no owner.
class LonelyPageTest : public ProgramTest {};

TEST_F(LonelyPageTest, AsksNobody) {
    DuiLib::CPaintManagerUI manager;
    NotingPage page(&manager);
    ASSERT_NE(page.GetRoot(), nullptr);
    EXPECT_EQ(page.Owner(), nullptr);
    page.ShowPage(L"IntroductionPage", 0);
}

TEST_F(LonelyPageTest, AHomePageDoesItsWorkWithoutAnOwner) {
    Expect("[L4] get tooltipwnd failed(HomePage::ShowToolTip)");
    struct Access : HomePage {
        using HomePage::HomePage;
        using HomePage::OnClick;
        using HomePage::OnMouseEnter;
        using HomePage::OnScroll;
    };
    DuiLib::CPaintManagerUI manager;
    Access page(&manager);
    page.Refresh(HomeService::GetInstance()->GetFeatureStatus());
    const auto tell = [&](const wchar_t* name, void (Access::*handler)(DuiLib::TNotifyUI&)) {
        DuiLib::TNotifyUI msg{L"", page.GetRoot()->FindControlByName(name), 0, 0};
        (page.*handler)(msg);
    };
    tell(L"show_detail_btn", &Access::OnClick);
    tell(L"open_camera_btn", &Access::OnClick);
    tell(L"none_background_btn", &Access::OnMouseEnter);
    tell(L"effects", &Access::OnScroll);
    SendFromService(harness::Protocol::kNotificationCode, harness::Protocol::kResetSubCode);
    EXPECT_EQ(Number(L"lumi_camera_switch"), 1);
}

}  // namespace
