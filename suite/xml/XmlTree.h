#pragma once
// The way in for XML: judges a text (XmlGate.h), reads what is sound of it through the system's reader, and keeps the
// elements as a tree, each with the line of its start tag.
//
// Why a tree: layouts, string tables and configuration files are small, and the ones who read them want to look at an
// element's attributes more than once. What is sound before a fault is read too; callers that take whole files only
// look at `code`. Nothing of the system's reader stays alive. Any thread; needs no COM initialisation.
#include <windows.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace suite {

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
    std::optional<XmlElement> root;  // elements that were open at a fault are closed there
    std::wstring fault;              // what is wrong, for a log line; empty: nothing
    unsigned faultLine = 0;          // from 1; 0: the file as a whole
    // ERROR_SUCCESS also for a text that lacks a root element only; else the system's error, ERROR_XML_PARSE_ERROR for
    // what is not well-formed, ERROR_NOT_SUPPORTED for document types and beyond the limits.
    DWORD code = ERROR_SUCCESS;
};

// `path`: a file, by its full path. Both may throw std::bad_alloc.
XmlDocument ReadXmlFile(const std::wstring& path);
XmlDocument ReadXmlText(std::string_view bytes);

}  // namespace suite
