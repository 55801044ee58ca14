#pragma once

#include <algorithm>
#include <vector>

namespace framora {

/// A place on the root window, in device pixels; y points down.
struct Point {
    int x = 0;
    int y = 0;
    bool operator==(const Point&) const = default;
};

/// A half-open box of device pixels: x...right()-1, y...bottom()-1. Empty when a side is zero or less.
struct Rect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const Rect&) const = default;

    int right() const { return x + width; }
    int bottom() const { return y + height; }
    bool empty() const { return width <= 0 || height <= 0; }
    bool contains(Point p) const { return p.x >= x && p.y >= y && p.x < right() && p.y < bottom(); }
    bool contains(const Rect& r) const {
        return r.x >= x && r.y >= y && r.right() <= right() && r.bottom() <= bottom();
    }
    bool intersects(const Rect& r) const { return !intersected(r).empty(); }
    Rect grown(int by) const { return {x - by, y - by, width + 2 * by, height + 2 * by}; }
    Rect translated(int dx, int dy) const { return {x + dx, y + dy, width, height}; }

    static Rect between(Point a, Point b) {
        return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x) - std::min(a.x, b.x),
                std::max(a.y, b.y) - std::min(a.y, b.y)};
    }
    /// The common part; an all-zero box when there is none.
    Rect intersected(const Rect& r) const {
        const Rect c{std::max(x, r.x), std::max(y, r.y), std::min(right(), r.right()) - std::max(x, r.x),
                     std::min(bottom(), r.bottom()) - std::max(y, r.y)};
        return c.empty() ? Rect{} : c;
    }
    /// The smallest box around both; an empty box adds nothing.
    Rect united(const Rect& r) const {
        if (empty())
            return r;
        if (r.empty())
            return *this;
        const int left = std::min(x, r.x);
        const int top = std::min(y, r.y);
        return {left, top, std::max(right(), r.right()) - left, std::max(bottom(), r.bottom()) - top};
    }
};

/// What remains of `from` without `cut`, as boxes that do not overlap where those of `from` do not.
std::vector<Rect> subtracted(const std::vector<Rect>& from, const Rect& cut);

/// From a place to the nearest pixel of a box; 0 inside it.
long squaredDistance(const Rect& r, Point p);

/// The smallest box around all.
Rect boundingBox(const std::vector<Rect>& rects);

} // namespace framora
