#pragma once
// The fonts of a layout by index, made for the present DPI and the user's size of text on first use. Owns the handles.
// Thread: UI thread.
#include <windows.h>

#include <map>

#include "DuiLib/FontSpec.h"
#include "suite/common/GdiObject.h"

namespace DuiLib {

// The font of tooltips, which is there in every table: as large as the system's own.
inline constexpr int kToolTipFont = -2;

class FontTable {
  public:
    void Add(int index, const FontSpec& font, bool isDefault);
    // Drops the handles: another DPI, or the system has another size of text or another message font.
    void Renew(int dpi);
    HFONT Get(int index) const;  // unknown: the default font
    // The font with another weight, slant or line, for marked-up text.
    HFONT GetVariant(int index, bool bold, bool italic, bool underline) const;

  private:
    const FontSpec& SpecOf(int index) const;

    struct Key {
        int index;
        bool bold, italic, underline;
        auto operator<=>(const Key&) const = default;  // NOLINT(modernize-use-nullptr): no pointer
    };

    std::map<int, FontSpec> specs_{{kToolTipFont, {.face = {}, .sizeDip = 12}}};
    FontSpec fallback_;
    int defaultIndex_ = -1;
    int dpi_ = 96;
    mutable std::map<Key, suite::GdiFont> handles_;
};

}  // namespace DuiLib
