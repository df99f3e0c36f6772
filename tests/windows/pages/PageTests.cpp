#include "tests/windows/pages/PageTests.h"

#include "DuiLib/OptionUI.h"

HostWindow::HostWindow() {
    SetCurrent(this);
    Create(nullptr, L"host", WS_POPUP, 0, 100, 100);
    ShowWindow();
}

HostWindow::~HostWindow() {
    SetCurrent(nullptr);
}

void HostWindow::ShowMessage(GlobalUtils::MessageBoxKind kind) {
    const std::scoped_lock lock(mutex_);
    messages_.push_back(static_cast<int>(kind));
}

HintWindow* HostWindow::GetHint(Hint hint) {
    if (!hasHints)
        return nullptr;
    return hint == Hint::kOption ? &optionHint : &deleteHint;
}

std::vector<int> HostWindow::Messages() {
    const std::scoped_lock lock(mutex_);
    return messages_;
}

void PageTest::SetUp() {
    ProgramTest::SetUp();
    host_ = std::make_unique<HostWindow>();
}

void PageTest::TearDown() {
    host_.reset();
    ProgramTest::TearDown();
}

void PageTest::RemoveControl(const std::wstring& name) {
    DuiLib::CControlUI& control = Control(name);
    ASSERT_TRUE(control.GetParent()->Remove(&control));
}

void HomePageTest::SetUp() {
    PageTest::SetUp();
    MakePageOnly();
    page_->Initialize();
    Manager().UpdateLayout();
}

void HomePageTest::TearDown() {
    DestroyPage();
    PageTest::TearDown();
}

void HomePageTest::MakePageOnly() {
    DestroyPage();
    page_ = std::make_unique<HomePage>(&Manager());
    page_->SelectTab(Host().Tabs(), &Host());
}

void HomePageTest::DestroyPage() {
    if (!page_)
        return;
    Host().RemoveVirtualWnd(L"HomePage");
    Host().Tabs()->Remove(page_->GetRoot());
    page_.reset();
}

bool HomePageTest::IsDrawnOn(const std::wstring& switchName) {
    const auto& button = Control<DuiLib::CButtonUI>(switchName);
    return button.GetNormalImage() == L"file='drawable/LumiCamera/Switch_Selected_Enabled@2x.png' reverse='true'" &&
           button.GetHotImage() == L"file='drawable/LumiCamera/Switch_Selected_Hover@2x.png' reverse='true'" &&
           button.IsChecked() == true;
}

bool HomePageTest::IsDrawnOff(const std::wstring& switchName) {
    const auto& button = Control<DuiLib::CButtonUI>(switchName);
    return button.GetNormalImage() == L"file='drawable/LumiCamera/Switch_Unselected_Enabled@2x.png' reverse='true'" &&
           button.GetHotImage() == L"file='drawable/LumiCamera/Switch_Unselected_Hover@2x.png' reverse='true'" &&
           button.IsChecked() == false;
}

bool HomePageTest::IsSelected(const std::wstring& option) {
    return Control<DuiLib::COptionUI>(option).IsSelected();
}
