#include "tests/windows/windows/WindowTests.h"

#include "windows/DelButtonToolTip.h"
#include "windows/ToolTipWnd.h"

namespace {

// The hints remember the first window's paint manager for the life of the process, so every window has its place here.
std::optional<MainWindow>& TheWindow() {
    static std::optional<MainWindow> window;
    return window;
}

}  // namespace

int PassedOnMessages::Count(UINT message) const {
    int count = 0;
    for (const auto& [key, number] : counts_)
        count += key.first == message ? number : 0;
    return count;
}

OwnerWindow::OwnerWindow() {
    Create(nullptr, L"owner", WS_POPUP, 0, 300, 200);
    ShowWindow();
    Input::Activate(GetHWND());
    PaintManager().UpdateLayout();
}

void MainWindow::Notify(DuiLib::TNotifyUI& msg) {
    if (!counted_.empty() && msg.type == DuiLib::NotifyType::kClick && msg.sender &&
        msg.sender->GetName() == counted_) {
        ++clicks_;
        return;
    }
    PxMainWnd::Notify(msg);
}

const DuiLib::CNotifyPump::NotifyMap& MainWindow::GetMessageMap() const {
    static const NotifyMap map = [this] {
        NotifyMap all = PxMainWnd::GetMessageMap();
        for (const wchar_t* type : {DuiLib::NotifyType::kValueChanged, DuiLib::NotifyType::kMoveValueChanged})
            all.push_back(Bind<MainWindow>(type, nullptr, &MainWindow::OnAny));
        return all;
    }();
    return map;
}

void MainWindowTest::SetUp() {
    ProgramTest::SetUp();
    TheWindow().emplace();
    Window().Open(GetModuleHandleW(nullptr));
    ASSERT_TRUE(Input::Activate(Window().GetHWND()));
    Manager().UpdateLayout();
}

void MainWindowTest::TearDown() {
    Destroy();
    ProgramTest::TearDown();
}

MainWindow& MainWindowTest::Window() {
    return *TheWindow();
}

bool MainWindowTest::Exists() {
    return TheWindow() && IsWindow(Window().GetHWND());
}

void MainWindowTest::Destroy() {
    if (!TheWindow())
        return;
    ToolTipWnd::GetInstance(nullptr).Show(false);
    DelButtonToolTip::GetInstance(nullptr).Show(false);
    TheWindow().reset();
    Input::TakeQuit();
}

HomePage& MainWindowTest::Home() {
    return dynamic_cast<HomePage&>(*Window().FindPage(L"HomePage"));
}

void MainWindowTest::Reveal(const std::wstring& name) {
    DuiLib::CControlUI& control = Control(name);
    Manager().UpdateLayout();
    control.GetParent()->EnsureVisible(control);
    Manager().UpdateLayout();
}
