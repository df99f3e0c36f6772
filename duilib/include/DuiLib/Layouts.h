#pragma once
// The four containers that arrange their children. Thread: UI thread.
#include "DuiLib/ContainerUI.h"

namespace DuiLib {

// One below the other. Fixed and auto heights first; what is left is shared equally by the children with height
// "fill", within their minima and maxima. Where the layout scrolls, a fill child is at least as high as its content.
class DUILIB_API CVerticalLayoutUI : public CContainerUI {
  public:
    const wchar_t* GetClass() const override { return L"VerticalLayout"; }

  protected:
    void ArrangeChildren(const Rect& insidePx) override;
    Size MeasureChildren(Size availablePx) override;
};

// Side by side; as CVerticalLayoutUI with the axes exchanged. Mirrored in right-to-left languages.
// Attributes beside those of Container:
//   valign: top | center | bottom, top   where a child lower than the layout stands
//   stack: true | false, false           children that do not fit side by side stand one below the other
class DUILIB_API CHorizontalLayoutUI : public CContainerUI {
  public:
    const wchar_t* GetClass() const override { return L"HorizontalLayout"; }
    AttributeResult ApplyAttribute(std::wstring_view name, std::wstring_view value) override;

  protected:
    void ArrangeChildren(const Rect& insidePx) override;
    Size MeasureChildren(Size availablePx) override;

  private:
    friend struct HorizontalLayoutAttributes;  // the attribute table

    std::vector<LineItem> Items(Size availablePx) const;
    bool IsStacked(int widthPx) const;
    int StackGapPx() const;

    VAlign valign_ = VAlign::kTop;
    bool stack_ = false;
};

// Rows of cells of one size, filled in reading order.
// Attributes beside those of Container:
//   columns: number, 0         cells in a row; 0: as many as fit
//   itemsize: w,h, 0,0         size of a cell in units; 0: that of the largest child with its padding, but with
//                              `columns` and a child of width "fill" the row is shared out
//   rowpadding: number, childpadding
class DUILIB_API CTileLayoutUI : public CContainerUI {
  public:
    const wchar_t* GetClass() const override { return L"TileLayout"; }
    AttributeResult ApplyAttribute(std::wstring_view name, std::wstring_view value) override;

  protected:
    void ArrangeChildren(const Rect& insidePx) override;
    Size MeasureChildren(Size availablePx) override;

  private:
    friend struct TileLayoutAttributes;  // the attribute table
    struct Grid;
    Grid GridFor(int roomPx) const;

    int columns_ = 0;
    Size itemSizeDip_;
    int rowPaddingDip_ = -1;
};

// Shows one child at a time; the others are not visible.
// Attribute beside those of Container:
//   selectedid: number, 0              index of the child that is shown first
class DUILIB_API CTabLayoutUI : public CContainerUI {
  public:
    const wchar_t* GetClass() const override { return L"TabLayout"; }
    AttributeResult ApplyAttribute(std::wstring_view name, std::wstring_view value) override;

    bool AddAt(std::unique_ptr<CControlUI> item, int index) override;
    bool RemoveAt(int index) override;
    int GetCurSel() const { return selected_; }  // -1 when empty
    // False when there is no such child. Sends "tabselect" when the selection changed.
    bool SelectItem(int index);
    bool SelectItem(const CControlUI* item);
    bool SelectItemByName(const std::wstring& name);

  private:
    friend struct TabLayoutAttributes;  // the attribute table

    int selected_ = -1;
    int wanted_ = 0;  // selectedid, until a child of that index has come; then -1
};

}  // namespace DuiLib
