#include "suite/xml/QxXMLDocument.h"

#include <windows.h>

#include <utility>

#include "suite/common/Utf8.h"
#include "suite/xml/XmlTree.h"

std::string QxXmlAttribute::Value() const {
    return value_ ? suite::ToUtf8(*value_) : std::string();
}

std::string QxXmlElement::Name() const {
    return node_ ? suite::ToUtf8(node_->name) : std::string();
}

QxXmlElement QxXmlElement::FirstNode(const std::string& name) const {
    QxXmlElement found;
    if (node_) {
        const std::wstring wanted = suite::FromUtf8(name);
        for (const suite::XmlElement& child : node_->children) {
            if (child.name == wanted) {
                found.node_ = &child;
                break;
            }
        }
    }
    return found;
}

QxXmlAttribute QxXmlElement::FirstAttribute(const std::string& name) const {
    QxXmlAttribute found;
    if (node_) {
        found.value_ = node_->Attribute(suite::FromUtf8(name));
    }
    return found;
}

QxXMLDocument::QxXMLDocument() = default;
QxXMLDocument::~QxXMLDocument() = default;

int QxXMLDocument::LoadFile(const std::string& path) {
    root_.reset();
    // The system would take what stands before a NUL for the path.
    if (path.find('\0') != std::string::npos) {
        return ERROR_INVALID_NAME;
    }
    try {
        suite::XmlDocument document = suite::ReadXmlFile(suite::FromUtf8(path));
        if (document.code == ERROR_SUCCESS && document.root) {
            root_ = std::make_unique<suite::XmlElement>(std::move(*document.root));
        }
        return static_cast<int>(document.code);
    } catch (...) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

QxXmlElement QxXMLDocument::RootElement() const {
    QxXmlElement root;
    root.node_ = root_.get();
    return root;
}
