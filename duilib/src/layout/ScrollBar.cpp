#include "layout/ScrollBar.h"

#include <algorithm>

namespace DuiLib {

void ScrollBar::Arrange(const Rect& trackPx, int contentPx, int pagePx, int scrollPx, int minThumbPx, bool fromRight) {
    track_ = trackPx;
    contentPx_ = contentPx;
    pagePx_ = pagePx;
    scrollPx_ = scrollPx;
    minThumbPx_ = minThumbPx;
    fromRight_ = fromRight;
    if (!IsShown()) {
        EndDrag();
    }
}

int ScrollBar::Along(Point px) const {
    if (vertical_) {
        return px.y - track_.top;
    }
    return fromRight_ ? track_.right - 1 - px.x : px.x - track_.left;
}

Rect ScrollBar::ThumbPx() const {
    const LineSpan thumb = Thumb();
    if (vertical_) {
        return {track_.left, track_.top + thumb.startPx, track_.right, track_.top + thumb.startPx + thumb.sizePx};
    }
    const int left = fromRight_ ? track_.right - thumb.startPx - thumb.sizePx : track_.left + thumb.startPx;
    return {left, track_.top, left + thumb.sizePx, track_.bottom};
}

int ScrollBar::Press(Point px) {
    const LineSpan thumb = Thumb();
    const int along = Along(px);
    if (along < thumb.startPx) {
        return std::max(0, scrollPx_ - pagePx_);
    }
    if (along >= thumb.startPx + thumb.sizePx) {
        return std::min(MaxScroll(), scrollPx_ + pagePx_);
    }
    grabPx_ = along - thumb.startPx;
    return scrollPx_;
}

int ScrollBar::DragTo(Point px) const {
    return ScrollAtThumb(Along(px) - grabPx_.value_or(0), TrackLength(), contentPx_, pagePx_, minThumbPx_);
}

}  // namespace DuiLib
