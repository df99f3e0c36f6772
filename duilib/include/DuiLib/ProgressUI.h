#pragma once
// A bar that is filled in proportion to a value.
//
// Attributes beside those of Label:
//   min, max: number, 0 and 100
//   value: number, 0                       kept as it is given; only the drawing is limited to the range
//   barheight: number, 0                   thickness of the bar, centred; 0: the whole height
//   barcolor, forecolor: colour, none      the whole bar and its filled part, with rounded ends
//   foreimage: image attribute, none       instead of forecolor: as large as the bar, seen as far as it is filled
// In right-to-left languages it is filled from the right.
// Thread: UI thread.
#include "DuiLib/LabelUI.h"

namespace DuiLib {

class DUILIB_API CProgressUI : public CLabelUI {
  public:
    const wchar_t* GetClass() const override { return L"Progress"; }
    AttributeResult ApplyAttribute(std::wstring_view name, std::wstring_view value) override;
    AccessibleInfo GetAccessibleInfo() const override;

    int GetMinValue() const { return min_; }
    int GetMaxValue() const { return max_; }
    int GetValue() const { return value_; }
    virtual void SetValue(int value);

  protected:
    Size MeasureContent(Size availablePx) override;
    void PaintContent(Canvas& canvas, const Rect& dirtyPx) override;
    // The bar within a rectangle of the control.
    Rect BarRectPx(const Rect& px) const;
    // The bar, filled up to that distance from its low end.
    void PaintBar(Canvas& canvas, const Rect& bar, int filledPx);
    // The value within the range; the range's low end when the range is empty.
    int LimitedValue() const;
    // How far from the low end of `lengthPx` pixels the value lies.
    int ValueToPx(int lengthPx) const;
    int BarHeightDip() const { return barHeightDip_; }
    const Color& GetForeColor() const { return foreColor_; }

  private:
    friend struct ProgressAttributes;

    int min_ = 0, max_ = 100, value_ = 0, barHeightDip_ = 0;
    Color barColor_, foreColor_;
    std::wstring foreImage_;
};

}  // namespace DuiLib
