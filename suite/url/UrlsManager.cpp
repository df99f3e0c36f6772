#include "suite/url/UrlsManager.h"

#include <windows.h>

#include <objbase.h>
#include <shellapi.h>

#include "suite/logger/QxLogger.h"
#include "suite/url/WebAddress.h"

namespace ntx::util {

namespace {

constexpr const wchar_t* kFunction = L"UrlsManager::OpenUrl";

// Some handlers of the shell are COM objects. A thread that is set up in another way already stays so.
class ComOnThisThread {
  public:
    ComOnThisThread() : result_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE)) {}
    ~ComOnThisThread() {
        if (SUCCEEDED(result_)) {
            CoUninitialize();
        }
    }
    ComOnThisThread(const ComOnThisThread&) = delete;
    ComOnThisThread& operator=(const ComOnThisThread&) = delete;

  private:
    const HRESULT result_;
};

}  // namespace

bool UrlsManager::OpenUrl(const std::wstring& url) {
    try {
        if (!suite::IsWebAddress(url)) {
            LogLine(4, kFunction, L"not a web address: ", url);
            return false;
        }
        const ComOnThisThread com;
        const auto code =
            reinterpret_cast<INT_PTR>(ShellExecuteW(nullptr, L"open", url.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
        if (code <= 32) {
            LogLine(4, kFunction, L"the browser does not start: ", code);
            return false;
        }
        return true;
    } catch (...) {
        LogLine(4, kFunction, L"unexpected exception");
        return false;
    }
}

}  // namespace ntx::util
