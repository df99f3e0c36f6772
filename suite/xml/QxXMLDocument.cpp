#include "suite/xml/QxXMLDocument.h"

#include <windows.h>

#include "suite/common/Handle.h"
#include "suite/common/Utf8.h"
#include "suite/xml/XmlGate.h"
#include "suite/xml/XmlTree.h"

namespace {

// The whole file, or one byte more than the largest that is read.
DWORD ReadWhole(const std::string& path, std::string& bytes) {
    const suite::Handle file(CreateFileW(suite::FromUtf8(path).c_str(), GENERIC_READ,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                         FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file) {
        return GetLastError();
    }
    bytes.resize(suite::kMostXmlBytes + 1);
    std::size_t filled = 0;
    DWORD count = 0;
    do {
        if (!ReadFile(file.Get(), bytes.data() + filled, static_cast<DWORD>(bytes.size() - filled), &count, nullptr)) {
            return GetLastError();
        }
        filled += count;
    } while (count > 0 && filled < bytes.size());
    bytes.resize(filled);
    return ERROR_SUCCESS;
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
        for (const auto& child : node_->children) {
            if (child->name == name) {
                found.node_ = child.get();
                break;
            }
        }
    }
    return found;
}

QxXmlAttribute QxXmlElement::FirstAttribute(const std::string& name) const {
    QxXmlAttribute found;
    if (node_ != nullptr) {
        for (const auto& [attributeName, value] : node_->attributes) {
            if (attributeName == name) {
                found.value_ = &value;
                break;
            }
        }
    }
    return found;
}

QxXMLDocument::QxXMLDocument() = default;
QxXMLDocument::~QxXMLDocument() = default;

int QxXMLDocument::LoadFile(const std::string& path) {
    root_.reset();
    try {
        std::string bytes;
        const DWORD error = ReadWhole(path, bytes);
        if (error != ERROR_SUCCESS) {
            return static_cast<int>(error);
        }
        const HRESULT result = suite::ReadXml(bytes, root_);
        return FACILITY_WIN32 == HRESULT_FACILITY(result) ? HRESULT_CODE(result) : static_cast<int>(result);
    } catch (...) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

QxXmlElement QxXMLDocument::RootElement() const {
    QxXmlElement root;
    root.node_ = root_.get();
    return root;
}
