#include "theme/ThemeFile.h"

#include "markup/AttributeParser.h"
#include "suite/logger/QxLogger.h"
#include "suite/xml/XmlTree.h"

namespace DuiLib {
namespace {

constexpr wchar_t kFunction[] = L"UITheme::ReadFile";

std::optional<SystemColor> SystemColorAttribute(const suite::XmlElement& element) {
    const std::wstring* value = element.Attribute(L"contrast");
    if (!value) {
        return std::nullopt;
    }
    // Names of the system's colours are plain letters; anything else is no name.
    std::string narrow;
    for (const wchar_t c : *value) {
        narrow += c < 0x80 ? static_cast<char>(c) : '?';
    }
    return SystemColorOf(narrow);
}

std::optional<std::uint32_t> ColorAttribute(const suite::XmlElement& element, std::wstring_view name) {
    const std::wstring* value = element.Attribute(name);
    return value ? ParseColor(*value) : std::nullopt;
}

class Reader {
  public:
    Reader(ColorTable& colors, ThemeFile& file) : colors_(colors), file_(file) {}

    void Take(const suite::XmlElement& element) {
        const std::wstring* name = element.Attribute(L"name");
        const bool named = name && !name->empty();
        if (element.name == L"Color") {
            const auto light = ColorAttribute(element, L"light");
            const auto dark = ColorAttribute(element, L"dark");
            const auto contrast = SystemColorAttribute(element);
            if (!named || !light || !dark || !contrast) {
                Log(element, L" needs a name, light and dark like #FF010203, and the contrast of a system colour");
                return;
            }
            colors_.Set(*name, {*light, *dark, *contrast});
        } else if (element.name == L"Mask") {
            const auto contrast = SystemColorAttribute(element);
            if (!named || !contrast) {
                Log(element, L" needs a name and the contrast of a system colour");
                return;
            }
            file_.masks.emplace_back(*name, *contrast);
        } else if (element.name == L"Upright" && named) {
            file_.upright.push_back(*name);
        } else {
            Log(element, L" is not known, or has no name");
        }
    }

  private:
    static void Log(const suite::XmlElement& element, const wchar_t* what) {
        LogLine(LogLevel::kError, kFunction, L"themes.xml, line ", element.line, L": <", element.name, L">", what);
    }

    ColorTable& colors_;
    ThemeFile& file_;
};

}  // namespace

bool ReadThemeFile(const std::wstring& path, ColorTable& colors, ThemeFile& file) {
    const suite::XmlDocument document = suite::ReadXmlFile(path);
    if (!document.fault.empty() || !document.root) {
        LogLine(LogLevel::kError, kFunction, L"themes.xml, line ", document.faultLine, L": ", document.fault,
                L"; the light theme of the library is used");
        return false;
    }
    Reader reader(colors, file);
    for (const suite::XmlElement& element : document.root->children) {
        reader.Take(element);
    }
    for (const std::wstring& name : colors.Untouched()) {
        LogLine(LogLevel::kError, kFunction, L"themes.xml has no colour ", name);
    }
    return true;
}

}  // namespace DuiLib
