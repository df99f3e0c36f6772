#include "paint/DirtyRegion.h"

#include <cstddef>
#include <limits>
#include <utility>

namespace DuiLib {
namespace {

long long Area(const Rect& r) {
    return static_cast<long long>(r.Width()) * r.Height();
}

// Pixels that are painted for nothing when the two are painted as one.
long long Waste(const Rect& a, const Rect& b) {
    return Area(a.Union(b)) - Area(a) - Area(b) + Area(a.Intersect(b));
}

}  // namespace

void DirtyRegion::Add(Rect px) {
    if (px.IsEmpty()) {
        return;
    }
    // A union may reach further rectangles, so it is looked at again until nothing joins it.
    for (;;) {
        std::size_t best = rects_.size();
        long long bestWaste = std::numeric_limits<long long>::max();
        for (std::size_t i = 0; i < rects_.size(); ++i) {
            const long long waste = Waste(rects_[i], px);
            const bool joins = !rects_[i].Intersect(px).IsEmpty() || waste * 4 <= Area(px) + Area(rects_[i]);
            if ((joins || rects_.size() >= kMaxRects) && waste < bestWaste) {
                best = i;
                bestWaste = waste;
            }
        }
        if (best == rects_.size()) {
            break;
        }
        px = px.Union(rects_[best]);
        rects_.erase(rects_.begin() + static_cast<std::ptrdiff_t>(best));
    }
    rects_.push_back(px);
}

std::vector<Rect> DirtyRegion::Take() {
    return std::exchange(rects_, {});
}

}  // namespace DuiLib
