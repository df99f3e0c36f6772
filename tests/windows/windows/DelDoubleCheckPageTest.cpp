#include "windows/DelDoubleCheckPage.h"

#include <algorithm>

#include "tests/windows/support/Screen.h"
#include "tests/windows/support/Script.h"
#include "tests/windows/windows/WindowTests.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr DWORD kBlue = 0xFF0A59F7;
constexpr DWORD kGrey = 0x0C000000;

class DelDoubleCheckPageTest : public ProgramTest {
  protected:
    void SetUp() override {
        ProgramTest::SetUp();
        for (const wchar_t* name : {L"custom_background_btn_0", L"custom_background_btn_1"}) {
            HomeServiceTestAccess::AddCustomItem({name, 0, -1, L"C:\\nowhere.jpg", L"C:\\nowhere.png"});
        }
        box_.emplace(&owner_.PaintManager());
        ShowWindow(box_->GetHWND(), SW_SHOW);
        ASSERT_TRUE(Input::Activate(box_->GetHWND()));
        box_->PaintManager().UpdateLayout();
    }
    void TearDown() override {
        box_.reset();
        ProgramTest::TearDown();
    }

    DuiLib::CControlUI& Control(const wchar_t* name) { return *box_->PaintManager().FindControl(name); }
    DWORD Color(const wchar_t* name) { return Control(name).GetBkColor(); }
    static std::vector<std::wstring> Items() {
        std::vector<std::wstring> names;
        for (const CustomImageRecord& record : HomeServiceTestAccess::CustomItems())
            names.push_back(record.name);
        return names;
    }
    // The title belongs to the caption, so the pointer leaves the client area, which the system tells in its own time.
    bool LeavesInColor(const wchar_t* name, DWORD color) {
        Input::MoveTo(Control(L"box_title"));
        return Input::PumpUntil([&] { return Color(name) == color; });
    }
    bool IsOpen() const { return IsWindow(box_->GetHWND()) != FALSE; }

    OwnerWindow owner_;
    std::optional<DelDoubleCheckPage> box_;
};

TEST_F(DelDoubleCheckPageTest, StandsInTheMiddleOfItsOwner) {
    const HWND window = box_->GetHWND();
    wchar_t text[64] = {};
    GetClassNameW(window, text, 64);
    EXPECT_STREQ(text, L"Delete Double Check");
    GetWindowTextW(window, text, 64);
    EXPECT_STREQ(text, L"Delete Double Check");
    EXPECT_EQ(GetWindow(window, GW_OWNER), owner_.GetHWND());
    RECT box = {};
    RECT owner = {};
    GetWindowRect(window, &box);
    GetWindowRect(owner_.GetHWND(), &owner);
    EXPECT_NEAR(box.left + box.right, owner.left + owner.right, 1);
    EXPECT_NEAR(box.top + box.bottom, owner.top + owner.bottom, 1);
}

TEST_F(DelDoubleCheckPageTest, AsksWithTwoButtons) {
    EXPECT_TRUE(Control(L"confirm").IsShown());
    EXPECT_TRUE(Control(L"cancel").IsShown());
    EXPECT_FALSE(Control(L"maxLimit").IsShown());
    EXPECT_EQ(Color(L"confirm"), kBlue);
    EXPECT_EQ(Color(L"cancel"), kGrey);
    EXPECT_EQ(Control(L"msgbox_content").GetText(), L"Delete this background? Your original file will be kept.");
    const Picture picture = PaintedBy(box_->PaintManager(), L"delete-question");
    EXPECT_GT(picture.ColorsIn({0, 0, 400, 204}), 10);
}

TEST_F(DelDoubleCheckPageTest, ConfirmedTheItemIsDeleted) {
    box_->SetItemName(L"custom_background_btn_1");
    Input::Click(Control(L"confirm"));
    EXPECT_FALSE(IsOpen());
    EXPECT_THAT(Items(), ElementsAre(L"custom_background_btn_0"));
}

TEST_F(DelDoubleCheckPageTest, CancelledNothingIsDeleted) {
    box_->SetItemName(L"custom_background_btn_1");
    Input::Click(Control(L"cancel"));
    EXPECT_FALSE(IsOpen());
    EXPECT_THAT(Items(), ElementsAre(L"custom_background_btn_0", L"custom_background_btn_1"));
}

TEST_F(DelDoubleCheckPageTest, ClosedByTheSystemNothingIsDeleted) {
    box_->SetItemName(L"custom_background_btn_1");
    SendMessageW(box_->GetHWND(), WM_SYSCOMMAND, SC_CLOSE, 0);
    EXPECT_FALSE(IsOpen());
    EXPECT_THAT(Items(), ElementsAre(L"custom_background_btn_0", L"custom_background_btn_1"));
}

