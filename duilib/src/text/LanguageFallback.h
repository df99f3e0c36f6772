#pragma once
// Which of the languages that a program has texts for serves a user's language. Pure logic. Thread: any.
#include <string>
#include <string_view>
#include <vector>

namespace DuiLib {

inline constexpr wchar_t kFallbackLanguage[] = L"en_US";

// `wanted`: a tag with '_' or '-' between its parts, "zh_Hant_HK". `available`: folder names, in any order. The answer
// is one of them, compared without regard to case, or empty: the language itself, else the same language in another
// region (the first by name; Chinese by its script), else en_US.
std::wstring ChooseLanguage(std::wstring_view wanted, const std::vector<std::wstring>& available);

}  // namespace DuiLib
