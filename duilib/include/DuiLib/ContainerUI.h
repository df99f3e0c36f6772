#pragma once
// A control that holds others: in the base every child fills the container's inside.
//
// Attributes beside those of Control:
//   inset: l,t,r,b, 0,0,0,0            room between the border and the children; mirrored as their places are
//   childpadding: number, 0            room between neighbours (vertical, horizontal and tile layouts)
//   vscrollbar, hscrollbar: true | false, false   scrolls where the content is larger than the container
//   mirror: true | false, true         false: not mirrored in right-to-left languages
//   accposition: text, ""              what is said beside an option's name, as "{group}, {n} of {count}": {group}
//                                      is this container's accname
// A scroll bar appears only when it is needed, lies over the right (left in right-to-left languages) or lower edge
// within the container, can be dragged, clicked beside its thumb, and follows wheel, arrows, Page Up/Down, Home and
// End. The focused control is scrolled into view. A container that scrolls and holds nothing that can have the focus
// can have it itself. Children are painted within the container's rectangle, later ones over earlier ones. Thread: UI
// thread. Owns its children.
#include <memory>
#include <vector>

#include "DuiLib/ControlUI.h"

namespace DuiLib {

class ScrollBar;
struct LineItem;

class DUILIB_API CContainerUI : public CControlUI {
  public:
    CContainerUI();
    ~CContainerUI() override;
    const wchar_t* GetClass() const override { return L"Container"; }
    AttributeResult ApplyAttribute(std::wstring_view name, std::wstring_view value) override;

    // Text that tells a screen reader an entry's place among those of its group; empty: none is told.
    const std::wstring& GetAccPosition() const { return accPosition_; }
    int GetCount() const { return static_cast<int>(children_.size()); }
    CControlUI* GetItemAt(int index) const;          // null when out of range
    int GetItemIndex(const CControlUI* item) const;  // -1 when it is not a child
    virtual bool Add(std::unique_ptr<CControlUI> item);
    virtual bool AddAt(std::unique_ptr<CControlUI> item, int index);  // false when out of range or null
    virtual bool RemoveAt(int index);
    bool Remove(CControlUI* item);
    void RemoveAll();

    void SetInset(const Rect& dip);
    const Rect& GetInset() const { return insetDip_; }
    int GetChildPadding() const { return childPaddingDip_; }

    // Scroll position in pixels from the start of the content; kept within the range.
    Point GetScrollPos() const { return scrollPx_; }
    void SetScrollPos(Point px);
    // Scrolls, here and in every ancestor, so that the descendant's rectangle is seen.
    void EnsureVisible(const CControlUI& descendant);

    void SetManager(CPaintManagerUI* manager, CContainerUI* parent) override;
    void SetPos(const Rect& px) override;
    void DoEvent(const TEventUI& event) override;
    CControlUI* FindControlAt(Point px) override;
    CControlUI* FindControlByName(std::wstring_view name) override;
    bool Visit(const std::function<bool(CControlUI&)>& visit) override;
    AccessibleInfo GetAccessibleInfo() const override;

  protected:
    Size MeasureContent(Size availablePx) override;
    void PaintContent(Canvas& canvas, const Rect& dirtyPx) override;
    bool FocusableByDefault() const override;
    bool ShowsBkImage() const override;
    // Places the children that take room within `insidePx` (already moved by the scroll position; as wide and high as
    // the content where that is larger), each by PlaceChild.
    virtual void ArrangeChildren(const Rect& insidePx);
    // Gives a child its rectangle, mirrored in right-to-left languages: callers place left to right.
    void PlaceChild(CControlUI& child, const Rect& px);
    // The size of all children as they would like to be, in pixels, without the inset.
    virtual Size MeasureChildren(Size availablePx);
    const std::vector<std::unique_ptr<CControlUI>>& Children() const { return children_; }
    // A child that takes part in arranging: visible, not floating, its maximum not 0.
    static bool TakesRoom(const CControlUI& child) {
        return child.IsVisible() && !child.IsFloat() && !child.IsCollapsed();
    }
    // A child's padding in pixels.
    Rect PaddingPx(const CControlUI& child) const;
    // Where a child stands in a cell: fills it or has its own size, aligned, at the top; within its padding.
    Rect RectInCell(CControlUI& child, const Rect& cellPx) const;
    static int AlignedLeft(const CControlUI& child, const Rect& roomPx, int widthPx);
    // The children one below the other: what each needs along the column, and their arrangement.
    std::vector<LineItem> ColumnItems(Size availablePx) const;
    void ArrangeColumn(const Rect& insidePx, int gapPx);
    bool ScrollsVertically() const { return vertical_ != nullptr; }
    bool ScrollsHorizontally() const { return horizontal_ != nullptr; }

  private:
    friend struct ContainerAttributes;  // the attribute table

    Rect InsetPx() const;
    void Arrange();
    void ArrangeFloating();
    void ArrangeScrollBars(const Rect& insidePx);
    Rect ThumbsPx() const;  // around the thumbs that are shown
    static void PaintChild(CControlUI& child, Canvas& canvas, const Rect& dirtyPx);
    void PaintScrollBars(Canvas& canvas) const;
    bool ScrollsNow() const;
    // These say whether anything moved, or whether the event was the scroll bars'.
    bool ScrollTo(Point px);
    bool ScrollByKey(WORD key);
    bool ScrollByEvent(const TEventUI& event);
    bool ScrollByWheel(const TEventUI& event);
    int NotchPx(bool sideways) const;  // as the user has set the wheel
    bool EndDrag(bool releaseCapture);
    ScrollBar* ScrollBarAt(Point px) const;
    void Discard(std::unique_ptr<CControlUI> item);

    std::vector<std::unique_ptr<CControlUI>> children_;
    Rect insetDip_;
    int childPaddingDip_ = 0;
    bool mirror_ = true;
    std::wstring accPosition_;
    int wheelRest_ = 0;  // what the wheel's last step was too small for, in parts of a pixel: WHEEL_DELTA make one
    Point scrollPx_;
    Rect contentRectPx_;                                // where the whole content lies, moved by the scroll position
    std::unique_ptr<ScrollBar> vertical_, horizontal_;  // null: that direction does not scroll
};

}  // namespace DuiLib
