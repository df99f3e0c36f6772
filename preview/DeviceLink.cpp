#include "preview/DeviceLink.h"

#include <algorithm>
#include <cwctype>

namespace preview {

namespace {

std::wstring_view WithoutKind(std::wstring_view link) {
    return link.substr(0, link.rfind(L"#{"));
}

}  // namespace

bool IsSameDevice(std::wstring_view a, std::wstring_view b) {
    const std::wstring_view first = WithoutKind(a);
    const std::wstring_view second = WithoutKind(b);
    return !first.empty() && std::equal(first.begin(), first.end(), second.begin(), second.end(),
                                        [](wchar_t x, wchar_t y) { return std::towupper(x) == std::towupper(y); });
}

}  // namespace preview
