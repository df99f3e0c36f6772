#include "suite/xml/XmlGate.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "suite/common/Utf8.h"

namespace suite {

namespace {

bool IsXmlCharacter(char32_t c) {
    return c == U'\t' || c == U'\n' || c == U'\r' || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD) ||
           (c >= 0x10000 && c <= 0x10FFFF);
}

bool IsSpace(char32_t c) {
    return c == U' ' || c == U'\t' || c == U'\n' || c == U'\r';
}

bool IsNameStart(char32_t c) {
    return (c >= U'A' && c <= U'Z') || (c >= U'a' && c <= U'z') || c == U'_' || c == U':' ||
           (c >= 0xC0 && c != 0xD7 && c != 0xF7);
}

bool IsNamePart(char32_t c) {
    return IsNameStart(c) || (c >= U'0' && c <= U'9') || c == U'-' || c == U'.' || c == 0xB7;
}

// Nothing when a byte sequence is no character of XML.
std::optional<std::u32string> DecodeUtf8(std::string_view bytes) {
    constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // what the decoder makes of damaged bytes
    std::u32string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const bool isReplacement = bytes.substr(0, kReplacement.size()) == kReplacement;
        const char32_t c = TakeCodePoint(bytes);
        if (!IsXmlCharacter(c) || (c == 0xFFFD && !isReplacement)) {
            return std::nullopt;
        }
        text += c;
    }
    return text;
}

std::optional<std::u32string> DecodeUtf16(std::string_view bytes, bool bigEndian) {
    if (bytes.size() % 2 != 0) {
        return std::nullopt;
    }
    std::wstring units;
    units.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        units += static_cast<wchar_t>(bigEndian ? first << 8 | second : second << 8 | first);
    }
    std::u32string text;
    for (std::wstring_view rest = units; !rest.empty();) {
        const bool isReplacement = rest.front() == 0xFFFD;
        const char32_t c = TakeCodePoint(rest);
        if (!IsXmlCharacter(c) || (c == 0xFFFD && !isReplacement)) {
            return std::nullopt;
        }
        text += c;
    }
    return text;
}

std::optional<std::u32string> Decode(std::string_view bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        return DecodeUtf8(bytes.substr(3));
    }
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
        return DecodeUtf16(bytes.substr(2), bytes.front() == '\xFE');
    }
    return DecodeUtf8(bytes);
}

// Walks the markup. Every step either goes forward or ends the walk.
class Walk {
  public:
    explicit Walk(std::u32string_view text) : rest_(text) {}

    XmlVerdict Run() {
        while (!rest_.empty() && verdict_ == XmlVerdict::kSound) {
            if (!(rest_.front() == U'<' ? Markup() : Text())) {
                Fail(XmlVerdict::kBroken);
            }
        }
        if (verdict_ == XmlVerdict::kSound && (!open_.empty() || elements_ == 0)) {
            return XmlVerdict::kBroken;
        }
        return verdict_;
    }

  private:
    // The first reason counts.
    bool Fail(XmlVerdict verdict) {
        if (verdict_ == XmlVerdict::kSound) {
            verdict_ = verdict;
        }
        return false;
    }

    bool Take(std::u32string_view prefix) {
        if (!rest_.starts_with(prefix)) {
            return false;
        }
        rest_.remove_prefix(prefix.size());
        return true;
    }

    bool TakeThrough(std::u32string_view end) {
        const std::size_t place = rest_.find(end);
        if (place == std::u32string_view::npos) {
            return false;
        }
        rest_.remove_prefix(place + end.size());
        return true;
    }

    bool TakeSpaces() {
        const std::size_t before = rest_.size();
        while (!rest_.empty() && IsSpace(rest_.front())) {
            rest_.remove_prefix(1);
        }
        return rest_.size() != before;
    }

    // Empty when there is no name here.
    std::u32string_view TakeName() {
        const std::u32string_view all = rest_;
        if (rest_.empty() || !IsNameStart(rest_.front())) {
            return {};
        }
        while (!rest_.empty() && IsNamePart(rest_.front())) {
            rest_.remove_prefix(1);
        }
        return all.substr(0, all.size() - rest_.size());
    }

    bool Text() {
        const std::u32string_view text = rest_.substr(0, std::min(rest_.find(U'<'), rest_.size()));
        rest_.remove_prefix(text.size());
        if (open_.empty()) {
            return std::all_of(text.begin(), text.end(), IsSpace);
        }
        return text.find(U"]]>") == std::u32string_view::npos && References(text);
    }