TEST_F(DelDoubleCheckPageTest, TheSystemsCloseOfTheModalQuestionIsItsCancel) {
    for (const bool limit : {false, true}) {
        box_.emplace(&owner_.PaintManager());
        box_->SetItemName(L"custom_background_btn_1");
        if (limit) {
            box_->SetMaxLimitText(L"Enough");
        }
        std::vector<std::wstring> clicked;
        class Clicks final : public DuiLib::INotifyUI {
          public:
            explicit Clicks(std::vector<std::wstring>& names) : names_(names) {}
            void Notify(DuiLib::TNotifyUI& msg) override {
                if (msg.type == DuiLib::NotifyType::kClick) {
                    names_.push_back(msg.sender->GetName());
                }
            }

          private:
            std::vector<std::wstring>& names_;
        } clicks(clicked);
        box_->PaintManager().AddNotifier(&clicks);
        Script script;
        script.When(
            "the box is shown", [this] { return IsWindowVisible(box_->GetHWND()) != FALSE; },
            [this, limit] {
                const wchar_t* const first = limit ? L"maxLimit" : L"confirm";
                EXPECT_EQ(box_->PaintManager().GetFocus(), &Control(first));
                SendMessageW(box_->GetHWND(), WM_SYSCOMMAND, SC_CLOSE, 0);
            });
        script.Run([this] { EXPECT_EQ(box_->ShowModal(), 0U); });
        EXPECT_THAT(clicked, ElementsAre(limit ? L"maxLimit" : L"cancel"));
        EXPECT_EQ(Items().size(), 2U);
    }
}

TEST_F(DelDoubleCheckPageTest, AScreenReaderGetsTitleAndQuestion) {
    const DuiLib::WindowSpec& spec = box_->PaintManager().GetWindowSpec();
    EXPECT_EQ(Control(spec.accTitle.c_str()).GetText(), L"Custom backgrounds");
    EXPECT_EQ(Control(spec.accMessage.c_str()).GetText(), L"Delete this background? Your original file will be kept.");
}

TEST_F(DelDoubleCheckPageTest, NotificationsWithoutASenderDoNothing) {
    for (const wchar_t* type : {L"click", L"mouseenter", L"mouseleave", L"buttondown"}) {
        box_->PaintManager().SendNotify(nullptr, type);
    }
    EXPECT_TRUE(IsOpen());
    EXPECT_EQ(Color(L"confirm"), kBlue);
}

TEST_F(DelDoubleCheckPageTest, ConfirmedWithoutANameNothingIsDeleted) {
    Input::Click(Control(L"confirm"));
    EXPECT_FALSE(IsOpen());
    EXPECT_THAT(Items(), ElementsAre(L"custom_background_btn_0", L"custom_background_btn_1"));
}

TEST_F(DelDoubleCheckPageTest, EscapeCancelsAndEnterConfirms) {
    box_->SetItemName(L"custom_background_btn_1");
    Input::Key(VK_ESCAPE);
    EXPECT_FALSE(IsOpen());
    EXPECT_EQ(Items().size(), 2U);

    DelDoubleCheckPage second(&owner_.PaintManager());
    second.SetItemName(L"custom_background_btn_0");
    second.ShowWindow();
    ASSERT_TRUE(Input::Activate(second.GetHWND()));
    Input::Key(VK_RETURN);
    EXPECT_EQ(second.GetHWND(), nullptr);
    EXPECT_THAT(Items(), ElementsAre(L"custom_background_btn_1"));
}

TEST_F(DelDoubleCheckPageTest, TabLeadsFromOneButtonToTheOther) {
    box_->SetItemName(L"custom_background_btn_1");
    const auto focused = [this] {
        const DuiLib::CControlUI* control = box_->PaintManager().GetFocus();
        return control ? control->GetName() : std::wstring();
    };
    std::vector<std::wstring> order;
    for (int i = 0; i < 4; ++i) {
        Input::Key(VK_TAB);
        order.push_back(focused());
    }
    std::sort(order.begin(), order.begin() + 2);
    EXPECT_THAT(std::vector(order.begin(), order.begin() + 2), ElementsAre(L"cancel", L"confirm"));
    for (int i = 0; i < 2 && focused() != L"cancel"; ++i)
        Input::Key(VK_TAB);
    PaintedBy(box_->PaintManager(), L"delete-question-focus");
    // Enter presses the button that has the focus.
    Input::Key(VK_RETURN);
    EXPECT_FALSE(IsOpen());
    EXPECT_EQ(Items().size(), 2U);
}

