#include "markup/AttributeParser.h"

#include <array>
#include <cstddef>

namespace DuiLib {
namespace {

constexpr int kLargestInt = 1'000'000;

bool IsBlank(wchar_t c) {
    return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n';
}

std::wstring_view Trim(std::wstring_view text) {
    while (!text.empty() && IsBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// Exactly `Count` numbers, separated by commas.
template <std::size_t Count>
std::optional<std::array<int, Count>> ParseInts(std::wstring_view text) {
    std::array<int, Count> numbers{};
    for (std::size_t i = 0; i < Count; ++i) {
        const bool last = i + 1 == Count;
        const std::size_t comma = text.find(L',');
        if (last != (comma == std::wstring_view::npos)) {
            return std::nullopt;
        }
        const std::optional<int> number = ParseInt(text.substr(0, comma));
        if (!number) {
            return std::nullopt;
        }
        numbers[i] = *number;
        text = last ? std::wstring_view{} : text.substr(comma + 1);
    }
    return numbers;
}

int HexDigit(wchar_t c) {
    if (c >= L'0' && c <= L'9') {
        return c - L'0';
    }
    if (c >= L'a' && c <= L'f') {
        return c - L'a' + 10;
    }
    if (c >= L'A' && c <= L'F') {
        return c - L'A' + 10;
    }
    return -1;
}

bool IsNameCharacter(wchar_t c) {
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || (c >= L'0' && c <= L'9') || c == L'_' || c == L'-';
}

}  // namespace

std::optional<int> ParseInt(std::wstring_view text) {
    text = Trim(text);
    const bool negative = !text.empty() && text.front() == L'-';
    if (negative || (!text.empty() && text.front() == L'+')) {
        text.remove_prefix(1);
    }
    if (text.empty()) {
        return std::nullopt;
    }
    int number = 0;
    for (const wchar_t c : text) {
        if (c < L'0' || c > L'9') {
            return std::nullopt;
        }
        number = number * 10 + (c - L'0');
        if (number > kLargestInt) {
            return std::nullopt;
        }
    }
    return negative ? -number : number;
}

std::optional<bool> ParseBool(std::wstring_view text) {
    if (text == L"true") {
        return true;
    }
    if (text == L"false") {
        return false;
    }
    return std::nullopt;
}

std::optional<Rect> ParseRect(std::wstring_view text) {
    const auto numbers = ParseInts<4>(text);
    if (!numbers) {
        return std::nullopt;
    }
    return Rect{(*numbers)[0], (*numbers)[1], (*numbers)[2], (*numbers)[3]};
}

std::optional<Size> ParseSize(std::wstring_view text) {
    const auto numbers = ParseInts<2>(text);
    if (!numbers || (*numbers)[0] < 0 || (*numbers)[1] < 0) {
        return std::nullopt;
    }
    return Size{(*numbers)[0], (*numbers)[1]};
}

std::optional<std::uint32_t> ParseColor(std::wstring_view text) {
    text = Trim(text);
    bool opaque = false;
    if (text.starts_with(L'#')) {
        text.remove_prefix(1);
        opaque = text.size() == 6;
    } else if (text.starts_with(L"0x") || text.starts_with(L"0X")) {
        text.remove_prefix(2);
    } else {
        return std::nullopt;
    }
    if (text.size() != 8 && !opaque) {
        return std::nullopt;
    }
    std::uint32_t color = 0;
    for (const wchar_t c : text) {
        const int digit = HexDigit(c);
        if (digit < 0) {
            return std::nullopt;
        }
        color = color << 4 | static_cast<std::uint32_t>(digit);
    }
    return opaque ? color | 0xFF000000u : color;
}

std::optional<AttributeList> ParseAttributeList(std::wstring_view text) {
    AttributeList list;
    for (text = Trim(text); !text.empty(); text = Trim(text)) {
        std::size_t nameLength = 0;
        while (nameLength < text.size() && IsNameCharacter(text[nameLength])) {
            ++nameLength;
        }
        const std::wstring_view name = text.substr(0, nameLength);
        text = Trim(text.substr(nameLength));
        if (name.empty() || !text.starts_with(L'=')) {
            return std::nullopt;
        }
        text = Trim(text.substr(1));
        if (text.empty() || (text.front() != L'"' && text.front() != L'\'')) {
            return std::nullopt;
        }
        // A quote within a word belongs to the value: a path may hold an apostrophe.
        std::size_t end = text.find(text.front(), 1);
        while (end != std::wstring_view::npos && end + 1 < text.size() && !IsBlank(text[end + 1])) {
            end = text.find(text.front(), end + 1);
        }
        if (end == std::wstring_view::npos) {
            return std::nullopt;
        }
        list.emplace_back(name, text.substr(1, end - 1));
        text = text.substr(end + 1);
    }
    return list;
}

}  // namespace DuiLib
