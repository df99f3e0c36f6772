#pragma once
// A bar that is filled in proportion to a value.
//
// Attributes beside those of Label:
//   min, max: number, 0 and 100
//   value: number, 0                       kept as it is given; only the drawing is limited to the range
//   barheight: number, 0                   thickness of the bar, centred; 0: the whole height
//   barcolor, forecolor: #AARRGGBB, none   the whole bar and its filled part, with rounded ends
//   foreimage: image attribute, none       instead of forecolor
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
    void PaintContent(Canvas& canvas, const Rect& dirtyPx) override;
    Rect BarRectPx() const;
    void SetValueQuietly(int value) { value_ = value; }

  private:
    int min_ = 0, max_ = 100, value_ = 0, barHeightDip_ = 0;
    DWORD barColor_ = 0, foreColor_ = 0;
    std::wstring foreImage_;
};

}  // namespace DuiLib