    bool Markup() {
        if (Take(U"<!--")) {
            return TakeThrough(U"--") && Take(U">");
        }
        if (Take(U"<![CDATA[")) {
            return !open_.empty() && TakeThrough(U"]]>");
        }
        if (Take(U"<!")) {
            return !TakeName().empty() && Fail(XmlVerdict::kRefused);
        }
        if (Take(U"<?")) {
            return !TakeName().empty() && TakeThrough(U"?>");
        }
        return Take(U"</") ? EndTag() : StartTag();
    }

    bool EndTag() {
        if (open_.empty() || TakeName() != open_.back()) {
            return false;
        }
        open_.pop_back();
        TakeSpaces();
        return Take(U">");
    }

    bool StartTag() {
        if (open_.empty() && elements_ > 0) {
            return false;
        }
        if (open_.size() >= kMostXmlLevels || ++elements_ > kMostXmlElements) {
            return Fail(XmlVerdict::kRefused);
        }
        Take(U"<");
        const std::u32string_view name = TakeName();
        if (name.empty()) {
            return false;
        }
        std::vector<std::u32string_view> attributes;
        for (bool spaced = TakeSpaces(); !Take(U"/>"); spaced = TakeSpaces()) {
            if (Take(U">")) {
                open_.push_back(name);
                return true;
            }
            if (!spaced || !Attribute(attributes)) {
                return false;
            }
        }
        return true;
    }

    bool Attribute(std::vector<std::u32string_view>& known) {
        const std::u32string_view name = TakeName();
        if (name.empty() || std::find(known.begin(), known.end(), name) != known.end()) {
            return false;
        }
        if (known.size() >= kMostAttributes) {
            return Fail(XmlVerdict::kRefused);
        }
        known.push_back(name);
        TakeSpaces();
        if (!Take(U"=")) {
            return false;
        }
        TakeSpaces();
        const std::u32string_view quote = rest_.substr(0, 1);
        if (quote != U"\"" && quote != U"'") {
            return false;
        }
        rest_.remove_prefix(1);
        const std::u32string_view value = rest_.substr(0, rest_.find(quote));
        return TakeThrough(quote) && value.find(U'<') == std::u32string_view::npos && References(value);
    }

    // Every '&' begins one of the five entities that need no declaration, or the number of a character.
    static bool References(std::u32string_view text) {
        for (std::size_t place = text.find(U'&'); place != std::u32string_view::npos; place = text.find(U'&')) {
            text.remove_prefix(place + 1);
            const std::u32string_view name = text.substr(0, std::min(text.find(U';'), text.size()));
            if (name.size() == text.size() || !IsReference(name)) {
                return false;
            }
        }
        return true;
    }

    static bool IsReference(std::u32string_view name) {
        if (!name.starts_with(U'#')) {
            return name == U"amp" || name == U"lt" || name == U"gt" || name == U"quot" || name == U"apos";
        }
        const bool isHex = name.starts_with(U"#x");
        name.remove_prefix(isHex ? 2 : 1);
        char32_t value = 0;
        for (const char32_t c : name) {
            const std::size_t digit = std::u32string_view(U"0123456789abcdefABCDEF").find(c);
            if (digit == std::u32string_view::npos || (digit > 9 && !isHex) || value > 0x10FFFF) {
                return false;
            }
            value = value * (isHex ? 16 : 10) + static_cast<char32_t>(digit > 15 ? digit - 6 : digit);
        }
        return !name.empty() && IsXmlCharacter(value);
    }

    static constexpr std::size_t kMostAttributes = 256;

    std::u32string_view rest_;
    std::vector<std::u32string_view> open_;  // the names of the elements around this place, outermost first
    std::size_t elements_ = 0;
    XmlVerdict verdict_ = XmlVerdict::kSound;
};

}  // namespace

XmlVerdict JudgeXml(std::string_view bytes) {
    if (bytes.size() > kMostXmlBytes) {
        return XmlVerdict::kRefused;
    }
    const std::optional<std::u32string> text = Decode(bytes);
    if (!text) {
        return XmlVerdict::kBroken;
    }
    if (std::all_of(text->begin(), text->end(), IsSpace)) {
        return XmlVerdict::kBlank;
    }
    return Walk(*text).Run();
}

}  // namespace suite
