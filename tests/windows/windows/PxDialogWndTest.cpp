#include "windows/PxDialogWnd.h"

#include <map>
#include <utility>

#include "DuiLib/TextUI.h"
#include "tests/support/ImportHook.h"
#include "tests/support/Protocol.h"
#include "tests/support/WineOnly.h"
#include "tests/windows/support/OpenedLinks.h"
#include "tests/windows/support/Screen.h"
#include "tests/windows/support/Script.h"
#include "tests/windows/windows/WindowTests.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
namespace Protocol = harness::Protocol;

constexpr char kClosed[] = "[L4] OnMessageReceive close win(PxDialogWnd::OnMessageReceive)";

class PxDialogWndTest : public ProgramTest {
  protected:
    void SetUp() override {
        ProgramTest::SetUp();
        dialog_.emplace();
        dialog_->Run(GetModuleHandleW(nullptr));
        // The dialog's own greeting; the model's came long ago.
        ASSERT_TRUE(Service().WaitFor(ServerEvent::Kind::kHello, Input::kPatience));
    }
    void TearDown() override {
        dialog_.reset();
        Input::TakeQuit();
        ProgramTest::TearDown();
    }

    DuiLib::CControlUI& Control(const wchar_t* name) { return *dialog_->PaintManager().FindControl(name); }
    bool IsOpen() const { return IsWindow(dialog_->GetHWND()) != FALSE; }
    // Shows the dialog with that text, and does that when it is there; returns when it has closed.
    void ShowAnd(const std::wstring& text, const Script::Action& act) {
        Script script;
        script.When(
            "the dialog is shown", [this] { return IsWindowVisible(dialog_->GetHWND()) != FALSE; },
            [this, act] {
                ASSERT_TRUE(Input::Activate(dialog_->GetHWND()));
                dialog_->PaintManager().UpdateLayout();
                act();
            });
        script.Run([&] { dialog_->SetMessageText(text); });
        EXPECT_FALSE(IsOpen());
    }
    static void SendToAll(std::int32_t code, std::int32_t subCode) {
        EXPECT_EQ(Service().Send(Protocol::FromService(code, subCode)), 2);  // the model and the dialog
    }

    std::optional<PxDialogWnd> dialog_;
};

TEST_F(PxDialogWndTest, IsReadyButHiddenUntilItHasItsText) {
    const HWND window = dialog_->GetHWND();
    wchar_t text[64] = {};
    GetClassNameW(window, text, 64);
    EXPECT_STREQ(text, L"Camera");
    GetWindowTextW(window, text, 64);
    EXPECT_STREQ(text, L"Pixora");
    EXPECT_EQ(GetWindowLongPtrW(window, GWL_STYLE) & 0x808A0000, 0x808A0000);
    EXPECT_TRUE(GetWindowLongPtrW(window, GWL_EXSTYLE) & WS_EX_TOOLWINDOW);
    EXPECT_NE(SendMessageW(window, WM_GETICON, ICON_BIG, 0), 0);
    EXPECT_FALSE(IsWindowVisible(window));
}

TEST_F(PxDialogWndTest, ShowsItsTextUntilItsButtonIsPressed) {
    ShowAnd(L"The driver is missing.", [this] {
        EXPECT_EQ(Control(L"msgbox_content").GetText(), L"The driver is missing.");
        EXPECT_FALSE(dynamic_cast<DuiLib::CTextUI&>(Control(L"msgbox_content")).IsShowHtml());
        PaintedBy(dialog_->PaintManager(), L"dialog");
        Input::Click(Control(L"closebtn"));
    });
}

TEST_F(PxDialogWndTest, EscapeAndTheSystemCloseIt) {
    ShowAnd(L"text", [] { Input::Key(VK_ESCAPE); });
    dialog_.emplace();
    dialog_->Run(GetModuleHandleW(nullptr));
    ShowAnd(L"text", [this] { PostMessageW(dialog_->GetHWND(), WM_SYSCOMMAND, SC_CLOSE, 0); });
}

TEST_F(PxDialogWndTest, OtherClicksDoNothing) {
    ShowAnd(L"text", [this] {
        dialog_->PaintManager().SendNotify(&Control(L"title_text"), L"click");
        dialog_->PaintManager().SendNotify(nullptr, L"click");
        dialog_->PaintManager().SendNotify(&Control(L"closebtn"), L"mouseenter");
        EXPECT_TRUE(IsOpen());
        dialog_->PaintManager().SendNotify(&Control(L"closebtn"), L"click");
    });
}

TEST_F(PxDialogWndTest, TheServicesCloseMessageClosesIt) {
    Expect(kClosed);
    ShowAnd(L"text", [] { SendToAll(Protocol::kNotificationCode, Protocol::kResetSubCode); });
    EXPECT_THAT(LogOf("PxDialogWnd::OnMessageReceive"), ElementsAre(kClosed));
}

// What the dialog has asked its pipe client for.
using Callback = IPCMessageClient::MessageCallback;
std::map<std::int32_t, Callback> g_callbacks;
const harness::ImportHook* g_register = nullptr;

// As a member function of IPCMessageClient.
void Register(IPCMessageClient* self, std::int32_t code, Callback callback) {
    g_callbacks[code] = callback;
    g_register->Original<decltype(&Register)>()(self, code, std::move(callback));
}

