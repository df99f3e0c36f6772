#pragma once
// Facts about the user's session.
//
// The display language is the first of those that the user chose in the system's settings, not the regional format.
// Under Wine it follows the environment of the process that is started: LC_ALL=zh_CN.UTF-8 gives "zh-CN", and the
// locale need not be installed.
// Any thread. Nothing throws.
#include <string>

#include "suite/common/Export.h"

class SUITE_PRODUCT_API SystemEnvironment {
  public:
    // The tag of the user's display language, such as "zh-CN"; "en-US" when the system gives none.
    static std::wstring GetCurrentUserLanguage();
};
