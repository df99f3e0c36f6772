#include "text/LanguageFallback.h"

#include <algorithm>

namespace DuiLib {
namespace {

// Language tags are plain ASCII.
std::wstring Fold(std::wstring_view tag) {
    std::wstring folded(tag);
    for (wchar_t& c : folded) {
        if (c >= L'A' && c <= L'Z') {
            c = static_cast<wchar_t>(c - L'A' + L'a');
        } else if (c == L'-') {
            c = L'_';
        }
    }
    return folded;
}

std::wstring LanguageOf(const std::wstring& folded) {
    return folded.substr(0, folded.find(L'_'));
}

bool HasPart(const std::wstring& folded, std::wstring_view part) {
    return (folded + L'_').find(L'_' + std::wstring(part) + L'_') != std::wstring::npos;
}

bool IsTraditionalChinese(const std::wstring& folded) {
    if (HasPart(folded, L"hans")) {
        return false;
    }
    return HasPart(folded, L"hant") || HasPart(folded, L"tw") || HasPart(folded, L"hk") || HasPart(folded, L"mo");
}

}  // namespace

std::wstring ChooseLanguage(std::wstring_view wanted, const std::vector<std::wstring>& available) {
    std::vector<std::pair<std::wstring, std::wstring>> known;  // folded, as it is named
    for (const std::wstring& name : available) {
        known.emplace_back(Fold(name), name);
    }
    std::sort(known.begin(), known.end());
    const auto find = [&](const std::wstring& folded) {
        const auto it = std::find_if(known.begin(), known.end(), [&](const auto& k) { return k.first == folded; });
        return it != known.end() ? it->second : std::wstring();
    };

    const std::wstring tag = Fold(wanted);
    if (std::wstring exact = find(tag); !exact.empty()) {
        return exact;
    }
    const std::wstring language = LanguageOf(tag);
    if (language == L"zh") {
        if (std::wstring script = find(IsTraditionalChinese(tag) ? L"zh_tw" : L"zh_cn"); !script.empty()) {
            return script;
        }
    }
    if (!language.empty()) {
        for (const auto& [folded, name] : known) {
            if (LanguageOf(folded) == language) {
                return name;
            }
        }
    }
    return find(Fold(kFallbackLanguage));
}

}  // namespace DuiLib
