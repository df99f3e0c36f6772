// The vertical and the horizontal layout.
#include <algorithm>

#include "DuiLib/Layouts.h"
#include "layout/ControlLimits.h"
#include "layout/LayoutArithmetic.h"
#include "layout/LookAttributes.h"

namespace DuiLib {
namespace {

// What stands below each other is nearer than what stands beside each other.
constexpr int kLargestStackGapDip = 8;

bool Fills(const LengthDip& length) {
    return length.kind == LengthDip::Kind::kFill;
}

}  // namespace

// --- columns

std::vector<LineItem> CContainerUI::ColumnItems(Size availablePx) const {
    std::vector<LineItem> items;
    for (const auto& child : Children()) {
        if (!TakesRoom(*child)) {
            continue;
        }
        const Rect padding = PaddingPx(*child);
        const Limits limits = LimitsPx(*child, Dpi());
        LineItem item{.wantedPx = 0,
                      .fill = Fills(child->GetHeight()),
                      .minPx = limits.minPx.cy,
                      .maxPx = limits.maxPx.cy,
                      .beforePx = padding.top,
                      .afterPx = padding.bottom};
        item.wantedPx =
            child->EstimateSize({std::max(0, availablePx.cx - padding.left - padding.right), availablePx.cy}).cy;
        if (ScrollsVertically()) {
            item.minPx = std::max(item.minPx, item.wantedPx);
        }
        items.push_back(item);
    }
    return items;
}

void CContainerUI::ArrangeColumn(const Rect& insidePx, int gapPx) {
    const std::vector<LineItem> items = ColumnItems({insidePx.Width(), insidePx.Height()});
    const std::vector<LineSpan> spans = ShareLine(items, insidePx.Height(), gapPx);
    std::size_t index = 0;
    for (const auto& child : Children()) {
        if (!TakesRoom(*child)) {
            continue;
        }
        const LineSpan& span = spans[index];
        const int top = insidePx.top + span.startPx;
        // The cell holds the padding too, which RectInCell takes off again.
        const LineItem& item = items[index++];
        Rect px =
            RectInCell(*child, {insidePx.left, top - item.beforePx, insidePx.right, top + span.sizePx + item.afterPx});
        px.bottom = px.top + span.sizePx;
        PlaceChild(*child, px);
    }
}

// --- vertical

Size CVerticalLayoutUI::MeasureChildren(Size availablePx) {
    // The base gives the width of the widest child.
    return {CContainerUI::MeasureChildren(availablePx).cx,
            LineLength(ColumnItems(availablePx), ToPx(GetChildPadding()))};
}

void CVerticalLayoutUI::ArrangeChildren(const Rect& insidePx) {
    ArrangeColumn(insidePx, ToPx(GetChildPadding()));
}

// --- horizontal

struct HorizontalLayoutAttributes {
    static bool Stack(CHorizontalLayoutUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool stack) {
            c.stack_ = stack;
            c.NeedUpdate();
        });
    }

    static constexpr AttributeEntry<CHorizontalLayoutUI> kTable[] = {
        {L"valign", ApplyVAlign<CHorizontalLayoutUI, &CHorizontalLayoutUI::valign_>}, {L"stack", Stack}};
};

AttributeResult CHorizontalLayoutUI::ApplyAttribute(std::wstring_view name, std::wstring_view value) {
    const AttributeResult result = ApplyFromTable(HorizontalLayoutAttributes::kTable, *this, name, value);
    return result == AttributeResult::kUnknown ? CContainerUI::ApplyAttribute(name, value) : result;
}

