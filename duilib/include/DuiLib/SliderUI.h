#pragma once
// A progress bar with a thumb that the user moves.
//
// Attributes beside those of Progress:
//   step: number, 1                         of an arrow key or a wheel notch
//   thumbsize: w,h, 20,20
//   thumbimage, thumbhotimage, thumbpushedimage, thumbdisabledimage: image attribute, none
// While it is dragged it sends "movevaluechanged" for each new value; "valuechanged" when the thumb is released, or a
// click on the bar, a wheel notch or a key (arrows, Page Up/Down: 10 steps or a tenth of the range, Home, End) moved
// it. SetValue sends nothing, and during a drag only takes effect on the value that is drawn after it. In
// right-to-left languages the low end is on the right. keyboard is true by default.
// Thread: UI thread.
#include "DuiLib/ProgressUI.h"

namespace DuiLib {

class DUILIB_API CSliderUI : public CProgressUI {
  public:
    const wchar_t* GetClass() const override { return L"Slider"; }
    AttributeResult ApplyAttribute(std::wstring_view name, std::wstring_view value) override;
    AccessibleInfo GetAccessibleInfo() const override;
    bool SetAccessibleValue(const std::wstring& value) override;
    void DoEvent(const TEventUI& event) override;

  protected:
    bool FocusableByDefault() const override { return true; }
    void PaintContent(Canvas& canvas, const Rect& dirtyPx) override;

  private:
    Rect ThumbRectPx() const;
    int ValueAt(int xPx) const;
    void MoveTo(int value, const wchar_t* notification);

    int step_ = 1;
    Size thumbSizeDip_{20, 20};
    std::wstring thumbImage_, thumbHotImage_, thumbPushedImage_, thumbDisabledImage_;
    int grabOffsetPx_ = 0;
};

}  // namespace DuiLib
