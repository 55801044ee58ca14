#pragma once

#include "screencapture/Geometry.h"

namespace framora {

/// Where the size label stands: outside the selection beside the corner in use when there is room, inside it
/// otherwise. It stays within `screen` and at least `gap` away from `corner` whenever the screen leaves room
/// for that (twice the label and the gap in one direction).
Rect placeLabel(const Rect& selection, Point corner, int labelWidth, int labelHeight, int gap,
                const Rect& screen);

} // namespace framora
