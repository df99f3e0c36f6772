#include "suite/xml/XmlTree.h"

#include <objbase.h>

#include <xmllite.h>

#include <cwchar>
#include <iterator>

#include "suite/common/ComReference.h"
#include "suite/common/Handle.h"
#include "suite/common/SystemLibrary.h"
#include "suite/xml/Utf8Stream.h"
#include "suite/xml/XmlGate.h"

namespace suite {

namespace {

constinit SystemLibrary xmllite(L"xmllite.dll");
constinit SystemFunction<decltype(&CreateXmlReader)> createXmlReader(xmllite, "CreateXmlReader");
constinit SystemFunction<decltype(&CreateXmlReaderInputWithEncodingName)> createXmlReaderInput(
    xmllite, "CreateXmlReaderInputWithEncodingName");

DWORD CodeOf(HRESULT result) {
    return HRESULT_FACILITY(result) == FACILITY_WIN32 ? HRESULT_CODE(result) : static_cast<DWORD>(result);
}

// Builds the tree while the system's reader walks the text.
class TreeReader {
  public:
    // `linesBefore`: lines of the file that the reader does not see.
    TreeReader(IXmlReader& reader, unsigned linesBefore, std::optional<XmlElement>& root)
        : reader_(reader), linesBefore_(linesBefore), root_(root) {}

    HRESULT Run() {
        XmlNodeType type = XmlNodeType_None;
        HRESULT result = S_OK;
        while ((result = reader_.Read(&type)) == S_OK) {
            switch (type) {
                case XmlNodeType_Element:
                    result = Begin();
                    break;
                case XmlNodeType_EndElement:
                    open_.pop_back();
                    break;
                case XmlNodeType_Text:
                    result = TakeText();
                    break;
                default:
                    break;
            }
            if (FAILED(result)) {
                return result;
            }
        }
        return result;
    }

    unsigned Line() const {
        UINT line = 0;
        return SUCCEEDED(reader_.GetLineNumber(&line)) ? line + linesBefore_ : 0;
    }

  private:
    HRESULT Begin() {
        XmlElement element;
        element.line = Line();
        // Asked before the attributes: the answer is about the node that the reader stands on.
        const bool isEmpty = reader_.IsEmptyElement() != FALSE;
        HRESULT result = TakeName(element.name);
        if (SUCCEEDED(result)) {
            result = TakeAttributes(element);
        }
        if (FAILED(result)) {
            return result;
        }
        XmlElement* added = nullptr;
        if (open_.empty()) {
            added = &root_.emplace(std::move(element));
        } else {
            added = &open_.back()->children.emplace_back(std::move(element));
        }
        if (!isEmpty) {
            open_.push_back(added);
        }
        return S_OK;
    }

    HRESULT TakeAttributes(XmlElement& element) {
        HRESULT result = reader_.MoveToFirstAttribute();
        while (result == S_OK) {
            auto& [name, value] = element.attributes.emplace_back();
            result = TakeName(name);
            if (SUCCEEDED(result)) {
                result = TakeValue(value);
            }
            if (FAILED(result)) {
                return result;
            }
            result = reader_.MoveToNextAttribute();
        }
        return result;
    }

    HRESULT TakeText() {
        std::wstring text;
        const HRESULT result = TakeValue(text);
        if (SUCCEEDED(result) && !open_.empty()) {
            open_.back()->text += text;
        }
        return result;
    }

    HRESULT TakeName(std::wstring& name) { return Take(&IXmlReader::GetQualifiedName, name); }
    HRESULT TakeValue(std::wstring& value) { return Take(&IXmlReader::GetValue, value); }

    template <typename Question>
    HRESULT Take(Question question, std::wstring& answer) {
        const wchar_t* text = nullptr;
        UINT length = 0;
        const HRESULT result = (reader_.*question)(&text, &length);
        if (SUCCEEDED(result) && text) {
            answer.assign(text, length);
        }
        return result;
    }

    IXmlReader& reader_;  // borrowed; must outlive this object
    const unsigned linesBefore_;
    std::optional<XmlElement>& root_;
    // The elements around the reader's place, outermost first. Their addresses hold: only the innermost gets children.
    std::vector<XmlElement*> open_;
};

// Reads a text that the gate has let through.
void ReadSound(std::string_view utf8, unsigned linesBefore, XmlDocument& document) {
    const ComReference<ISequentialStream> stream(new Utf8Stream(utf8));
    ComReference<IXmlReaderInput> input;
    ComReference<IXmlReader> reader;
    // The encoding is told, so that one that the text names itself does not count.
    HRESULT result = createXmlReaderInput(stream.Get(), nullptr, L"UTF-8", FALSE, nullptr, input.Put());
    if (SUCCEEDED(result)) {
        result = createXmlReader(__uuidof(IXmlReader), reader.PutVoid(), nullptr);
    }
    if (SUCCEEDED(result)) {
        result = reader->SetProperty(XmlReaderProperty_DtdProcessing, DtdProcessing_Prohibit);
    }
    if (SUCCEEDED(result)) {
        result = reader->SetInput(input.Get());
    }
    unsigned line = 0;
    if (SUCCEEDED(result)) {
        TreeReader tree(*reader.Get(), linesBefore, document.root);
        result = tree.Run();
        line = tree.Line();
    }
    if (FAILED(result)) {
        wchar_t number[16];
        std::swprintf(number, std::size(number), L"0x%08lX", static_cast<unsigned long>(result));
        document.fault = std::wstring(L"refused by the system's XML reader, ") + number;
        document.faultLine = line;
        document.code = CodeOf(result);
    }
}

// The whole file, or one byte more than the largest that is read.
DWORD ReadWhole(HANDLE file, std::string& bytes) {
    bytes.resize(kMostXmlBytes + 1);
    std::size_t filled = 0;
    DWORD count = 0;
    do {
        if (!ReadFile(file, bytes.data() + filled, static_cast<DWORD>(bytes.size() - filled), &count, nullptr)) {
            return GetLastError();
        }
        filled += count;
    } while (count > 0 && filled < bytes.size());
    bytes.resize(filled);
    return ERROR_SUCCESS;
}

XmlDocument Unreadable(const wchar_t* what, DWORD error) {
    XmlDocument document;
    document.fault = what + std::to_wstring(error);
    document.code = error;
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

XmlDocument ReadXmlText(std::string_view bytes) {
    const XmlJudgement judgement = JudgeXml(bytes);
    XmlDocument document;
    const std::string& readable = judgement.verdict == XmlVerdict::kSound ? judgement.utf8 : judgement.beginning;
    if (!readable.empty()) {
        ReadSound(readable, judgement.linesBefore, document);
    }
    // A fault that the reader finds lies before the gate's.
    if (document.fault.empty() && judgement.verdict != XmlVerdict::kSound) {
        document.fault = judgement.fault;
        document.faultLine = judgement.faultLine;
        document.code = judgement.verdict == XmlVerdict::kRootless  ? ERROR_SUCCESS
                        : judgement.verdict == XmlVerdict::kRefused ? ERROR_NOT_SUPPORTED
                                                                    : ERROR_XML_PARSE_ERROR;
    }
    return document;
}

XmlDocument ReadXmlFile(const std::wstring& path) {
    const Handle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                  nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file) {
        return Unreadable(L"cannot be opened, error ", GetLastError());
    }
    std::string bytes;
    const DWORD error = ReadWhole(file.Get(), bytes);
    return error != ERROR_SUCCESS ? Unreadable(L"cannot be read, error ", error) : ReadXmlText(bytes);
}

}  // namespace suite
