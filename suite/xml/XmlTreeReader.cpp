#include "suite/xml/XmlTreeReader.h"

#include <xmllite.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "suite/common/ComRelease.h"
#include "suite/common/Utf8.h"
#include "suite/xml/Utf8Stream.h"
#include "suite/xml/XmlText.h"

namespace suite {

namespace {

// Put at the end of every text, so that no reader is ever asked to go on at the end of its input: there are some that
// then give the last node for ever, or end the process. Whatever is open at the end, be it an instruction, a section or
// only elements, the comment with the mark is reached, or an error before it. The mark is a noncharacter, which no text
// holds.
constexpr std::string_view kEnd = "<!--]]>?>--><!--\xEF\xB7\x90-->";
constexpr std::string_view kEndMark = "\xEF\xB7\x90";

// Passes over a text once.
class TreeReader {
  public:
    TreeReader() = default;
    ~TreeReader() {
        ComRelease(reader_);
        ComRelease(input_);
        ComRelease(stream_);
    }
    TreeReader(const TreeReader&) = delete;
    TreeReader& operator=(const TreeReader&) = delete;

    // REQUIRES: `text` outlives this object.
    HRESULT Read(const std::string& text);
    // Whether an element has begun.
    bool HasRoot() const { return root_ != nullptr; }
    std::unique_ptr<QxXmlNode> TakeRoot() { return std::move(root_); }

  private:
    HRESULT Open(const std::string& text);
    HRESULT ReadNodes();
    bool IsEndMark();
    HRESULT BeginElement();
    HRESULT ReadAttributes(QxXmlNode& node);

    ISequentialStream* stream_ = nullptr;
    IXmlReaderInput* input_ = nullptr;
    IXmlReader* reader_ = nullptr;
    std::unique_ptr<QxXmlNode> root_;
    std::vector<QxXmlNode*> open_;  // from the root to the element that is being read
    std::size_t count_ = 0;
};

template <typename Getter>
HRESULT GetText(IXmlReader* reader, Getter getter, std::string& text) {
    const wchar_t* units = nullptr;
    UINT length = 0;
    const HRESULT result = (reader->*getter)(&units, &length);
    if (FAILED(result)) {
        return result;
    }
    text = ToUtf8({units != nullptr ? units : L"", units != nullptr ? length : 0});
    return S_OK;
}

HRESULT TreeReader::Open(const std::string& text) {
    stream_ = new Utf8Stream(text);
    // The encoding is told, so that one that the text names itself does not count.
    HRESULT result = CreateXmlReaderInputWithEncodingName(stream_, nullptr, L"UTF-8", FALSE, nullptr, &input_);
    if (SUCCEEDED(result)) {
        result = CreateXmlReader(__uuidof(IXmlReader), reinterpret_cast<void**>(&reader_), nullptr);
    }
    if (SUCCEEDED(result)) {
        result = reader_->SetProperty(XmlReaderProperty_DtdProcessing, DtdProcessing_Prohibit);
    }
    return SUCCEEDED(result) ? reader_->SetInput(input_) : result;
}

HRESULT TreeReader::Read(const std::string& text) {
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
        if (result == S_FALSE) {
            return MX_E_INPUTEND;
        }
        if (type == XmlNodeType_Comment && IsEndMark()) {
            return open_.empty() ? S_OK : static_cast<HRESULT>(MX_E_INPUTEND);
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

bool TreeReader::IsEndMark() {
    std::string text;
    return SUCCEEDED(GetText(reader_, &IXmlReader::GetValue, text)) && text == kEndMark;
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
    HRESULT result = GetText(reader_, &IXmlReader::GetQualifiedName, node->name);
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
        result = GetText(reader_, &IXmlReader::GetQualifiedName, name);
        if (SUCCEEDED(result)) {
            result = GetText(reader_, &IXmlReader::GetValue, value);
        }
        if (SUCCEEDED(result)) {
            result = reader_->MoveToNextAttribute();
        }
    }
    return result == S_FALSE ? reader_->MoveToElement() : result;
}

}  // namespace

HRESULT ReadXmlTree(const std::string& bytes, std::unique_ptr<QxXmlNode>& root) {
    const std::optional<std::wstring> text = DecodeXmlBytes(bytes);
    if (!text) {
        return MX_E_ENCODING;
    }
    // White space in front has no meaning, but confuses a reader that looks for the encoding there.
    const std::size_t start = std::min(text->find_first_not_of(L" \t\r\n"), text->size());
    const std::wstring_view rest = std::wstring_view(*text).substr(start);
    if (start > 0 && rest.starts_with(L"<?xml")) {
        return WC_E_LEADINGXML;
    }
    if (!rest.empty() && rest.front() != L'<') {
        return WC_E_ROOTELEMENT;
    }
    const std::string input = ToUtf8(rest).append(kEnd);
    TreeReader reader;
    const HRESULT result = reader.Read(input);
    if (SUCCEEDED(result)) {
        root = reader.TakeRoot();
    }
    return result;
}

}  // namespace suite
