#include "suite/product/SystemEnvironment.h"

#include <windows.h>

std::wstring SystemEnvironment::GetCurrentUserLanguage() {
    ULONG count = 0;
    wchar_t languages[512] = {};
    ULONG size = 512;
    if (GetUserPreferredUILanguages(MUI_LANGUAGE_NAME, &count, languages, &size) && count > 0 && languages[0]) {
        return languages;
    }
    wchar_t locale[LOCALE_NAME_MAX_LENGTH] = {};
    if (GetUserDefaultLocaleName(locale, LOCALE_NAME_MAX_LENGTH) > 1) return locale;
    return L"en-US";
}
