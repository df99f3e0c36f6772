#include "text/HtmlParser.h"

#include <array>
#include <optional>

#include "markup/AttributeParser.h"

namespace DuiLib {
namespace {

constexpr size_t kMaxCharacters = 65536;
constexpr size_t kMaxOpenTags = 32;
constexpr size_t kMaxEntityLength = 10;

enum class Tag { kBold, kItalic, kUnderline, kFont, kLink, kLineBreak };
constexpr size_t kPairedTags = 5;

struct Token {
    enum class Kind { kText, kOpen, kClose, kBreak };
    Kind kind = Kind::kText;
    Tag tag = Tag::kBold;
    std::wstring_view raw;
    std::wstring address;     // of a link
    std::uint32_t color = 0;  // of a font
    bool matched = false;     // its other half was found
};

bool IsBlank(wchar_t c) {
    return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n';
}

wchar_t Lower(wchar_t c) {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

bool IsLetter(wchar_t c) {
    return Lower(c) >= L'a' && Lower(c) <= L'z';
}

void AppendCodePoint(std::wstring& out, std::uint32_t code) {
    if (sizeof(wchar_t) == 2 && code > 0xFFFF) {
        out += static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
        out += static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
    } else {
        out += static_cast<wchar_t>(code);
    }
}

// "&#65;" or "&#x41;" without the ends; nothing for what is no character.
std::optional<std::uint32_t> NumberOf(std::wstring_view digits) {
    const bool hex = !digits.empty() && Lower(digits[0]) == L'x';
    digits.remove_prefix(hex ? 1 : 0);
    if (digits.empty()) {
        return std::nullopt;
    }
    std::uint32_t value = 0;
    for (const wchar_t c : digits) {
        std::uint32_t digit = 16;
        if (c >= L'0' && c <= L'9') {
            digit = static_cast<std::uint32_t>(c - L'0');
        } else if (Lower(c) >= L'a' && Lower(c) <= L'f') {
            digit = static_cast<std::uint32_t>(Lower(c) - L'a') + 10;
        }
        if (digit >= (hex ? 16u : 10u)) {
            return std::nullopt;
        }
        value = value * (hex ? 16 : 10) + digit;
        if (value > 0x10FFFF) {
            return std::nullopt;
        }
    }
    if (value == 0 || (value >= 0xD800 && value <= 0xDFFF)) {
        return std::nullopt;
    }
    return value;
}

// The entity at the start of `text`, which begins with '&': its character and its length; 0 where there is none.
size_t DecodeEntity(std::wstring_view text, std::uint32_t& code) {
    const size_t end = text.substr(0, kMaxEntityLength).find(L';');
    if (end == std::wstring_view::npos) {
        return 0;
    }
    const std::wstring_view name = text.substr(1, end - 1);
    struct Named {
        std::wstring_view name;
        std::uint32_t code;
    };
    static constexpr std::array<Named, 6> kNamed{
        {{L"lt", '<'}, {L"gt", '>'}, {L"amp", '&'}, {L"quot", '"'}, {L"apos", '\''}, {L"nbsp", 0xA0}}};
    for (const Named& named : kNamed) {
        if (name == named.name) {
            code = named.code;
            return end + 1;
        }
    }
    if (name.size() < 2 || name[0] != L'#') {
        return 0;
    }
    const auto number = NumberOf(name.substr(1));
    if (!number) {
        return 0;
    }
    code = *number;
    return end + 1;
}

std::wstring DecodeEntities(std::wstring_view text) {
    std::wstring out;
    for (size_t i = 0; i < text.size();) {
        std::uint32_t code = 0;
        const size_t length = text[i] == L'&' ? DecodeEntity(text.substr(i), code) : 0;
        if (length == 0) {
            out += text[i++];
        } else {
            AppendCodePoint(out, code);
            i += length;
        }
    }
    return out;
}

// Reads one tag.
class TagReader {
  public:
    explicit TagReader(std::wstring_view text) : text_(text) {}

    // The tag that `text` begins with; nothing where there is none of the subset.
    std::optional<Token> Read() {
        ++at_;  // '<'
        Token token;
        const bool close = Take(L'/');
        std::wstring name;
        while (at_ < text_.size() && IsLetter(text_[at_]) && name.size() < 5) {
            name += Lower(text_[at_++]);
        }
        if (!SetTag(token, name) || (close && token.tag == Tag::kLineBreak)) {
            return std::nullopt;
        }
        if (close) {
            SkipBlanks();
            token.kind = Token::Kind::kClose;
        } else if (!ReadAttributes(token)) {
            return std::nullopt;
        }
        if (!Take(L'>')) {
            return std::nullopt;
        }
        token.raw = text_.substr(0, at_);
        return token;
    }

  private:
    static bool SetTag(Token& token, const std::wstring& name) {
        struct Named {
            std::wstring_view name;
            Tag tag;
        };
        static constexpr std::array<Named, 6> kTags{{{L"b", Tag::kBold},
                                                     {L"i", Tag::kItalic},
                                                     {L"u", Tag::kUnderline},
                                                     {L"font", Tag::kFont},
                                                     {L"a", Tag::kLink},
                                                     {L"br", Tag::kLineBreak}}};
        for (const Named& known : kTags) {
            if (known.name == name) {
                token.tag = known.tag;
                token.kind = known.tag == Tag::kLineBreak ? Token::Kind::kBreak : Token::Kind::kOpen;
                return true;
            }
        }
        return false;
    }

    // Up to the closing '>'. False where the tag is malformed or lacks what it needs.
    bool ReadAttributes(Token& token) {
        bool complete = token.tag != Tag::kLink && token.tag != Tag::kFont;
        for (;;) {
            const bool blank = SkipBlanks();
            if (at_ < text_.size() && text_[at_] == L'/' && token.tag == Tag::kLineBreak) {
                ++at_;
                return true;
            }
            if (at_ >= text_.size() || !IsLetter(text_[at_])) {
                return complete;
            }
            std::wstring name;
            while (at_ < text_.size() && (IsLetter(text_[at_]) || text_[at_] == L'-')) {
                name += Lower(text_[at_++]);
            }
            SkipBlanks();
            if (!blank || !Take(L'=')) {
                return false;
            }
            SkipBlanks();
            const wchar_t quote = at_ < text_.size() ? text_[at_] : L'\0';
            const size_t end = quote == L'"' || quote == L'\'' ? text_.find(quote, at_ + 1) : std::wstring_view::npos;
            if (end == std::wstring_view::npos) {
                return false;
            }
            const std::wstring value = DecodeEntities(text_.substr(at_ + 1, end - at_ - 1));
            at_ = end + 1;
            if (token.tag == Tag::kLink && name == L"href") {
                token.address = value;
                complete = true;
            } else if (token.tag == Tag::kFont && name == L"color") {
                const auto color = ParseColor(value);
                if (!color) {
                    return false;
                }
                token.color = *color | 0xFF000000;
                complete = true;
            }
        }
    }

    bool SkipBlanks() {
        const size_t before = at_;
        while (at_ < text_.size() && IsBlank(text_[at_])) {
            ++at_;
        }
        return at_ != before;
    }

    bool Take(wchar_t c) {
        const bool is = at_ < text_.size() && text_[at_] == c;
        at_ += is ? 1 : 0;
        return is;
    }

    std::wstring_view text_;
    size_t at_ = 0;
};

std::vector<Token> Tokenize(std::wstring_view markup) {
    std::vector<Token> tokens;
    size_t textBegin = 0;
    const auto flushText = [&](size_t end) {
        if (end > textBegin) {
            tokens.emplace_back().raw = markup.substr(textBegin, end - textBegin);
        }
    };
    for (size_t i = 0; i < markup.size();) {
        auto token = markup[i] == L'<' ? TagReader(markup.substr(i)).Read() : std::nullopt;
        if (!token) {
            ++i;
            continue;
        }
        flushText(i);
        i += token->raw.size();
        textBegin = i;
        tokens.push_back(std::move(*token));
    }
    flushText(markup.size());
    return tokens;
}

// Finds each end's beginning: the nearest open one of its name, so that tags which cross each other still work.
void MatchTags(std::vector<Token>& tokens) {
    std::array<std::vector<size_t>, kPairedTags> open;
    size_t openCount = 0;
    for (size_t i = 0; i < tokens.size(); ++i) {
        Token& token = tokens[i];
        if (token.kind == Token::Kind::kOpen && openCount < kMaxOpenTags) {
            open[static_cast<size_t>(token.tag)].push_back(i);
            ++openCount;
        } else if (token.kind == Token::Kind::kClose) {
            auto& candidates = open[static_cast<size_t>(token.tag)];
            if (!candidates.empty()) {
                tokens[candidates.back()].matched = token.matched = true;
                candidates.pop_back();
                --openCount;
            }
        }
    }
}

// Puts runs together while the matched tags go by.
class RunBuilder {
  public:
    void Apply(const Token& token) {
        const bool open = token.kind == Token::Kind::kOpen;
        switch (token.tag) {
            case Tag::kBold:
                bold_ += open ? 1 : -1;
                break;
            case Tag::kItalic:
                italic_ += open ? 1 : -1;
                break;
            case Tag::kUnderline:
                underline_ += open ? 1 : -1;
                break;
            case Tag::kFont:
                open ? colors_.push_back(token.color) : colors_.pop_back();
                break;
            case Tag::kLink:
                if (open) {
                    links_.push_back(static_cast<int>(result_.links.size()));
                    result_.links.push_back(token.address);
                } else {
                    links_.pop_back();
                }
                break;
            case Tag::kLineBreak:
                break;
        }
    }

    void AddText(std::wstring_view raw, bool decode) {
        for (size_t i = 0; i < raw.size();) {
            std::uint32_t code = 0;
            const size_t length = decode && raw[i] == L'&' ? DecodeEntity(raw.substr(i), code) : 0;
            if (length > 0) {
                AppendCodePoint(Current().text, code < 0x20 ? L' ' : code);
                i += length;
            } else if (raw[i] == L'\n') {
                BreakLine();
                ++i;
            } else if (raw[i] == L'\r') {
                ++i;
            } else {
                Current().text += static_cast<std::uint32_t>(raw[i]) < 0x20 ? L' ' : raw[i];
                ++i;
            }
        }
    }

    void BreakLine() { Current().lineBreak = true; }

    HtmlText Take() { return std::move(result_); }

  private:
    // The run that text of the present look belongs to.
    HtmlRun& Current() {
        HtmlRun look;
        look.bold = bold_ > 0;
        look.italic = italic_ > 0;
        look.underline = underline_ > 0;
        look.color = colors_.empty() ? 0 : colors_.back();
        look.link = links_.empty() ? -1 : links_.back();
        auto& runs = result_.runs;
        if (!runs.empty()) {
            HtmlRun& last = runs.back();
            if (!last.lineBreak && last.bold == look.bold && last.italic == look.italic &&
                last.underline == look.underline && last.color == look.color && last.link == look.link) {
                return last;
            }
        }
        return runs.emplace_back(std::move(look));
    }

    HtmlText result_;
    int bold_ = 0, italic_ = 0, underline_ = 0;
    std::vector<std::uint32_t> colors_;
    std::vector<int> links_;
};

std::wstring_view Limited(std::wstring_view text) {
    if (text.size() <= kMaxCharacters) {
        return text;
    }
    const wchar_t last = text[kMaxCharacters - 1];
    const bool half = last >= 0xD800 && last <= 0xDBFF;
    return text.substr(0, kMaxCharacters - (half ? 1 : 0));
}

}  // namespace

HtmlText ParseHtml(std::wstring_view markup) {
    std::vector<Token> tokens = Tokenize(Limited(markup));
    MatchTags(tokens);
    RunBuilder builder;
    for (const Token& token : tokens) {
        if (token.kind == Token::Kind::kBreak) {
            builder.BreakLine();
        } else if (token.matched) {
            builder.Apply(token);
        } else {
            builder.AddText(token.raw, token.kind == Token::Kind::kText);
        }
    }
    return builder.Take();
}

HtmlText PlainText(std::wstring_view text) {
    RunBuilder builder;
    builder.AddText(Limited(text), false);
    return builder.Take();
}

std::wstring SpokenText(const HtmlText& text) {
    std::wstring spoken;
    for (const HtmlRun& run : text.runs) {
        spoken += run.text;
        if (run.lineBreak) {
            spoken += L' ';
        }
    }
    return spoken;
}

}  // namespace DuiLib
