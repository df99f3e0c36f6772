#include "layout/ScrollBar.h"

#include <algorithm>

namespace DuiLib {

void ScrollBar::Arrange(const Place& place) {
    place_ = place;
    if (!IsShown()) {
        EndDrag();
    }
}

int ScrollBar::Along(Point px) const {
    if (vertical_) {
        return px.y - place_.trackPx.top;
    }
    return place_.fromRight ? place_.trackPx.right - 1 - px.x : px.x - place_.trackPx.left;
}

Rect ScrollBar::ThumbPx() const {
    const LineSpan thumb = Thumb();
    if (vertical_) {
        return {place_.trackPx.left, place_.trackPx.top + thumb.startPx, place_.trackPx.right,
                place_.trackPx.top + thumb.startPx + thumb.sizePx};
    }
    const int left =
        place_.fromRight ? place_.trackPx.right - thumb.startPx - thumb.sizePx : place_.trackPx.left + thumb.startPx;
    return {left, place_.trackPx.top, left + thumb.sizePx, place_.trackPx.bottom};
}

int ScrollBar::Press(Point px) {
    const LineSpan thumb = Thumb();
    const int along = Along(px);
    if (along < thumb.startPx) {
        return std::max(0, place_.scrollPx - place_.pagePx);
    }
    if (along >= thumb.startPx + thumb.sizePx) {
        return std::min(MaxScroll(), place_.scrollPx + place_.pagePx);
    }
    grabPx_ = along - thumb.startPx;
    return place_.scrollPx;
}

int ScrollBar::DragTo(Point px) const {
    return ScrollAtThumb(Along(px) - grabPx_.value_or(0), TrackLength(), place_.contentPx, place_.pagePx,
                         place_.minThumbPx);
}

}  // namespace DuiLib
