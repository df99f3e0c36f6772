#include "windows/DelDoubleCheckPage.h"

#include <initializer_list>

#include "service/HomeService.h"
#include "suite/logger/QxLogger.h"
#include "windows/ColorComposite.h"

namespace {

constexpr DWORD kHoverOverlay = 0x0C000000;
constexpr DWORD kPressedOverlay = 0x1A000000;
constexpr DWORD kAccentAtRest = 0xFF0A59F7;
constexpr DWORD kCancelAtRest = 0x0C000000;

bool IsOneOf(const std::wstring& name, std::initializer_list<const wchar_t*> names) {
    for (const wchar_t* candidate : names) {
        if (name == candidate) {
            return true;
        }
    }
    return false;
}

}  // namespace

DelDoubleCheckPage::DelDoubleCheckPage(DuiLib::CPaintManagerUI* owner)
    : owner_(owner), model_(HomeService::GetInstance()) {
    if (!owner_) {
        LogLine(LogLevel::kError, L"DelDoubleCheckPage::DelDoubleCheckPage", L"paintMgr is nullptr");
        return;
    }
    Create(owner_->GetPaintWindow(), GetWindowClassName(), WS_OVERLAPPEDWINDOW, 0);
    Center2ParentWindow();
}

void DelDoubleCheckPage::SetMaxLimitText(const std::wstring& text) {
    DuiLib::CPaintManagerUI& manager = PaintManager();
    if (DuiLib::CControlUI* content = manager.FindControl(L"msgbox_content")) {
        content->SetText(text);
    }
    if (DuiLib::CControlUI* confirm = manager.FindControl(L"confirm")) {
        confirm->SetVisible(false);
    }
    if (DuiLib::CControlUI* cancel = manager.FindControl(L"cancel")) {
        cancel->SetVisible(false);
    }
    if (DuiLib::CControlUI* notice = manager.FindControl(L"maxLimit")) {
        notice->SetVisible(true);
    }
    manager.GetWindowSpec().defaultButton = L"maxLimit";
    manager.GetWindowSpec().cancelButton = L"maxLimit";
}

const DuiLib::CNotifyPump::NotifyMap& DelDoubleCheckPage::GetMessageMap() const {
    using namespace DuiLib::NotifyType;
    static const NotifyMap map = {
        Bind<DelDoubleCheckPage>(kClick, nullptr, &DelDoubleCheckPage::OnClick),
        Bind<DelDoubleCheckPage>(kMouseEnter, nullptr, &DelDoubleCheckPage::OnMouseEnter),
        Bind<DelDoubleCheckPage>(kMouseLeave, nullptr, &DelDoubleCheckPage::OnMouseLeft),
        Bind<DelDoubleCheckPage>(kButtonDown, nullptr, &DelDoubleCheckPage::OnButtonPressed),
    };
    return map;
}

void DelDoubleCheckPage::OnClick(DuiLib::TNotifyUI& msg) {
    if (!msg.sender) {
        return;
    }
    const std::wstring name = msg.sender->GetName();
    if (name == L"confirm") {
        if (model_) {
            model_->DeleteCustomBackground(itemName_);
        }
        Close(1);
    } else if (name == L"cancel") {
        itemName_.clear();
        Close();
    } else if (name == L"maxLimit") {
        Close();
    }
}

void DelDoubleCheckPage::OnMouseEnter(DuiLib::TNotifyUI& msg) {
    if (!msg.sender || !IsOneOf(msg.sender->GetName(), {L"confirm", L"cancel", L"maxLimit"})) {
        return;
    }
    msg.sender->SetBkColor(CompositeColor(msg.sender->GetBkColor(), kHoverOverlay));
}

void DelDoubleCheckPage::OnMouseLeft(DuiLib::TNotifyUI& msg) {
    if (!msg.sender) {
        return;
    }
    const std::wstring& name = msg.sender->GetName();
    if (IsOneOf(name, {L"confirm", L"maxLimit"})) {
        msg.sender->SetBkColor(kAccentAtRest);
    }
    if (name == L"cancel") {
        msg.sender->SetBkColor(kCancelAtRest);
    }
}

void DelDoubleCheckPage::OnButtonPressed(DuiLib::TNotifyUI& msg) {
    if (msg.sender) {
        msg.sender->SetBkColor(CompositeColor(msg.sender->GetBkColor(), kPressedOverlay));
    }
}
