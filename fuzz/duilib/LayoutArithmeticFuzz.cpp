// The arithmetic of layouts with any numbers, and the dirty region with any rectangles.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "DirtyRegion.h"
#include "LayoutArithmetic.h"
#include "fuzz/support/Input.h"
#include "fuzz/support/Require.h"

using namespace DuiLib;

namespace {

// Mostly numbers of layouts, now and then any number at all.
int TakeNumber(Input& in) {
    const auto kind = in.Any<std::uint8_t>();
    return kind == 255  ? in.Any<std::int32_t>()
           : kind > 200 ? static_cast<int>(in.Within(-kUnlimitedPx, kUnlimitedPx))
                        : static_cast<int>(in.Within(-20, 235));
}

bool InRange(int number) {
    return number >= -kUnlimitedPx && number <= kUnlimitedPx;
}

void CheckLine(Input& in) {
    std::vector<LineItem> items(static_cast<std::size_t>(in.Within(0, 12)));
    bool plain = true;  // nothing that could stick out or overlap
    for (LineItem& item : items) {
        item.fill = in.Flag();
        item.wantedPx = TakeNumber(in);
        if (in.Flag()) {
            item.minPx = TakeNumber(in);
            item.maxPx = TakeNumber(in);
        }
        item.beforePx = TakeNumber(in);
        item.afterPx = TakeNumber(in);
        for (const int number : {item.wantedPx, item.minPx, item.maxPx, item.beforePx, item.afterPx}) {
            plain = plain && number >= 0 && number <= kUnlimitedPx;
        }
    }
    const int room = TakeNumber(in), gap = TakeNumber(in);
    plain = plain && gap >= 0 && InRange(gap) && InRange(room);
    const int length = LineLength(items, gap);
    REQUIRE(length >= 0 && length <= kUnlimitedPx);
    const std::vector<LineSpan> spans = ShareLine(items, room, gap);
    REQUIRE(spans.size() == items.size());
    long long end = 0, used = 0;
    bool fills = false, limited = false, bounded = false;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const LineItem& item = items[i];
        REQUIRE(InRange(spans[i].startPx));
        REQUIRE(spans[i].sizePx == Limit(item.fill ? spans[i].sizePx : item.wantedPx, item.minPx, item.maxPx));
        if (plain) {
            bounded = bounded || spans[i].startPx == kUnlimitedPx;
            REQUIRE(bounded || spans[i].startPx == end + item.beforePx);
            end = static_cast<long long>(spans[i].startPx) + spans[i].sizePx + item.afterPx + gap;
            used += static_cast<long long>(item.beforePx) + spans[i].sizePx + item.afterPx + (i > 0 ? gap : 0);
        }
        fills = fills || item.fill;
        limited =
            limited || (item.fill && (spans[i].sizePx == std::max(0, item.minPx) || spans[i].sizePx == item.maxPx));
    }
    // Children that fill leave no pixel over, unless their limits or the room say otherwise.
    if (plain && fills && !limited) {
        REQUIRE(used == std::max(room, 0) || used > room);
    }
}

void CheckTiles(Input& in) {
    const int room = TakeNumber(in), cell = TakeNumber(in), gap = TakeNumber(in), fixed = TakeNumber(in);
    const int columns = TileColumns(room, cell, gap, fixed);
    REQUIRE(columns >= 1);
    const int count = TakeNumber(in);
    const int rows = TileRows(count, columns);
    REQUIRE(rows >= 0 && static_cast<long long>(rows) * columns >= count);
    REQUIRE(InRange(TileLength(count, cell, gap)));
    const Size size{TakeNumber(in), TakeNumber(in)};
    const Rect rect = TileCell(std::max(0, TakeNumber(in)), columns, size, gap, TakeNumber(in));
    REQUIRE(InRange(rect.left) && InRange(rect.top) && InRange(rect.right) && InRange(rect.bottom));
}

void CheckScrolling(Input& in) {
    const int track = TakeNumber(in), content = TakeNumber(in), page = TakeNumber(in), scroll = TakeNumber(in);
    const int least = TakeNumber(in), start = TakeNumber(in);
    const LineSpan thumb = ThumbSpan(track, content, page, scroll, least);
    REQUIRE(thumb.startPx >= 0 && InRange(thumb.startPx));
    REQUIRE(thumb.sizePx <= std::max(0, track));
    const bool sound = track >= 0 && page >= 0 && content > page && least >= 0;
    if (sound) {
        REQUIRE(thumb.sizePx >= 0);
        REQUIRE(static_cast<long long>(thumb.startPx) + thumb.sizePx <= track);
    }
    const int at = ScrollAtThumb(start, track, content, page, least);
    REQUIRE(!sound || (at >= 0 && at <= content - page));
    const int to = ScrollToSee(scroll, page, start, least);
    if (page > 0 && least >= 0 && least < page && InRange(start) && InRange(scroll) && InRange(page)) {
        REQUIRE(to <= start && static_cast<long long>(to) + page >= static_cast<long long>(start) + least);
    }
}

void CheckDirty(Input& in) {
    DirtyRegion region;
    std::vector<Rect> added;
    while (!in.Empty() && added.size() < 40) {
        const Rect rect{TakeNumber(in), TakeNumber(in), TakeNumber(in), TakeNumber(in)};
        if (InRange(rect.left) && InRange(rect.top) && InRange(rect.right) && InRange(rect.bottom)) {
            region.Add(rect);
            added.push_back(rect);
        }
        REQUIRE(region.Rects().size() <= DirtyRegion::kMaxRects);
    }
    const std::vector<Rect> rects = region.Take();
    REQUIRE(region.IsEmpty());
    for (const Rect& rect : added) {
        REQUIRE(rect.IsEmpty() ||
                std::any_of(rects.begin(), rects.end(), [&](const Rect& r) { return r.Union(rect) == r; }));
    }
    for (std::size_t i = 0; i < rects.size(); ++i) {
        REQUIRE(!rects[i].IsEmpty());
        for (std::size_t other = 0; other < i; ++other) {
            REQUIRE(rects[i].Intersect(rects[other]).IsEmpty());
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input in(data, size);
    switch (in.Any<std::uint8_t>() % 4) {
        case 0:
            CheckLine(in);
            break;
        case 1:
            CheckTiles(in);
            break;
        case 2:
            CheckScrolling(in);
            break;
        default:
            CheckDirty(in);
    }
    return 0;
}