std::vector<LineItem> CHorizontalLayoutUI::Items(Size availablePx) const {
    std::vector<LineItem> items;
    // What fixed widths and paddings leave to the children whose width follows their content, the first ones first.
    long long rest = availablePx.cx;
    for (const auto& child : Children()) {
        if (!TakesRoom(*child)) {
            continue;
        }
        const Rect padding = PaddingPx(*child);
        const Limits limits = LimitsPx(*child, Dpi());
        const LengthDip width = child->GetWidth();
        items.push_back({.wantedPx = ToPx(width.value),
                         .fill = Fills(width),
                         .minPx = limits.minPx.cx,
                         .maxPx = limits.maxPx.cx,
                         .beforePx = padding.left,
                         .afterPx = padding.right});
        rest -= static_cast<long long>(padding.left) + padding.right;
        if (width.kind == LengthDip::Kind::kFixed) {
            rest -= Limit(ToPx(width.value), limits.minPx.cx, limits.maxPx.cx);
        }
    }
    if (!items.empty()) {
        rest -= static_cast<long long>(ToPx(GetChildPadding())) * static_cast<long long>(items.size() - 1);
    }
    std::size_t index = 0;
    for (const auto& child : Children()) {
        if (!TakesRoom(*child)) {
            continue;
        }
        LineItem& item = items[index++];
        if (child->GetWidth().kind != LengthDip::Kind::kFixed) {
            const int room = static_cast<int>(std::clamp<long long>(rest, 0, kUnlimitedPx));
            item.wantedPx = child->EstimateSize({room, availablePx.cy}).cx;
            if (ScrollsHorizontally()) {
                item.minPx = std::max(item.minPx, item.wantedPx);
            }
            if (!item.fill) {
                rest -= item.wantedPx;
            }
        }
    }
    return items;
}

bool CHorizontalLayoutUI::IsStacked(int widthPx) const {
    if (!stack_) {
        return false;
    }
    long long length = 0;
    int count = 0;
    for (const auto& child : Children()) {
        if (TakesRoom(*child)) {
            const Rect padding = PaddingPx(*child);
            length += padding.left + padding.right + child->EstimateSize({kUnlimitedPx, kUnlimitedPx}).cx;
            ++count;
        }
    }
    return count > 1 && length + static_cast<long long>(ToPx(GetChildPadding())) * (count - 1) > widthPx;
}

int CHorizontalLayoutUI::StackGapPx() const {
    return ToPx(std::min(GetChildPadding(), kLargestStackGapDip));
}

Size CHorizontalLayoutUI::MeasureChildren(Size availablePx) {
    if (IsStacked(availablePx.cx)) {
        return {CContainerUI::MeasureChildren(availablePx).cx, LineLength(ColumnItems(availablePx), StackGapPx())};
    }
    const int gap = ToPx(GetChildPadding());
    const std::vector<LineItem> items = Items(availablePx);
    const std::vector<LineSpan> spans = ShareLine(items, availablePx.cx, gap);
    // Heights come last: that of wrapped text follows from the width that it gets.
    int height = 0;
    std::size_t index = 0;
    for (const auto& child : Children()) {
        if (TakesRoom(*child)) {
            const Rect padding = PaddingPx(*child);
            const Size room{spans[index++].sizePx, std::max(0, availablePx.cy - padding.top - padding.bottom)};
            height = std::max(height, child->EstimateSize(room).cy + padding.top + padding.bottom);
        }
    }
    return {LineLength(items, gap), height};
}

void CHorizontalLayoutUI::ArrangeChildren(const Rect& insidePx) {
    if (IsStacked(insidePx.Width())) {
        ArrangeColumn(insidePx, StackGapPx());
        return;
    }
    const std::vector<LineItem> items = Items({insidePx.Width(), insidePx.Height()});
    const std::vector<LineSpan> spans = ShareLine(items, insidePx.Width(), ToPx(GetChildPadding()));
    std::size_t index = 0;
    for (const auto& child : Children()) {
        if (!TakesRoom(*child)) {
            continue;
        }
        const LineSpan& span = spans[index++];
        const Rect padding = PaddingPx(*child);
        const Limits limits = LimitsPx(*child, Dpi());
        const int room = std::max(0, insidePx.Height() - padding.top - padding.bottom);
        const int height = Fills(child->GetHeight()) ? Limit(room, limits.minPx.cy, limits.maxPx.cy)
                                                     : child->EstimateSize({span.sizePx, room}).cy;
        const int rest = std::max(0, room - height);
        const int top = insidePx.top + padding.top +
                        (valign_ == VAlign::kCenter   ? rest / 2
                         : valign_ == VAlign::kBottom ? rest
                                                      : 0);
        const int left = insidePx.left + span.startPx;
        PlaceChild(*child, {left, top, left + span.sizePx, top + height});
    }
}

}  // namespace DuiLib
