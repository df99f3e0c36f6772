#pragma once
// What the tests of the pages share: a page in a window that notes what it asks of its host. Thread: the test's.
#include <windows.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "DuiLib/ButtonUI.h"
#include "pages/HomePage.h"
#include "tests/support/FakePageHost.h"
#include "tests/windows/support/ProgramTest.h"

class PageTest : public ProgramTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    FakePageHost& Host() { return *host_; }
    DuiLib::CPaintManagerUI& Manager() { return host_->PaintManager(); }
    template <typename Class = DuiLib::CControlUI>
    Class& Control(const std::wstring& name) {
        auto* control = Manager().FindControlAs<Class>(name);
        if (!control)
            throw std::runtime_error("no such control: " + std::string(name.begin(), name.end()));
        return *control;
    }
    // Takes the control out of its page.
    void RemoveControl(const std::wstring& name);
    void Notify(const std::wstring& name, const wchar_t* type) { Manager().SendNotify(&Control(name), type); }
    // Presses the button as a screen reader does: without pointer and focus, whether it is in sight or not.
    void Press(const std::wstring& name) { Control<DuiLib::CButtonUI>(name).Activate(); }

  private:
    std::unique_ptr<FakePageHost> host_;
};

// The home page as the settings window makes it.
class HomePageTest : public PageTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    HomePage& Page() { return *page_; }
    // A page that is made and not yet initialised, in place of the one that is there.
    void MakePageOnly();
    void DestroyPage();
    static void Refresh() { HomeService::GetInstance()->NotifyStatus(); }

    bool IsDrawnOn(const std::wstring& switchName);
    bool IsDrawnOff(const std::wstring& switchName);
    bool IsSelected(const std::wstring& option);

  private:
    std::unique_ptr<HomePage> page_;
};
