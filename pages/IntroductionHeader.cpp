#include "pages/IntroductionHeader.h"

#include <algorithm>

namespace {

constexpr int kPageWidth = 800;
constexpr int kTitleMargin = 56;
constexpr int kTextMargin = 4;
constexpr int kGap = 40;  // behind each tab header
constexpr int kGaps = 2 * kGap;
constexpr int kTabsLimit = 446;
constexpr int kLeastLeft = 41;   // a smaller distance than this
constexpr int kNarrowLeft = 40;  // becomes this one
constexpr int kRowWidth = 1040 - kNarrowLeft;
constexpr int kTabs = 3;

}  // namespace

IntroductionHeaderLayout LayOutIntroductionHeader(const IntroductionHeaderText& text, bool largeText) {
    const int first = text.firstWidth + kTextMargin;
    const int second = text.secondWidth + kTextMargin;
    const int third = text.thirdWidth + kTextMargin;
    const int total = first + second + third + kGaps;

    IntroductionHeaderLayout layout;
    layout.titleWidth = text.titleWidth;
    layout.groupLeftPadding = (kPageWidth - total) / 2 - (text.titleWidth + kTitleMargin);
    if (layout.groupLeftPadding < kLeastLeft) {
        layout.groupLeftPadding = kNarrowLeft;
    }

    int widest = std::max({first, second, third});
    if (largeText && total > kTabsLimit) {
        layout.groupLeftPadding = kNarrowLeft;
        if (total + kGap > kRowWidth) {
            widest = kRowWidth / kTabs - kGap;
        }
    } else if (total > kTabsLimit) {
        widest -= total - kTabsLimit;
    }
    layout.firstWidth = std::min(widest, first);
    layout.secondWidth = std::min(widest, second);
    layout.thirdWidth = std::min(widest, third);
    return layout;
}
