// How a container scrolls: its bars, wheel and keys, and bringing a descendant into view.
#include <algorithm>

#include "DuiLib/ContainerUI.h"
#include "DuiLib/PaintManagerUI.h"
#include "DuiLib/Theme.h"
#include "layout/ScrollBar.h"
#include "markup/AttributeTable.h"
#include "paint/Canvas.h"

namespace DuiLib {
namespace {

// In units. The bar is wider than its thumb, so that it is easy to catch.
constexpr int kBarDip = 12;
constexpr int kThumbDip = 6;
constexpr int kMinThumbDip = 24;
// What one arrow key scrolls by, and one notch of the wheel where the user has not chosen another number of lines.
constexpr int kNotchDip = 48;
constexpr int kUsualLines = 3;
constexpr UINT kMostLines = 100;  // that can be chosen
// The thumb has the text's colour, thinned out; more of it while it is dragged, all of it in a contrast theme.
constexpr DWORD kThumbAlpha = 0x66000000;
constexpr DWORD kDraggedThumbAlpha = 0xA0000000;
constexpr DWORD kOpaque = 0xFF000000;

std::unique_ptr<ScrollBar> MakeBar(bool wanted, bool vertical) {
    return wanted ? std::make_unique<ScrollBar>(vertical) : nullptr;
}

}  // namespace

struct ContainerAttributes {
    static bool Inset(CContainerUI& c, std::wstring_view value) {
        return ApplyParsed(ParseRect(value), [&](const Rect& dip) { c.SetInset(dip); });
    }
    static bool ChildPadding(CContainerUI& c, std::wstring_view value) {
        return ApplyNumber(value, 0, [&](int dip) {
            c.childPaddingDip_ = dip;
            c.NeedUpdate();
        });
    }
    static bool VScrollBar(CContainerUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool wanted) {
            c.vertical_ = MakeBar(wanted, true);
            c.Invalidate();
            c.NeedUpdate();
        });
    }
    static bool HScrollBar(CContainerUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool wanted) {
            c.horizontal_ = MakeBar(wanted, false);
            c.Invalidate();
            c.NeedUpdate();
        });
    }
    static bool AccPosition(CContainerUI& c, std::wstring_view value) {
        c.accPosition_ = c.ResolveText(value);
        return true;
    }
    static bool Mirror(CContainerUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool mirror) {
            c.mirror_ = mirror;
            c.NeedUpdate();
        });
    }

    static constexpr AttributeEntry<CContainerUI> kTable[] = {
        {L"inset", Inset},   {L"childpadding", ChildPadding}, {L"vscrollbar", VScrollBar}, {L"hscrollbar", HScrollBar},
        {L"mirror", Mirror}, {L"accposition", AccPosition},
    };
};

AttributeResult CContainerUI::ApplyAttribute(std::wstring_view name, std::wstring_view value) {
    const AttributeResult result = ApplyFromTable(ContainerAttributes::kTable, *this, name, value);
    return result == AttributeResult::kUnknown ? CControlUI::ApplyAttribute(name, value) : result;
}

// --- position

void CContainerUI::SetScrollPos(Point px) {
    ScrollTo(px);
}

bool CContainerUI::ScrollTo(Point px) {
    const Point wanted{std::clamp(px.x, 0, horizontal_ ? horizontal_->MaxScroll() : 0),
                       std::clamp(px.y, 0, vertical_ ? vertical_->MaxScroll() : 0)};
    if (wanted == scrollPx_) {
        return false;
    }
    scrollPx_ = wanted;
    Arrange();
    Invalidate();
    if (GetManager()) {
        GetManager()->NeedUpdate();  // another control may lie under the pointer now
    }
    SendNotify(NotifyType::kScroll);
    return true;
}

bool CContainerUI::ScrollsNow() const {
    return (vertical_ && vertical_->IsShown()) || (horizontal_ && horizontal_->IsShown());
}

void CContainerUI::EnsureVisible(const CControlUI& descendant) {
    if (GetManager()) {
        GetManager()->UpdateLayout();
    }
    if (vertical_ || horizontal_) {
        const Rect& wanted = descendant.GetPos();
        const Rect inside = GetPos().Deflate(InsetPx());
        const int start =
            mirror_ && IsRightToLeft() ? contentRectPx_.right - wanted.right : wanted.left - contentRectPx_.left;
        ScrollTo({ScrollToSee(scrollPx_.x, inside.Width(), start, wanted.Width()),
                  ScrollToSee(scrollPx_.y, inside.Height(), wanted.top - contentRectPx_.top, wanted.Height())});
    }
    if (GetParent()) {
        GetParent()->EnsureVisible(descendant);
    }
}

