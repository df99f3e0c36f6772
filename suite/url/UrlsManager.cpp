#include "suite/url/UrlsManager.h"

#include <windows.h>

#include <shellapi.h>

#include "suite/common/ComApartment.h"
#include "suite/logger/QxLogger.h"
#include "suite/url/WebAddress.h"

namespace ntx::util {

namespace {

constexpr const wchar_t* kFunction = L"UrlsManager::OpenUrl";

}  // namespace

bool UrlsManager::OpenUrl(const std::wstring& url) {
    try {
        if (!suite::IsWebAddress(url)) {
            LogLine(LogLevel::kError, kFunction, L"not a web address: ", url);
            return false;
        }
        // Some handlers of the shell are COM objects.
        const suite::ComApartment com(suite::ComApartment::Kind::kSingleThreaded);
        const auto code =
            reinterpret_cast<INT_PTR>(ShellExecuteW(nullptr, L"open", url.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
        if (code <= 32) {
            LogLine(LogLevel::kError, kFunction, L"the browser does not start: ", code);
            return false;
        }
        return true;
    } catch (...) {
        LogLine(LogLevel::kError, kFunction, L"unexpected exception");
        return false;
    }
}

}  // namespace ntx::util
