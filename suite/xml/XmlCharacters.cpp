#include "suite/xml/XmlCharacters.h"

#include "suite/common/Utf8.h"

namespace suite {

namespace {

// Takes the code points of `rest`, UTF-8 or UTF-16; what the decoder makes of damage counts as damage.
template <typename View>
XmlCharacters TakeCharacters(View rest, View replacement) {
    XmlCharacters decoded;
    decoded.text.reserve(rest.size());
    while (!rest.empty()) {
        const bool isReplacement = rest.starts_with(replacement);
        const char32_t c = TakeCodePoint(rest);
        if (!IsXmlCharacter(c) || (c == 0xFFFD && !isReplacement)) {
            decoded.whole = false;
            break;
        }
        decoded.text += c;
    }
    return decoded;
}

XmlCharacters DecodeUtf8(std::string_view bytes) {
    return TakeCharacters<std::string_view>(bytes, "\xEF\xBF\xBD");
}

XmlCharacters DecodeUtf16(std::string_view bytes, bool bigEndian) {
    std::wstring units;
    units.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        units += static_cast<wchar_t>(bigEndian ? first << 8 | second : second << 8 | first);
    }
    XmlCharacters decoded = TakeCharacters<std::wstring_view>(units, L"\uFFFD");
    decoded.whole = decoded.whole && bytes.size() % 2 == 0;
    return decoded;
}

}  // namespace

bool IsXmlCharacter(char32_t c) {
    return c == U'\t' || c == U'\n' || c == U'\r' || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD) ||
           (c >= 0x10000 && c <= 0x10FFFF);
}

bool IsXmlSpace(char32_t c) {
    return c == U' ' || c == U'\t' || c == U'\n' || c == U'\r';
}

bool IsXmlNameStart(char32_t c) {
    return (c >= U'A' && c <= U'Z') || (c >= U'a' && c <= U'z') || c == U'_' || c == U':' ||
           (c >= 0xC0 && c != 0xD7 && c != 0xF7);
}

bool IsXmlNamePart(char32_t c) {
    return IsXmlNameStart(c) || (c >= U'0' && c <= U'9') || c == U'-' || c == U'.' || c == 0xB7;
}

XmlCharacters DecodeXml(std::string_view bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        return DecodeUtf8(bytes.substr(3));
    }
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
        return DecodeUtf16(bytes.substr(2), bytes.front() == '\xFE');
    }
    return DecodeUtf8(bytes);
}

}  // namespace suite