TEST_F(DelDoubleCheckPageTest, ConfirmingAnswersOneAndEverythingElseNothing) {
    for (const auto& [button, answer] :
         std::vector<std::pair<const wchar_t*, UINT>>{{L"confirm", 1}, {L"cancel", 0}, {L"maxLimit", 0}}) {
        DelDoubleCheckPage box(&owner_.PaintManager());
        if (button == std::wstring(L"maxLimit"))
            box.SetMaxLimitText(L"enough");
        UINT result = 99;
        Script script;
        script.When(
            "the box is shown", [&] { return IsWindowVisible(box.GetHWND()) != FALSE; },
            [&, name = button] {
                EXPECT_FALSE(IsWindowEnabled(owner_.GetHWND()));
                Input::Click(*box.PaintManager().FindControl(name));
            });
        script.Run([&] { result = box.ShowModal(); });
        EXPECT_EQ(result, answer);
        EXPECT_TRUE(IsWindowEnabled(owner_.GetHWND()));
    }
}

// --- the limit

TEST_F(DelDoubleCheckPageTest, AtTheLimitThereIsOneButton) {
    box_->SetMaxLimitText(L"You have enough.");
    box_->PaintManager().UpdateLayout();
    EXPECT_EQ(Control(L"msgbox_content").GetText(), L"You have enough.");
    EXPECT_FALSE(Control(L"confirm").IsShown());
    EXPECT_FALSE(Control(L"cancel").IsShown());
    EXPECT_TRUE(Control(L"maxLimit").IsShown());
    PaintedBy(box_->PaintManager(), L"limit-notice");
    Input::Click(Control(L"maxLimit"));
    EXPECT_FALSE(IsOpen());
    EXPECT_EQ(Items().size(), 2U);
}

TEST_F(DelDoubleCheckPageTest, AtTheLimitTheHiddenButtonsCannotBePressed) {
    box_->SetItemName(L"custom_background_btn_1");
    const DuiLib::Rect confirm = Control(L"confirm").GetPos();
    box_->SetMaxLimitText(L"You have enough.");
    box_->PaintManager().UpdateLayout();
    const DuiLib::CControlUI* under =
        box_->PaintManager().FindControl(POINT{(confirm.left + confirm.right) / 2, (confirm.top + confirm.bottom) / 2});
    EXPECT_NE(under, &Control(L"confirm"));
    Input::Key(VK_RETURN);
    EXPECT_FALSE(IsOpen());
    EXPECT_EQ(Items().size(), 2U);
}

TEST_F(DelDoubleCheckPageTest, AtTheLimitEscapeClosesToo) {
    box_->SetMaxLimitText(L"You have enough.");
    Input::Key(VK_ESCAPE);
    EXPECT_FALSE(IsOpen());
}

// --- colours

TEST_F(DelDoubleCheckPageTest, TheBlueButtonDarkensUnderThePointerAndWhenPressed) {
    Input::MoveTo(Control(L"confirm"));
    EXPECT_EQ(Color(L"confirm"), 0xFF0954EB);
    Input::ButtonDown();
    EXPECT_EQ(Color(L"confirm"), 0xFF084CD5);
    Input::MoveTo(Control(L"box_title"));
    EXPECT_EQ(Color(L"confirm"), kBlue);
    Input::ButtonUp();
    EXPECT_EQ(Color(L"confirm"), kBlue);
    EXPECT_TRUE(IsOpen());
}

TEST_F(DelDoubleCheckPageTest, TheGreyButtonReturnsToItsColour) {
    Input::MoveTo(Control(L"cancel"));
    EXPECT_EQ(Color(L"cancel"), 0x17000000U);
    Input::ButtonDown();
    EXPECT_NE(Color(L"cancel"), 0x17000000U);
    Input::MoveTo(Control(L"confirm"));
    EXPECT_EQ(Color(L"cancel"), kGrey);
    Input::ButtonUp();
    EXPECT_TRUE(IsOpen());
    for (int round = 0; round < 5; ++round) {
        Input::MoveTo(Control(L"cancel"));
        EXPECT_EQ(Color(L"cancel"), 0x17000000U);
        Input::MoveTo(Control(L"confirm"));
        EXPECT_EQ(Color(L"cancel"), kGrey);
    }
    Input::MoveTo(Control(L"cancel"));
    EXPECT_TRUE(LeavesInColor(L"cancel", kGrey));
}

