#pragma once
// Prepares XML for the system's reader: the same elements, attributes and texts, in plain ASCII and always finished.
//
// Why: not every system's reader copes with what damaged files hold (some hang at a text that ends within an element,
// or abort on a character that a block border cuts in two). Comments and instructions are left out, CDATA becomes text,
// characters beyond ASCII become references, an unfinished end is cut off and open elements are closed. Line breaks
// stay. Whether the rest is well-formed is left to the reader. Pure logic.
#include <string>
#include <string_view>

namespace DuiLib {

struct XmlText {
    std::string ascii;
    bool hasElement = false;
    bool finished = true;  // false: something was cut off or closed
    bool validUtf8 = true;
    unsigned lineCount = 1;  // of the input
};

XmlText PrepareXml(std::string_view utf8);

}  // namespace DuiLib
