#pragma once
// What XML takes for a character, a blank and a name, and the decoding of a text's bytes. Names are taken more widely
// than XML has them; the system's reader is the judge of those. Pure logic. Any thread. May throw std::bad_alloc.
#include <string>
#include <string_view>

namespace suite {

bool IsXmlCharacter(char32_t c);
bool IsXmlSpace(char32_t c);
bool IsXmlNameStart(char32_t c);
bool IsXmlNamePart(char32_t c);

// The characters of a text, as far as they are characters of XML.
struct XmlCharacters {
    std::u32string text;
    bool whole = true;  // false: bytes that are no such character ended it
};

// UTF-8 with or without its byte order mark, or UTF-16 with it; the mark is left out.
XmlCharacters DecodeXml(std::string_view bytes);

}  // namespace suite
