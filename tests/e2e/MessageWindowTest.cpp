// The message window that is shown instead of the settings.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/e2e/support/Machine.h"
#include "tests/e2e/support/Program.h"
#include "tools/service/PipeServer.h"

namespace e2e {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr wchar_t kPipe[] = L"\\\\.\\Pipe\\iNotoraAssistant";
constexpr char kClosed[] = "[L4] OnMessageReceive close win(PxDialogWnd::OnMessageReceive)";
constexpr std::int32_t kNotification = 0x22711;
constexpr std::int32_t kClose = 0x40000;

TagIPCMessageItem Notification(std::int32_t code, std::int32_t subCode) {
    TagIPCMessageItem item;
    item.slot[1] = subCode;
    item.slot[2] = code;
    return item;
}

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
    EXPECT_THAT(Machine::UnexpectedFailures(), IsEmpty());
}

TEST_F(MessageWindowTest, ClosesByEscapeAndByAltF4) {
    Open(0, 1);
    program_->PressKey(VK_ESCAPE);
    EXPECT_EQ(program_->WaitForEnd(), 0U);
    Open(0, 1);
    program_->PressKey(VK_F4, true);
    EXPECT_EQ(program_->WaitForEnd(), 0U);
}

TEST_F(MessageWindowTest, ClosesByTheServicesMessageAndByNoOther) {
    PipeServer service;
    ASSERT_TRUE(service.Start(kPipe));
    Open(1, 0);
    ASSERT_TRUE(service.WaitFor(ServerEvent::Kind::kHello, kPatience));
    EXPECT_EQ(service.Send(Notification(kNotification, 0x40001)), 1);
    EXPECT_EQ(service.Send(Notification(kNotification, -1)), 1);
    EXPECT_EQ(service.Send(Notification(0x4B273B, kClose)), 1);
    // Messages are handled in order: when a second connection's greeting is answered, those are done with.
    EXPECT_TRUE(program_->Find(L"msgbox_content"));
    EXPECT_FALSE(Machine::LogHolds(kClosed));
    EXPECT_TRUE(program_->Runs());

    EXPECT_EQ(service.Send(Notification(kNotification, kClose)), 1);
    EXPECT_EQ(program_->WaitForEnd(), 0U);
    EXPECT_THAT(Machine::UnexpectedFailures(), ElementsAre(kClosed));
}

TEST_F(MessageWindowTest, OpensItsLinkWithTheMouseAndDoesNotMove) {
    Open(1, 0);
    EXPECT_TRUE(program_->Screenshot(L"message-unavailable", 16));
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
