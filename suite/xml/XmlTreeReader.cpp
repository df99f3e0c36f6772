#include "suite/xml/XmlTreeReader.h"

#include <shlwapi.h>
#include <xmllite.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "suite/common/Utf8.h"
#include "suite/xml/XmlText.h"

namespace suite {

namespace {

struct ReleaseInterface {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <typename Interface>
using Owned = std::unique_ptr<Interface, ReleaseInterface>;

// Passes over the text once.
class TreeReader {
  public:
    HRESULT Read(std::wstring_view text);
    // Whether an element has begun.
    bool HasRoot() const { return root_ != nullptr; }
    std::unique_ptr<QxXmlNode> TakeRoot() { return std::move(root_); }

  private:
    HRESULT Open(std::wstring_view text);
    HRESULT ReadNodes();
    bool HasAdvanced();
    HRESULT BeginElement();
    HRESULT ReadAttributes(QxXmlNode& node);

    Owned<IStream> stream_;
    Owned<IUnknown> input_;
    Owned<IXmlReader> reader_;
    std::unique_ptr<QxXmlNode> root_;
    std::vector<QxXmlNode*> open_;  // from the root to the element that is being read
    std::size_t count_ = 0;
    std::pair<UINT, UINT> place_;  // line and column of the latest node
};

template <typename Getter>
HRESULT GetText(IXmlReader* reader, Getter getter, std::string& text) {
    const wchar_t* units = nullptr;
    UINT length = 0;
    const HRESULT result = (reader->*getter)(&units, &length);
    if (FAILED(result)) {
        return result;
    }
    const std::wstring_view view(units != nullptr ? units : L"", units != nullptr ? length : 0);
    if (!IsXmlText(view)) {
        return WC_E_XMLCHARACTER;
    }
    text = ToUtf8(view);
    return S_OK;
}

HRESULT TreeReader::Open(std::wstring_view text) {
    const auto byteCount = static_cast<UINT>(text.size() * sizeof(wchar_t));
    stream_.reset(SHCreateMemStream(reinterpret_cast<const BYTE*>(text.data()), byteCount));
    if (!stream_) {
        return E_OUTOFMEMORY;
    }
    // The encoding is told, so that one that the text names itself does not count.
    IXmlReaderInput* input = nullptr;
    HRESULT result = CreateXmlReaderInputWithEncodingName(stream_.get(), nullptr, L"UTF-16", FALSE, nullptr, &input);
    if (FAILED(result)) {
        return result;
    }
    input_.reset(input);
    void* reader = nullptr;
    result = CreateXmlReader(__uuidof(IXmlReader), &reader, nullptr);
    if (FAILED(result)) {
        return result;
    }
    reader_.reset(static_cast<IXmlReader*>(reader));
    result = reader_->SetProperty(XmlReaderProperty_DtdProcessing, DtdProcessing_Prohibit);
    return SUCCEEDED(result) ? reader_->SetInput(input_.get()) : result;
}

HRESULT TreeReader::Read(std::wstring_view text) {
    const HRESULT result = Open(text);
    return SUCCEEDED(result) ? ReadNodes() : result;
}

HRESULT TreeReader::ReadNodes() {
    for (;;) {
        XmlNodeType type = XmlNodeType_None;
        HRESULT result = reader_->Read(&type);
        if (FAILED(result)) {
            return result;
        }
        if (result == S_OK && !HasAdvanced()) {
            return MX_E_INPUTEND;
        }
        if (result == S_FALSE) {
            const bool whole = open_.empty() && HasRoot();
            return whole ? S_OK : static_cast<HRESULT>(MX_E_INPUTEND);
        }
        switch (type) {
            case XmlNodeType_Element:
                result = BeginElement();
                break;
            case XmlNodeType_EndElement:
                if (open_.empty()) {
                    return WC_E_ELEMENTMATCH;
                }
                open_.pop_back();
                break;
            case XmlNodeType_DocumentType:
                return WC_E_DTDPROHIBITED;
            case XmlNodeType_Text:
            case XmlNodeType_CDATA:
                if (open_.empty()) {
                    return WC_E_ROOTELEMENT;
                }
                break;
            default:
                break;
        }
        if (FAILED(result)) {
            return result;
        }
    }
}

// There are readers that give the last node again and again when elements are open at the end of the text.
bool TreeReader::HasAdvanced() {
    std::pair<UINT, UINT> place;
    reader_->GetLineNumber(&place.first);
    reader_->GetLinePosition(&place.second);
    const bool advanced = place > place_;
    place_ = place;
    return advanced;
}

HRESULT TreeReader::BeginElement() {
    if (open_.empty() && HasRoot()) {
        return WC_E_ROOTELEMENT;
    }
    if (open_.size() == kMostXmlLevels) {
        return SC_E_MAXELEMENTDEPTH;
    }
    if (++count_ > kMostXmlElements) {
        return HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE);
    }
    auto element = std::make_unique<QxXmlNode>();
    QxXmlNode* const node = element.get();
    std::unique_ptr<QxXmlNode>& place = open_.empty() ? root_ : open_.back()->children.emplace_back();
    place = std::move(element);

    const bool empty = reader_->IsEmptyElement();
    HRESULT result = GetText(reader_.get(), &IXmlReader::GetQualifiedName, node->name);
    if (SUCCEEDED(result)) {
        result = ReadAttributes(*node);
    }
    if (!empty) {
        open_.push_back(node);
    }
    return result;
}

HRESULT TreeReader::ReadAttributes(QxXmlNode& node) {
    HRESULT result = reader_->MoveToFirstAttribute();
    while (result == S_OK) {
        auto& [name, value] = node.attributes.emplace_back();
        result = GetText(reader_.get(), &IXmlReader::GetQualifiedName, name);
        if (SUCCEEDED(result)) {
            result = GetText(reader_.get(), &IXmlReader::GetValue, value);
        }
        if (SUCCEEDED(result)) {
            result = reader_->MoveToNextAttribute();
        }
    }
    return result == S_FALSE ? reader_->MoveToElement() : result;
}

// White space in front has no meaning, but confuses a reader that looks for the encoding there.
HRESULT TrimFront(std::wstring_view& text) {
    const std::size_t start = std::min(text.find_first_not_of(L" \t\r\n"), text.size());
    text.remove_prefix(start);
    if (start > 0 && text.starts_with(L"<?xml")) {
        return WC_E_LEADINGXML;
    }
    return text.empty() || text.front() == L'<' ? S_OK : static_cast<HRESULT>(WC_E_ROOTELEMENT);
}

}  // namespace

HRESULT ReadXmlTree(const std::string& bytes, std::unique_ptr<QxXmlNode>& root) {
    const std::optional<std::wstring> decoded = DecodeXmlBytes(bytes);
    if (!decoded) {
        return MX_E_ENCODING;
    }
    std::wstring_view text = *decoded;
    HRESULT result = TrimFront(text);
    if (FAILED(result)) {
        return result;
    }
    TreeReader reader;
    result = reader.Read(text);
    if (SUCCEEDED(result)) {
        root = reader.TakeRoot();
        return S_OK;
    }
    // A text that lacks nothing but its root element becomes a document when one is put at its end; a damaged one
    // stays damaged.
    if (!reader.HasRoot() && SUCCEEDED(TreeReader().Read(std::wstring(text) + L"<a/>"))) {
        root.reset();
        return S_OK;
    }
    return result;
}

}  // namespace suite
