// Life of a paint manager, and what it answers about controls, notifications, fonts and images.
#include "DuiLib/PaintManagerUI.h"

#include <imm.h>

#include <algorithm>

#include "DuiLib/Theme.h"
#include "DuiLib/UICulture.h"
#include "DuiLib/UIMainQueue.h"
#include "layout/LiveEvent.h"
#include "suite/common/SystemLibrary.h"
#include "window/PaintManagerImpl.h"

namespace DuiLib {
namespace {

constinit suite::SystemLibrary imm32(L"imm32.dll");
constinit suite::SystemFunction<decltype(&ImmAssociateContextEx)> immAssociateContextEx(imm32, "ImmAssociateContextEx");

template <typename Item>
void AddOnce(std::vector<Item*>& list, Item* item) {
    if (item && std::find(list.begin(), list.end(), item) == list.end()) {
        list.push_back(item);
    }
}

template <typename Item>
void RemoveFrom(std::vector<Item*>& list, const Item* item) {
    list.erase(std::remove(list.begin(), list.end(), item), list.end());
}

}  // namespace

CPaintManagerUI::Impl::Impl(CPaintManagerUI& manager)
    : owner(manager), measureDc(CreateCompatibleDC(nullptr)), input(manager, retired) {
    fonts.Renew(dpi);
    images.SetDpi(dpi);
    UITheme::GetInstance()->AddListener(this);
}

CPaintManagerUI::Impl::~Impl() {
    UITheme::GetInstance()->RemoveListener(this);
    OnWindowGone();
}

CPaintManagerUI::CPaintManagerUI() : impl_(std::make_unique<Impl>(*this)) {}

CPaintManagerUI::~CPaintManagerUI() {
    if (impl_->root) {
        impl_->root->SetManager(nullptr, nullptr);
        impl_->root.reset();
    }
    impl_->retired.Destroy();
}

void CPaintManagerUI::Init(HWND window) {
    impl_->OnWindowGone();
    impl_->window = window;
    // Nothing here takes text, and an input method would swallow Space, Enter and letters. Of this window alone: system
    // dialogs on the same thread need theirs.
    immAssociateContextEx.CallOr(FALSE, window, nullptr, 0);
    impl_->sizePx = impl_->ClientSizePx();
    UITheme::GetInstance()->ApplyToFrame(window);
    const UINT dpi = GetDpiForWindow(window);
    SetDPI(dpi != 0 ? static_cast<int>(dpi) : USER_DEFAULT_SCREEN_DPI);
    impl_->input.ReadSettings();
}

HWND CPaintManagerUI::GetPaintWindow() const {
    return impl_->window;
}

HDC CPaintManagerUI::GetPaintDC() const {
    return impl_->measureDc.Get();
}

void CPaintManagerUI::AttachDialog(std::unique_ptr<CControlUI> root) {
    const RetiredControls::Scope scope(impl_->retired);
    if (std::unique_ptr<CControlUI> former = std::move(impl_->root)) {
        former->SetManager(nullptr, nullptr);
        Retire(std::move(former));
    }
    impl_->root = std::move(root);
    if (impl_->root) {
        impl_->root->SetManager(this, nullptr);
    }
    NeedUpdate();
    impl_->InvalidateAll();
}

CControlUI* CPaintManagerUI::GetRoot() const {
    return impl_->root.get();
}

WindowSpec& CPaintManagerUI::GetWindowSpec() {
    return impl_->spec;
}

CControlUI* CPaintManagerUI::FindControl(std::wstring_view name) const {
    return impl_->root && !name.empty() ? impl_->root->FindControlByName(name) : nullptr;
}

CControlUI* CPaintManagerUI::FindControl(POINT clientPx) const {
    if (!impl_->root) {
        return nullptr;
    }
    impl_->UpdateLayout();
    return impl_->root->FindControlAt({static_cast<int>(clientPx.x), static_cast<int>(clientPx.y)});
}

CControlUI* CPaintManagerUI::FindControlById(long id) const {
    CControlUI* found = nullptr;
    if (impl_->root) {
        impl_->root->Visit([&](CControlUI& control) {
            if (control.GetId() == id) {
                found = &control;
            }
            return !found;
        });
    }
    return found;
}

CControlUI* CPaintManagerUI::GetFocus() const {
    return impl_->input.GetFocus();
}
void CPaintManagerUI::SetFocus(CControlUI* control, bool byKeyboard) {
    impl_->input.SetFocus(control, byKeyboard);
}
bool CPaintManagerUI::SetNextTabControl(bool forward) {
    return impl_->input.SetNextTabControl(forward);
}
bool CPaintManagerUI::IsFocusRingShown() const {
    return impl_->input.IsFocusRingShown();
}
CControlUI* CPaintManagerUI::GetCapture() const {
    return impl_->input.GetCapture();
}
void CPaintManagerUI::SetCapture(CControlUI* control) {
    impl_->input.SetCapture(control);
}
void CPaintManagerUI::ReleaseCapture() {
    impl_->input.ReleaseCapture();
}
void CPaintManagerUI::ReleaseSystemCapture() {
    impl_->input.ReleaseSystemCapture();
}
void CPaintManagerUI::CancelCapture() {
    impl_->input.CancelCapture();
}
void CPaintManagerUI::TrackMouseLeave() {
    impl_->input.TrackLeave();
}
CControlUI* CPaintManagerUI::GetHot() const {
    return impl_->input.GetHot();
}

void CPaintManagerUI::ControlRemoved(CControlUI* control) {
    impl_->input.Forget(control);
}

void CPaintManagerUI::NotifyAccessible(const CControlUI* control, DWORD event) const {
    // IsWinEventHookInstalled first: NotifyWinEvent is a system call, and a dragged slider would make one for each
    // step.
    if (control && impl_->window && IsWinEventHookInstalled(event) && control->GetAccessibleInfo().role != 0) {
        if (event == kLiveRegionChanged) {
            impl_->live.Mark(impl_->window, control->GetId());
        }
        NotifyWinEvent(event, impl_->window, OBJID_CLIENT, control->GetId());
    }
}

void CPaintManagerUI::CallAfter(unsigned delayMs, std::function<void()> task) {
    UIMainQueue::getInstance()->dispatchAfter(delayMs, std::move(task));
}

void CPaintManagerUI::NotifyAccessibleTree(CControlUI& control, DWORD event) const {
    if (impl_->window && IsWinEventHookInstalled(event)) {
        control.Visit([&](const CControlUI& element) {
            if (&element == &control || element.IsVisible()) {
                NotifyAccessible(&element, event);
            }
            return true;
        });
    }
    NotifyAccessibleWindow(EVENT_OBJECT_REORDER);
}

void CPaintManagerUI::NotifyAccessibleWindow(DWORD event) const {
    if (impl_->window && IsWinEventHookInstalled(event)) {
        NotifyWinEvent(event, impl_->window, OBJID_CLIENT, CHILDID_SELF);
    }
}

void CPaintManagerUI::Retire(std::unique_ptr<CControlUI> control) {
    if (control) {
        impl_->retired.Add(std::move(control));
    }
}

void CPaintManagerUI::AddNotifier(INotifyUI* notifier) {
    AddOnce(impl_->notifiers, notifier);
}
void CPaintManagerUI::RemoveNotifier(INotifyUI* notifier) {
    RemoveFrom(impl_->notifiers, notifier);
}
void CPaintManagerUI::AddMessageFilter(IMessageFilterUI* filter) {
    AddOnce(impl_->filters, filter);
}
void CPaintManagerUI::RemoveMessageFilter(IMessageFilterUI* filter) {
    RemoveFrom(impl_->filters, filter);
}

void CPaintManagerUI::SendNotify(TNotifyUI& msg) {
    const RetiredControls::Scope scope(impl_->retired);
    // A notifier may remove itself or others while it is called.
    const std::vector<INotifyUI*> notifiers = impl_->notifiers;
    for (INotifyUI* notifier : notifiers) {
        if (std::find(impl_->notifiers.begin(), impl_->notifiers.end(), notifier) != impl_->notifiers.end()) {
            notifier->Notify(msg);
        }
    }
}

void CPaintManagerUI::SendNotify(CControlUI* sender, const wchar_t* type, WPARAM wParam, LPARAM lParam) {
    TNotifyUI msg{type, sender, wParam, lParam};
    SendNotify(msg);
}

void CPaintManagerUI::SetQueryControlText(IQueryControlText* query) {
    impl_->query = query;
}

std::wstring CPaintManagerUI::ResolveText(std::wstring_view text) const {
    std::wstring key(text);
    if (!text.starts_with(L"IDS_")) {
        return key;
    }
    return impl_->query ? impl_->query->QueryControlText(key) : UICulture::GetInstance()->GetString(key);
}

void CPaintManagerUI::AddFont(int index, const FontSpec& font, bool isDefault) {
    impl_->fonts.Add(index, font, isDefault);
    ++impl_->fontGeneration;
}

unsigned CPaintManagerUI::GetFontGeneration() const {
    return impl_->fontGeneration;
}

HFONT CPaintManagerUI::GetFont(int index) const {
    return impl_->fonts.Get(index);
}
const FontTable& CPaintManagerUI::Fonts() const {
    return impl_->fonts;
}

void CPaintManagerUI::AddDefaultAttributes(const std::wstring& className, const std::wstring& attributes) {
    impl_->defaults[className] = attributes;
}

void CPaintManagerUI::AddStyle(const std::wstring& name, const std::wstring& attributes) {
    impl_->styles[name] = attributes;
}

std::wstring CPaintManagerUI::GetDefaultAttributes(const std::wstring& className) const {
    const auto it = impl_->defaults.find(className);
    return it != impl_->defaults.end() ? it->second : std::wstring();
}

std::wstring CPaintManagerUI::GetStyle(const std::wstring& name) const {
    const auto it = impl_->styles.find(name);
    return it != impl_->styles.end() ? it->second : std::wstring();
}

bool CPaintManagerUI::AddImage(const std::wstring& name, HBITMAP bitmap, int widthDip, int heightDip, bool alpha,
                               bool shared) {
    const suite::GdiBitmap taken(shared ? nullptr : bitmap);
    const bool added = bitmap && impl_->images.Add(name, bitmap, {widthDip, heightDip}, alpha);
    if (added) {
        impl_->InvalidateAll();
    }
    return added;
}

bool CPaintManagerUI::HasImage(const std::wstring& name) const {
    return impl_->images.Has(name);
}

void CPaintManagerUI::RemoveImage(const std::wstring& name) {
    impl_->images.Remove(name);
}

ImageCache& CPaintManagerUI::Images() const {
    return impl_->images;
}

}  // namespace DuiLib
