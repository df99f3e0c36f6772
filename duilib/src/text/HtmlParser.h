#pragma once
// The markup that texts may carry, and its parser. Pure logic.
//
// Tags: <b> <i> <u> <br> <a href="address"> <font color="#RRGGBB">, and their ends; names in any case; attribute values
// in double or single quotes, other attributes are passed over. Entities: &lt; &gt; &amp; &quot; &apos; &nbsp; &#dec;
// &#xhex;. A line feed is a line break, as in plain labels. Anything else, a tag that is not closed or not open, and a
// '<' that begins no tag, is shown as the text that it is: a translator's slip must not swallow a message. Limits: 32
// tags open at a time, 65,536 characters; what is beyond is plain text or cut.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace DuiLib {

struct HtmlRun {
    std::wstring text;  // no line breaks
    bool bold = false, italic = false, underline = false;
    std::uint32_t color = 0;  // 0xFFRRGGBB; 0: the control's
    int link = -1;            // index into HtmlText::links
    bool lineBreak = false;   // a line ends after this run
    bool operator==(const HtmlRun&) const = default;
};

struct HtmlText {
    std::vector<HtmlRun> runs;
    std::vector<std::wstring> links;  // addresses, in order
};

HtmlText ParseHtml(std::wstring_view markup);
// The whole text as one run per line, for texts that are no markup.
HtmlText PlainText(std::wstring_view text);
// What is read aloud: the text of all runs, a blank for a line break.
std::wstring SpokenText(const HtmlText& text);

}  // namespace DuiLib
