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

    // What the container's arrangement says.
    struct Place {
        Rect trackPx;
        int contentPx = 0;  // length of the content, and of what of it is seen at a time
        int pagePx = 0;
        int scrollPx = 0;
        int minThumbPx = 0;
        bool fromRight = false;  // see above
    };
    void Arrange(const Place& place);
    bool IsShown() const { return place_.contentPx > place_.pagePx; }
    int MaxScroll() const { return IsShown() ? place_.contentPx - place_.pagePx : 0; }
    bool Contains(Point px) const { return IsShown() && place_.trackPx.Contains(px); }
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
    int TrackLength() const { return vertical_ ? place_.trackPx.Height() : place_.trackPx.Width(); }
    LineSpan Thumb() const {
        return ThumbSpan(TrackLength(), place_.contentPx, place_.pagePx, place_.scrollPx, place_.minThumbPx);
    }

    const bool vertical_;
    Place place_;
    std::optional<int> grabPx_;  // where the thumb is held, from its start
};

}  // namespace DuiLib
