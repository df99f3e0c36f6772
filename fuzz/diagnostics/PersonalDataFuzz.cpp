// Masking of what leaves the machine: no known name, profile folder or account number is left, and the rest stays. The
// first line of the input holds the names, separated by commas.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cwctype>
#include <string>
#include <vector>

#include "diagnostics/PersonalData.h"
#include "fuzz/support/Require.h"
#include "fuzz/support/WideText.h"

namespace {

bool IsWordPart(wchar_t c) {
    return std::iswalnum(static_cast<std::wint_t>(c)) != 0 || c == L'_';
}

std::wstring Lower(std::wstring text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(c))); });
    return text;
}

std::vector<std::wstring> TakeNames(std::wstring& text) {
    std::vector<std::wstring> names(1);
    const std::size_t end = std::min(text.find(L'\n'), text.size());
    for (const wchar_t c : text.substr(0, end)) {
        if (c == L',') {
            names.emplace_back();
        } else {
            names.back() += c;
        }
    }
    text.erase(0, end + 1);
    return names;
}

bool IsMarkWord(const std::wstring& name) {
    for (const std::wstring word : {L"name", L"user", L"account", L"s", L"1", L"5", L"21"}) {
        if (name.find(word) != name.npos || word.find(name) != word.npos) {
            return true;
        }
    }
    return false;
}

bool StandsAlone(const std::wstring& text, const std::wstring& word) {
    for (std::size_t at = text.find(word); at != text.npos; at = text.find(word, at + 1)) {
        const std::size_t end = at + word.size();
        if ((at == 0 || !IsWordPart(text[at - 1])) && (end == text.size() || !IsWordPart(text[end]))) {
            return true;
        }
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::wstring text = WideText({data, size});
    const std::vector<std::wstring> names = TakeNames(text);
    const diagnostics::PersonalData personal(names);
    const std::wstring masked = personal.Mask(text);
    const std::wstring lower = Lower(masked);

    // Profile folders: behind "\Users\" stands nothing but the mark, or what is no name of a folder.
    for (const std::wstring folder : {L"\\users\\", L"/users/"}) {
        for (std::size_t at = lower.find(folder); at != lower.npos; at = lower.find(folder, at + 1)) {
            const std::wstring behind = lower.substr(at + folder.size());
            REQUIRE(behind.empty() || behind.starts_with(L"<") ||
                    std::wstring(L"\\/\"<>|:*?\r\n\t").find(behind[0]) != std::wstring::npos);
        }
    }
    // Identifiers of accounts: behind their beginning stands no number. A beginning alone names nobody.
    for (const std::wstring start : {L"s-1-5-21-", L"s-1-12-1-", L"s-1-11-96-"}) {
        for (std::size_t at = lower.find(start); at != lower.npos; at = lower.find(start, at + 1)) {
            const bool wordStarts = at == 0 || !IsWordPart(lower[at - 1]);
            const std::wstring behind = lower.substr(at + start.size());
            REQUIRE(!wordStarts || behind.empty() || std::wstring(L"0123456789-").find(behind[0]) == behind.npos);
        }
    }
    for (const std::wstring& name : names) {
        const std::wstring known = Lower(name);
        // One that begins or ends with punctuation may end where a mark begins.
        const bool isWord = known.size() > 1 && IsWordPart(known.front()) && IsWordPart(known.back());
        if (isWord && !IsMarkWord(known)) {
            REQUIRE(!StandsAlone(lower, known));
        }
    }
    // A text without anything personal is left alone.
    if (masked.find(L'<') == masked.npos) {
        REQUIRE(masked == text);
    }
    return 0;
}
