#include "windows/WindowStart.h"

#include <pathcch.h>
#include <shellapi.h>
#include <shellscalingapi.h>
#include <versionhelpers.h>

#include <algorithm>

#include "DuiLib/PaintManagerUI.h"
#include "DuiLib/TextUI.h"
#include "DuiLib/UICulture.h"
#include "suite/logger/LogEnd.h"
#include "suite/logger/QxLogger.h"
#include "suite/product/SystemEnvironment.h"
#include "suite/report/EventDataReport.h"
#include "suite/url/WebAddress.h"

namespace WindowStart {

void MakeDpiAware(const std::wstring& owner) {
    if (!IsWindows7OrGreater()) {
        return;
    }
    const HRESULT result = SetProcessDpiAwareness(PROCESS_PER_MONITOR_DPI_AWARE);
    // The manifest has set the awareness already; the system then answers "access denied", which is as good.
    if (result != S_OK) {
        LogLine(LogLevel::kInfo, (owner + L"::DPIAware").c_str(), L"SetProcessDpiAwareness fail, error code: ", result);
    }
}

void SetValuePath(const std::wstring& owner) {
    const std::wstring function = owner + L"::SetValuePath";
    wchar_t path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH || PathCchRemoveFileSpec(path, MAX_PATH) != S_OK) {
        LogLine(LogLevel::kError, function.c_str(), L"Fail to get current module path!");
        return;
    }
    SetCurrentDirectoryW(path);
    if (FAILED(PathCchAppend(path, MAX_PATH, L"res\\values\\"))) {
        LogLine(LogLevel::kError, function.c_str(), L"Path append res fail!");
        return;
    }
    DuiLib::UICulture::GetInstance()->SetValuesFolder(path);
}

std::wstring SetResourcesAndLanguage(HINSTANCE instance) {
    using DuiLib::CPaintManagerUI;
    CPaintManagerUI::SetInstance(instance);
    CPaintManagerUI::SetResourcePath(CPaintManagerUI::GetInstancePath() + L"res\\");

    std::wstring language = SystemEnvironment::GetCurrentUserLanguage();
    std::replace(language.begin(), language.end(), L'-', L'_');
    DuiLib::UICulture& culture = *DuiLib::UICulture::GetInstance();
    culture.SelectLanguage(language, true);
    return culture.GetString(L"IDS_LUMI_CAMERA_WND_TITLE");
}

void ActivateWindow(const wchar_t* className) {
    const HWND window = FindWindowW(className, nullptr);
    if (!window || !IsWindow(window)) {
        return;
    }
    ShowWindow(window, IsWindowVisible(window) ? SW_RESTORE : SW_SHOWNORMAL);
    SetForegroundWindow(GetLastActivePopup(window));
}

void CloseAndQuit(HWND window) {
    SendMessageW(window, WM_SYSCOMMAND, SC_CLOSE, 0);
    PostQuitMessage(0);
}

void OnEndSession(WPARAM ends) {
    if (ends) {
        EventDataReport::WriteOut();
        suite::WriteOutLog();
    }
}

void FollowLink(const DuiLib::TNotifyUI& msg) {
    if (msg.type != DuiLib::NotifyType::kLink) {
        return;
    }
    const auto* text = dynamic_cast<const DuiLib::CTextUI*>(msg.sender);
    if (!text) {
        return;
    }
    const std::wstring link = text->GetLinkContent(0);
    // The shell would open programs and folders as well.
    if (!suite::IsWebAddress(link)) {
        LogLine(LogLevel::kError, L"WindowStart::FollowLink", L"no web address: ", link);
        return;
    }
    ShellExecuteW(nullptr, L"open", link.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
}

void UseHtmlMessage(DuiLib::CPaintManagerUI& manager) {
    DuiLib::CControlUI* content = manager.FindControl(L"msgbox_content");
    if (!content) {
        return;
    }
    content->SetAttribute(L"showhtml", L"true");
    content->SetAttribute(L"IsNcHit", L"false");
    content->SetAttribute(L"align", L"left");
}

}  // namespace WindowStart
