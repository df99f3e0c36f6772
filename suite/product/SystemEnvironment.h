#pragma once
// Facts about the user's session. Any thread. Nothing throws.
#include <string>

#include "suite/product/Export.h"

class SUITE_PRODUCT_API SystemEnvironment {
  public:
    // The tag of the user's display language, such as "zh-CN": the first of the preferred display languages, else the
    // locale of the user's regional settings, else "en-US".
    // Under Wine both follow the host's environment at the start of the program: LC_ALL=zh_CN.UTF-8 gives "zh-CN", also
    // when the host has no such locale. Wine writes the registry's LocaleName from it and never reads it back.
    static std::wstring GetCurrentUserLanguage();
};
