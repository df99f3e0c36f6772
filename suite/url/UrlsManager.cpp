#include "suite/url/UrlsManager.h"

#include <windows.h>

#include <objbase.h>
#include <shellapi.h>

#include "suite/logger/QxLogger.h"
#include "suite/url/WebAddress.h"

namespace {

constexpr wchar_t kOpenUrl[] = L"UrlsManager::OpenUrl";

// Some browsers are started through COM; a thread that has chosen its apartment keeps it.
class Apartment {
  public:
    Apartment() : result_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE)) {}
    ~Apartment() {
        if (SUCCEEDED(result_)) {
            CoUninitialize();
        }
    }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;

  private:
    HRESULT result_;
};

}  // namespace

namespace ntx::util {

bool UrlsManager::OpenUrl(const std::wstring& url) {
    try {
        if (!suite::IsWebAddress(url)) {
            LogLine(4, kOpenUrl, L"no web address: ", url);
            return false;
        }
        const Apartment apartment;
        SHELLEXECUTEINFOW info{};
        info.cbSize = sizeof info;
        // No message box of the shell's, and the start is done before the calling thread goes on or ends.
        info.fMask = SEE_MASK_FLAG_NO_UI | SEE_MASK_NOASYNC;
        info.lpVerb = L"open";
        info.lpFile = url.c_str();
        info.nShow = SW_SHOWNORMAL;
        if (!ShellExecuteExW(&info)) {
            LogLine(4, kOpenUrl, L"start browser error: ", GetLastError());
            return false;
        }
        return true;
    } catch (...) {
        return false;
    }
}

}  // namespace ntx::util
