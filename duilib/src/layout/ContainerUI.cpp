#include "DuiLib/ContainerUI.h"

#include <oleacc.h>

#include <algorithm>
#include <utility>

#include "DuiLib/PaintManagerUI.h"
#include "DuiLib/Theme.h"
#include "layout/ControlLimits.h"
#include "layout/ScrollBar.h"

namespace DuiLib {

CContainerUI::CContainerUI() = default;
CContainerUI::~CContainerUI() = default;

// --- children

CControlUI* CContainerUI::GetItemAt(int index) const {
    return index >= 0 && index < GetCount() ? children_[static_cast<std::size_t>(index)].get() : nullptr;
}

int CContainerUI::GetItemIndex(const CControlUI* item) const {
    for (int i = 0; i < GetCount(); ++i) {
        if (children_[static_cast<std::size_t>(i)].get() == item) {
            return i;
        }
    }
    return -1;
}

bool CContainerUI::Add(std::unique_ptr<CControlUI> item) {
    return AddAt(std::move(item), GetCount());
}

bool CContainerUI::AddAt(std::unique_ptr<CControlUI> item, int index) {
    if (!item || index < 0 || index > GetCount()) {
        return false;
    }
    CControlUI& added = *item;
    children_.insert(children_.begin() + index, std::move(item));
    added.SetManager(GetManager(), this);
    added.Invalidate();
    added.NeedUpdate();
    if (GetManager()) {
        GetManager()->NotifyAccessibleTree(added, EVENT_OBJECT_CREATE);
    }
    return true;
}

bool CContainerUI::RemoveAt(int index) {
    if (index < 0 || index >= GetCount()) {
        return false;
    }
    const auto at = children_.begin() + index;
    std::unique_ptr<CControlUI> item = std::move(*at);
    children_.erase(at);
    Discard(std::move(item));
    return true;
}

bool CContainerUI::Remove(CControlUI* item) {
    return RemoveAt(GetItemIndex(item));
}

void CContainerUI::RemoveAll() {
    while (RemoveAt(GetCount() - 1)) {
    }
}

void CContainerUI::Discard(std::unique_ptr<CControlUI> item) {
    item->Invalidate();
    if (GetManager()) {
        GetManager()->NotifyAccessibleTree(*item, EVENT_OBJECT_DESTROY);
    }
    item->SetManager(nullptr, nullptr);
    NeedUpdate();
    // The item may be the sender of the notification that is being handled.
    if (GetManager()) {
        GetManager()->Retire(std::move(item));
    }
}

void CContainerUI::SetManager(CPaintManagerUI* manager, CContainerUI* parent) {
    for (const auto& child : children_) {
        child->SetManager(manager, this);
    }
    CControlUI::SetManager(manager, parent);
}

void CContainerUI::SetInset(const Rect& dip) {
    if (insetDip_ != dip) {
        insetDip_ = dip;
        NeedUpdate();
    }
}

// --- measure and arrange

Rect CContainerUI::PaddingPx(const CControlUI& child) const {
    const Rect& dip = child.GetPadding();
    return {ToPx(dip.left), ToPx(dip.top), ToPx(dip.right), ToPx(dip.bottom)};
}

Rect CContainerUI::InsetPx() const {
    Rect px{ToPx(insetDip_.left), ToPx(insetDip_.top), ToPx(insetDip_.right), ToPx(insetDip_.bottom)};
    if (mirror_ && IsRightToLeft()) {
        std::swap(px.left, px.right);
    }
    return px;
}

Size CContainerUI::MeasureContent(Size availablePx) {
    const Rect inset = InsetPx();
    const Size room{std::max(0, availablePx.cx - inset.left - inset.right),
                    std::max(0, availablePx.cy - inset.top - inset.bottom)};
    const Size children = MeasureChildren(room);
    return {children.cx + inset.left + inset.right, children.cy + inset.top + inset.bottom};
}

Size CContainerUI::MeasureChildren(Size availablePx) {
    Size size;
    for (const auto& child : children_) {
        if (TakesRoom(*child)) {
            const Rect padding = PaddingPx(*child);
            const Size wanted = child->EstimateSize({std::max(0, availablePx.cx - padding.left - padding.right),
                                                     std::max(0, availablePx.cy - padding.top - padding.bottom)});
            size.cx = std::max(size.cx, wanted.cx + padding.left + padding.right);
            size.cy = std::max(size.cy, wanted.cy + padding.top + padding.bottom);
        }
    }
    return size;
}

void CContainerUI::SetPos(const Rect& px) {
    CControlUI::SetPos(px);
    Arrange();
}

void CContainerUI::Arrange() {
    const Rect inside = GetPos().Deflate(InsetPx());
    const bool rightToLeft = mirror_ && IsRightToLeft();
    Size content{inside.Width(), inside.Height()};
    if (vertical_ || horizontal_) {
        const Size wanted =
            MeasureChildren({horizontal_ ? kUnlimitedPx : content.cx, vertical_ ? kUnlimitedPx : content.cy});
        content.cx = horizontal_ ? std::max(content.cx, wanted.cx) : content.cx;
        content.cy = vertical_ ? std::max(content.cy, wanted.cy) : content.cy;
    }
    scrollPx_ = {std::clamp(scrollPx_.x, 0, content.cx - inside.Width()),
                 std::clamp(scrollPx_.y, 0, content.cy - inside.Height())};
    const int left = rightToLeft ? inside.right - content.cx + scrollPx_.x : inside.left - scrollPx_.x;
    const int top = inside.top - scrollPx_.y;
    contentRectPx_ = {left, top, left + content.cx, top + content.cy};
    ArrangeChildren(contentRectPx_);
    ArrangeFloating();
    ArrangeScrollBars(inside);
}

void CContainerUI::ArrangeChildren(const Rect& insidePx) {
    for (const auto& child : children_) {
        if (TakesRoom(*child)) {
            PlaceChild(*child, RectInCell(*child, insidePx));
        }
    }
}

Rect CContainerUI::RectInCell(CControlUI& child, const Rect& cellPx) const {
    const Rect room = cellPx.Deflate(PaddingPx(child));
    const bool fillWidth = child.GetWidth().kind == LengthDip::Kind::kFill;
    const bool fillHeight = child.GetHeight().kind == LengthDip::Kind::kFill;
    const Limits limits = LimitsPx(child, Dpi());
    const Size wanted = fillWidth && fillHeight ? Size{} : child.EstimateSize({room.Width(), room.Height()});
    const int cx = fillWidth ? Limit(room.Width(), limits.minPx.cx, limits.maxPx.cx) : wanted.cx;
    const int cy = fillHeight ? Limit(room.Height(), limits.minPx.cy, limits.maxPx.cy) : wanted.cy;
    const int left = AlignedLeft(child, room, cx);
    return {left, room.top, left + cx, room.top + cy};
}

int CContainerUI::AlignedLeft(const CControlUI& child, const Rect& roomPx, int widthPx) {
    const int rest = std::max(0, roomPx.Width() - widthPx);
    switch (child.GetAlign()) {
        case HAlign::kCenter:
            return roomPx.left + rest / 2;
        case HAlign::kRight:
            return roomPx.left + rest;
        default:
            return roomPx.left;
    }
}

void CContainerUI::PlaceChild(CControlUI& child, const Rect& px) {
    const int mirrored = contentRectPx_.left + contentRectPx_.right - px.right;
    child.SetPos(mirror_ && IsRightToLeft() ? px.Offset(mirrored - px.left, 0) : px);
}

void CContainerUI::ArrangeFloating() {
    const Rect inset = InsetPx();
    for (const auto& child : children_) {
        if (!child->IsVisible() || !child->IsFloat() || child->IsCollapsed()) {
            continue;
        }
        const Rect& dip = child->GetFloatPos();
        const Rect offset{ToPx(dip.left), ToPx(dip.top), ToPx(dip.right), ToPx(dip.bottom)};
        const Size wanted = offset.IsEmpty() ? child->EstimateSize({GetPos().Width(), GetPos().Height()}) : Size{0, 0};
        const int cx = offset.Width() > 0 ? offset.Width() : wanted.cx;
        const int cy = offset.Height() > 0 ? offset.Height() : wanted.cy;
        // Counted from the container's own corner, and scrolled with the content.
        const int top = contentRectPx_.top - inset.top + offset.top;
        const int left = mirror_ && IsRightToLeft() ? contentRectPx_.right + inset.right - offset.left - cx
                                                    : contentRectPx_.left - inset.left + offset.left;
        child->SetPos({left, top, left + cx, top + cy});
    }
}

// --- paint

void CContainerUI::PaintContent(Canvas& canvas, const Rect& dirtyPx) {
    for (const auto& child : children_) {
        if (!child->IsVisible() || child->IsCollapsed()) {
            continue;
        }
        const Rect visible = child->GetPos().Intersect(GetPos()).Intersect(dirtyPx);
        if (!visible.IsEmpty()) {
            PaintChild(*child, canvas, visible);
        }
    }
    PaintScrollBars(canvas);
}

bool CContainerUI::ShowsBkImage() const {
    // Some child may hold text.
    return children_.empty() || !UITheme::GetInstance()->IsContrast();
}

// --- search

CControlUI* CContainerUI::FindControlAt(Point px) {
    if (!IsVisible() || IsCollapsed() || !GetPos().Contains(px)) {
        return nullptr;
    }
    if (ScrollBarAt(px)) {
        return this;
    }
    for (auto child = children_.rbegin(); child != children_.rend(); ++child) {
        if (CControlUI* found = (*child)->FindControlAt(px)) {
            return found;
        }
    }
    return CControlUI::FindControlAt(px);
}

CControlUI* CContainerUI::FindControlByName(std::wstring_view name) {
    if (CControlUI* found = CControlUI::FindControlByName(name)) {
        return found;
    }
    for (const auto& child : children_) {
        if (CControlUI* found = child->FindControlByName(name)) {
            return found;
        }
    }
    return nullptr;
}

bool CContainerUI::Visit(const std::function<bool(CControlUI&)>& visit) {
    if (!visit(*this)) {
        return false;
    }
    for (const auto& child : children_) {
        if (!child->Visit(visit)) {
            return false;
        }
    }
    return true;
}

// --- accessibility

AccessibleInfo CContainerUI::GetAccessibleInfo() const {
    AccessibleInfo info = CControlUI::GetAccessibleInfo();
    if (info.role != 0) {
        info.role = ROLE_SYSTEM_GROUPING;
    }
    return info;
}

}  // namespace DuiLib
