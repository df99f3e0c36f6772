#pragma once
// A control's smallest and largest size in pixels, for the layouts. Thread: UI thread.
#include <climits>

#include "DuiLib/ControlUI.h"
#include "layout/LayoutArithmetic.h"

namespace DuiLib {

inline constexpr int kNoLimitDip = INT_MAX;

struct Limits {
    Size minPx;
    Size maxPx;
};

inline Limits LimitsPx(const CControlUI& control, int dpi) {
    const auto maximum = [dpi](int dip) { return dip == kNoLimitDip ? kUnlimitedPx : DipToPx(dip, dpi); };
    const int maxHeight = control.GetMaxHeight();
    return {{DipToPx(control.GetMinWidth(), dpi), DipToPx(control.GetMinHeight(), dpi)},
            {maximum(control.GetMaxWidth()), control.GrowsNow() && maxHeight > 0 ? kUnlimitedPx : maximum(maxHeight)}};
}

}  // namespace DuiLib
