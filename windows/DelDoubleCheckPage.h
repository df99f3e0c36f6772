#pragma once
// The modal question before a custom background is deleted, and the notice that no more can be added.
//
// Made over a window, told what to ask (SetItemName or SetMaxLimitText), shown with ShowModal. What deletes is handed
// in by whoever makes it.
// Layout: text "msgbox_content"; buttons "confirm" and "cancel" of the question, "maxLimit" of the notice.
// Thread: UI thread.
#include <functional>
#include <string>

#include "DuiLib/WindowImplBase.h"

class DelDoubleCheckPage : public DuiLib::WindowImplBase {
  public:
    using DeleteItem = std::function<void(const std::wstring& itemName)>;

    // `owner` is borrowed for the life of the window; null is logged and no window is made.
    DelDoubleCheckPage(DuiLib::CPaintManagerUI* owner, DeleteItem deleteItem);

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
    const DeleteItem deleteItem_;
};
