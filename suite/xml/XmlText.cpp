#include "suite/xml/XmlText.h"

#include "suite/common/Utf8.h"

namespace suite {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

std::optional<std::wstring> DecodeUtf16(std::string_view bytes, bool bigEndian) {
    if (bytes.size() % 2 != 0) {
        return std::nullopt;
    }
    std::wstring text;
    text.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[bigEndian ? i + 1 : i]);
        const auto high = static_cast<unsigned char>(bytes[bigEndian ? i : i + 1]);
        text += static_cast<wchar_t>(low | (high << 8));
    }
    return text;
}

std::optional<std::wstring> DecodeUtf8(std::string_view bytes) {
    std::wstring text = FromUtf8(bytes);
    // What is not valid was replaced, and comes back as other bytes.
    return ToUtf8(text) == bytes ? std::optional(std::move(text)) : std::nullopt;
}

}  // namespace

std::optional<std::wstring> DecodeXmlBytes(std::string_view bytes) {
    std::optional<std::wstring> text;
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
        text = DecodeUtf16(bytes.substr(2), bytes.starts_with("\xFE"));
    } else {
        text = DecodeUtf8(bytes.starts_with("\xEF\xBB\xBF") ? bytes.substr(3) : bytes);
    }
    return text && IsXmlText(*text) ? text : std::nullopt;
}

bool IsXmlText(std::wstring_view text) {
    while (!text.empty()) {
        const auto unit = static_cast<char32_t>(text.front());
        const char32_t value = TakeCodePoint(text);
        const bool loneSurrogate = value == kReplacement && unit != kReplacement;
        const bool control = value < 0x20 && value != U'\t' && value != U'\n' && value != U'\r';
        if (loneSurrogate || control || value == 0xFFFE || value == 0xFFFF) {
            return false;
        }
    }
    return true;
}

}  // namespace suite
