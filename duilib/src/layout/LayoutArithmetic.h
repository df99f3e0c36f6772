#pragma once
// The arithmetic of layouts: room shared out along a line, cells of a tile, the thumb of a scroll bar, and the scale at
// which a window fits its screen. Pure logic.
//
// All in pixels. Numbers may be anything: sums are kept within ±kUnlimitedPx, so that no layout file can overflow them.
#include <span>
#include <vector>

#include "DuiLib/Geometry.h"

namespace DuiLib {

// Stands for "no limit", and for the room of content that may be scrolled.
inline constexpr int kUnlimitedPx = 1 << 24;

// One child along the line that a vertical or horizontal layout fills.
struct LineItem {
    int wantedPx = 0;   // size of a fixed or auto child
    bool fill = false;  // shares what the others leave
    int minPx = 0;
    int maxPx = kUnlimitedPx;  // stronger than the minimum
    int beforePx = 0;          // padding
    int afterPx = 0;
};

struct LineSpan {
    int startPx = 0;
    int sizePx = 0;
    bool operator==(const LineSpan&) const = default;
};

// Within the limits; the maximum is stronger.
int Limit(int valuePx, int minPx, int maxPx);

// The length of all items as they would like to be (fill: what they want), with their padding and the gaps between.
int LineLength(std::span<const LineItem> items, int gapPx);

// Places the items one after the other from 0. Fill items share the rest equally, to the pixel; what one of them may
// not take (maximum) or must have beyond its share (minimum) goes to or comes from the others. What does not fit sticks
// out.
std::vector<LineSpan> ShareLine(std::span<const LineItem> items, int roomPx, int gapPx);

// How many cells fit into a row; at least 1. `fixedColumns` counts when it is not 0.
int TileColumns(int roomPx, int cellPx, int gapPx, int fixedColumns);
int TileRows(int count, int columns);
// Length of `count` cells with the gaps between them.
int TileLength(int count, int cellPx, int gapPx);
// The cell of an index, from 0,0.
Rect TileCell(int index, int columns, Size cellPx, int columnGapPx, int rowGapPx);

// A scroll bar's thumb, as start and length within a track. `contentPx` is longer than `pagePx`.
LineSpan ThumbSpan(int trackPx, int contentPx, int pagePx, int scrollPx, int minThumbPx);
// The scroll position that puts the thumb's start there, within the range.
int ScrollAtThumb(int thumbStartPx, int trackPx, int contentPx, int pagePx, int minThumbPx);
// The nearest scroll position at which [startPx, startPx + sizePx) of the content is seen; its start where it is larger
// than the page.
int ScrollToSee(int scrollPx, int pagePx, int startPx, int sizePx);

// The scale of a window of that size on a screen with that room: the screen's own, or the largest smaller multiple of
// 12 at which the window fits; 72 where none does, and nothing below it is tried.
int FittingDpi(Size sizeDip, Size roomPx, int screenDpi);

}  // namespace DuiLib
