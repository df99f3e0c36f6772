#include "DuiLib/NotifyPump.h"

#include "DuiLib/ContainerUI.h"
#include "TestWindow.h"

namespace DuiLib::Test {
namespace {

class Page : public CNotifyPump {
  public:
    std::vector<std::wstring> calls;

  protected:
    const NotifyMap& GetMessageMap() const override {
        static const NotifyMap map{Bind(NotifyType::kClick, L"special", &Page::OnSpecial),
                                   Bind(NotifyType::kClick, nullptr, &Page::OnClick),
                                   Bind(NotifyType::kMouseEnter, nullptr, &Page::OnEnter)};
        return map;
    }

  private:
    void OnSpecial(TNotifyUI& msg) { calls.push_back(L"special " + msg.sender->GetName()); }
    void OnClick(TNotifyUI& msg) { calls.push_back(L"click " + msg.sender->GetName()); }
    void OnEnter(TNotifyUI& msg) { calls.push_back(L"enter " + msg.sender->GetName()); }
};

class ClickWindow : public TestWindow {
  public:
    using TestWindow::TestWindow;
    std::vector<std::wstring> clicks;

  protected:
    void OnClick(TNotifyUI& msg) override { clicks.push_back(msg.sender->GetName()); }
};

TEST(NotifyPump, NotificationsGoToThePageThatTheNearestAncestorNames) {
    ClickWindow window(R"(<Window size="300,200"><VerticalLayout>
        <HorizontalLayout name="page" virtualwnd="Page" height="40"><Button name="plain"/><Button name="special"/>
            <Container virtualwnd="Nobody"><Button name="stray"/></Container></HorizontalLayout>
        <Button name="own" height="40"/></VerticalLayout></Window>)");
    Page page;
    EXPECT_FALSE(window.AddVirtualWnd(L"", &page));
    EXPECT_FALSE(window.AddVirtualWnd(L"Page", nullptr));
    EXPECT_TRUE(window.AddVirtualWnd(L"Page", &page));
    EXPECT_FALSE(window.AddVirtualWnd(L"Page", &page));
    window.Click(L"plain");
    window.Click(L"special");
    window.Click(L"own");
    window.Click(L"stray");
    EXPECT_EQ(page.calls,
              (std::vector<std::wstring>{L"enter plain", L"click plain", L"enter special", L"special special"}));
    EXPECT_EQ(window.clicks, (std::vector<std::wstring>{L"own", L"stray"}));
    EXPECT_TRUE(window.RemoveVirtualWnd(L"Page"));
    EXPECT_FALSE(window.RemoveVirtualWnd(L"Page"));
    window.Click(L"plain");
    EXPECT_EQ(window.clicks.back(), L"plain");
}

TEST(NotifyPump, NotificationWithoutSenderFindsEntriesForAny) {
    Page page;
    TNotifyUI msg{L"unknown", nullptr, 0, 0};
    EXPECT_FALSE(page.DispatchNotify(msg));
}

}  // namespace
}  // namespace DuiLib::Test
