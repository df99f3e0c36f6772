#pragma once
// The part of a window that must be painted anew, as a few rectangles that do not grow together needlessly.
//
// Two controls that change at once, such as the one that the pointer leaves and the one that it enters, must not cost
// a repaint of everything between them. Pure logic. Thread: UI thread.
#include <vector>

#include "DuiLib/Geometry.h"

namespace DuiLib {

class DirtyRegion {
  public:
    static constexpr std::size_t kMaxRects = 8;

    // An empty rectangle adds nothing. Rectangles that overlap, or cost little more together, become one.
    void Add(Rect px);
    bool IsEmpty() const { return rects_.empty(); }
    const std::vector<Rect>& Rects() const { return rects_; }
    // Hands the rectangles over and is empty afterwards.
    std::vector<Rect> Take();

  private:
    std::vector<Rect> rects_;
};

}  // namespace DuiLib
