#include "suite/product/SystemEnvironment.h"

#include <windows.h>

#include "suite/product/ProductText.h"

namespace {

// The first of the user's display languages; empty when the system gives none.
std::wstring PreferredLanguage() {
    ULONG count = 0;
    ULONG length = 0;
    if (!GetUserPreferredUILanguages(MUI_LANGUAGE_NAME, &count, nullptr, &length) || length == 0) {
        return {};
    }
    std::wstring names(length, L'\0');
    if (!GetUserPreferredUILanguages(MUI_LANGUAGE_NAME, &count, names.data(), &length) || count == 0) {
        return {};
    }
    return suite::LanguageTagOf(names.substr(0, names.find(L'\0')));
}

std::wstring DefaultLocale() {
    wchar_t name[LOCALE_NAME_MAX_LENGTH] = {};
    return GetUserDefaultLocaleName(name, LOCALE_NAME_MAX_LENGTH) > 0 ? suite::LanguageTagOf(name) : std::wstring();
}

}  // namespace

std::wstring SystemEnvironment::GetCurrentUserLanguage() {
    try {
        std::wstring tag = PreferredLanguage();
        if (tag.empty()) {
            tag = DefaultLocale();
        }
        return tag.empty() ? L"en-US" : tag;
    } catch (...) {
        return L"en-US";
    }
}
