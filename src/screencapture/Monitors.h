#pragma once

#include "screencapture/Geometry.h"

#include <vector>

namespace framora {

class XConnection;

/// The monitors in root coordinates, clipped to the root window. The whole root window where the server does
/// not tell monitors apart; none when every output is off or the screen has no area.
std::vector<Rect> monitorsOf(const XConnection& connection);

} // namespace framora
