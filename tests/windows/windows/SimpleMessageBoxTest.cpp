#include "windows/SimpleMessageBox.h"

#include "DuiLib/TextUI.h"
#include "tests/support/WineOnly.h"
#include "tests/windows/support/OpenedLinks.h"
#include "tests/windows/support/Screen.h"
#include "tests/windows/support/Script.h"
#include "tests/windows/windows/WindowTests.h"

namespace {

using testing::ElementsAre;

class SimpleMessageBoxTest : public ProgramTest {
  protected:
    void SetUp() override {
        ProgramTest::SetUp();
        box_.emplace(&owner_.PaintManager());
    }
    void TearDown() override {
        box_.reset();
        ProgramTest::TearDown();
    }

    DuiLib::CControlUI& Control(const wchar_t* name) { return *box_->PaintManager().FindControl(name); }
    bool MaskIsVisible() { return owner_.Control(L"mask_control").IsVisible(); }
    // Shows the box modally and does that when it is there.
    void ShowAnd(const Script::Action& act) {
        Script script;
        script.When(
            "the box is shown", [this] { return IsWindowVisible(box_->GetHWND()) != FALSE; },
            [this, act] {
                EXPECT_TRUE(MaskIsVisible());
                EXPECT_FALSE(IsWindowEnabled(owner_.GetHWND()));
                ASSERT_TRUE(Input::Activate(box_->GetHWND()));
                box_->PaintManager().UpdateLayout();
                act();
            });
        script.Run([this] { box_->ShowBox(); });
        EXPECT_EQ(box_->GetHWND(), nullptr);
        EXPECT_TRUE(IsWindowEnabled(owner_.GetHWND()));
    }