// Each message is handed over by the test itself, so that it has been handled when the test goes on.
TEST_F(PxDialogWndTest, OneMessageOfOneCodeClosesIt) {
    dialog_.emplace();
    {
        const harness::ImportHook hook(nullptr, "IPCMessageClient23RegisterMessageCallback", &Register);
        g_register = &hook;
        dialog_->Run(GetModuleHandleW(nullptr));
    }
    const std::map<std::int32_t, Callback> callbacks = std::exchange(g_callbacks, {});
    ASSERT_EQ(callbacks.size(), 1U);
    ASSERT_EQ(callbacks.begin()->first, Protocol::kNotificationCode);
    const auto receive = [&](std::int32_t code, std::int32_t subCode) {
        TagIPCMessageItem item = Protocol::FromService(code, subCode);
        callbacks.begin()->second(item);
        Input::Pump();
    };
    for (const std::int32_t subCode : {Protocol::kResetSubCode + 1, -1, 0, -Protocol::kResetSubCode})
        receive(Protocol::kNotificationCode, subCode);
    receive(Protocol::kSettingsChangedCode, Protocol::kResetSubCode);
    EXPECT_TRUE(IsOpen());
    EXPECT_THAT(LogOf("PxDialogWnd::OnMessageReceive"), IsEmpty());
    EXPECT_FALSE(Input::TakeQuit());

    Expect(kClosed);
    for (int i = 0; i < 3; ++i)
        receive(Protocol::kNotificationCode, Protocol::kResetSubCode);
    EXPECT_TRUE(Input::PumpUntil([this] { return !IsOpen(); }));
    EXPECT_THAT(LogOf("PxDialogWnd::OnMessageReceive"), ElementsAre(kClosed));
    EXPECT_TRUE(Input::TakeQuit());
}

TEST_F(PxDialogWndTest, MarkupHasLinksAndDoesNotDragTheWindow) {
    PIXORA_WINE_ONLY(OpenedLinks::kWhy);
    EXPECT_TRUE(Control(L"msgbox_content").IsNcHit());
    dialog_->UseHtmlMessage();
    EXPECT_FALSE(Control(L"msgbox_content").IsNcHit());
    ShowAnd(L"<b>Effects</b><br><a href=\"https://support.example.com/two\">See how</a>", [&] {
        auto& text = dynamic_cast<DuiLib::CTextUI&>(Control(L"msgbox_content"));
        EXPECT_EQ(text.GetLinkCount(), 1);
        {
            const OpenedLinks links;
            dialog_->PaintManager().SendNotify(&text, L"link");
            EXPECT_THAT(links.WaitFor(1), ElementsAre("https://support.example.com/two"));
        }
        EXPECT_TRUE(IsOpen());
        Input::Click(Control(L"closebtn"));
    });
}

TEST_F(PxDialogWndTest, IsDraggedByItsTitleAndItsPlainText) {
    const auto hit = [this](const wchar_t* name) {
        dialog_->PaintManager().UpdateLayout();
        const DuiLib::Rect& place = Control(name).GetPos();
        POINT point{(place.left + place.right) / 2, (place.top + place.bottom) / 2};
        ClientToScreen(dialog_->GetHWND(), &point);
        return SendMessageW(dialog_->GetHWND(), WM_NCHITTEST, 0, MAKELPARAM(point.x, point.y));
    };
    EXPECT_EQ(hit(L"title_text"), HTCAPTION);
    EXPECT_EQ(hit(L"msgbox_content"), HTCAPTION);
    EXPECT_EQ(hit(L"closebtn"), HTCLIENT);
    dialog_->UseHtmlMessage();
    EXPECT_EQ(hit(L"msgbox_content"), HTCLIENT);
}

// Closed without a key: where no window manager is, the keyboard may leave a window that was minimised once more.
TEST_F(PxDialogWndTest, ASecondStartFindsIt) {
    ShowAnd(L"text", [this] {
        ShowWindow(dialog_->GetHWND(), SW_MINIMIZE);
        dialog_->ActivateExisting();
        EXPECT_TRUE(Input::PumpUntil([this] { return GetForegroundWindow() == dialog_->GetHWND(); }));
        EXPECT_FALSE(IsIconic(dialog_->GetHWND()));
        PostMessageW(dialog_->GetHWND(), WM_SYSCOMMAND, SC_CLOSE, 0);
    });
}

// The rows of the rectangle that something is drawn in.
std::pair<int, int> InkRows(const Picture& picture, const DuiLib::Rect& px) {
    const DWORD ground = picture.At({px.left, px.top});
    std::pair<int, int> rows{px.bottom, px.top};
    for (int y = px.top; y < px.bottom; ++y) {
        for (int x = px.left; x < px.right; ++x) {
            if (picture.At({x, y}) != ground) {
                rows = {std::min(rows.first, y), y};
            }
        }
    }
    return rows;
}

TEST_F(PxDialogWndTest, TheTextStandsLevelWithThePicture) {
    Control(L"msgbox_content").SetText(L"HHH");
    dialog_->PaintManager().UpdateLayout();
    const Picture picture = PaintedBy(dialog_->PaintManager());
    const DuiLib::Rect sign = Control(L"dialog_picture").GetPos();
    const auto [top, bottom] = InkRows(picture, Control(L"msgbox_content").GetPos());
    EXPECT_LE(top, bottom);
    EXPECT_NEAR((top + bottom) / 2.0, (sign.top + sign.bottom) / 2.0, 2);
}

}  // namespace
