// The gate before the system's XML reader: what it lets through is well-formed by a second count, and says the same in
// every encoding.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/support/Require.h"
#include "suite/common/Utf8.h"
#include "suite/xml/XmlGate.h"

using suite::JudgeXml;
using suite::XmlVerdict;

namespace {

// Where the piece that begins there ends; it must end.
std::size_t Behind(std::string_view text, std::size_t at, std::string_view end) {
    const std::size_t place = text.find(end, at);
    REQUIRE(place != std::string_view::npos);
    return place + end.size();
}

std::size_t TagEnd(std::string_view text, std::size_t at) {
    char quote = 0;
    for (; at < text.size(); ++at) {
        if (quote != 0) {
            quote = text[at] == quote ? '\0' : quote;
        } else if (text[at] == '"' || text[at] == '\'') {
            quote = text[at];
        } else if (text[at] == '>') {
            return at + 1;
        }
    }
    REQUIRE(!"a tag that ends");
    return at;
}

std::string_view NameOf(std::string_view tag) {
    return tag.substr(0, tag.find_first_of(" \t\r\n/>"));
}

// Counts tags as the gate does not: by jumping from '<' to '<'. Gives the place where the root ends.
std::size_t CheckTags(std::string_view text) {
    std::vector<std::string_view> open;
    std::size_t elements = 0, rootEnd = 0;
    for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at)) {
        const std::string_view rest = text.substr(at);
        if (rest.starts_with("<!--")) {
            at = Behind(text, at + 4, "-->");
        } else if (rest.starts_with("<![CDATA[")) {
            REQUIRE(!open.empty());
            at = Behind(text, at, "]]>");
        } else if (rest.starts_with("<?")) {
            at = Behind(text, at, "?>");
        } else {
            REQUIRE(!rest.starts_with("<!"));
            const std::size_t end = TagEnd(text, at);
            const std::string_view tag = text.substr(at + 1, end - at - 1);
            if (tag.starts_with('/')) {
                REQUIRE(!open.empty() && NameOf(tag.substr(1)) == open.back());
                open.pop_back();
            } else {
                REQUIRE(!NameOf(tag).empty());
                REQUIRE(!open.empty() || elements == 0);
                ++elements;
                REQUIRE(open.size() < suite::kMostXmlLevels);
                if (!tag.ends_with("/>")) {
                    open.push_back(NameOf(tag));
                }
            }
            at = end;
            rootEnd = end;
        }
    }
    REQUIRE(open.empty() && elements > 0 && elements <= suite::kMostXmlElements);
    return rootEnd;
}

std::string Utf16(std::wstring_view text, bool bigEndian) {
    std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    const auto append = [&](char32_t unit) {
        const char high = static_cast<char>(unit >> 8), low = static_cast<char>(unit & 0xFF);
        bytes += bigEndian ? high : low;
        bytes += bigEndian ? low : high;
    };
    while (!text.empty()) {
        const char32_t c = suite::TakeCodePoint(text);
        if (c > 0xFFFF) {
            append(0xD800 + ((c - 0x10000) >> 10));
            append(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            append(c);
        }
    }
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const suite::XmlJudgement judged = JudgeXml(bytes);
    REQUIRE(judged.utf8.empty() == (judged.verdict != XmlVerdict::kSound));
    if (judged.verdict == XmlVerdict::kSound) {
        REQUIRE(judged.utf8.front() == '<');
        const suite::XmlJudgement again = JudgeXml(judged.utf8);
        REQUIRE(again.verdict == XmlVerdict::kSound && again.utf8 == judged.utf8);
        // Cut off anywhere within its root it is not sound.
        const std::size_t cut = size % CheckTags(judged.utf8);
        REQUIRE(JudgeXml(std::string_view(judged.utf8).substr(0, cut)).verdict != XmlVerdict::kSound);
    }
    // What is kept of a damaged text is sound, and kept as it is.
    REQUIRE(judged.fault.empty() == (judged.verdict == XmlVerdict::kSound));
    if (!judged.beginning.empty()) {
        REQUIRE(judged.verdict == XmlVerdict::kBroken || judged.verdict == XmlVerdict::kRefused);
        const suite::XmlJudgement again = JudgeXml(judged.beginning);
        REQUIRE(again.verdict == XmlVerdict::kSound && again.utf8 == judged.beginning);
    }
    const std::wstring wide = suite::FromUtf8(bytes);
    if (suite::ToUtf8(wide) != bytes || bytes.starts_with("\xEF\xBB\xBF")) {
        return 0;
    }
    const suite::XmlJudgement marked = JudgeXml("\xEF\xBB\xBF" + std::string(bytes));
    REQUIRE(marked.verdict == judged.verdict && marked.utf8 == judged.utf8 && marked.beginning == judged.beginning);
    for (const bool bigEndian : {false, true}) {
        const suite::XmlJudgement sixteen = JudgeXml(Utf16(wide, bigEndian));
        REQUIRE(sixteen.verdict == judged.verdict && sixteen.utf8 == judged.utf8 &&
                sixteen.beginning == judged.beginning);
    }
    return 0;
}
