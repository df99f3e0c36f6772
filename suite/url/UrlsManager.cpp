#include "suite/url/UrlsManager.h"

#include <windows.h>

#include <shellapi.h>

#include "suite/logger/QxLogger.h"

namespace ntx::util {

namespace {

bool IsWebAddress(const std::wstring& url) {
    return _wcsnicmp(url.c_str(), L"http://", 7) == 0 || _wcsnicmp(url.c_str(), L"https://", 8) == 0;
}

// ShellExecute answers with a number above this where it started something.
constexpr INT_PTR kStarted = 32;

}  // namespace

bool UrlsManager::OpenUrl(const std::wstring& url) {
    if (!IsWebAddress(url)) {
        LogLine(4, L"UrlsManager::OpenUrl", L"not a web address: ", url);
        return false;
    }
    const HINSTANCE result = ShellExecuteW(nullptr, L"open", url.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    if (reinterpret_cast<INT_PTR>(result) > kStarted) return true;
    LogLine(4, L"UrlsManager::OpenUrl", L"the browser could not be started, error code: ",
            reinterpret_cast<INT_PTR>(result));
    return false;
}

}  // namespace ntx::util