bool CContainerUI::FocusableByDefault() const {
    if (!ScrollsNow()) {
        return false;
    }
    for (const auto& child : children_) {
        const bool none = child->Visit([](CControlUI& control) { return !control.CanHaveFocus(); });
        if (!none) {
            return false;
        }
    }
    return true;
}

// --- bars

void CContainerUI::ArrangeScrollBars(const Rect& insidePx) {
    const Rect earlier = ThumbsPx();
    const Rect& pos = GetPos();
    const int thickness = ToPx(kBarDip);
    const bool rightToLeft = mirror_ && IsRightToLeft();
    const bool both = vertical_ && horizontal_ && contentRectPx_.Height() > insidePx.Height() &&
                      contentRectPx_.Width() > insidePx.Width();
    const int corner = both ? thickness : 0;
    if (vertical_) {
        const int left = rightToLeft ? pos.left : pos.right - thickness;
        vertical_->Arrange({.trackPx = {left, pos.top, left + thickness, pos.bottom - corner},
                            .contentPx = contentRectPx_.Height(),
                            .pagePx = insidePx.Height(),
                            .scrollPx = scrollPx_.y,
                            .minThumbPx = ToPx(kMinThumbDip),
                            .fromRight = false});
    }
    if (horizontal_) {
        horizontal_->Arrange({.trackPx = {pos.left + (rightToLeft ? corner : 0), pos.bottom - thickness,
                                          pos.right - (rightToLeft ? 0 : corner), pos.bottom},
                              .contentPx = contentRectPx_.Width(),
                              .pagePx = insidePx.Width(),
                              .scrollPx = scrollPx_.x,
                              .minThumbPx = ToPx(kMinThumbDip),
                              .fromRight = rightToLeft});
    }
    // Nothing else repaints a bar that comes, goes or moves while the container keeps its rectangle.
    if (const Rect now = ThumbsPx(); now != earlier && GetManager()) {
        GetManager()->Invalidate(earlier.Union(now).Intersect(pos));
    }
}

Rect CContainerUI::ThumbsPx() const {
    Rect thumbs;
    for (const ScrollBar* bar : {vertical_.get(), horizontal_.get()}) {
        if (bar && bar->IsShown()) {
            thumbs = thumbs.Union(bar->ThumbPx());
        }
    }
    return thumbs;
}

ScrollBar* CContainerUI::ScrollBarAt(Point px) const {
    for (ScrollBar* bar : {vertical_.get(), horizontal_.get()}) {
        if (bar && bar->Contains(px)) {
            return bar;
        }
    }
    return nullptr;
}

void CContainerUI::PaintChild(CControlUI& child, Canvas& canvas, const Rect& dirtyPx) {
    const Rect clip = canvas.PushClip(dirtyPx);
    child.Paint(canvas, dirtyPx);
    canvas.RestoreClip(clip);
}

void CContainerUI::PaintScrollBars(Canvas& canvas) const {
    for (const ScrollBar* bar : {vertical_.get(), horizontal_.get()}) {
        if (!bar || !bar->IsShown() || !GetManager()) {
            continue;
        }
        const int margin = (ToPx(kBarDip) - ToPx(kThumbDip)) / 2;
        const DWORD alpha = UITheme::GetInstance()->IsContrast() ? kOpaque
                            : bar->IsDragging()                  ? kDraggedThumbAlpha
                                                                 : kThumbAlpha;
        const DWORD text = Painted(GetManager()->GetWindowSpec().textColor, ColorUse::kText);
        canvas.FillRect(bar->ThumbPx().Deflate({margin, margin, margin, margin}), (text & 0x00FFFFFF) | alpha,
                        ToPx(kThumbDip) / 2);
    }
}

// --- events

void CContainerUI::DoEvent(const TEventUI& event) {
    if (!ScrollByEvent(event)) {
        CControlUI::DoEvent(event);
    }
}

