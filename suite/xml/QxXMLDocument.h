#pragma once
// The suite's XML wrapper: loads a file whole and walks its elements by name.
//
// Why: configuration files come from outside and may be broken or hostile; reading goes through the system's XML
// reader, with no document type definitions, no external entities, and limits (1 MiB, 64 levels, 10,000 elements).
// Files are UTF-8, or UTF-16 with a byte order mark.
// Elements and attributes are cheap handles into the document, which must outlive them. A null handle answers null
// to everything. Narrow strings are UTF-8. Threads: a document belongs to one thread. Nothing throws.
#include <memory>
#include <string>

#include "suite/common/Export.h"

namespace suite {
struct XmlElement;
}

class SUITE_XML_API QxXmlAttribute {
  public:
    bool IsAttributeNull() const { return !value_; }
    // The text; empty for a null attribute.
    std::string Value() const;

  private:
    friend class QxXmlElement;
    const std::wstring* value_ = nullptr;  // borrowed from the document
};

class SUITE_XML_API QxXmlElement {
  public:
    bool IsElementNull() const { return !node_; }
    std::string Name() const;
    // The first child element of that name (names are case-sensitive); null when there is none.
    QxXmlElement FirstNode(const std::string& name) const;
    QxXmlAttribute FirstAttribute(const std::string& name) const;

  private:
    friend class QxXMLDocument;
    const suite::XmlElement* node_ = nullptr;  // borrowed from the document
};

class SUITE_XML_API QxXMLDocument {
  public:
    QxXMLDocument();
    ~QxXMLDocument();
    QxXMLDocument(const QxXMLDocument&) = delete;
    QxXMLDocument& operator=(const QxXMLDocument&) = delete;

    // 0 when the file was read, also when it has no root element but nothing else is wrong (an empty file, one with
    // only a declaration or comments); else the system's error code: the file is missing or unreadable, is not
    // well-formed, or passes a limit. What was loaded before is gone.
    int LoadFile(const std::string& path);
    // Null when nothing is loaded or the file has no root element.
    QxXmlElement RootElement() const;

  private:
    std::unique_ptr<suite::XmlElement> root_;
};
