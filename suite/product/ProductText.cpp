#include "suite/product/ProductText.h"

namespace suite {

namespace {

constexpr std::size_t kLongestName = 128;
constexpr std::size_t kMostParts = 4;
constexpr std::size_t kLongestPart = 8;

bool IsLetter(wchar_t unit) {
    return (unit >= L'a' && unit <= L'z') || (unit >= L'A' && unit <= L'Z');
}

bool IsDigit(wchar_t unit) {
    return unit >= L'0' && unit <= L'9';
}

}  // namespace

std::string ElementNameOf(std::wstring_view productName) {
    std::string name;
    for (const wchar_t unit : productName) {
        const bool mark = unit == L'_' || unit == L'-' || unit == L'.';
        if (!IsLetter(unit) && !IsDigit(unit) && !mark) {
            continue;
        }
        if (name.empty() && !IsLetter(unit) && unit != L'_') {
            name += '_';
        }
        if (name.size() == kLongestName) {
            break;
        }
        name += static_cast<char>(unit);
    }
    return name;
}

std::wstring LanguageTagOf(std::wstring_view localeName) {
    const std::wstring_view tag = localeName.substr(0, localeName.find(L'_'));
    std::size_t part = 0;
    std::size_t length = 0;
    for (const wchar_t unit : tag) {
        if (unit == L'-') {
            if (length == 0 || (part == 0 && length < 2)) {
                return {};
            }
            ++part;
            length = 0;
        } else if (IsLetter(unit) || (IsDigit(unit) && part > 0)) {
            ++length;
        } else {
            return {};
        }
        if (part == kMostParts || length > (part == 0 ? 3 : kLongestPart)) {
            return {};
        }
    }
    return length == 0 || (part == 0 && length < 2) ? std::wstring() : std::wstring(tag);
}

}  // namespace suite
