#include "windows/PxMainWnd.h"

#include <windowsx.h>
#include <wtsapi32.h>

#include <algorithm>
#include <exception>

#include "DuiLib/ButtonUI.h"
#include "DuiLib/UICulture.h"
#include "DuiLib/UIMainQueue.h"
#include "pages/CaptureMessage.h"
#include "pages/HomePage.h"
#include "pages/IntroductionPage.h"
#include "service/EffectTable.h"
#include "service/HomeService.h"
#include "service/KindNotifier.h"
#include "suite/common/SystemLibrary.h"
#include "suite/logger/QxLogger.h"
#include "windows/DelButtonToolTip.h"
#include "windows/DelDoubleCheckPage.h"
#include "windows/MessageTexts.h"
#include "windows/SimpleMessageBox.h"
#include "windows/ToolTipWnd.h"
#include "windows/WindowStart.h"

namespace {

using GlobalUtils::MessageBoxKind;

constinit suite::SystemLibrary wtsapi32(L"wtsapi32.dll");
constinit suite::SystemFunction<decltype(&WTSRegisterSessionNotification)> registerSessionNotification(
    wtsapi32, "WTSRegisterSessionNotification");
constinit suite::SystemFunction<decltype(&WTSUnRegisterSessionNotification)> unregisterSessionNotification(
    wtsapi32, "WTSUnRegisterSessionNotification");

// Kept with the messages that announce a move, though no system sends it for one.
constexpr UINT kMoveSpare = 0x030B;

constexpr unsigned kSessionRetryMs = 10'000;

// Keys of the modal queue beside the message kinds, which are not negative.
constexpr std::int32_t kDeletionKey = -1;
constexpr std::int32_t kLimitKey = -2;

// The layout name that the pointer was over last.
std::wstring& HoveredName() {
    static std::wstring name;
    return name;
}

}  // namespace

PxMainWnd::PxMainWnd() : switcher_(std::make_unique<PageSwitcher>()) {
    SetCurrent(this);
}

PxMainWnd::~PxMainWnd() {
    pages_.clear();
    for (const std::wstring& name : virtualWndNames_) {
        RemoveVirtualWnd(name);
    }
    switcher_.reset();
    virtualWndNames_.clear();
    SetCurrent(nullptr);
}

const wchar_t* PxMainWnd::GetWindowClassName() const {
    return WindowStart::kWindowClass;
}

void PxMainWnd::Run(HINSTANCE instance) {
    Open(instance);
    if (!GetHWND()) {
        // Nobody would end the loop, and each later start would wait for a window.
        return;
    }
    DuiLib::CPaintManagerUI::MessageLoop();
}

void PxMainWnd::Open(HINSTANCE instance) {
    WindowStart::MakeDpiAware(L"PxMainWnd");
    WindowStart::SetValuePath(L"PxMainWnd");
    const std::wstring title = WindowStart::SetResourcesAndLanguage(instance);
    if (!Create(nullptr, title, WindowStart::kWindowStyle, 0)) {
        return;
    }
    SetIcon(1);
    CenterWindow();
    ToolTipWnd::GetInstance(&PaintManager());
    RegisterForSession();
    ShowWindow(true, true);
}

void PxMainWnd::RegisterForSession() {
    const HWND window = GetHWND();
    if (registerSessionNotification.CallOr(FALSE, window, NOTIFY_FOR_THIS_SESSION)) {
        return;
    }
    LogLine(LogLevel::kInfo, L"PxMainWnd::RegisterForSession", L"no session notifications, error code: ",
            GetLastError());
    // Right after signing in the service that tells of locks may not be there yet.
    DuiLib::UIMainQueue::getInstance()->dispatchAfter(kSessionRetryMs, [window] {
        if (IsWindow(window)) {
            registerSessionNotification.CallOr(FALSE, window, NOTIFY_FOR_THIS_SESSION);
        }
    });
}

void PxMainWnd::ActivateExisting() {
    WindowStart::ActivateWindow(GetWindowClassName());
}

