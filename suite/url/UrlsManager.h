#pragma once
// Opens web addresses in the user's browser. Any thread; it returns when the shell has taken the address. Nothing
// throws.
#include <string>

#include "suite/url/Export.h"

namespace ntx::util {

class SUITE_URL_API UrlsManager {
  public:
    // Opens an http or https address; anything else is refused and logged, and nothing is shown when the browser does
    // not start. True when the shell has taken the address.
    static bool OpenUrl(const std::wstring& url);
};

}  // namespace ntx::util
