#include "suite/xml/QxXMLDocument.h"

#include <windows.h>

#include <algorithm>

#include "suite/common/Handle.h"
#include "suite/common/Utf8.h"
#include "suite/xml/XmlNode.h"
#include "suite/xml/XmlTreeReader.h"

namespace {

constexpr DWORD kLargestFileBytes = 1024 * 1024;

DWORD ErrorOr(DWORD otherwise) {
    const DWORD error = GetLastError();
    return error != ERROR_SUCCESS ? error : otherwise;
}

// ERROR_SUCCESS and the whole file, else the system's error code.
DWORD ReadWholeFile(const std::string& path, std::string& bytes) {
    // A NUL would cut the path, and another file would be opened.
    if (path.empty() || path.find('\0') != std::string::npos) {
        return ERROR_INVALID_NAME;
    }
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const suite::Handle file(CreateFileW(suite::FromUtf8(path).c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                                         FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        return ErrorOr(ERROR_OPEN_FAILED);
    }
    if (GetFileType(file.Get()) != FILE_TYPE_DISK) {
        return ERROR_BAD_FILE_TYPE;
    }
    bytes.resize(kLargestFileBytes + 1);
    DWORD length = 0;
    for (DWORD got = 1; got > 0 && length < bytes.size(); length += got) {
        if (!ReadFile(file.Get(), bytes.data() + length, static_cast<DWORD>(bytes.size()) - length, &got, nullptr)) {
            return ErrorOr(ERROR_READ_FAULT);
        }
    }
    bytes.resize(length);
    return length <= kLargestFileBytes ? ERROR_SUCCESS : ERROR_FILE_TOO_LARGE;
}

}  // namespace

std::string QxXmlAttribute::Value() const {
    return value_ != nullptr ? *value_ : std::string();
}

std::string QxXmlElement::Name() const {
    return node_ != nullptr ? node_->name : std::string();
}

QxXmlElement QxXmlElement::FirstNode(const std::string& name) const {
    QxXmlElement found;
    if (node_ != nullptr) {
        const auto child = std::find_if(node_->children.begin(), node_->children.end(),
                                        [&](const std::unique_ptr<QxXmlNode>& node) { return node->name == name; });
        found.node_ = child != node_->children.end() ? child->get() : nullptr;
    }
    return found;
}

QxXmlAttribute QxXmlElement::FirstAttribute(const std::string& name) const {
    QxXmlAttribute found;
    if (node_ != nullptr) {
        const auto attribute = std::find_if(node_->attributes.begin(), node_->attributes.end(),
                                            [&](const auto& candidate) { return candidate.first == name; });
        found.value_ = attribute != node_->attributes.end() ? &attribute->second : nullptr;
    }
    return found;
}

QxXMLDocument::QxXMLDocument() = default;
QxXMLDocument::~QxXMLDocument() = default;

int QxXMLDocument::LoadFile(const std::string& path) {
    try {
        root_.reset();
        std::string bytes;
        if (const DWORD error = ReadWholeFile(path, bytes)) {
            return static_cast<int>(error);
        }
        return suite::ReadXmlTree(bytes, root_);
    } catch (...) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

QxXmlElement QxXMLDocument::RootElement() const {
    QxXmlElement element;
    element.node_ = root_.get();
    return element;
}
