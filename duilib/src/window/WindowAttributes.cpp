#include "window/WindowAttributes.h"

#include "theme/ColorValue.h"

namespace DuiLib {
namespace {

template <Size WindowSpec::*kMember>
bool SizeOf(WindowSpec& window, std::wstring_view value) {
    return ApplyParsed(ParseSize(value), [&](Size dip) { window.*kMember = dip; });
}

template <Color WindowSpec::*kMember>
bool ColorOf(WindowSpec& window, std::wstring_view value) {
    return ApplyColorValue(value, [&](const Color& color) { window.*kMember = color; });
}

template <std::wstring WindowSpec::*kMember>
bool NameOf(WindowSpec& window, std::wstring_view value) {
    window.*kMember = value;
    return true;
}

bool RoundCorner(WindowSpec& window, std::wstring_view value) {
    return ApplyNumber(value, 0, [&](int dip) { window.roundCornerDip = dip; });
}

bool GrowWithText(WindowSpec& window, std::wstring_view value) {
    return ApplyParsed(ParseBool(value), [&](bool grow) { window.growWithText = grow; });
}

bool CloseOnEscape(WindowSpec& window, std::wstring_view value) {
    return ApplyParsed(ParseBool(value), [&](bool close) { window.closeOnEscape = close; });
}

constexpr AttributeEntry<WindowSpec> kWindowTable[] = {
    {L"size", SizeOf<&WindowSpec::sizeDip>},
    {L"minsize", SizeOf<&WindowSpec::minSizeDip>},
    {L"maxsize", SizeOf<&WindowSpec::maxSizeDip>},
    {L"growwithtext", GrowWithText},
    {L"roundcorner", RoundCorner},
    {L"bkcolor", ColorOf<&WindowSpec::bkColor>},
    {L"bordercolor", ColorOf<&WindowSpec::borderColor>},
    {L"default", NameOf<&WindowSpec::defaultButton>},
    {L"cancel", NameOf<&WindowSpec::cancelButton>},
    {L"closeonescape", CloseOnEscape},
    {L"acctitle", NameOf<&WindowSpec::accTitle>},
    {L"accmessage", NameOf<&WindowSpec::accMessage>},
    {L"textcolor", ColorOf<&WindowSpec::textColor>},
    {L"disabledtextcolor", ColorOf<&WindowSpec::disabledTextColor>},
    {L"linkcolor", ColorOf<&WindowSpec::linkColor>},
    {L"hotlinkcolor", ColorOf<&WindowSpec::hotLinkColor>},
    {L"focuscolor", ColorOf<&WindowSpec::focusColor>},
};

// A larger font is taken for a mistake.
constexpr int kMaxFontDip = 1000;
constexpr int kMaxWeight = 1000;

bool FontId(FontElement& font, std::wstring_view value) {
    return ApplyNumber(value, 0, [&](int index) { font.index = index; });
}

bool FontFace(FontElement& font, std::wstring_view value) {
    if (value.size() >= LF_FACESIZE) {
        return false;
    }
    font.spec.face = value;
    return true;
}

bool FontSize(FontElement& font, std::wstring_view value) {
    const std::optional<int> dip = ParseInt(value);
    if (!dip || *dip < 1 || *dip > kMaxFontDip) {
        return false;
    }
    font.spec.sizeDip = *dip;
    return true;
}

bool FontWeight(FontElement& font, std::wstring_view value) {
    const std::optional<int> weight = ParseInt(value);
    if (!weight || *weight < 1 || *weight > kMaxWeight) {
        return false;
    }
    font.spec.weight = *weight;
    return true;
}

bool FontBold(FontElement& font, std::wstring_view value) {
    return ApplyParsed(ParseBool(value), [&](bool bold) { font.spec.weight = bold ? FW_BOLD : FW_NORMAL; });
}

bool FontItalic(FontElement& font, std::wstring_view value) {
    return ApplyParsed(ParseBool(value), [&](bool italic) { font.spec.italic = italic; });
}

bool FontUnderline(FontElement& font, std::wstring_view value) {
    return ApplyParsed(ParseBool(value), [&](bool underline) { font.spec.underline = underline; });
}

bool FontDefault(FontElement& font, std::wstring_view value) {
    return ApplyParsed(ParseBool(value), [&](bool isDefault) { font.isDefault = isDefault; });
}

constexpr AttributeEntry<FontElement> kFontTable[] = {
    {L"id", FontId},     {L"face", FontFace},     {L"size", FontSize},           {L"weight", FontWeight},
    {L"bold", FontBold}, {L"italic", FontItalic}, {L"underline", FontUnderline}, {L"default", FontDefault},
};

template <typename Target, std::size_t Count>
AttributeResult Apply(const AttributeEntry<Target> (&table)[Count], Target& target, std::wstring_view name,
                      std::wstring_view value) {
    const AttributeEntry<Target>* entry = FindAttribute(table, name);
    if (!entry) {
        return AttributeResult::kUnknown;
    }
    return entry->apply(target, value) ? AttributeResult::kOk : AttributeResult::kBadValue;
}

}  // namespace

AttributeResult ApplyWindowAttribute(WindowSpec& window, std::wstring_view name, std::wstring_view value) {
    return Apply(kWindowTable, window, name, value);
}

AttributeResult ApplyFontAttribute(FontElement& font, std::wstring_view name, std::wstring_view value) {
    return Apply(kFontTable, font, name, value);
}

}  // namespace DuiLib
