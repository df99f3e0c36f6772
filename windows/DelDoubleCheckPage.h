#pragma once
// The modal question before a custom background is deleted, and the notice that no more can be added.
//
// Made over a window, told what to ask (SetItemName or SetMaxLimitText), shown with ShowModal.
// Layout: text "msgbox_content"; buttons "confirm" and "cancel" of the question, "maxLimit" of the notice.
// Thread: UI thread.
#include <string>

#include "DuiLib/WindowImplBase.h"

class HomeService;

class DelDoubleCheckPage : public DuiLib::WindowImplBase {
  public:
    // `owner` is borrowed for the life of the window; null is logged and no window is made.
    explicit DelDoubleCheckPage(DuiLib::CPaintManagerUI* owner);

    void SetItemName(const std::wstring& name) { itemName_ = name; }
    void SetMaxLimitText(const std::wstring& text);

  protected:
    const NotifyMap& GetMessageMap() const override;
    const wchar_t* GetWindowClassName() const override { return L"Delete Double Check"; }
    std::wstring GetSkinFile() const override { return L"layout\\PixoraDelDoubleCheckPage.xml"; }
    void OnClick(DuiLib::TNotifyUI& msg) override;

  private:
    void OnMouseEnter(DuiLib::TNotifyUI& msg);
    void OnMouseLeft(DuiLib::TNotifyUI& msg);
    void OnButtonPressed(DuiLib::TNotifyUI& msg);

    std::wstring itemName_;
    DuiLib::CPaintManagerUI* const owner_;  // borrowed
    HomeService* const model_;              // the process's
};
