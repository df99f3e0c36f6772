#pragma once
// A push button: text, images and colours per state.
//
// Attributes beside those of Label:
//   normalimage, hotimage, pushedimage, focusedimage, disabledimage: image attribute, none
//       a state without an image shows the normal one, pushed the hot one
//   hotbkcolor, pushedbkcolor, disabledbkcolor: colour, none   a state without a colour shows bkcolor
//   hottextcolor, pushedtextcolor: colour, textcolor           likewise
// Sends "buttondown" when it goes down, "click" when it is released inside or pressed by Space or Enter, "mouseenter"
// and "mouseleave". While the left button is held after a press inside, the state has the captured bit; the pushed
// bit follows the pointer in and out. keyboard is true by default, align is center.
// Thread: UI thread.
#include <optional>
#include <string>

#include "DuiLib/LabelUI.h"

namespace DuiLib {

class DUILIB_API CButtonUI : public CLabelUI {
  public:
    CButtonUI();
    const wchar_t* GetClass() const override { return L"Button"; }
    AttributeResult ApplyAttribute(std::wstring_view name, std::wstring_view value) override;
    AccessibleInfo GetAccessibleInfo() const override;
    void DoDefaultAction() override { Activate(); }
    void DoEvent(const TEventUI& event) override;
    void SetEnabled(bool enabled) override;

    // Does what a click does; nothing when it, or an ancestor, is disabled.
    virtual void Activate();

    // A button that a program draws as a switch, by exchanging its images: from the first call on it is a check box to
    // screen readers. Nothing changes on the screen.
    void SetChecked(bool checked);
    std::optional<bool> IsChecked() const { return checked_; }

    const std::wstring& GetNormalImage() const { return normalImage_; }
    void SetNormalImage(const std::wstring& imageAttribute);
    const std::wstring& GetHotImage() const { return hotImage_; }
    void SetHotImage(const std::wstring& imageAttribute);
    void SetPushedImage(const std::wstring& imageAttribute);
    void SetDisabledImage(const std::wstring& imageAttribute);

  protected:
    bool FocusableByDefault() const override { return true; }
    void PaintContent(Canvas& canvas, const Rect& dirtyPx) override;
    Color CurrentBkColor() const override;
    Color CurrentTextColor() const override;
    // The image of the present state; empty for none.
    virtual const std::wstring& CurrentImage() const;
    virtual void PaintImages(Canvas& canvas);
    // Sets an image and repaints where it is another one.
    void ChangeImage(std::wstring& image, const std::wstring& imageAttribute);

  private:
    friend struct ButtonAttributes;
    void FollowPointer(Point mousePx);
    void ButtonUp(Point mousePx);
    bool HandleKey(const TEventUI& event);

    std::wstring normalImage_, hotImage_, pushedImage_, focusedImage_, disabledImage_;
    Color hotBkColor_, pushedBkColor_, disabledBkColor_, hotTextColor_, pushedTextColor_;
    std::optional<bool> checked_;
    bool entered_ = false;  // "mouseenter" was sent, "mouseleave" not yet
};

}  // namespace DuiLib
