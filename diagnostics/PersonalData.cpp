#include "diagnostics/PersonalData.h"

#include <algorithm>
#include <cwctype>
#include <iterator>

namespace diagnostics {

namespace {

constexpr std::wstring_view kUsersFolder = L"users";
// Of identifiers that stand for a person: of a machine or a domain, of the cloud's directory, of a mail account.
constexpr std::wstring_view kAccountStarts[] = {L"s-1-5-21-", L"s-1-12-1-", L"s-1-11-96-"};
// Endings of files, which "picture@2x.png" and the like are named by.
constexpr std::wstring_view kFileEndings[] = {L"png", L"jpg", L"jpeg", L"bmp", L"mp4", L"mov", L"svg",
                                              L"ico", L"xml", L"log",  L"txt", L"dll", L"exe"};

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

using Masking = PersonalData::Masking;

std::optional<Masking> Account(std::wstring_view lower, std::size_t at) {
    for (const std::wstring_view start : kAccountStarts) {
        if (lower.substr(at, start.size()) != start) {
            continue;
        }
        std::size_t end = at + start.size();
        while (end < lower.size() && (IsDigit(lower[end]) || lower[end] == L'-')) {
            ++end;
        }
        if (end > at + start.size()) {
            return Masking{end, L"S" + std::wstring(start.substr(1)) + L"<account>"};
        }
    }
    return std::nullopt;
}

bool IsMachinePart(wchar_t c) {
    return IsWordPart(c) || c == L'-' || c == L'.';
}

// Of "\\server\share" and "\\?\UNC\server\share"; two slashes within a path, or the system's own "\\.\", are none.
std::optional<Masking> Machine(std::wstring_view lower, std::size_t at) {
    constexpr std::wstring_view kStarts[] = {L"\\\\?\\unc\\", L"\\\\"};
    for (const std::wstring_view start : kStarts) {
        if (lower.substr(at, start.size()) != start) {
            continue;
        }
        const std::size_t name = at + start.size();
        std::size_t end = name;
        while (end < lower.size() && IsMachinePart(lower[end])) {
            ++end;
        }
        if (end > name && IsWordPart(lower[name])) {
            return Masking{end, std::wstring(start.size() > 2 ? L"\\\\?\\UNC\\" : start) + L"<machine>"};
        }
    }
    return std::nullopt;
}

bool IsAddressPart(wchar_t c) {
    return IsMachinePart(c) || c == L'+';
}

std::optional<Masking> Address(std::wstring_view lower, std::size_t at) {
    std::size_t middle = at;
    while (middle < lower.size() && IsAddressPart(lower[middle])) {
        ++middle;
    }
    if (middle == at || middle == lower.size() || lower[middle] != L'@') {
        return std::nullopt;
    }
    std::size_t end = middle + 1;
    while (end < lower.size() && IsMachinePart(lower[end])) {
        ++end;
    }
    while (end > middle + 1 && !IsWordPart(lower[end - 1])) {
        --end;  // the end of a sentence
    }
    const std::wstring_view domain = lower.substr(middle + 1, end - middle - 1);
    const std::size_t dot = domain.rfind(L'.');
    if (dot == std::wstring_view::npos || dot == 0 ||
        std::ranges::find(kFileEndings, domain.substr(dot + 1)) != std::end(kFileEndings)) {
        return std::nullopt;
    }
    return Masking{end, L"<address>"};
}

}  // namespace

PersonalData::PersonalData(const std::vector<std::wstring>& names, const std::vector<std::wstring>& machines) {
    const auto add = [this](std::wstring_view name) {
        if (name.size() > 1) {
            names_.push_back(Lower(name));
        }
    };
    for (const std::wstring& name : names) {
        add(name);
    }
    for (const std::wstring& machine : machines) {
        add(machine);
        std::wstring_view rest = machine;
        for (std::size_t dot = rest.find(L'.'); dot != std::wstring_view::npos; dot = rest.find(L'.')) {
            add(rest.substr(0, dot));
            rest.remove_prefix(dot + 1);
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
        std::optional<Masking> masking;
        if (wordStarts) {
            masking = Account(lower, at);
            accountEnd = masking ? masking->end : accountEnd;
        }
        if (!masking && (at == 0 || (wordStarts && !IsAddressPart(lower[at - 1])))) {
            masking = Address(lower, at);
        }
        if (!masking && (at == 0 || (!IsWordPart(lower[at - 1]) && lower[at - 1] != L':' && !IsSlash(lower[at - 1])))) {
            masking = Machine(lower, at);
        }
        if (!masking && wordStarts) {
            masking = Name(lower, at);
        }
        if (masking) {
            out += masking->instead;
            at = masking->end;
        } else {
            out += text[at++];
        }
    }
    return out;
}

std::optional<PersonalData::Masking> PersonalData::Name(std::wstring_view lower, std::size_t at) const {
    for (const std::wstring& name : names_) {
        const std::size_t end = at + name.size();
        if (lower.compare(at, name.size(), name) == 0 && (end >= lower.size() || !IsWordPart(lower[end]))) {
            return Masking{end, L"<name>"};
        }
    }
    return std::nullopt;
}

}  // namespace diagnostics
