#include "windows/PxDialogWnd.h"

#include <new>
#include <utility>

#include "DuiLib/UIMainQueue.h"
#include "service/link/ServiceMessages.h"
#include "suite/logger/QxLogger.h"
#include "windows/WindowStart.h"

PxDialogWnd::PxDialogWnd() = default;

PxDialogWnd::~PxDialogWnd() {
    if (client_) {
        client_->UnRegisterMessageCallbackAll();
    }
    client_.reset();
}

const wchar_t* PxDialogWnd::GetWindowClassName() const {
    return WindowStart::kWindowClass;
}

void PxDialogWnd::Run(HINSTANCE instance) {
    WindowStart::MakeDpiAware(L"PxDialogWnd");
    WindowStart::SetValuePath(L"PxDialogWnd");
    const std::wstring title = WindowStart::SetResourcesAndLanguage(instance);
    if (!Create(nullptr, title, WindowStart::kWindowStyle, WS_EX_TOOLWINDOW)) {
        return;
    }
    SetIcon(1);
    CenterWindow();
    InitIPCMessageClient();
}

void PxDialogWnd::InitIPCMessageClient() {
    // Kept: the sender is made first, with the pointer as it stands then, and is not told of the client afterwards.
    postSender_.reset(new (std::nothrow) PostSender{ServiceMessages::kCameraServiceId, client_.get()});
    if (!postSender_) {
        LogLine(LogLevel::kError, L"PxDialogWnd::InitIPCMessageClient", L"Init Post IPC Client Error");
        return;
    }
    client_.reset(new (std::nothrow)
                      IPCMessageClient(ServiceMessages::kOwnClientId, true, false, ServiceMessages::kPipeName));
    if (!client_) {
        LogLine(LogLevel::kError, L"PxDialogWnd::InitIPCMessageClient", L"Init IPC Client Error");
        return;
    }
    client_->RegisterMessageCallback(ServiceMessages::kNotificationCode,
                                     [this](TagIPCMessageItem& item) { OnMessageReceive(item); });
}

void PxDialogWnd::OnMessageReceive(const TagIPCMessageItem& item) {
    if (item.slot[ServiceMessages::kMessageCode] != ServiceMessages::kNotificationCode ||
        item.slot[ServiceMessages::kSubCode] != ServiceMessages::kResetSubCode || std::exchange(closing_, true)) {
        return;
    }
    LogLine(LogLevel::kError, L"PxDialogWnd::OnMessageReceive", L"OnMessageReceive close win");
    // A window belongs to its thread: closing is handed over to it, not done from here.
    DuiLib::UIMainQueue::getInstance()->dispatch([window = GetHWND()] { WindowStart::CloseAndQuit(window); });
}

void PxDialogWnd::UseHtmlMessage() {
    WindowStart::UseHtmlMessage(PaintManager());
}

void PxDialogWnd::SetMessageText(const std::wstring& text) {
    if (DuiLib::CControlUI* content = PaintManager().FindControl(L"msgbox_content")) {
        content->SetText(text);
    }
    if (!GetHWND()) {
        // Nobody would end the loop.
        return;
    }
    ShowWindow(true, true);
    DuiLib::CPaintManagerUI::MessageLoop();
}

void PxDialogWnd::ActivateExisting() {
    WindowStart::ActivateWindow(GetWindowClassName());
}

LRESULT PxDialogWnd::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_ENDSESSION) {
        WindowStart::OnEndSession(wParam);
    }
    return WindowImplBase::HandleMessage(message, wParam, lParam);
}

void PxDialogWnd::OnClick(DuiLib::TNotifyUI& msg) {
    if (msg.sender && msg.sender->GetName() == L"closebtn") {
        WindowStart::CloseAndQuit(GetHWND());
    }
}

void PxDialogWnd::Notify(DuiLib::TNotifyUI& msg) {
    WindowStart::FollowLink(msg);
    WindowImplBase::Notify(msg);
}

LRESULT PxDialogWnd::OnDestroy(WPARAM, LPARAM, bool& handled) {
    handled = false;
    PostQuitMessage(0);
    return 0;
}
