#pragma once
// What the tests of the pages share: a window that hosts pages and notes what they ask of it. Thread: the test's.
#include <windows.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "DuiLib/ButtonUI.h"
#include "DuiLib/Layouts.h"
#include "DuiLib/WindowImplBase.h"
#include "pages/HomePage.h"
#include "tests/windows/support/ProgramTest.h"

// Notes the calls as text: "anchor img_one_background_btn", "position -10,33", "text Café", "show", "hide".
class NotingHint final : public HintWindow {
  public:
    void SetAnchor(DuiLib::CControlUI* control) override { calls.push_back(L"anchor " + control->GetName()); }
    void SetPosition(int dxPx, int dyPx) override {
        calls.push_back(L"position " + std::to_wstring(dxPx) + L"," + std::to_wstring(dyPx));
    }
    void SetToolTipText(const std::wstring& text) override { calls.push_back(L"text " + text); }
    int GetToolTipWidth() override { return width; }
    void Show(bool visible) override { calls.push_back(visible ? L"show" : L"hide"); }

    std::vector<std::wstring> calls;
    int width = 100;
};

class HostWindow : public DuiLib::WindowImplBase, public PageHost {
  public:
    HostWindow();
    ~HostWindow() override;

    DuiLib::CTabLayoutUI* Tabs() { return PaintManager().FindControlAs<DuiLib::CTabLayoutUI>(L"wnd_container"); }

    // --- PageHost
    void ShowPage(const std::wstring& name, int flag) override {
        shownPages.push_back(name + L" " + std::to_wstring(flag));
    }
    void ShowFirstPage() override { shownPages.push_back(L"first"); }
    void CloseWindow() override { ++closed; }
    void ShowMessage(GlobalUtils::MessageBoxKind kind) override;
    void AskForDeletion(const std::wstring& itemName) override { deletions.push_back(itemName); }
    void ShowLimitNotice() override { ++limitNotices; }
    HintWindow* GetHint(Hint hint) override;
    HWND GetWindow() const override { return GetHWND(); }
    std::vector<int> Messages();

    std::vector<std::wstring> shownPages, deletions;
    std::atomic<int> closed = 0;
    int limitNotices = 0;
    NotingHint optionHint, deleteHint;
    bool hasHints = true;

  protected:
    const wchar_t* GetWindowClassName() const override { return L"PixoraTestHost"; }
    std::wstring GetSkinFile() const override { return L"layout\\Pixora.xml"; }

  private:
    std::mutex mutex_;
    std::vector<int> messages_;  // guarded by mutex_
};

class PageTest : public ProgramTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    HostWindow& Host() { return *host_; }
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
    std::unique_ptr<HostWindow> host_;
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
