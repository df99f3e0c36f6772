#pragma once
// Points, sizes and rectangles of the library, in whatever unit the name of the variable says (…Px or …Dip).
//
// Why not the system's: layout arithmetic is pure logic and is built and tested without Windows headers. Rectangles
// hold left and top, and end before right and bottom. Thread: plain values.
#include <algorithm>

namespace DuiLib {

struct Point {
    int x = 0;
    int y = 0;
    bool operator==(const Point&) const = default;
};

struct Size {
    int cx = 0;
    int cy = 0;
    bool operator==(const Size&) const = default;
};

struct Rect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    bool IsEmpty() const { return right <= left || bottom <= top; }
    bool Contains(Point p) const { return p.x >= left && p.x < right && p.y >= top && p.y < bottom; }
    // Empty (all zero) where the two do not meet.
    Rect Intersect(const Rect& o) const {
        const Rect r{std::max(left, o.left), std::max(top, o.top), std::min(right, o.right),
                     std::min(bottom, o.bottom)};
        return r.IsEmpty() ? Rect{} : r;
    }
    // The smallest rectangle around both; an empty one adds nothing.
    Rect Union(const Rect& o) const {
        if (IsEmpty()) {
            return o;
        }
        if (o.IsEmpty()) {
            return *this;
        }
        return {std::min(left, o.left), std::min(top, o.top), std::max(right, o.right), std::max(bottom, o.bottom)};
    }
    // Made smaller by a margin on each side; never turned inside out.
    Rect Deflate(const Rect& m) const {
        Rect r{left + m.left, top + m.top, right - m.right, bottom - m.bottom};
        r.right = std::max(r.right, r.left);
        r.bottom = std::max(r.bottom, r.top);
        return r;
    }
    Rect Offset(int dx, int dy) const { return {left + dx, top + dy, right + dx, bottom + dy}; }
    bool operator==(const Rect&) const = default;
};

// Layout units to pixels and back, rounded half away from zero as the system's MulDiv does.
constexpr int ScaleBy(int value, int numerator, int denominator) {
    const long long product = static_cast<long long>(value) * numerator;
    const long long half = denominator / 2;
    return static_cast<int>((product >= 0 ? product + half : product - half) / denominator);
}
constexpr int DipToPx(int dip, int dpi) {
    return ScaleBy(dip, dpi, 96);
}
constexpr int PxToDip(int px, int dpi) {
    return ScaleBy(px, 96, dpi);
}

}  // namespace DuiLib
