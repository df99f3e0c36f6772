#include "layout/LayoutArithmetic.h"

#include <algorithm>

namespace DuiLib {
namespace {

constexpr int kLeastFittingDpi = 72;
constexpr int kDpiStep = 12;

int Bounded(long long value) {
    return static_cast<int>(std::clamp<long long>(value, -kUnlimitedPx, kUnlimitedPx));
}

// value × numerator ÷ denominator, rounded to nearest; 0 for a denominator of 0 or less.
int Scaled(int value, int numerator, int denominator) {
    if (denominator <= 0) {
        return 0;
    }
    const long long product = static_cast<long long>(value) * numerator;
    return Bounded((product + denominator / 2) / denominator);
}

// How far the content can be scrolled.
int ScrollRange(int contentPx, int pagePx) {
    return std::max(0, Bounded(static_cast<long long>(contentPx) - pagePx));
}

}  // namespace

int Limit(int valuePx, int minPx, int maxPx) {
    return std::max(0, std::min(std::max(valuePx, minPx), maxPx));
}

int LineLength(std::span<const LineItem> items, int gapPx) {
    long long length = 0;
    for (const LineItem& item : items) {
        length += static_cast<long long>(item.beforePx) + Limit(item.wantedPx, item.minPx, item.maxPx) + item.afterPx;
    }
    if (!items.empty()) {
        length += static_cast<long long>(gapPx) * static_cast<long long>(items.size() - 1);
    }
    return std::max(0, Bounded(length));
}

std::vector<LineSpan> ShareLine(std::span<const LineItem> items, int roomPx, int gapPx) {
    std::vector<LineSpan> spans(items.size());
    std::vector<std::size_t> open;  // fill items whose size is not settled
    long long rest = roomPx;
    if (!items.empty()) {
        rest -= static_cast<long long>(gapPx) * static_cast<long long>(items.size() - 1);
    }
    for (std::size_t i = 0; i < items.size(); ++i) {
        const LineItem& item = items[i];
        rest -= static_cast<long long>(item.beforePx) + item.afterPx;
        if (item.fill) {
            open.push_back(i);
        } else {
            spans[i].sizePx = Limit(item.wantedPx, item.minPx, item.maxPx);
            rest -= spans[i].sizePx;
        }
    }
    // Settle the items whose limits keep them from the equal share. In one round either only the minima or only the
    // maxima are settled, whichever weigh more, because settling the ones moves the share towards the others.
    while (!open.empty()) {
        const int share = Bounded(std::max(0LL, rest) / static_cast<long long>(open.size()));
        long long above = 0, below = 0;
        for (const std::size_t i : open) {
            const int size = Limit(share, items[i].minPx, items[i].maxPx);
            (size > share ? above : below) += size > share ? size - share : share - size;
        }
        if (above == 0 && below == 0) {
            break;
        }
        const bool settleMinima = above >= below;
        std::erase_if(open, [&](std::size_t i) {
            const int size = Limit(share, items[i].minPx, items[i].maxPx);
            if (settleMinima ? size <= share : size >= share) {
                return false;
            }
            spans[i].sizePx = size;
            rest -= size;
            return true;
        });
    }
    for (std::size_t i = 0; i < open.size(); ++i) {
        // The first items take the pixels that the division leaves over.
        const long long left = static_cast<long long>(open.size() - i);
        const int size = Bounded((std::max(0LL, rest) + left - 1) / left);
        spans[open[i]].sizePx = Limit(size, items[open[i]].minPx, items[open[i]].maxPx);
        rest -= spans[open[i]].sizePx;
    }
    long long at = 0;
    for (std::size_t i = 0; i < items.size(); ++i) {
        at += items[i].beforePx;
        spans[i].startPx = Bounded(at);
        at += static_cast<long long>(spans[i].sizePx) + items[i].afterPx + gapPx;
    }
    return spans;
}

int TileColumns(int roomPx, int cellPx, int gapPx, int fixedColumns) {
    if (fixedColumns > 0) {
        return fixedColumns;
    }
    const long long pitch = static_cast<long long>(cellPx) + gapPx;
    if (pitch <= 0) {
        return 1;
    }
    return std::max(1, Bounded((static_cast<long long>(roomPx) + gapPx) / pitch));
}

int TileRows(int count, int columns) {
    return columns <= 0 || count <= 0 ? 0 : (count - 1) / columns + 1;
}

int TileLength(int count, int cellPx, int gapPx) {
    return count <= 0 ? 0 : Bounded(static_cast<long long>(count) * cellPx + static_cast<long long>(count - 1) * gapPx);
}

Rect TileCell(int index, int columns, Size cellPx, int columnGapPx, int rowGapPx) {
    const int column = index % std::max(1, columns);
    const int row = index / std::max(1, columns);
    const int left = Bounded(static_cast<long long>(column) * (static_cast<long long>(cellPx.cx) + columnGapPx));
    const int top = Bounded(static_cast<long long>(row) * (static_cast<long long>(cellPx.cy) + rowGapPx));
    return {left, top, Bounded(static_cast<long long>(left) + cellPx.cx),
            Bounded(static_cast<long long>(top) + cellPx.cy)};
}

LineSpan ThumbSpan(int trackPx, int contentPx, int pagePx, int scrollPx, int minThumbPx) {
    const int track = std::max(0, trackPx);
    const int size = std::clamp(std::max(minThumbPx, Scaled(track, pagePx, contentPx)), 0, track);
    const int range = ScrollRange(contentPx, pagePx);
    return {Scaled(track - size, std::clamp(scrollPx, 0, range), range), size};
}

int ScrollAtThumb(int thumbStartPx, int trackPx, int contentPx, int pagePx, int minThumbPx) {
    const int way = std::max(0, trackPx) - ThumbSpan(trackPx, contentPx, pagePx, 0, minThumbPx).sizePx;
    const int range = ScrollRange(contentPx, pagePx);
    return Scaled(range, std::clamp(thumbStartPx, 0, std::max(0, way)), way);
}

int ScrollToSee(int scrollPx, int pagePx, int startPx, int sizePx) {
    if (startPx < scrollPx || sizePx >= pagePx) {
        return startPx;
    }
    const long long end = static_cast<long long>(startPx) + sizePx;
    return end > static_cast<long long>(scrollPx) + pagePx ? Bounded(end - pagePx) : scrollPx;
}

int FittingDpi(Size sizeDip, Size roomPx, int screenDpi) {
    const auto fits = [&](int dpi) {
        return DipToPx(sizeDip.cx, dpi) <= roomPx.cx && DipToPx(sizeDip.cy, dpi) <= roomPx.cy;
    };
    int dpi = screenDpi;
    while (dpi > kLeastFittingDpi && !fits(dpi)) {
        dpi = (dpi - 1) / kDpiStep * kDpiStep;
    }
    return dpi;
}

}  // namespace DuiLib
