#include "screencapture/Geometry.h"

namespace framora {

std::vector<Rect> subtracted(const std::vector<Rect>& from, const Rect& cut) {
    std::vector<Rect> rest;
    for (const Rect& r : from) {
        const Rect hole = r.intersected(cut);
        if (hole.empty()) {
            if (!r.empty())
                rest.push_back(r);
            continue;
        }
        const Rect parts[] = {
            {r.x, r.y, r.width, hole.y - r.y},
            {r.x, hole.bottom(), r.width, r.bottom() - hole.bottom()},
            {r.x, hole.y, hole.x - r.x, hole.height},
            {hole.right(), hole.y, r.right() - hole.right(), hole.height},
        };
        for (const Rect& part : parts)
            if (!part.empty())
                rest.push_back(part);
    }
    return rest;
}

long squaredDistance(const Rect& r, Point p) {
    const long dx = std::max({r.x - p.x, p.x - (r.right() - 1), 0});
    const long dy = std::max({r.y - p.y, p.y - (r.bottom() - 1), 0});
    return dx * dx + dy * dy;
}

Rect boundingBox(const std::vector<Rect>& rects) {
    Rect box;
    for (const Rect& r : rects)
        box = box.united(r);
    return box;
}

} // namespace framora
