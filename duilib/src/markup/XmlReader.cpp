#include "markup/XmlReader.h"

#include <windows.h>
// The reader's header needs the basic types first.
#include <objidl.h>
#include <xmllite.h>

#include <cstdint>
#include <utility>

#include "markup/XmlText.h"

namespace DuiLib {
namespace {

constexpr std::size_t kMaxBytes = 1 << 20;
constexpr std::size_t kMaxDepth = 64;
constexpr std::size_t kMaxElements = 10'000;

// Owns one reference; for this file's two interfaces.
template <typename Interface>
class Reference {
  public:
    Reference() = default;
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference&) = delete;
    ~Reference() {
        if (pointer_ != nullptr) {
            pointer_->Release();
        }
    }
    Interface** Out() { return &pointer_; }
    Interface* operator->() const { return pointer_; }
    Interface* Get() const { return pointer_; }

  private:
    Interface* pointer_ = nullptr;
};

std::wstring HexText(HRESULT result) {
    wchar_t text[16];
    swprintf_s(text, 16, L"0x%08lX", static_cast<unsigned long>(result));
    return text;
}

// Walks the reader's nodes and hangs them into the tree.
class TreeBuilder {
  public:
    TreeBuilder(IXmlReader& reader, XmlDocument& document) : reader_(reader), document_(document) {}

    void Run() {
        XmlNodeType type = XmlNodeType_None;
        HRESULT result = S_OK;
        while ((result = reader_.Read(&type)) == S_OK) {
            if (!TakeNode(type)) {
                return;
            }
        }
        if (FAILED(result)) {
            Fail(L"not well-formed XML, " + HexText(result));
        } else if (!document_.root) {
            Fail(L"no root element");
        }
    }

  private:
    bool TakeNode(XmlNodeType type) {
        switch (type) {
            case XmlNodeType_Element:
                return TakeElement();
            case XmlNodeType_EndElement:
                open_.pop_back();
                return true;
            case XmlNodeType_Text:
            case XmlNodeType_CDATA:
                if (!open_.empty()) {
                    Current().text += Value();
                }
                return true;
            default:
                return true;
        }
    }

    bool TakeElement() {
        if (++elementCount_ > kMaxElements) {
            return Fail(L"more than " + std::to_wstring(kMaxElements) + L" elements");
        }
        if (open_.size() >= kMaxDepth) {
            return Fail(L"more than " + std::to_wstring(kMaxDepth) + L" levels");
        }
        XmlElement element;
        element.name = Name();
        element.line = Line();
        // Asked before the attributes: the answer is about the node that the reader stands on.
        const bool empty = reader_.IsEmptyElement() != FALSE;
        for (HRESULT result = reader_.MoveToFirstAttribute(); result == S_OK; result = reader_.MoveToNextAttribute()) {
            element.attributes.emplace_back(Name(), Value());
        }
        if (open_.empty()) {
            document_.root = std::move(element);
        } else {
            Current().children.push_back(std::move(element));
        }
        if (!empty) {
            open_.push_back(open_.empty() ? 0 : Current().children.size() - 1);
        }
        return true;
    }

    // The open element. Found from the root by indexes, because a growing list of children moves its elements.
    XmlElement& Current() {
        XmlElement* element = &*document_.root;
        for (std::size_t level = 1; level < open_.size(); ++level) {
            element = &element->children[open_[level]];
        }
        return *element;
    }

    std::wstring Name() {
        const wchar_t* text = nullptr;
        UINT length = 0;
        return SUCCEEDED(reader_.GetQualifiedName(&text, &length)) && text != nullptr ? std::wstring(text, length)
                                                                                      : std::wstring();
    }

    std::wstring Value() {
        const wchar_t* text = nullptr;
        UINT length = 0;
        return SUCCEEDED(reader_.GetValue(&text, &length)) && text != nullptr ? std::wstring(text, length)
                                                                              : std::wstring();
    }

    unsigned Line() {
        UINT line = 0;
        return SUCCEEDED(reader_.GetLineNumber(&line)) ? line : 0;
    }

    bool Fail(const std::wstring& error) {
        document_.error = error;
        document_.errorLine = Line();
        return false;
    }

    IXmlReader& reader_;
    XmlDocument& document_;
    std::vector<std::size_t> open_;  // for each open element its index within its parent
    std::size_t elementCount_ = 0;
};

XmlDocument Failed(const wchar_t* what, HRESULT result) {
    XmlDocument document;
    document.error = what + HexText(result);
    return document;
}

}  // namespace

const std::wstring* XmlElement::Attribute(std::wstring_view attributeName) const {
    for (const auto& [key, value] : attributes) {
        if (key == attributeName) {
            return &value;
        }
    }
    return nullptr;
}

XmlDocument ReadXmlText(std::string_view utf8) {
    XmlDocument document;
    if (utf8.size() > kMaxBytes) {
        document.error = L"larger than 1 MiB";
        return document;
    }
    XmlText text = PrepareXml(utf8);
    if (!text.hasElement) {
        document.error = L"no root element";
        return document;
    }
    // Without a declaration some readers take blanks before the root for the end.
    text.ascii.insert(0, "<?xml version=\"1.0\"?>");
    Reference<IStream> stream;
    HRESULT result = CreateStreamOnHGlobal(nullptr, TRUE, stream.Out());
    if (SUCCEEDED(result)) {
        result = stream->Write(text.ascii.data(), static_cast<ULONG>(text.ascii.size()), nullptr);
    }
    if (SUCCEEDED(result)) {
        result = stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr);
    }
    if (FAILED(result)) {
        return Failed(L"no memory stream, ", result);
    }
    Reference<IXmlReader> reader;
    result = CreateXmlReader(__uuidof(IXmlReader), reinterpret_cast<void**>(reader.Out()), nullptr);
    if (SUCCEEDED(result)) {
        result = reader->SetProperty(XmlReaderProperty_DtdProcessing, DtdProcessing_Prohibit);
    }
    if (SUCCEEDED(result)) {
        result = reader->SetInput(stream.Get());
    }
    if (FAILED(result)) {
        return Failed(L"no XML reader, ", result);
    }
    TreeBuilder(*reader.Get(), document).Run();
    if (document.error.empty() && !text.finished) {
        document.error = L"unexpected end";
        document.errorLine = text.lineCount;
    } else if (document.error.empty() && !text.validUtf8) {
        document.error = L"not UTF-8";
    }
    return document;
}

XmlDocument ReadXmlFile(const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        XmlDocument document;
        document.error = L"cannot be opened, error " + std::to_wstring(GetLastError());
        return document;
    }
    // One byte more than is allowed, so that a file that is too large is seen as such.
    std::string text(kMaxBytes + 1, '\0');
    DWORD length = 0;
    const BOOL read = ReadFile(file, text.data(), static_cast<DWORD>(text.size()), &length, nullptr);
    const DWORD error = GetLastError();
    CloseHandle(file);
    if (!read) {
        XmlDocument document;
        document.error = L"cannot be read, error " + std::to_wstring(error);
        return document;
    }
    text.resize(length);
    return ReadXmlText(text);
}

}  // namespace DuiLib
