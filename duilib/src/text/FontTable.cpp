#include "text/FontTable.h"

#include <algorithm>
#include <string>

#include "DuiLib/Geometry.h"
#include "DuiLib/Theme.h"

namespace DuiLib {

void FontTable::Add(int index, const FontSpec& font, bool isDefault) {
    handles_.clear();
    specs_[index] = font;
    if (isDefault) {
        defaultIndex_ = index;
    }
}

void FontTable::Renew(int dpi) {
    handles_.clear();
    dpi_ = dpi;
}

const FontSpec& FontTable::SpecOf(int index) const {
    auto found = specs_.find(index);
    if (found == specs_.end()) {
        found = specs_.find(defaultIndex_);
    }
    return found == specs_.end() ? fallback_ : found->second;
}

HFONT FontTable::Get(int index) const {
    return GetVariant(index, false, false, false);
}

HFONT FontTable::GetVariant(int index, bool bold, bool italic, bool underline) const {
    // All unknown indexes share the default font's handle.
    const int shared = specs_.contains(index) ? index : defaultIndex_;
    const auto [known, isNew] = handles_.try_emplace({shared, bold, italic, underline});
    if (!isNew) {
        return known->second.Get();
    }
    const FontSpec& spec = SpecOf(index);
    UITheme& theme = *UITheme::GetInstance();
    const std::wstring& face = spec.face.empty() ? theme.GetMessageFace() : spec.face;
    LOGFONTW font{};
    font.lfHeight = -std::max(1, ScaleBy(spec.sizeDip * theme.GetTextPercent(), dpi_, 96 * 100));
    font.lfWeight = bold ? std::max(spec.weight, FW_BOLD) : spec.weight;
    font.lfItalic = spec.italic || italic;
    font.lfUnderline = spec.underline || underline;
    font.lfCharSet = DEFAULT_CHARSET;
    face.copy(font.lfFaceName, LF_FACESIZE - 1);
    known->second = suite::GdiFont(::CreateFontIndirectW(&font));
    return known->second.Get();
}

}  // namespace DuiLib
