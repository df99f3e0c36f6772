#pragma once
// Opens web addresses in the user's browser. Any thread. Nothing throws.
#include <string>

#include "suite/common/Export.h"

namespace ntx::util {

class SUITE_URL_API UrlsManager {
  public:
    // Opens an http or https address; anything else is refused and logged. True when the browser was started.
    static bool OpenUrl(const std::wstring& url);
};

}  // namespace ntx::util
