#pragma once
// A progress bar with a thumb that the user moves. Its text is not drawn, it names it.
//
// Attributes beside those of Progress:
//   step: number, 1                         of an arrow key or a wheel notch
//   showvalue: true | false, false          the value as a number, beside the bar's high end
//   resetvalue: number, none                the value that a double click brings back
//   thumbsize: w,h, 20,20
//   thumbimage, thumbhotimage, thumbpushedimage, thumbdisabledimage: image attribute, none
//       a state without an image shows thumbimage; without any, the thumb is a disc of the fore colour
// A press beside the thumb moves it there and begins a drag; one on the number does nothing. While it is dragged it
// sends "movevaluechanged" for each new value, and "valuechanged" when it is released after it moved. A wheel notch or
// a key (arrows, Page Up/Down: 10 steps, or a tenth of the range where that is less, Home, End) sends "valuechanged"
// when it changed the value. SetValue sends nothing; during a drag it does nothing, the hand wins. In right-to-left
// languages the low end is on the right. keyboard is true by default. Thread: UI thread.
#include <optional>

#include "DuiLib/ProgressUI.h"

namespace DuiLib {

class DUILIB_API CSliderUI : public CProgressUI {
  public:
    const wchar_t* GetClass() const override { return L"Slider"; }
    AttributeResult ApplyAttribute(std::wstring_view name, std::wstring_view value) override;
    AccessibleInfo GetAccessibleInfo() const override;
    bool SetAccessibleValue(const std::wstring& value) override;
    void DoEvent(const TEventUI& event) override;
    void SetValue(int value) override;
    void SetEnabled(bool enabled) override;
    // Where the thumb moves: all of the control but its number.
    Rect GetTrackPos() const;

  protected:
    bool FocusableByDefault() const override { return true; }
    Size MeasureContent(Size availablePx) override;
    void PaintContent(Canvas& canvas, const Rect& dirtyPx) override;

  private:
    friend struct SliderAttributes;
    Rect NumberRectPx() const;
    int NumberWidthPx() const;
    Rect ThumbRectPx() const;
    int ValueAt(int xPx) const;
    // Does nothing, and is false, when the value stays as it is.
    bool MoveTo(int value, const wchar_t* notification);
    bool HandleKey(const TEventUI& event);
    void BeginDrag(Point mousePx);
    void Reset();
    void EndDrag();
    bool IsDragged() const { return (GetState() & kStateCaptured) != 0; }
    const std::wstring& CurrentThumbImage() const;

    int step_ = 1;
    bool showValue_ = false;
    std::optional<int> resetValue_;
    Size thumbSizeDip_{20, 20};
    std::wstring thumbImage_, thumbHotImage_, thumbPushedImage_, thumbDisabledImage_;
    int grabOffsetPx_ = 0;  // from the thumb's centre to where it was taken hold of
    bool movedInDrag_ = false;
    int wheelRest_ = 0;  // of fine wheels: what does not yet make a notch
};

}  // namespace DuiLib