bool CContainerUI::ScrollByEvent(const TEventUI& event) {
    switch (event.type) {
        case EventType::kMouseWheel:
            return ScrollByWheel(event);
        case EventType::kKeyDown:
            return ScrollByKey(event.key);
        case EventType::kButtonDown: {
            ScrollBar* bar = ScrollBarAt(event.mousePx);
            if (!bar) {
                return false;
            }
            const int position = bar->Press(event.mousePx);
            if (bar->IsDragging() && GetManager()) {
                GetManager()->SetCapture(this);
                Invalidate();
            }
            ScrollTo(bar == vertical_.get() ? Point{scrollPx_.x, position} : Point{position, scrollPx_.y});
            return true;
        }
        case EventType::kMouseMove:
            if (vertical_ && vertical_->IsDragging()) {
                ScrollTo({scrollPx_.x, vertical_->DragTo(event.mousePx)});
                return true;
            }
            if (horizontal_ && horizontal_->IsDragging()) {
                ScrollTo({horizontal_->DragTo(event.mousePx), scrollPx_.y});
                return true;
            }
            return false;
        case EventType::kButtonUp:
        case EventType::kCaptureLost:
            return EndDrag(event.type == EventType::kButtonUp);
        default:
            return false;
    }
}

bool CContainerUI::ScrollByWheel(const TEventUI& event) {
    const bool sideways = event.shift || !vertical_;
    if ((event.wheelDelta > 0) == (wheelRest_ > 0)) {
        wheelRest_ = 0;  // turned back: what is left of the other way counts no more
    }
    const int wanted = wheelRest_ - event.wheelDelta * NotchPx(sideways);
    wheelRest_ = wanted % WHEEL_DELTA;
    const int way = wanted / WHEEL_DELTA;
    const Point to{scrollPx_.x + (sideways ? way : 0), scrollPx_.y + (sideways ? 0 : way)};
    if (way != 0) {
        return ScrollTo(to);
    }
    // Too little to move by; whoever is around this container moves only where this one is at its end.
    const ScrollBar* const bar = sideways ? horizontal_.get() : vertical_.get();
    const int at = sideways ? scrollPx_.x : scrollPx_.y;
    return bar && (wheelRest_ < 0 ? at > 0 : at < bar->MaxScroll());
}

int CContainerUI::NotchPx(bool sideways) const {
    UINT lines = kUsualLines;
    SystemParametersInfoW(sideways ? SPI_GETWHEELSCROLLCHARS : SPI_GETWHEELSCROLLLINES, 0, &lines, 0);
    const Rect inside = GetPos().Deflate(InsetPx());
    const int page = sideways ? inside.Width() : inside.Height();
    // WHEEL_PAGESCROLL is the largest number there is.
    return lines > kMostLines ? page : std::min(ToPx(kNotchDip * static_cast<int>(lines) / kUsualLines), page);
}

bool CContainerUI::EndDrag(bool releaseCapture) {
    bool dragged = false;
    for (ScrollBar* bar : {vertical_.get(), horizontal_.get()}) {
        if (bar && bar->IsDragging()) {
            bar->EndDrag();
            dragged = true;
        }
    }
    if (dragged) {
        Invalidate();
        if (releaseCapture && GetManager()) {
            GetManager()->ReleaseCapture();
        }
    }
    return dragged;
}

bool CContainerUI::ScrollByKey(WORD key) {
    const int notch = ToPx(kNotchDip);
    const int forward = mirror_ && IsRightToLeft() ? VK_LEFT : VK_RIGHT;
    const int backward = mirror_ && IsRightToLeft() ? VK_RIGHT : VK_LEFT;
    const int page = vertical_ ? GetPos().Deflate(InsetPx()).Height() : 0;
    Point to = scrollPx_;
    if (key == VK_UP) {
        to.y -= notch;
    } else if (key == VK_DOWN) {
        to.y += notch;
    } else if (key == VK_PRIOR) {
        to.y -= page;
    } else if (key == VK_NEXT) {
        to.y += page;
    } else if (key == VK_HOME) {
        to = {};
    } else if (key == VK_END) {
        to.y = kUnlimitedPx;
    } else if (key == forward) {
        to.x += notch;
    } else if (key == backward) {
        to.x -= notch;
    }
    return ScrollTo(to);
}

}  // namespace DuiLib
