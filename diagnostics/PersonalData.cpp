#include "diagnostics/PersonalData.h"

#include <algorithm>
#include <cwctype>

namespace diagnostics {

namespace {

constexpr std::wstring_view kUsersFolder = L"users";
constexpr std::wstring_view kAccountStart = L"s-1-5-21-";

std::wstring Lower(std::wstring_view text) {
    std::wstring lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(c))); });
    return lower;
}

bool IsSlash(wchar_t c) {
    return c == L'\\' || c == L'/';
}

bool IsDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

bool IsWordPart(wchar_t c) {
    return std::iswalnum(static_cast<std::wint_t>(c)) || c == L'_';
}

// The end of what stands at `at` if it is a profile's folder, the component after "Users\"; else `at`.
std::size_t ProfileEnd(std::wstring_view lower, std::size_t at) {
    const bool afterUsers = at > kUsersFolder.size() + 1 && IsSlash(lower[at - 1]) &&
                            lower.substr(at - 1 - kUsersFolder.size(), kUsersFolder.size()) == kUsersFolder &&
                            IsSlash(lower[at - 2 - kUsersFolder.size()]);
    if (!afterUsers) {
        return at;
    }
    const std::size_t end = lower.find_first_of(L"\\/\"<>|:*?\r\n\t", at);
    return std::min(end, lower.size());
}

// The end of the account's numbers; `at` when no account stands there.
std::size_t AccountEnd(std::wstring_view lower, std::size_t at) {
    if (lower.substr(at, kAccountStart.size()) != kAccountStart) {
        return at;
    }
    std::size_t end = at + kAccountStart.size();
    while (end < lower.size() && (IsDigit(lower[end]) || lower[end] == L'-')) {
        ++end;
    }
    return end;
}

}  // namespace

PersonalData::PersonalData(std::vector<std::wstring> names) {
    for (const std::wstring& name : names) {
        if (name.size() > 1) {
            names_.push_back(Lower(name));
        }
    }
    // A name that holds another one is replaced as a whole.
    std::sort(names_.begin(), names_.end(), [](const auto& a, const auto& b) { return a.size() > b.size(); });
}

std::wstring PersonalData::Mask(std::wstring_view text) const {
    const std::wstring lower = Lower(text);
    std::wstring out;
    std::size_t accountEnd = 0;  // what follows an account begins a word of its own
    for (std::size_t at = 0; at < text.size();) {
        if (const std::size_t end = ProfileEnd(lower, at); end > at) {
            out += L"<user>";
            at = end;
            continue;
        }
        const bool wordStarts = at == accountEnd || !IsWordPart(lower[at - 1]);
        if (const std::size_t end = wordStarts ? AccountEnd(lower, at) : at; end > at) {
            out += L"S-1-5-21-<account>";
            at = end;
            accountEnd = end;
            continue;
        }
        const auto name = std::find_if(names_.begin(), names_.end(), [&](const std::wstring& candidate) {
            const std::size_t end = at + candidate.size();
            return wordStarts && lower.compare(at, candidate.size(), candidate) == 0 &&
                   (end >= lower.size() || !IsWordPart(lower[end]));
        });
        if (name != names_.end()) {
            out += L"<name>";
            at += name->size();
            continue;
        }
        out += text[at++];
    }
    return out;
}

}  // namespace diagnostics
