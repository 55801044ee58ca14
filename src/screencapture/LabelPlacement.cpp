#include "screencapture/LabelPlacement.h"

namespace framora {

namespace {

Rect keptWithin(Rect r, const Rect& screen) {
    r.x = std::max(screen.x, std::min(r.x, screen.right() - r.width));
    r.y = std::max(screen.y, std::min(r.y, screen.bottom() - r.height));
    return r;
}

} // namespace

Rect placeLabel(const Rect& selection, Point corner, int labelWidth, int labelHeight, int gap,
                const Rect& screen) {
    const bool atRight = corner.x * 2 >= selection.x + selection.right();
    const bool atBottom = corner.y * 2 >= selection.y + selection.bottom();
    // The label's edge flush with the selection's, so that label and selection read as one shape.
    const int flushX = atRight ? corner.x - labelWidth : corner.x;
    const int flushY = atBottom ? corner.y - labelHeight : corner.y;
    const int below = corner.y + gap;
    const int above = corner.y - gap - labelHeight;
    const int beside = corner.x + gap;
    const int before = corner.x - gap - labelWidth;
    const Rect candidates[] = {
        {flushX, atBottom ? below : above, labelWidth, labelHeight},
        {atRight ? beside : before, flushY, labelWidth, labelHeight},
        {atRight ? before : beside, atBottom ? above : below, labelWidth, labelHeight},
        {flushX, atBottom ? above : below, labelWidth, labelHeight},
        {atRight ? before : beside, flushY, labelWidth, labelHeight},
    };
    const Rect guarded{corner.x - gap, corner.y - gap, 2 * gap, 2 * gap};
    for (const Rect& candidate : candidates) {
        const Rect kept = keptWithin(candidate, screen);
        // A flush label may slide along its edge; it may not slide over the corner or the crosshair on it.
        if (screen.contains(kept) && !kept.intersects(guarded))
            return kept;
    }
    return keptWithin(candidates[0], screen);
}

} // namespace framora
