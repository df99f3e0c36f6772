#include "suite/xml/XmlTree.h"

#include <objbase.h>

#include <shlwapi.h>
#include <xmllite.h>

#include "suite/common/Utf8.h"
#include "suite/xml/XmlGate.h"

namespace suite {

namespace {

const HRESULT kBroken = HRESULT_FROM_WIN32(ERROR_XML_PARSE_ERROR);
const HRESULT kRefused = HRESULT_FROM_WIN32(ERROR_NOT_SUPPORTED);

struct Release {
    void operator()(IUnknown* object) const { object->Release(); }
};

template <typename Interface>
using Com = std::unique_ptr<Interface, Release>;

// Builds the tree while the system's reader walks the text.
class TreeReader {
  public:
    TreeReader(IXmlReader* reader, std::unique_ptr<XmlTree>& root) : reader_(reader), root_(root) {}

    HRESULT Run() {
        XmlNodeType type = XmlNodeType_None;
        HRESULT result = S_OK;
        while ((result = reader_->Read(&type)) == S_OK) {
            if (type == XmlNodeType_Element) {
                result = Begin();
            } else if (type == XmlNodeType_EndElement) {
                result = End();
            }
            if (FAILED(result)) {
                return result;
            }
        }
        if (FAILED(result)) {
            return result;
        }
        return root_ != nullptr && open_.empty() ? S_OK : kBroken;
    }

  private:
    HRESULT Begin() {
        if (open_.empty() && root_ != nullptr) {
            return kBroken;
        }
        auto element = std::make_unique<XmlTree>();
        const bool isEmpty = reader_->IsEmptyElement() != FALSE;
        HRESULT result = TakeName(element->name);
        if (SUCCEEDED(result)) {
            result = TakeAttributes(*element);
        }
        if (FAILED(result)) {
            return result;
        }
        XmlTree* const added = element.get();
        if (open_.empty()) {
            root_ = std::move(element);
        } else {
            open_.back()->children.push_back(std::move(element));
        }
        if (!isEmpty) {
            open_.push_back(added);
        }
        return S_OK;
    }

    HRESULT End() {
        if (open_.empty()) {
            return kBroken;
        }
        open_.pop_back();
        return S_OK;
    }

    HRESULT TakeAttributes(XmlTree& element) {
        HRESULT result = reader_->MoveToFirstAttribute();
        while (result == S_OK) {
            std::pair<std::string, std::string> attribute;
            const WCHAR* value = nullptr;
            UINT length = 0;
            result = TakeName(attribute.first);
            if (SUCCEEDED(result)) {
                result = reader_->GetValue(&value, &length);
            }
            if (FAILED(result)) {
                return result;
            }
            attribute.second = ToUtf8({value, length});
            element.attributes.push_back(std::move(attribute));
            result = reader_->MoveToNextAttribute();
        }
        return result;
    }

    HRESULT TakeName(std::string& name) {
        const WCHAR* text = nullptr;
        UINT length = 0;
        const HRESULT result = reader_->GetQualifiedName(&text, &length);
        if (SUCCEEDED(result)) {
            name = ToUtf8({text, length});
        }
        return result;
    }

    IXmlReader* const reader_;  // borrowed; must outlive this object
    std::unique_ptr<XmlTree>& root_;
    std::vector<XmlTree*> open_;  // the elements around the reader's place, outermost first
};

}  // namespace

HRESULT ReadXml(const std::string& bytes, std::unique_ptr<XmlTree>& root) {
    root.reset();
    const XmlVerdict verdict = JudgeXml(bytes);
    if (verdict != XmlVerdict::kSound) {
        return verdict == XmlVerdict::kBlank ? S_OK : verdict == XmlVerdict::kRefused ? kRefused : kBroken;
    }
    IXmlReader* made = nullptr;
    HRESULT result = CreateXmlReader(__uuidof(IXmlReader), reinterpret_cast<void**>(&made), nullptr);
    if (FAILED(result)) {
        return result;
    }
    const Com<IXmlReader> reader(made);
    const Com<IStream> stream(
        SHCreateMemStream(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<UINT>(bytes.size())));
    if (stream == nullptr) {
        return E_OUTOFMEMORY;
    }
    result = reader->SetProperty(XmlReaderProperty_DtdProcessing, DtdProcessing_Prohibit);
    if (SUCCEEDED(result)) {
        result = reader->SetInput(stream.get());
    }
    if (SUCCEEDED(result)) {
        result = TreeReader(reader.get(), root).Run();
    }
    if (FAILED(result)) {
        root.reset();
    }
    return result;
}

}  // namespace suite