void PxMainWnd::InitWindow() {
    AddPage(PageNames::kHome, std::make_unique<HomePage>(&PaintManager()));
    AddPage(PageNames::kIntroduction, std::make_unique<IntroductionPage>(&PaintManager()));
    if (switcher_) {
        switcher_->Select(PageNames::kHome, true);
    }
    // Beside all that follows until the window is shown.
    PaintManager().ReadPicturesAhead();
    for (const auto& [name, page] : pages_) {
        page->Initialize();
    }
    DragAcceptFiles(GetHWND(), TRUE);
}

void PxMainWnd::AddPage(const std::wstring& name, std::unique_ptr<PageBase> page) {
    if (const PageBase* former = FindPage(name)) {
        // Its controls go with it: nobody would answer them any more.
        RemoveVirtualWnd(name);
        if (auto* tabs = PaintManager().FindControlAs<DuiLib::CTabLayoutUI>(L"wnd_container")) {
            tabs->Remove(former->GetRoot());
        }
    }
    pages_[name] = std::move(page);
    if (switcher_) {
        switcher_->Register(name, [this](const std::wstring& shown) { ShowTab(shown); });
    }
}

PageBase* PxMainWnd::FindPage(const std::wstring& name) const {
    const auto page = pages_.find(name);
    return page == pages_.end() ? nullptr : page->second.get();
}

void PxMainWnd::ShowTab(const std::wstring& name) {
    PageBase* page = FindPage(name);
    if (!page) {
        return;
    }
    page->SelectTab(PaintManager().FindControlAs<DuiLib::CTabLayoutUI>(L"wnd_container"), this);
    if (std::find(virtualWndNames_.begin(), virtualWndNames_.end(), name) == virtualWndNames_.end()) {
        virtualWndNames_.push_back(name);
    }
}

void PxMainWnd::Notify(DuiLib::TNotifyUI& msg) {
    using GlobalUtils::BeautyKind;
    using namespace DuiLib::NotifyType;
    if (msg.sender && (msg.type == kValueChanged || msg.type == kMoveValueChanged)) {
        if (const service::BeautyLevel* level = service::BeautyLevelOfControl(msg.sender->GetName())) {
            KindNotifier<BeautyKind>::GetInstance().Publish(GlobalUtils::kBeautyChannel, BeautyKind(level->kind));
        }
    }
    if (msg.type == kTextSizeChanged) {
        TellScale();
    }
    WindowImplBase::Notify(msg);
}

// The window was moved and sized within: one publication stands for all of it.
void PxMainWnd::OnFitted() {
    // They belong to another place and scale.
    ToolTipWnd::GetInstance(nullptr).Show(false);
    DelButtonToolTip::GetInstance(nullptr).Show(false);
    TellScale();
    PublishMove();
}

void PxMainWnd::TellScale() {
    for (const auto& [name, page] : pages_) {
        page->OnScaleChanged();
    }
}

void PxMainWnd::OnClick(DuiLib::TNotifyUI& msg) {
    if (!msg.sender) {
        return;
    }
    const std::wstring& name = msg.sender->GetName();
    if (name == L"minbtn") {
        SendMessage(WM_SYSCOMMAND, SC_MINIMIZE);
    }
    if (name == L"closebtn") {
        WindowStart::CloseAndQuit(GetHWND());
    }
}

LRESULT PxMainWnd::OnDestroy(WPARAM, LPARAM, bool& handled) {
    handled = false;
    unregisterSessionNotification.CallOr(FALSE, GetHWND());
    PostQuitMessage(0);
    return 0;
}

LRESULT PxMainWnd::OnKillFocus(WPARAM, LPARAM, bool& handled) {
    handled = false;
    ToolTipWnd::GetInstance(nullptr).Show(false);
    DelButtonToolTip::GetInstance(nullptr).Show(false);
    return 0;
}

