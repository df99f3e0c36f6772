#pragma once
// A control that holds others: in the base every child fills the container's inside.
//
// Attributes beside those of Control:
//   inset: l,t,r,b, 0,0,0,0            room between the border and the children
//   childpadding: number, 0            room between neighbours (vertical, horizontal and tile layouts)
//   vscrollbar, hscrollbar: true | false, false   scrolls where the content is larger than the container
// A scroll bar appears only when it is needed, lies over the right (left in right-to-left languages) or lower edge
// within the container, can be dragged, clicked beside its thumb, and follows wheel, Page Up/Down, Home and End. The
// focused control is scrolled into view.
// Thread: UI thread. Owns its children.
#include <memory>
#include <vector>

#include "DuiLib/ControlUI.h"

namespace DuiLib {

class ScrollBar;

class DUILIB_API CContainerUI : public CControlUI {
  public:
    CContainerUI();
    ~CContainerUI() override;
    const wchar_t* GetClass() const override { return L"Container"; }
    AttributeResult ApplyAttribute(std::wstring_view name, std::wstring_view value) override;

    int GetCount() const { return static_cast<int>(children_.size()); }
    CControlUI* GetItemAt(int index) const;         // null when out of range
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
    void Paint(Canvas& canvas, const Rect& dirtyPx) override;
    void DoEvent(const TEventUI& event) override;
    CControlUI* FindControlAt(Point px) override;
    CControlUI* FindControlByName(std::wstring_view name) override;
    bool Visit(const std::function<bool(CControlUI&)>& visit) override;

  protected:
    Size MeasureContent(Size availablePx) override;
    // Places the children within `insidePx` (already moved by the scroll position; as wide and high as the content
    // where that is larger). Mirrored for right-to-left languages afterwards by the base: place left to right.
    virtual void ArrangeChildren(const Rect& insidePx);
    // The size of all children as they would like to be, in pixels, without the inset.
    virtual Size MeasureChildren(Size availablePx);
    const std::vector<std::unique_ptr<CControlUI>>& Children() const { return children_; }
    // A child that takes part in arranging: visible, not floating.
    static bool TakesRoom(const CControlUI& child) { return child.IsVisible() && !child.IsFloat(); }

  private:
    std::vector<std::unique_ptr<CControlUI>> children_;
    Rect insetDip_;
    int childPaddingDip_ = 0;
    Point scrollPx_;
    Size contentPx_;
    std::unique_ptr<ScrollBar> vertical_, horizontal_;
};

}  // namespace DuiLib
