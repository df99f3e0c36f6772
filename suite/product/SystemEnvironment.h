#pragma once
// Facts about the user's session. Any thread. Nothing throws.
#include <string>

#include "suite/product/Export.h"

class SUITE_PRODUCT_API SystemEnvironment {
  public:
    // The tag of the user's display language, such as "zh-CN"; "en-US" when the system gives none.
    static std::wstring GetCurrentUserLanguage();
};
