#include "suite/xml/XmlGate.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "suite/common/Utf8.h"
#include "suite/xml/XmlCharacters.h"

namespace suite {

namespace {

unsigned LineBreaks(std::u32string_view text) {
    return static_cast<unsigned>(std::count(text.begin(), text.end(), U'\n'));
}

// "amp", "#x41": one of the five entities that need no declaration, or the number of a character.
bool IsReference(std::u32string_view name) {
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

// Every '&' begins a reference.
bool References(std::u32string_view text) {
    for (std::size_t place = text.find(U'&'); place != std::u32string_view::npos; place = text.find(U'&')) {
        text.remove_prefix(place + 1);
        const std::u32string_view name = text.substr(0, std::min(text.find(U';'), text.size()));
        if (name.size() == text.size() || !IsReference(name)) {
            return false;
        }
    }
    return true;
}

// A reader that takes its input in pieces may need an ASCII character to end one behind (Utf8Stream.h).
constexpr std::size_t kLongestRunBeyondAscii = 500;

std::string AsUtf8(std::u32string_view text) {
    std::string utf8;
    utf8.reserve(text.size());
    std::size_t run = 0;
    for (const char32_t c : text) {
        run = c < 0x80 ? 0 : run + 1;
        // One reader cuts references beyond 16 bits short.
        if (run < kLongestRunBeyondAscii || c > 0xFFFF) {
            AppendUtf8(utf8, c);
        } else {
            utf8 += "&#" + std::to_string(static_cast<std::uint32_t>(c)) + ';';
            run = 0;
        }
    }
    return utf8;
}

// Walks the markup and keeps what is sound. Every step either goes forward or ends the walk.
class Walk {
  public:
    explicit Walk(const XmlCharacters& decoded) : whole_(decoded.text), decoded_(decoded.whole), rest_(whole_) {
        judgement_.verdict = XmlVerdict::kSound;
    }

    XmlJudgement Run() {
        while (!rest_.empty() && judgement_.verdict == XmlVerdict::kSound) {
            const std::u32string_view step = rest_;
            if (!(rest_.front() == U'<' ? Markup() : Text())) {
                const bool isCut = step.front() == U'<' && step.find(U'>') == std::u32string_view::npos;
                Fail(XmlVerdict::kBroken, isCut ? AtEnd() : L"not well-formed XML");
            }
        }
        if (judgement_.verdict == XmlVerdict::kSound && (!decoded_ || !open_.empty())) {
            Fail(XmlVerdict::kBroken, AtEnd());
        }
        if (judgement_.verdict == XmlVerdict::kSound && elements_ == 0) {
            judgement_.verdict = XmlVerdict::kRootless;
            judgement_.fault = L"no root element";
        } else if (judgement_.verdict == XmlVerdict::kSound) {
            judgement_.utf8 = AsUtf8(sound_);
        } else if (elements_ > 0) {
            Finish();
        }
        return std::move(judgement_);
    }

  private:
    // The first reason counts.
    bool Fail(XmlVerdict verdict, std::wstring fault) {
        if (judgement_.verdict == XmlVerdict::kSound) {
            judgement_.verdict = verdict;
            judgement_.fault = std::move(fault);
            judgement_.faultLine = 1 + LineBreaks(whole_.substr(0, whole_.size() - rest_.size()));
        }
        return false;
    }

    // What is wrong where the text ends before its time.
    std::wstring AtEnd() {
        rest_ = {};
        return decoded_ ? L"unexpected end" : L"bytes that are no characters of XML";
    }

    // Closes the elements that are open where the text is broken.
    void Finish() {
        for (; !open_.empty(); open_.pop_back()) {
            sound_ += U"</";
            sound_ += open_.back();
            sound_ += U'>';
        }
        judgement_.beginning = AsUtf8(sound_);
    }

    void Keep(std::u32string_view piece) {
        if (sound_.empty()) {
            const std::size_t blanks = std::min(piece.find(U'<'), piece.size());
            judgement_.linesBefore += LineBreaks(piece.substr(0, blanks));
            piece.remove_prefix(blanks);
        }
        sound_ += piece;
    }

    // Of something that is no content: its line breaks.
    void KeepLines(std::u32string_view piece) { Keep(std::u32string(LineBreaks(piece), U'\n')); }

    // Text within an element. Those characters become references: '>' too, because what stood between two texts and is
    // left out may have kept a "]]" and a '>' apart, which is no text.
    void KeepAsText(std::u32string_view text, std::u32string_view escaped) {
        for (const char32_t c : text) {
            if (escaped.find(c) == std::u32string_view::npos) {
                sound_ += c;
            } else {
                sound_ += c == U'<' ? U"&lt;" : c == U'>' ? U"&gt;" : U"&amp;";
            }
        }
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

    // What was taken since then.
    std::u32string_view TakenSince(std::u32string_view step) const {
        return step.substr(0, step.size() - rest_.size());
    }

    bool TakeSpaces() {
        const std::size_t before = rest_.size();
        while (!rest_.empty() && IsXmlSpace(rest_.front())) {
            rest_.remove_prefix(1);
        }
        return rest_.size() != before;
    }

    // Empty when there is no name here.
    std::u32string_view TakeName() {
        const std::u32string_view all = rest_;
        if (rest_.empty() || !IsXmlNameStart(rest_.front())) {
            return {};
        }
        while (!rest_.empty() && IsXmlNamePart(rest_.front())) {
            rest_.remove_prefix(1);
        }
        const std::u32string_view name = TakenSince(all);
        // Names hold no references, so a name must not need one (AsUtf8).
        if (name.size() >= kLongestRunBeyondAscii) {
            Fail(XmlVerdict::kRefused, MoreThan(kLongestRunBeyondAscii - 1, L"characters in a name"));
            return {};
        }
        return name;
    }

    bool Text() {
        const std::u32string_view text = rest_.substr(0, std::min(rest_.find(U'<'), rest_.size()));
        if (open_.empty() ? !std::all_of(text.begin(), text.end(), IsXmlSpace)
                          : text.find(U"]]>") != std::u32string_view::npos || !References(text)) {
            return false;
        }
        rest_.remove_prefix(text.size());
        if (open_.empty()) {
            Keep(text);
        } else if (!rest_.empty()) {
            KeepAsText(text, U">");
        }
        return true;
    }

    bool Markup() {
        const std::u32string_view step = rest_;
        if (Take(U"<!--")) {
            if (!TakeThrough(U"--") || !Take(U">")) {
                return false;
            }
            KeepLines(TakenSince(step));
            return true;
        }
        constexpr std::u32string_view kLiteral = U"<![CDATA[";
        constexpr std::u32string_view kLiteralEnd = U"]]>";
        if (Take(kLiteral)) {
            const std::u32string_view literal = rest_.substr(0, rest_.find(kLiteralEnd));
            if (open_.empty() || !TakeThrough(kLiteralEnd)) {
                return false;
            }
            KeepAsText(literal, U"<&>");
            return true;
        }
        if (Take(U"<!")) {
            return !TakeName().empty() && Fail(XmlVerdict::kRefused, L"a document type");
        }
        if (Take(U"<?")) {
            return Instruction(step);
        }
        if (!(Take(U"</") ? EndTag() : StartTag())) {
            return false;
        }
        Keep(TakenSince(step));
        return true;
    }

    // The declaration stands before everything else, white space included.
    bool Instruction(std::u32string_view step) {
        const bool isFirst = step.size() == whole_.size();
        const std::u32string_view name = TakeName();
        const bool isDeclaration = name == U"xml";
        if (name.empty() || (isDeclaration && !isFirst) || !TakeThrough(U"?>")) {
            return false;
        }
        if (isDeclaration) {
            Keep(TakenSince(step));
        } else {
            KeepLines(TakenSince(step));
        }
        return true;
    }

    bool EndTag() {
        if (open_.empty() || TakeName() != open_.back()) {
            return false;
        }
        TakeSpaces();
        if (!Take(U">")) {
            return false;
        }
        open_.pop_back();
        return true;
    }

    bool StartTag() {
        if (open_.empty() && elements_ > 0) {
            return false;
        }
        if (open_.size() >= kMostXmlLevels) {
            return Fail(XmlVerdict::kRefused, MoreThan(kMostXmlLevels, L"levels"));
        }
        if (elements_ >= kMostXmlElements) {
            return Fail(XmlVerdict::kRefused, MoreThan(kMostXmlElements, L"elements"));
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
                break;
            }
            if (!spaced || !Attribute(attributes)) {
                return false;
            }
        }
        ++elements_;
        return true;
    }

    bool Attribute(std::vector<std::u32string_view>& known) {
        const std::u32string_view name = TakeName();
        if (name.empty() || std::find(known.begin(), known.end(), name) != known.end()) {
            return false;
        }
        if (known.size() >= kMostAttributes) {
            return Fail(XmlVerdict::kRefused, MoreThan(kMostAttributes, L"attributes"));
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

    static std::wstring MoreThan(std::size_t limit, const wchar_t* what) {
        return L"more than " + std::to_wstring(limit) + L" " + what;
    }

    static constexpr std::size_t kMostAttributes = 256;

    const std::u32string_view whole_;
    const bool decoded_;  // false: the input has more, but no characters
    std::u32string_view rest_;
    std::u32string sound_;                   // what was taken so far
    std::vector<std::u32string_view> open_;  // the names of the elements around this place, outermost first
    std::size_t elements_ = 0;
    XmlJudgement judgement_;
};

}  // namespace

XmlJudgement JudgeXml(std::string_view bytes) {
    if (bytes.size() > kMostXmlBytes) {
        XmlJudgement tooLarge;
        tooLarge.verdict = XmlVerdict::kRefused;
        tooLarge.fault = L"larger than 1 MiB";
        return tooLarge;
    }
    const XmlCharacters decoded = DecodeXml(bytes);
    return Walk(decoded).Run();
}

}  // namespace suite
