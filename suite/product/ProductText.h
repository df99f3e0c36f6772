#pragma once
// What the texts that the system gives are made into before they name elements and folders.
//
// Why: firmware and user may have put anything there. Pure logic. Any thread. May throw std::bad_alloc.
#include <string>
#include <string_view>

namespace suite {

// The name with everything but ASCII letters, digits, '_', '-' and '.' removed, at most 128 characters, and with '_' in
// front when an element's name could not begin with its first character. Empty when nothing is left.
std::string ElementNameOf(std::wstring_view productName);

// "de-DE" from "de-DE" or from a locale's name with a sort order such as "de-DE_phoneb"; empty when it is no tag:
// letters and digits in one to four parts of one to eight characters, the first of them two or three letters.
std::wstring LanguageTagOf(std::wstring_view localeName);

}  // namespace suite
