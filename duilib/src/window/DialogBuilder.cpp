#include "DuiLib/DialogBuilder.h"

#include <utility>

#include "DuiLib/ButtonUI.h"
#include "DuiLib/ContainerUI.h"
#include "DuiLib/LabelUI.h"
#include "DuiLib/Layouts.h"
#include "DuiLib/OptionUI.h"
#include "DuiLib/PaintManagerUI.h"
#include "DuiLib/ProgressUI.h"
#include "DuiLib/SliderUI.h"
#include "DuiLib/TextUI.h"
#include "markup/ResourceFiles.h"
#include "suite/logger/QxLogger.h"
#include "suite/xml/XmlTree.h"
#include "window/WindowAttributes.h"

namespace DuiLib {
namespace {

// Files within files; more is a file that includes itself.
constexpr int kMaxIncludes = 8;

template <typename Class>
std::unique_ptr<CControlUI> Make() {
    return std::make_unique<Class>();
}

struct ClassEntry {
    std::wstring_view name;
    std::unique_ptr<CControlUI> (*make)();
};

constexpr ClassEntry kClasses[] = {
    {L"Control", Make<CControlUI>},
    {L"Container", Make<CContainerUI>},
    {L"VerticalLayout", Make<CVerticalLayoutUI>},
    {L"HorizontalLayout", Make<CHorizontalLayoutUI>},
    {L"TileLayout", Make<CTileLayoutUI>},
    {L"TabLayout", Make<CTabLayoutUI>},
    {L"Label", Make<CLabelUI>},
    {L"Text", Make<CTextUI>},
    {L"Button", Make<CButtonUI>},
    {L"Option", Make<COptionUI>},
    {L"Progress", Make<CProgressUI>},
    {L"Slider", Make<CSliderUI>},
};

bool IsText(std::wstring_view attribute) {
    return attribute == L"text" || attribute == L"tooltip" || attribute == L"accname";
}

// Makes the controls of one layout file.
class TreeBuilder {
  public:
    TreeBuilder(std::wstring file, IDialogBuilderCallback* callback, CPaintManagerUI* manager, int includes)
        : file_(std::move(file)), callback_(callback), manager_(manager), includes_(includes) {}

    std::unique_ptr<CControlUI> Build(const suite::XmlDocument& document, const wchar_t* type) {
        if (!document.fault.empty()) {
            Log(document.faultLine, document.fault);
            return nullptr;
        }
        const suite::XmlElement& root = *document.root;
        if (type && root.name != type) {
            Log(root.line, L"<", root.name, L"> where <", type, L"> is expected");
            return nullptr;
        }
        return root.name == L"Window" ? BuildWindow(root) : BuildControl(root);
    }

  private:
    std::unique_ptr<CControlUI> BuildWindow(const suite::XmlElement& element) {
        if (manager_) {
            for (const auto& [name, value] : element.attributes) {
                Report(element, name, value, ApplyWindowAttribute(manager_->GetWindowSpec(), name, value));
            }
        }
        std::unique_ptr<CControlUI> root;
        for (const suite::XmlElement& child : element.children) {
            if (TakeResource(child)) {
                continue;
            }
            if (root) {
                Log(child.line, L"<", child.name, L"> is a second root of the window");
                continue;
            }
            root = BuildControl(child);
        }
        if (!root) {
            Log(element.line, L"the window has no control");
        }
        return root;
    }

    std::unique_ptr<CControlUI> BuildControl(const suite::XmlElement& element) {
        if (element.name == L"Include") {
            return Include(element);
        }
        std::unique_ptr<CControlUI> control = MakeControl(element.name);
        if (!control) {
            Log(element.line, L"unknown element <", element.name, L">");
            return nullptr;
        }
        // A page's fonts and styles count for the page itself.
        for (const suite::XmlElement& child : element.children) {
            TakeResource(child);
        }
        ApplyAttributes(*control, element);
        AddChildren(*control, element);
        return control;
    }

    std::unique_ptr<CControlUI> MakeControl(const std::wstring& className) const {
        for (const ClassEntry& entry : kClasses) {
            if (entry.name == className) {
                return entry.make();
            }
        }
        return callback_ ? callback_->CreateControl(className) : nullptr;
    }

    void AddChildren(CControlUI& control, const suite::XmlElement& element) {
        CContainerUI* container = dynamic_cast<CContainerUI*>(&control);
        for (const suite::XmlElement& child : element.children) {
            if (IsResource(child)) {
                continue;
            }
            if (!container) {
                Log(child.line, L"<", element.name, L"> cannot hold <", child.name, L">");
                continue;
            }
            if (std::unique_ptr<CControlUI> item = BuildControl(child)) {
                container->Add(std::move(item));
            }
        }
    }

