#include "suite/product/SystemEnvironment.h"

#include <windows.h>

namespace {

// The first of the user's display languages; empty when the system gives none.
std::wstring FirstDisplayLanguage() {
    ULONG count = 0;
    ULONG length = 0;
    if (!GetUserPreferredUILanguages(MUI_LANGUAGE_NAME, &count, nullptr, &length) || length == 0) {
        return {};
    }
    std::wstring list(length, L'\0');
    if (!GetUserPreferredUILanguages(MUI_LANGUAGE_NAME, &count, list.data(), &length)) {
        return {};
    }
    return list.c_str();
}

std::wstring RegionalFormat() {
    wchar_t name[LOCALE_NAME_MAX_LENGTH] = L"";
    return GetUserDefaultLocaleName(name, LOCALE_NAME_MAX_LENGTH) > 0 ? name : L"";
}

}  // namespace

std::wstring SystemEnvironment::GetCurrentUserLanguage() {
    try {
        std::wstring tag = FirstDisplayLanguage();
        if (tag.empty()) {
            tag = RegionalFormat();
        }
        return tag.empty() ? L"en-US" : tag;
    } catch (...) {
        return {};
    }
}
