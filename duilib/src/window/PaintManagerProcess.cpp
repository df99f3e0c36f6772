// What all windows of the process share: instance, resource folder, message loop.
#include <objbase.h>

#include "DuiLib/PaintManagerUI.h"
#include "DuiLib/Theme.h"
#include "DuiLib/UIMainQueue.h"
#include "markup/ResourceFiles.h"
#include "suite/logger/QxLogger.h"

namespace DuiLib {
namespace {

HINSTANCE processInstance = nullptr;

}  // namespace

void CPaintManagerUI::SetInstance(HINSTANCE instance) {
    processInstance = instance;
    // Screen readers reach a window's objects through COM, on the thread of the window. It stays for the process.
    const HRESULT com = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
    if (FAILED(com)) {
        LogLine(LogLevel::kError, L"CPaintManagerUI::SetInstance", L"No COM apartment for the UI thread, code: ", com);
    }
    UIMainQueue::getInstance()->bindToCurrentThread();
}

HINSTANCE CPaintManagerUI::GetInstance() {
    return processInstance ? processInstance : GetModuleHandleW(nullptr);
}

std::wstring CPaintManagerUI::GetInstancePath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(GetInstance(), path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) {
            LogLine(LogLevel::kError, L"CPaintManagerUI::GetInstancePath", L"No module path, error code: ",
                    GetLastError());
            return {};
        }
        if (length < path.size()) {
            path.resize(length);
            break;
        }
        path.resize(path.size() * 2);
    }
    return path.substr(0, path.find_last_of(L'\\') + 1);
}

void CPaintManagerUI::SetResourcePath(const std::wstring& folder) {
    SetResourceFolder(folder);
    UITheme::GetInstance()->ForgetFile();
}

const std::wstring& CPaintManagerUI::GetResourcePath() {
    return GetResourceFolder();
}

int CPaintManagerUI::MessageLoop() {
    MSG msg{};
    for (;;) {
        const BOOL got = GetMessageW(&msg, nullptr, 0, 0);
        if (got == 0) {
            return static_cast<int>(msg.wParam);
        }
        if (got == -1) {
            LogLine(LogLevel::kError, L"CPaintManagerUI::MessageLoop", L"GetMessage failed, error code: ",
                    GetLastError());
            return -1;
        }
        TranslateMessage(&msg);
        DispatchMessageW(&msg);
    }
}

}  // namespace DuiLib
