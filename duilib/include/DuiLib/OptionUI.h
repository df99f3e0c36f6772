#pragma once
// A button that stays selected: one of a group, or a switch of its own without a group.
//
// Attributes beside those of Button:
//   group: text, ""                   at most one option of a group in a window is selected; a click on the selected
//                                     one sends "click" but changes nothing
//   selected: true | false, false
//   action: true | false, false       of the entries of a group the one that does something: a click sends "click" and
//                                     selects nothing
//   selectedimage, selectedhotimage, foreimage: image attribute, none   foreimage is drawn over the others
//   selectedbkcolor, selectedtextcolor: colour, none
// Sends "selectchanged" (wParam 1 or 0) when the selection changed by whatever means, then "click" for a user's click.
// In a group Tab reaches the selected option (or the first) and the arrow keys walk to the others; with Ctrl they only
// walk, without it the option on which they come to rest is clicked, once, unless it is an action. Up and down walk to
// the row above or below where there is one.
// Thread: UI thread.
#include <memory>
#include <vector>

#include "DuiLib/ButtonUI.h"

namespace DuiLib {

class DUILIB_API COptionUI : public CButtonUI {
  public:
    const wchar_t* GetClass() const override { return L"Option"; }
    AttributeResult ApplyAttribute(std::wstring_view name, std::wstring_view value) override;
    AccessibleInfo GetAccessibleInfo() const override;
    // "Backgrounds, 3 of 15": where it stands in its group, as the container around it words it.
    std::wstring GetAccessibleDescription() const override;
    bool IsTabStop() const override;
    void DoEvent(const TEventUI& event) override;
    void Activate() override;

    const std::wstring& GetGroup() const { return group_; }
    void SetGroup(const std::wstring& group) { group_ = group; }
    bool IsSelected() const { return (GetState() & kStateSelected) != 0; }
    // Selecting one deselects the others of its group. Sends "selectchanged" for each that changed.
    void SetSelected(bool selected);
    void SetSelectedImage(const std::wstring& imageAttribute);

  protected:
    void PaintImages(Canvas& canvas) override;
    Color CurrentBkColor() const override;
    Color CurrentTextColor() const override;
    const std::wstring& CurrentImage() const override;

  private:
    friend struct OptionAttributes;
    // The options of this one's group in layout order, this one among them.
    std::vector<COptionUI*> GroupMembers() const;
    COptionUI* NeighbourFor(WORD key) const;
    // The arrow keys came here: clicked when no further key comes for a while and none is held.
    void ClickAtRest();
    void ClickNowRested();

    bool action_ = false;
    std::shared_ptr<const bool> walk_;  // lives while the click is due; queued tasks hold weak pointers to it
    std::wstring group_, selectedImage_, selectedHotImage_, foreImage_;
    Color selectedBkColor_, selectedTextColor_;
};

}  // namespace DuiLib