    OwnerWindow owner_;
    std::optional<SimpleMessageBox> box_;
};

TEST_F(SimpleMessageBoxTest, StandsInTheMiddleOfItsOwner) {
    const HWND window = box_->GetHWND();
    wchar_t text[64] = {};
    GetClassNameW(window, text, 64);
    EXPECT_STREQ(text, L"MESSAGE BOX");
    GetWindowTextW(window, text, 64);
    EXPECT_STREQ(text, L"MESSAGE BOX");
    EXPECT_EQ(GetWindow(window, GW_OWNER), owner_.GetHWND());
    EXPECT_FALSE(IsWindowVisible(window));
    RECT box = {};
    RECT owner = {};
    GetWindowRect(window, &box);
    GetWindowRect(owner_.GetHWND(), &owner);
    EXPECT_NEAR(box.left + box.right, owner.left + owner.right, 1);
    EXPECT_NEAR(box.top + box.bottom, owner.top + owner.bottom, 1);
}

TEST_F(SimpleMessageBoxTest, SaysItsTextAndOk) {
    Control(L"msg_ok_btn").SetText(L"");
    box_->SetContent(L"The camera is gone.");
    EXPECT_EQ(Control(L"msgbox_content").GetText(), L"The camera is gone.");
    EXPECT_EQ(Control(L"msg_ok_btn").GetText(), L"OK");
    const Picture picture = PaintedBy(box_->PaintManager(), L"message-box");
    EXPECT_GT(picture.ColorsIn({0, 0, 420, 236}), 10);
}

TEST_F(SimpleMessageBoxTest, DimsItsOwnerUntilEitherButton) {
    EXPECT_FALSE(MaskIsVisible());
    ShowAnd([this] {
        PaintedBy(owner_.PaintManager(), L"dimmed-owner");
        Input::Click(Control(L"msg_ok_btn"));
    });
    EXPECT_FALSE(MaskIsVisible());
    box_.emplace(&owner_.PaintManager());
    ShowAnd([this] { Input::Click(Control(L"msg_close_btn")); });
    EXPECT_FALSE(MaskIsVisible());
}

TEST_F(SimpleMessageBoxTest, TheMaskGoesBeforeTheBox) {
    bool visibleWhileClosing = true;
    ShowAnd([&] {
        box_->PaintManager().SendNotify(&Control(L"msg_ok_btn"), L"click");
        EXPECT_TRUE(IsWindowVisible(box_->GetHWND()));
        visibleWhileClosing = MaskIsVisible();
    });
    EXPECT_FALSE(visibleWhileClosing);
}

TEST_F(SimpleMessageBoxTest, EscapeAndEnterAreTheButtons) {
    ShowAnd([] { Input::Key(VK_ESCAPE); });
    EXPECT_FALSE(MaskIsVisible());
    box_.emplace(&owner_.PaintManager());
    ShowAnd([] { Input::Key(VK_RETURN); });
    EXPECT_FALSE(MaskIsVisible());
}

TEST_F(SimpleMessageBoxTest, TheSystemsCloseIsItsCloseButton) {
    ShowAnd([this] { SendMessageW(box_->GetHWND(), WM_SYSCOMMAND, SC_CLOSE, 0); });
    EXPECT_FALSE(MaskIsVisible());
    box_.emplace(&owner_.PaintManager());
    constexpr LPARAM kWithAlt = 0x20000001;
    ShowAnd([this] { PostMessageW(box_->GetHWND(), WM_SYSKEYDOWN, VK_F4, kWithAlt); });
    EXPECT_FALSE(MaskIsVisible());
}

TEST_F(SimpleMessageBoxTest, ClosedInAnotherWayTheMaskStaysAndTakesNoMouse) {
    ShowAnd([this] { box_->Close(); });
    EXPECT_TRUE(MaskIsVisible());
    owner_.PaintManager().UpdateLayout();
    const DuiLib::Rect& place = owner_.Control(L"closebtn").GetPos();
    EXPECT_TRUE(owner_.Control(L"mask_control").GetPos().Contains({place.left + 5, place.top + 5}));
    EXPECT_EQ(owner_.PaintManager().FindControl(POINT{place.left + 5, place.top + 5}), &owner_.Control(L"closebtn"));
}

TEST_F(SimpleMessageBoxTest, WithoutAWindowNothingIsDimmed) {
    DestroyWindow(box_->GetHWND());
    box_->ShowBox();
    EXPECT_FALSE(MaskIsVisible());
}

TEST_F(SimpleMessageBoxTest, BeginsOnItsButton) {
    ShowAnd([this] {
        EXPECT_EQ(box_->PaintManager().GetFocus(), &Control(L"msg_ok_btn"));
        Input::Key(VK_SPACE);
    });
    EXPECT_FALSE(MaskIsVisible());
}

TEST_F(SimpleMessageBoxTest, AScreenReaderGetsTitleAndText) {
    box_->SetContent(L"The camera is gone.");
    const DuiLib::WindowSpec& spec = box_->PaintManager().GetWindowSpec();
    EXPECT_EQ(Control(spec.accTitle.c_str()).GetText(), L"Pixora");
    EXPECT_EQ(Control(spec.accMessage.c_str()).GetText(), L"The camera is gone.");
}

TEST_F(SimpleMessageBoxTest, OtherClicksDoNothing) {
    ShowAnd([this] {
        box_->PaintManager().SendNotify(&Control(L"msgbox_content"), L"click");
        box_->PaintManager().SendNotify(&Control(L"title_text"), L"click");
        box_->PaintManager().SendNotify(nullptr, L"click");
        Input::Click(Control(L"buttons"));
        EXPECT_TRUE(IsWindowVisible(box_->GetHWND()));
        EXPECT_TRUE(MaskIsVisible());
        Input::Key(VK_RETURN);
    });
}

TEST_F(SimpleMessageBoxTest, PlainTextDragsTheBoxAndMarkupDoesNot) {
    DuiLib::CControlUI& content = Control(L"msgbox_content");
    EXPECT_TRUE(content.IsNcHit());
    EXPECT_FALSE(dynamic_cast<DuiLib::CTextUI&>(content).IsShowHtml());
    box_->UseHtmlMessage();
    EXPECT_FALSE(content.IsNcHit());
    EXPECT_TRUE(dynamic_cast<DuiLib::CTextUI&>(content).IsShowHtml());
    EXPECT_EQ(dynamic_cast<DuiLib::CTextUI&>(content).GetTextStyle() & (DT_CENTER | DT_RIGHT), 0U);
}

TEST_F(SimpleMessageBoxTest, FollowsItsLinks) {
    PIXORA_WINE_ONLY(OpenedLinks::kWhy);
    box_->UseHtmlMessage();
    box_->SetContent(L"<a href=\"https://support.example.com/one\">one</a>");
    auto& text = dynamic_cast<DuiLib::CTextUI&>(Control(L"msgbox_content"));
    ASSERT_EQ(text.GetLinkCount(), 1);
    ShowAnd([&] {
        box_->PaintManager().SetFocus(&text, true);
        ASSERT_TRUE(text.IsFocused());
        Input::Pump();
        {
            const OpenedLinks links;
            Input::Key(VK_RETURN);
            EXPECT_THAT(links.WaitFor(1), ElementsAre("https://support.example.com/one"));
        }
        EXPECT_TRUE(IsWindowVisible(box_->GetHWND()));
        Input::Key(VK_ESCAPE);
    });
}

TEST_F(SimpleMessageBoxTest, OnlyALinkOpensSomething) {
    PIXORA_WINE_ONLY(OpenedLinks::kWhy);
    box_->UseHtmlMessage();
    box_->SetContent(L"<a href=\"https://support.example.com/one\">one</a>");
    const OpenedLinks links;
    DuiLib::CPaintManagerUI& manager = box_->PaintManager();
    for (const wchar_t* type : {L"click", L"mouseenter", L"linked"})
        manager.SendNotify(&Control(L"msgbox_content"), type);
    manager.SendNotify(&Control(L"msg_ok_btn"), L"link");  // not a text
    manager.SendNotify(nullptr, L"link");
    manager.SendNotify(&Control(L"msgbox_content"), L"link");
    EXPECT_THAT(links.WaitFor(1), ElementsAre("https://support.example.com/one"));
}

TEST_F(SimpleMessageBoxTest, OnlyTheWebIsOpened) {
    PIXORA_WINE_ONLY(OpenedLinks::kWhy);
    const std::string line = "[L4] no web address: C:\\windows\\notepad.exe(WindowStart::FollowLink)";
    Expect(line);
    box_->UseHtmlMessage();
    const OpenedLinks links;
    box_->SetContent(L"<a href=\"C:\\windows\\notepad.exe\">one</a>");
    box_->PaintManager().SendNotify(&Control(L"msgbox_content"), L"link");
    box_->SetContent(L"<a href=\"https://support.example.com/three\">one</a>");
    box_->PaintManager().SendNotify(&Control(L"msgbox_content"), L"link");
    EXPECT_THAT(links.WaitFor(1), ElementsAre("https://support.example.com/three"));
    EXPECT_THAT(LogOf("WindowStart::FollowLink"), ElementsAre(line));
}

TEST_F(SimpleMessageBoxTest, WithoutAnOwnerThereIsNoBox) {
    Expect("[L4] paintMgr is nullptr(SimpleMessageBox::SimpleMessageBox)");
    SimpleMessageBox box(nullptr);
    EXPECT_EQ(box.GetHWND(), nullptr);
    box.SetContent(L"nobody reads it");
    box.UseHtmlMessage();
    box.ShowBox();
    EXPECT_THAT(LogOf("SimpleMessageBox::SimpleMessageBox"),
                ElementsAre("[L4] paintMgr is nullptr(SimpleMessageBox::SimpleMessageBox)"));
}

}  // namespace
