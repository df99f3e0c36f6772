#include "windows/SimpleMessageBox.h"

#include "DuiLib/TextUI.h"
#include "DuiLib/UICulture.h"
#include "suite/logger/QxLogger.h"
#include "windows/WindowStart.h"

SimpleMessageBox::SimpleMessageBox(DuiLib::CPaintManagerUI* owner) : owner_(owner) {
    if (!owner_) {
        LogLine(LogLevel::kError, L"SimpleMessageBox::SimpleMessageBox", L"paintMgr is nullptr");
        return;
    }
    Create(owner_->GetPaintWindow(), GetWindowClassName(), WS_OVERLAPPEDWINDOW, 0);
    Center2ParentWindow();
}

void SimpleMessageBox::SetContent(const std::wstring& text) {
    if (DuiLib::CControlUI* content = PaintManager().FindControl(L"msgbox_content")) {
        content->SetText(text);
    }
    if (DuiLib::CControlUI* button = PaintManager().FindControl(L"msg_ok_btn")) {
        button->SetText(DuiLib::UICulture::GetInstance()->GetString(L"IDS_LUMI_OK"));
    }
}

void SimpleMessageBox::UseHtmlMessage() {
    WindowStart::UseHtmlMessage(PaintManager());
}

void SimpleMessageBox::ShowBox() {
    // Without a window nobody would take the dimming away again.
    if (!owner_ || !GetHWND()) {
        return;
    }
    ShowMask(true);
    ShowModal();
}

void SimpleMessageBox::ShowMask(bool visible) {
    if (!owner_) {
        return;
    }
    if (DuiLib::CControlUI* mask = owner_->FindControl(L"mask_control")) {
        mask->SetVisible(visible);
    }
}

void SimpleMessageBox::OnClick(DuiLib::TNotifyUI& msg) {
    if (!msg.sender) {
        return;
    }
    const std::wstring& name = msg.sender->GetName();
    if (name != L"msg_close_btn" && name != L"msg_ok_btn") {
        return;
    }
    ShowMask(false);
    Close();
}

void SimpleMessageBox::Notify(DuiLib::TNotifyUI& msg) {
    WindowStart::FollowLink(msg);
    WindowImplBase::Notify(msg);
}
