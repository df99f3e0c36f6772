#pragma once
// A line, or with wordwrap a block, of plain text. A line feed in the text is a line break.
//
// Attributes beside those of Control:
//   font: number, -1                      index of a font of the layout; -1 is its default font
//   textcolor, disabledtextcolor: colour, the layout's defaults
//   valign: top | center | bottom, center
//   textpadding: l,t,r,b, 0,0,0,0         left and right change places likewise
//   wordwrap: true | false, false         breaks lines; the height follows the width
//   endellipsis: true | false, false      cuts what does not fit with "…"
// Control's align is that of the text; left and right change places in right-to-left languages.
// Thread: UI thread.
#include "DuiLib/ControlUI.h"

namespace DuiLib {

class DUILIB_API CLabelUI : public CControlUI {
  public:
    const wchar_t* GetClass() const override { return L"Label"; }
    AttributeResult ApplyAttribute(std::wstring_view name, std::wstring_view value) override;
    AccessibleInfo GetAccessibleInfo() const override;

    int GetFont() const { return font_; }
    void SetFont(int index);
    // None: the layout's default.
    const Color& GetTextColor() const { return textColor_; }
    void SetTextColor(const Color& color);
    void SetDisabledTextColor(const Color& color);
    // DT_… flags that the attributes amount to, for CRenderEngine::DrawText.
    UINT GetTextStyle() const;

  protected:
    Size MeasureContent(Size availablePx) override;
    void PaintContent(Canvas& canvas, const Rect& dirtyPx) override;
    // Colour of the text in the present state.
    virtual Color CurrentTextColor() const;
    Rect TextRectPx() const;
    // The room between the control's edge and its text, in pixels, as it is on the screen.
    Rect TextPaddingPx() const;
    bool WordWrap() const { return wordWrap_; }
    VAlign GetVAlign() const { return valign_; }

  private:
    friend struct LabelAttributes;

    int font_ = -1;
    Color textColor_, disabledTextColor_;
    VAlign valign_ = VAlign::kCenter;
    Rect textPaddingDip_;
    bool wordWrap_ = false, endEllipsis_ = false;
};

}  // namespace DuiLib
