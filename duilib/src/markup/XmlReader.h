#pragma once
// Reads small XML files whole, through the system's reader: the tree of elements with their attributes and lines.
//
// Why a tree: layouts and string tables are small, and the ones who read them want to look at an element's attributes
// more than once. Document type definitions are refused. What was read before an error stays in the tree: elements that
// were open are closed where the error is. Limits: 1 MiB of text, 64 levels, 10,000 elements.
// Thread: any; needs no COM initialisation.
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace DuiLib {

struct XmlElement {
    std::wstring name;
    std::vector<std::pair<std::wstring, std::wstring>> attributes;  // in the order of the file
    std::wstring text;                                              // directly within it, without that of children
    std::vector<XmlElement> children;
    unsigned line = 0;  // of the start tag, from 1

    // Null when there is no such attribute.
    const std::wstring* Attribute(std::wstring_view attributeName) const;
};

struct XmlDocument {
    std::optional<XmlElement> root;
    std::wstring error;  // empty: the text is sound; else what is wrong, for a log line
    unsigned errorLine = 0;
};

// `path`: a file, by its full path.
XmlDocument ReadXmlFile(const std::wstring& path);
XmlDocument ReadXmlText(std::string_view utf8);

}  // namespace DuiLib