    // In this order: defaults of the class, the style, the element's own attributes.
    void ApplyAttributes(CControlUI& control, const suite::XmlElement& element) {
        if (manager_) {
            ApplyList(control, element, manager_->GetDefaultAttributes(element.name));
        }
        if (const std::wstring* style = element.Attribute(L"style")) {
            const std::wstring attributes = manager_ ? manager_->GetStyle(*style) : std::wstring();
            if (attributes.empty()) {
                Log(element.line, L"unknown style \"", *style, L"\"");
            }
            ApplyList(control, element, attributes);
        }
        for (const auto& [name, value] : element.attributes) {
            if (name != L"style") {
                Apply(control, element, name, value);
            }
        }
    }

    void ApplyList(CControlUI& control, const suite::XmlElement& element, const std::wstring& attributes) {
        // It was parsed once when it was defined; what is malformed was not taken.
        for (const auto& [name, value] : ParseAttributeList(attributes).value_or(AttributeList{})) {
            Apply(control, element, name, value);
        }
    }

    void Apply(CControlUI& control, const suite::XmlElement& element, const std::wstring& name,
               const std::wstring& value) {
        // The control has no manager yet that could look the text up.
        const bool lookUp = manager_ && IsText(name);
        Report(element, name, value, control.ApplyAttribute(name, lookUp ? manager_->ResolveText(value) : value));
    }

    static bool IsResource(const suite::XmlElement& element) {
        return element.name == L"Font" || element.name == L"Default" || element.name == L"Style";
    }

    // True when the element is a font, the defaults of a class, or a style.
    bool TakeResource(const suite::XmlElement& element) {
        if (!IsResource(element)) {
            return false;
        }
        if (!manager_) {
            return true;
        }
        if (element.name == L"Font") {
            TakeFont(element);
            return true;
        }
        const std::wstring* name = element.Attribute(L"name");
        const std::wstring* value = element.Attribute(L"value");
        if (!name || name->empty() || !value || !ParseAttributeList(*value)) {
            Log(element.line, L"<", element.name, L"> needs a name, and a value like text=\"a\" font=\"1\"");
        } else if (element.name == L"Default") {
            manager_->AddDefaultAttributes(*name, *value);
        } else {
            manager_->AddStyle(*name, *value);
        }
        return true;
    }

    void TakeFont(const suite::XmlElement& element) {
        FontElement font;
        for (const auto& [name, value] : element.attributes) {
            Report(element, name, value, ApplyFontAttribute(font, name, value));
        }
        if (font.index < 0) {
            Log(element.line, L"<Font> needs an id");
        } else {
            manager_->AddFont(font.index, font.spec, font.isDefault);
        }
    }

    std::unique_ptr<CControlUI> Include(const suite::XmlElement& element) {
        const std::wstring* source = element.Attribute(L"source");
        if (!source || includes_ >= kMaxIncludes) {
            Log(element.line, source ? L"too many includes within includes" : L"<Include> needs a source");
            return nullptr;
        }
        return TreeBuilder(*source, callback_, manager_, includes_ + 1)
            .Build(suite::ReadXmlFile(ResourceFile(*source)), nullptr);
    }

    void Report(const suite::XmlElement& element, const std::wstring& name, const std::wstring& value,
                AttributeResult result) const {
        if (result == AttributeResult::kUnknown) {
            Log(element.line, L"<", element.name, L"> has no attribute ", name);
        } else if (result == AttributeResult::kBadValue) {
            Log(element.line, L"<", element.name, L">: bad value ", name, L"=\"", value, L"\"");
        }
    }

    template <typename... Parts>
    void Log(unsigned line, const Parts&... parts) const {
        LogLine(LogLevel::kError, L"CDialogBuilder::Create", file_, L", line ", line, L": ", parts...);
    }

    const std::wstring file_;  // as it stands in log lines
    IDialogBuilderCallback* const callback_;
    CPaintManagerUI* const manager_;
    const int includes_;
};

}  // namespace

std::unique_ptr<CControlUI> CDialogBuilder::Create(const std::wstring& layoutFile, const wchar_t* type,
                                                   IDialogBuilderCallback* callback, CPaintManagerUI* manager) {
    return TreeBuilder(layoutFile, callback, manager, 0).Build(suite::ReadXmlFile(ResourceFile(layoutFile)), type);
}

std::unique_ptr<CControlUI> CDialogBuilder::CreateFromText(std::string_view utf8Xml, const std::wstring& sourceName,
                                                           IDialogBuilderCallback* callback, CPaintManagerUI* manager) {
    return TreeBuilder(sourceName, callback, manager, 0).Build(suite::ReadXmlText(utf8Xml), nullptr);
}

}  // namespace DuiLib