TEST_F(DelDoubleCheckPageTest, TheNoticesButtonIsBlueToo) {
    box_->SetMaxLimitText(L"You have enough.");
    box_->PaintManager().UpdateLayout();
    Input::MoveTo(Control(L"maxLimit"));
    EXPECT_EQ(Color(L"maxLimit"), 0xFF0954EB);
    EXPECT_TRUE(LeavesInColor(L"maxLimit", kBlue));
}

TEST_F(DelDoubleCheckPageTest, OnlyThePressIsForEveryControl) {
    DuiLib::CControlUI& title = Control(L"box_title");
    title.SetBkColor(kBlue);
    DuiLib::CPaintManagerUI& manager = box_->PaintManager();
    manager.SendNotify(&title, L"mouseenter");
    EXPECT_EQ(title.GetBkColor(), kBlue);
    manager.SendNotify(&title, L"buttondown");
    EXPECT_EQ(title.GetBkColor(), 0xFF0950E0);
    manager.SendNotify(&title, L"mouseleave");
    EXPECT_EQ(title.GetBkColor(), 0xFF0950E0);
    manager.SendNotify(&title, L"click");
    EXPECT_TRUE(IsOpen());
}

TEST_F(DelDoubleCheckPageTest, WithoutAnOwnerThereIsNoWindow) {
    Expect("[L4] paintMgr is nullptr(DelDoubleCheckPage::DelDoubleCheckPage)");
    DelDoubleCheckPage box(nullptr);
    EXPECT_EQ(box.GetHWND(), nullptr);
    box.SetItemName(L"custom_background_btn_1");
    box.SetMaxLimitText(L"enough");
    EXPECT_THAT(LogOf("DelDoubleCheckPage::DelDoubleCheckPage"),
                ElementsAre("[L4] paintMgr is nullptr(DelDoubleCheckPage::DelDoubleCheckPage)"));
}

// --- from the settings window

TEST_F(MainWindowTest, AsksBeforeACustomBackgroundIsDeleted) {
    const wchar_t name[] = L"custom_background_btn_3";
    const int index = Home().AddCustomItem(name, L"drawable/LumiCamera/thumb_add.png", false);
    HomeServiceTestAccess::AddCustomItem({name, 0, index, L"C:\\nowhere.jpg", L"C:\\nowhere.png"});
    Reveal(name);
    Input::MoveTo(Control(name));
    ASSERT_TRUE(Control(L"custom_background_btn_3_del").IsVisible());

    const auto press = [](const wchar_t* button) {
        const HWND box = FindThreadWindow(L"Delete Double Check");
        auto* window = reinterpret_cast<DuiLib::CWindowWnd*>(GetWindowLongPtrW(box, GWLP_USERDATA));
        Input::Click(*dynamic_cast<DuiLib::WindowImplBase*>(window)->PaintManager().FindControl(button));
    };
    const auto shown = [] { return FindThreadWindow(L"Delete Double Check") != nullptr; };
    const auto gone = [] { return FindThreadWindow(L"Delete Double Check") == nullptr; };
    Script cancel;
    cancel.When("the question comes", shown, [&] { press(L"cancel"); }).Wait("it goes", gone);
    cancel.Run([&] { Input::Click(Control(L"custom_background_btn_3_del")); });
    EXPECT_EQ(HomeServiceTestAccess::CustomItems().size(), 1U);
    EXPECT_NE(Manager().FindControl(name), nullptr);

    Input::MoveTo(Control(name));
    Script confirm;
    confirm.When("the question comes", shown, [&] { press(L"confirm"); }).Wait("it goes", gone);
    confirm.Run([&] { Input::Click(Control(L"custom_background_btn_3_del")); });
    EXPECT_THAT(HomeServiceTestAccess::CustomItems(), IsEmpty());
    EXPECT_EQ(Manager().FindControl(name), nullptr);
    EXPECT_EQ(dynamic_cast<DuiLib::CContainerUI&>(Control(L"background_replace_btn_group")).GetCount(), 15);
}

TEST_F(MainWindowTest, TellsThatThereAreEnoughBackgrounds) {
    Script script;
    script
        .When(
            "the notice comes", [] { return FindThreadWindow(L"Delete Double Check") != nullptr; },
            [] { Input::Key(VK_RETURN); })
        .Wait("it goes", [] { return FindThreadWindow(L"Delete Double Check") == nullptr; });
    script.Run([] {
        Window().ShowLimitNotice();
        Window().ShowLimitNotice();
    });
    EXPECT_EQ(FindThreadWindow(L"Delete Double Check"), nullptr);
    EXPECT_TRUE(IsWindowEnabled(Window().GetHWND()));
}

}  // namespace
