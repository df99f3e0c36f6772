#include "suite/common/Utf8.h"

namespace suite {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

bool IsScalar(char32_t value) {
    return value <= 0x10FFFF && !(value >= 0xD800 && value <= 0xDFFF);
}

void AppendWide(std::wstring& out, char32_t codePoint) {
    if (sizeof(wchar_t) == 2 && codePoint > 0xFFFF) {
        const char32_t rest = codePoint - 0x10000;
        out += static_cast<wchar_t>(0xD800 + (rest >> 10));
        out += static_cast<wchar_t>(0xDC00 + (rest & 0x3FF));
    } else {
        out += static_cast<wchar_t>(codePoint);
    }
}

}  // namespace

void AppendUtf8(std::string& out, char32_t codePoint) {
    if (!IsScalar(codePoint)) {
        codePoint = kReplacement;
    }
    if (codePoint < 0x80) {
        out += static_cast<char>(codePoint);
        return;
    }
    if (codePoint < 0x800) {
        out += static_cast<char>(0xC0 | (codePoint >> 6));
    } else {
        if (codePoint < 0x10000) {
            out += static_cast<char>(0xE0 | (codePoint >> 12));
        } else {
            out += static_cast<char>(0xF0 | (codePoint >> 18));
            out += static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F));
        }
        out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
    }
    out += static_cast<char>(0x80 | (codePoint & 0x3F));
}

char32_t TakeCodePoint(std::wstring_view& text) {
    const char32_t first = static_cast<char32_t>(text.front());
    text.remove_prefix(1);
    if (IsHighSurrogate(first) && !text.empty() && IsLowSurrogate(static_cast<char32_t>(text.front()))) {
        const char32_t second = static_cast<char32_t>(text.front());
        text.remove_prefix(1);
        return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
    }
    return IsScalar(first) ? first : kReplacement;
}

char32_t TakeCodePoint(std::string_view& text) {
    const auto first = static_cast<unsigned char>(text.front());
    text.remove_prefix(1);
    if (first < 0x80) {
        return first;
    }
    const int following = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
    if (first < 0xC2 || first > 0xF4) {
        return kReplacement;
    }
    char32_t value = first & (0x3F >> following);
    for (int i = 0; i < following; ++i) {
        if (text.empty() || (static_cast<unsigned char>(text.front()) & 0xC0) != 0x80) {
            return kReplacement;
        }
        value = (value << 6) | (static_cast<unsigned char>(text.front()) & 0x3F);
        text.remove_prefix(1);
    }
    const char32_t smallest = following == 3 ? 0x10000 : following == 2 ? 0x800 : 0x80;
    return value >= smallest && IsScalar(value) ? value : kReplacement;
}

std::string ToUtf8(std::wstring_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        AppendUtf8(out, TakeCodePoint(text));
    }
    return out;
}

std::wstring FromUtf8(std::string_view text) {
    std::wstring out;
    out.reserve(text.size());
    while (!text.empty()) {
        AppendWide(out, TakeCodePoint(text));
    }
    return out;
}

}  // namespace suite
