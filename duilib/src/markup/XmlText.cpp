#include "markup/XmlText.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "suite/common/Utf8.h"

namespace DuiLib {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kNameEnds = " \t\r\n<>\"'=&/";
constexpr std::string_view kComment = "<!--", kCommentEnd = "-->";
constexpr std::string_view kCData = "<![CDATA[", kCDataEnd = "]]>";
constexpr std::string_view kInstruction = "<?", kInstructionEnd = "?>";

class Preparer {
  public:
    explicit Preparer(std::string_view utf8) : rest_(utf8) {
        text_.lineCount = 1 + static_cast<unsigned>(std::count(utf8.begin(), utf8.end(), '\n'));
        text_.ascii.reserve(utf8.size());
        if (rest_.starts_with(kByteOrderMark)) {
            rest_.remove_prefix(kByteOrderMark.size());
        }
    }

    XmlText Run() {
        while (!rest_.empty() && TakeNext()) {
        }
        text_.finished = text_.finished && open_.empty();
        for (; !open_.empty(); open_.pop_back()) {
            text_.ascii += "</";
            Append(open_.back());
            text_.ascii += '>';
        }
        return std::move(text_);
    }

  private:
    // A piece of text or of markup; false at what is unfinished.
    bool TakeNext() {
        const std::size_t begin = rest_.find('<');
        const std::string_view plain = rest_.substr(0, begin);
        // Outside the root only blanks are allowed.
        const bool stray = open_.empty() && plain.find_first_not_of(kBlanks) != std::string_view::npos;
        if (begin == std::string_view::npos || stray) {
            text_.finished = !stray;
            return false;
        }
        const std::string_view markup = rest_.substr(begin);
        const std::size_t length = MarkupLength(markup);
        if (length == std::string_view::npos) {
            text_.finished = false;
            return false;
        }
        if (open_.empty() && markup.starts_with(kCData)) {
            text_.finished = false;
            return false;
        }
        Append(plain);
        AppendMarkup(markup.substr(0, length));
        rest_ = markup.substr(length);
        return true;
    }

    static std::size_t MarkupLength(std::string_view markup) {
        const auto upTo = [&](std::string_view start, std::string_view end) {
            const std::size_t at = markup.find(end, start.size());
            return at == std::string_view::npos ? at : at + end.size();
        };
        if (markup.starts_with(kComment)) {
            return upTo(kComment, kCommentEnd);
        }
        if (markup.starts_with(kCData)) {
            return upTo(kCData, kCDataEnd);
        }
        if (markup.starts_with(kInstruction)) {
            return upTo(kInstruction, kInstructionEnd);
        }
        char quote = 0;
        for (std::size_t i = 1; i < markup.size(); ++i) {
            const char c = markup[i];
            if (quote != 0) {
                quote = c == quote ? '\0' : quote;
            } else if (c == '"' || c == '\'') {
                quote = c;
            } else if (c == '>') {
                return i + 1;
            }
        }
        return std::string_view::npos;
    }

    void AppendMarkup(std::string_view markup) {
        if (markup.starts_with(kComment) || markup.starts_with(kInstruction)) {
            text_.ascii.append(static_cast<std::size_t>(std::count(markup.begin(), markup.end(), '\n')), '\n');
            return;
        }
        if (markup.starts_with(kCData)) {
            AppendLiteral(markup.substr(kCData.size(), markup.size() - kCData.size() - kCDataEnd.size()));
            return;
        }
        Append(markup);
        if (markup[1] == '/') {
            // One too many is left to the reader.
            if (!open_.empty()) {
                open_.pop_back();
            }
        } else if (markup[1] != '!') {
            text_.hasElement = true;
            if (markup[markup.size() - 2] != '/') {
                open_.push_back(NameOf(markup));
            }
        }
    }

    static std::string NameOf(std::string_view markup) {
        const std::size_t end = std::min(markup.find_first_of(kNameEnds, 1), markup.size() - 1);
        return std::string(markup.substr(1, end - 1));
    }

    void AppendLiteral(std::string_view literal) {
        for (std::size_t at = 0; at < literal.size();) {
            const std::size_t special = std::min(literal.find_first_of("<&>", at), literal.size());
            Append(literal.substr(at, special - at));
            if (special < literal.size()) {
                const char c = literal[special];
                text_.ascii.append(c == '<' ? "&lt;" : c == '&' ? "&amp;" : "&gt;");
            }
            at = special + 1;
        }
    }

    void Append(std::string_view utf8) {
        while (!utf8.empty()) {
            const unsigned char c = static_cast<unsigned char>(utf8.front());
            if (c < 0x80) {
                // Nothing of ours holds one, and to a reader it may be the end.
                text_.ascii += c == 0 ? '\x01' : utf8.front();
                utf8.remove_prefix(1);
                continue;
            }
            const bool replacement = utf8.starts_with(kReplacement);
            const char32_t codePoint = suite::TakeCodePoint(utf8);
            text_.validUtf8 = text_.validUtf8 && (codePoint != 0xFFFD || replacement);
            char reference[16];
            std::snprintf(reference, sizeof reference, "&#x%X;", static_cast<unsigned>(codePoint));
            text_.ascii += reference;
        }
    }

    std::string_view rest_;
    std::vector<std::string> open_;
    XmlText text_;
};

}  // namespace

XmlText PrepareXml(std::string_view utf8) {
    return Preparer(utf8).Run();
}

}  // namespace DuiLib
