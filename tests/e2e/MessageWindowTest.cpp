// The message window that is shown instead of the settings.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/e2e/support/Machine.h"
#include "tests/e2e/support/Program.h"
#include "tests/support/WineOnly.h"
#include "tools/service/PipeServer.h"

namespace e2e {
namespace {

using testing::ElementsAre;

constexpr char kClosed[] = "[L4] OnMessageReceive close win(PxDialogWnd::OnMessageReceive)";
namespace Protocol = harness::Protocol;

class MessageWindowTest : public testing::Test {
  protected:
    void Open(DWORD driver, DWORD algorithm) {
        Machine::Reset();
        Machine::SetNumber(L"filter_driver_install", driver);
        Machine::SetNumber(L"init_algorithm", algorithm);
        program_.emplace();
        ASSERT_TRUE(program_->WaitForWindow());
    }

    std::optional<Program> program_;
};

TEST_F(MessageWindowTest, ClosesByItsButton) {
    Open(0, 1);
    EXPECT_TRUE(program_->Screenshot(L"message-driver-broken", 16));
    program_->Click(L"closebtn");
    EXPECT_EQ(program_->WaitForEnd(), 0U);
}

TEST_F(MessageWindowTest, ClosesByEscapeAndByAltF4) {
    Open(0, 1);
    program_->PressKey(VK_ESCAPE);
    EXPECT_EQ(program_->WaitForEnd(), 0U);
    Open(0, 1);
    program_->PressKey(VK_F4, true);
    EXPECT_EQ(program_->WaitForEnd(), 0U);
}

TEST_F(MessageWindowTest, ClosesByTheServicesMessage) {
    PipeServer service;
    ASSERT_TRUE(service.Start(Protocol::kPipeName));
    Open(1, 0);
    ASSERT_TRUE(service.WaitFor(ServerEvent::Kind::kHello, kPatience));
    EXPECT_EQ(service.Send(Protocol::FromService(Protocol::kNotificationCode, Protocol::kResetSubCode)), 1);
    Machine::Expect(kClosed);
    EXPECT_EQ(program_->WaitForEnd(), 0U);
}

TEST_F(MessageWindowTest, OpensItsLinkWithTheMouseAndDoesNotMove) {
    Open(1, 0);
    EXPECT_TRUE(program_->Screenshot(L"message-unavailable", 16));
    PIXORA_WINE_ONLY(Machine::kNoLinks);
    const auto content = program_->Find(L"msgbox_content");
    ASSERT_TRUE(content);
    RECT before = {};
    GetWindowRect(program_->Window(), &before);

    // The link is somewhere in the text: clicks beside it do nothing.
    for (LONG y = content->screenPx.top + 4; y < content->screenPx.bottom; y += 8) {
        for (LONG x = content->screenPx.left + 8; x < content->screenPx.right; x += 40) {
            program_->ClickAt({x, y});
            if (WaitUntil([] { return !Machine::OpenedLinks().empty(); }, std::chrono::milliseconds(150)))
                break;
        }
        if (!Machine::OpenedLinks().empty())
            break;
    }
    EXPECT_THAT(Machine::OpenedLinks(), ElementsAre("https://support.example.com/pixora/algorithm"));
    RECT after = {};
    GetWindowRect(program_->Window(), &after);
    EXPECT_TRUE(EqualRect(&before, &after));
}

TEST_F(MessageWindowTest, PlainTextDragsTheWindow) {
    Open(0, 1);
    const auto content = program_->Find(L"msgbox_content");
    ASSERT_TRUE(content);
    const POINT middle{(content->screenPx.left + content->screenPx.right) / 2,
                       (content->screenPx.top + content->screenPx.bottom) / 2};
    const LPARAM point = MAKELPARAM(middle.x, middle.y);
    EXPECT_EQ(SendMessageW(program_->Window(), WM_NCHITTEST, 0, point), HTCAPTION);
    const auto button = program_->Find(L"closebtn");
    ASSERT_TRUE(button);
    const LPARAM onButton = MAKELPARAM(button->screenPx.left + 5, button->screenPx.top + 5);
    EXPECT_EQ(SendMessageW(program_->Window(), WM_NCHITTEST, 0, onButton), HTCLIENT);
}

TEST_F(MessageWindowTest, HasNoTaskbarButton) {
    Open(0, 1);
    EXPECT_TRUE(GetWindowLongPtrW(program_->Window(), GWL_EXSTYLE) & WS_EX_TOOLWINDOW);
}

}  // namespace
}  // namespace e2e
