#pragma once
// A window that hosts pages in the place of the settings window, and notes what they ask of it.
//
// Why: a page knows its host by a small interface only, so a test sees each call of it without message boxes and hints
// on the screen. Thread: the windows'; ShowMessage comes from any.
#include <windows.h>

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

#include "DuiLib/Layouts.h"
#include "DuiLib/WindowImplBase.h"
#include "pages/PageHost.h"

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

class FakePageHost : public DuiLib::WindowImplBase, public PageHost {
  public:
    FakePageHost();
    ~FakePageHost() override;

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
    // What the main window does with a failure of the camera.
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    const wchar_t* GetWindowClassName() const override { return L"PixoraTestHost"; }
    std::wstring GetSkinFile() const override { return L"layout\\Pixora.xml"; }

  private:
    std::mutex mutex_;
    std::vector<int> messages_;  // guarded by mutex_
};