LRESULT PxMainWnd::OnLButtonUp(WPARAM, LPARAM lParam, bool& handled) {
    handled = false;
    DuiLib::CPaintManagerUI& manager = PaintManager();
    // While a control has the capture the release is its own, wherever the pointer is by then.
    DuiLib::CControlUI* control = manager.GetCapture();
    if (!control) {
        control = manager.FindControl(POINT{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
    }
    auto* button = dynamic_cast<DuiLib::CButtonUI*>(control);
    if (!button || button->GetName() != L"custom_background_btn") {
        return 0;
    }
    if (!(button->GetState() & DuiLib::kStateCaptured)) {
        return 0;
    }

    button->SetState(button->GetState() & ~(DuiLib::kStatePushed | DuiLib::kStateCaptured));
    manager.ReleaseCapture();
    manager.SendNotify(button, DuiLib::NotifyType::kClick);
    handled = true;
    if (PageBase* home = FindPage(PageNames::kHome); home && home->GetRoot()) {
        home->GetRoot()->NeedUpdate();
    }
    return 0;
}

void PxMainWnd::PublishMove() {
    using GlobalUtils::WndMoveKind;
    KindNotifier<WndMoveKind>::GetInstance().Publish(GlobalUtils::kWndMoveChannel, WndMoveKind::kMoved);
    PublishPlace();
}

void PxMainWnd::PublishPower(WPARAM event) {
    using GlobalUtils::PowerKind;
    if (event == PBT_APMSUSPEND || event == PBT_APMRESUMEAUTOMATIC) {
        KindNotifier<PowerKind>::GetInstance().Publish(
            GlobalUtils::kPowerChannel, event == PBT_APMSUSPEND ? PowerKind::kSuspend : PowerKind::kResume);
    }
}

void PxMainWnd::PublishPlace() {
    using GlobalUtils::PreviewPlaceKind;
    KindNotifier<PreviewPlaceKind>::GetInstance().Publish(GlobalUtils::kPreviewPlaceChannel,
                                                          PreviewPlaceKind::kPlaceAgain);
}

LRESULT PxMainWnd::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    using GlobalUtils::OnListenKindInfo;
    using GlobalUtils::ScreenLockKind;
    switch (message) {
        case WM_DPICHANGED:
            FollowDpi(wParam, lParam);
            return 0;
        case WM_WTSSESSION_CHANGE:
            if (wParam == WTS_SESSION_LOCK) {
                KindNotifier<ScreenLockKind>::GetInstance().Publish(GlobalUtils::kScreenLockChannel,
                                                                    ScreenLockKind::kLocked);
            }
            break;
        case WM_POWERBROADCAST:
            PublishPower(wParam);
            break;
        case WM_ENDSESSION:
            WindowStart::OnEndSession(wParam);
            break;
        case WM_SIZE:
        case WM_SIZING:
        case kMoveSpare:
            if (!IsFitting()) {
                PublishMove();
            }
            break;
        case WM_MOVE:
            if (!IsFitting()) {
                PublishPlace();
            }
            break;
        case WM_WINDOWPOSCHANGED: {
            const UINT flags = reinterpret_cast<const WINDOWPOS*>(lParam)->flags;
            // Later: the window may still be on its way to the screen, or to its place among the others.
            if ((flags & (SWP_SHOWWINDOW | SWP_HIDEWINDOW)) || !(flags & SWP_NOZORDER)) {
                DuiLib::UIMainQueue::getInstance()->dispatch(PublishPlace);
            }
            break;
        }
        case WM_SETFOCUS:
            // Some systems lift the window alone, and not what it owns, when it gets the focus.
            PublishPlace();
            break;
        case kCaptureMessage:
            KindNotifier<OnListenKindInfo>::GetInstance().Publish(GlobalUtils::kOnListenChannel,
                                                                  OnListenKindInfo{wParam, lParam});
            break;
        case WM_PAINT:
            RegisterVideoThumbnail();
            PaintManager().OnWM_PAINT();
            return 0;
        case WM_DROPFILES:
            OnFilesDropped(reinterpret_cast<HDROP>(wParam));
            return 0;
        case WM_MOUSEMOVE:
            TrackHover(lParam);
            break;
        case WM_MOUSELEAVE:
            // Out of the window it is on no control that could take the delete button away.
            if (auto* home = dynamic_cast<HomePage*>(FindPage(PageNames::kHome))) {
                home->HideDelButton(HoveredName(), {});
            }
            break;
        default:
            break;
    }
    return WindowImplBase::HandleMessage(message, wParam, lParam);
}

void PxMainWnd::RegisterVideoThumbnail() {
    try {
        if (const HomeService* model = HomeService::GetInstance()) {
            thumbnail_.Register(PaintManager(), model->GetBackgroundImagePath());
        }
    } catch (const std::exception& error) {
        LogLine(LogLevel::kError, L"PxMainWnd::RegisterVideoThumbnail", L"no thumbnail: ", error.what());
    }
}

void PxMainWnd::OnFilesDropped(HDROP drop) {
    std::vector<std::wstring> paths(DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0));
    for (UINT i = 0; i < paths.size(); ++i) {
        paths[i].resize(DragQueryFileW(drop, i, nullptr, 0));
        DragQueryFileW(drop, i, paths[i].data(), static_cast<UINT>(paths[i].size() + 1));
    }
    DragFinish(drop);
    auto* home = dynamic_cast<HomePage*>(FindPage(PageNames::kHome));
    // Under a modal window the settings cannot be used, by this way neither.
    if (home && IsWindowEnabled(GetHWND())) {
        home->AddDroppedFiles(paths);
    }
}

