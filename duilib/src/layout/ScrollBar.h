#pragma once
// The scroll bar of a container, one per direction: knows its place and its thumb, and is painted by its container.
//
// It lies over the content, so that its coming and going arranges nothing anew; the track is not drawn. Positions count
// from the start of the content: from the right for a horizontal bar in right-to-left languages.
// Thread: UI thread.
#include <optional>

#include "DuiLib/Geometry.h"
#include "layout/LayoutArithmetic.h"

namespace DuiLib {

class ScrollBar {
  public:
    explicit ScrollBar(bool vertical) : vertical_(vertical) {}

    // What the container's arrangement says. `fromRight`: see above.
    void Arrange(const Rect& trackPx, int contentPx, int pagePx, int scrollPx, int minThumbPx, bool fromRight);
    bool IsShown() const { return contentPx_ > pagePx_; }
    int MaxScroll() const { return IsShown() ? contentPx_ - pagePx_ : 0; }
    bool Contains(Point px) const { return IsShown() && track_.Contains(px); }
    const Rect& TrackPx() const { return track_; }
    Rect ThumbPx() const;

    // The left button went down on the bar: the new scroll position. On the thumb a drag begins, and it is the old one.
    int Press(Point px);
    bool IsDragging() const { return grabPx_.has_value(); }
    // The scroll position while the thumb is dragged to the pointer.
    int DragTo(Point px) const;
    void EndDrag() { grabPx_.reset(); }

  private:
    // Distance from the track's start.
    int Along(Point px) const;
    int TrackLength() const { return vertical_ ? track_.Height() : track_.Width(); }
    LineSpan Thumb() const { return ThumbSpan(TrackLength(), contentPx_, pagePx_, scrollPx_, minThumbPx_); }

    const bool vertical_;
    bool fromRight_ = false;
    Rect track_;
    int contentPx_ = 0, pagePx_ = 0, scrollPx_ = 0, minThumbPx_ = 0;
    std::optional<int> grabPx_;  // where the thumb is held, from its start
};

}  // namespace DuiLib
