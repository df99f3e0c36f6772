#pragma once
// The value of an attribute that names an image, checked while the layout is read: empty, or an image attribute.
#include <string>
#include <string_view>

#include "markup/ImageAttribute.h"

namespace DuiLib {

inline bool IsImageSetting(std::wstring_view value) {
    return value.empty() || ParseImageAttribute(value).has_value();
}

}  // namespace DuiLib
