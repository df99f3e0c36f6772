#include <algorithm>

#include "DuiLib/Layouts.h"
#include "layout/LayoutArithmetic.h"
#include "markup/AttributeTable.h"

namespace DuiLib {

struct TileLayoutAttributes {
    static bool Columns(CTileLayoutUI& c, std::wstring_view value) {
        return ApplyNumber(value, 0, [&](int columns) {
            c.columns_ = columns;
            c.NeedUpdate();
        });
    }
    static bool ItemSize(CTileLayoutUI& c, std::wstring_view value) {
        return ApplyParsed(ParseSize(value), [&](Size dip) {
            c.itemSizeDip_ = dip;
            c.NeedUpdate();
        });
    }
    static bool RowPadding(CTileLayoutUI& c, std::wstring_view value) {
        return ApplyNumber(value, 0, [&](int dip) {
            c.rowPaddingDip_ = dip;
            c.NeedUpdate();
        });
    }

    static constexpr AttributeEntry<CTileLayoutUI> kTable[] = {
        {L"columns", Columns}, {L"itemsize", ItemSize}, {L"rowpadding", RowPadding}};
};

AttributeResult CTileLayoutUI::ApplyAttribute(std::wstring_view name, std::wstring_view value) {
    const AttributeResult result = ApplyFromTable(TileLayoutAttributes::kTable, *this, name, value);
    return result == AttributeResult::kUnknown ? CContainerUI::ApplyAttribute(name, value) : result;
}

// The cells for a width, in pixels.
struct CTileLayoutUI::Grid {
    Size cell;
    int columnGap = 0, rowGap = 0;
    int columns = 1, rows = 0;
};

CTileLayoutUI::Grid CTileLayoutUI::GridFor(int roomPx) const {
    Grid grid;
    grid.columnGap = ToPx(GetChildPadding());
    grid.rowGap = ToPx(rowPaddingDip_ >= 0 ? rowPaddingDip_ : GetChildPadding());
    Size largest;
    int count = 0;
    bool shared = false;
    // A child's height may follow from the width of its cell, so a width that is known beforehand limits it.
    const int cellRoom = itemSizeDip_.cx > 0 ? ToPx(itemSizeDip_.cx)
                         : columns_ > 0 ? std::max(0, (roomPx - TileLength(columns_ - 1, grid.columnGap, 0)) / columns_)
                                        : roomPx;
    for (const auto& child : Children()) {
        if (!TakesRoom(*child)) {
            continue;
        }
        ++count;
        shared = shared || child->GetWidth().kind == LengthDip::Kind::kFill;
        if (itemSizeDip_.cx == 0 || itemSizeDip_.cy == 0) {
            const Rect padding = PaddingPx(*child);
            const Size wanted =
                child->EstimateSize({std::max(0, cellRoom - padding.left - padding.right), kUnlimitedPx});
            largest.cx = std::max(largest.cx, wanted.cx + padding.left + padding.right);
            largest.cy = std::max(largest.cy, wanted.cy + padding.top + padding.bottom);
        }
    }
    const bool sharesRow = columns_ > 0 && shared;
    grid.cell.cx = itemSizeDip_.cx > 0 ? ToPx(itemSizeDip_.cx) : sharesRow ? cellRoom : largest.cx;
    grid.cell.cy = itemSizeDip_.cy > 0 ? ToPx(itemSizeDip_.cy) : largest.cy;
    grid.columns = TileColumns(roomPx, grid.cell.cx, grid.columnGap, columns_);
    grid.rows = TileRows(count, grid.columns);
    return grid;
}

Size CTileLayoutUI::MeasureChildren(Size availablePx) {
    const Grid grid = GridFor(availablePx.cx);
    if (grid.rows == 0) {
        return {};
    }
    // Before the cells come to more than one row, a row is as long as its cells.
    const int count = static_cast<int>(
        std::count_if(Children().begin(), Children().end(), [](const auto& child) { return TakesRoom(*child); }));
    return {TileLength(std::min(grid.columns, count), grid.cell.cx, grid.columnGap),
            TileLength(grid.rows, grid.cell.cy, grid.rowGap)};
}

void CTileLayoutUI::ArrangeChildren(const Rect& insidePx) {
    const Grid grid = GridFor(insidePx.Width());
    int index = 0;
    for (const auto& child : Children()) {
        if (!TakesRoom(*child)) {
            continue;
        }
        const Rect cell = TileCell(index, grid.columns, grid.cell, grid.columnGap, grid.rowGap);
        PlaceChild(*child, RectInCell(*child, cell.Offset(insidePx.left, insidePx.top)));
        ++index;
    }
}

}  // namespace DuiLib