void PxMainWnd::TrackHover(LPARAM lParam) {
    const DuiLib::CControlUI* control = PaintManager().FindControl(POINT{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
    auto* home = dynamic_cast<HomePage*>(FindPage(PageNames::kHome));
    if (!control || control->GetName().empty() || !home) {
        return;
    }
    const std::wstring current = control->GetName();
    home->HideDelButton(HoveredName(), current);
    HoveredName() = current;
}

void PxMainWnd::ShowPage(const std::wstring& name, int) {
    if (switcher_) {
        switcher_->Select(name, false);
    }
}

void PxMainWnd::ShowFirstPage() {
    ShowPage(PageNames::kHome, 0);
}

void PxMainWnd::CloseWindow() {
    // Once, however often it is asked for.
    if (!closing_.exchange(true)) {
        DuiLib::UIMainQueue::getInstance()->dispatch([window = GetHWND()] { WindowStart::CloseAndQuit(window); });
    }
}

void PxMainWnd::QueueModal(std::int32_t key, std::function<void()> show) {
    modals_.Show(key, [this, show = std::move(show)] {
        // What comes when the window has closed already would stand alone on the screen.
        if (GetHWND()) {
            show();
        }
    });
}

void PxMainWnd::ShowMessage(MessageBoxKind kind) {
    QueueModal(static_cast<std::int32_t>(kind), [this, kind] {
        const wchar_t* key = MessageTextKey(kind);
        if (!key) {
            return;
        }
        SimpleMessageBox box(&PaintManager());
        box.SetContent(DuiLib::UICulture::GetInstance()->GetString(key));
        box.ShowBox();
    });
}

void PxMainWnd::AskForDeletion(const std::wstring& itemName) {
    QueueModal(kDeletionKey, [this, itemName] {
        DelDoubleCheckPage box(&PaintManager());
        box.SetItemName(itemName);
        box.ShowModal();
    });
}

void PxMainWnd::ShowLimitNotice() {
    QueueModal(kLimitKey, [this] {
        DelDoubleCheckPage box(&PaintManager());
        box.SetMaxLimitText(DuiLib::UICulture::GetInstance()->GetString(L"IDS_LUMI_OVER_MAX_LIMIT"));
        box.ShowModal();
    });
}

HintWindow* PxMainWnd::GetHint(Hint hint) {
    if (hint == Hint::kDeleteButton) {
        return &DelButtonToolTip::GetInstance(&PaintManager());
    }
    return &ToolTipWnd::GetInstance(&PaintManager());
}
