#pragma once
// A modal message with one button over the dimmed main window.
//
// Layout: text "msgbox_content" (may hold links), buttons "msg_close_btn" and "msg_ok_btn". The owner's layout has the
// dimming layer "mask_control". Thread: UI thread.
#include <string>

#include "DuiLib/WindowImplBase.h"

class SimpleMessageBox : public DuiLib::WindowImplBase {
  public:
    // `owner` is borrowed for the life of the window; null is logged and no window is made.
    explicit SimpleMessageBox(DuiLib::CPaintManagerUI* owner);

    void SetContent(const std::wstring& text);
    // The message carries markup: its links can be clicked, its text no longer drags the box.
    void UseHtmlMessage();
    // Dims the owner, shows the box, returns when it has closed.
    void ShowBox();

    void Notify(DuiLib::TNotifyUI& msg) override;

  protected:
    const wchar_t* GetWindowClassName() const override { return L"MESSAGE BOX"; }
    std::wstring GetSkinFile() const override { return L"layout\\PixoraMsgBox.xml"; }
    void OnClick(DuiLib::TNotifyUI& msg) override;

  private:
    void ShowMask(bool visible);

    DuiLib::CPaintManagerUI* const owner_;  // borrowed
};
