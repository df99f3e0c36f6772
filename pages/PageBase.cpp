#include "pages/PageBase.h"

#include <utility>

#include "DuiLib/DialogBuilder.h"
#include "DuiLib/RenderEngine.h"
#include "suite/logger/QxLogger.h"

PageBase::PageBase(const std::wstring& layoutFile, const std::wstring& pageName, DuiLib::CPaintManagerUI* paintManager)
    : owner_(PageHost::Current()), paintManager_(paintManager), pageName_(pageName), layoutFile_(layoutFile) {
    PageBase::BuildLayout();
}

PageBase::~PageBase() = default;

void PageBase::BuildLayout() {
    detached_ = DuiLib::CDialogBuilder().Create(layoutFile_, nullptr, nullptr, paintManager_);
    root_ = detached_.get();
}

const DuiLib::CNotifyPump::NotifyMap& PageBase::GetMessageMap() const {
    using namespace DuiLib::NotifyType;
    static const NotifyMap map = {
        Bind<PageBase>(kClick, nullptr, &PageBase::OnClick),
        Bind<PageBase>(kMouseEnter, nullptr, &PageBase::OnMouseEnter),
        Bind<PageBase>(kMouseLeave, nullptr, &PageBase::OnMouseLeave),
        Bind<PageBase>(kSetFocus, nullptr, &PageBase::OnFocusChanged),
        Bind<PageBase>(kKillFocus, nullptr, &PageBase::OnFocusChanged),
        Bind<PageBase>(kScroll, nullptr, &PageBase::OnScroll),
    };
    return map;
}

void PageBase::SelectTab(DuiLib::CTabLayoutUI* tabs, DuiLib::CNotifyPump* pump) {
    if (!root_ || !tabs || !pump) {
        LogLine(LogLevel::kError, L"PageBase::SelectTab", L"exist control nullptr");
        return;
    }
    if (!root_->GetParent()) {
        tabs->Add(std::move(detached_));
        pump->AddVirtualWnd(pageName_, this);
        root_->SetVirtualWnd(pageName_);
    }
    tabs->SelectItem(root_);
    OnActivate();
}

void PageBase::ShowPage(const std::wstring& name, int flag) {
    if (owner_) {
        owner_->ShowPage(name, flag);
    }
}

DuiLib::CControlUI* PageBase::Find(const std::wstring& name) const {
    return root_ ? root_->FindControlByName(name) : nullptr;
}

int PageBase::TextWidth(const std::wstring& text, int font) const {
    DuiLib::Rect rect;
    DuiLib::CRenderEngine::DrawText(paintManager_->GetPaintDC(), paintManager_, rect, text, 0, font, DT_CALCRECT);
    return DuiLib::PxToDip(rect.Width(), paintManager_->GetDPI());
}
