#pragma once

#include "screencapture/Geometry.h"
#include "screencapture/PixelRatio.h"

#include <vector>

namespace framora {

class XConnection;

/// A monitor in root coordinates: in pixels of the frame buffer, whatever an output makes of them.
struct Monitor {
    Rect area;
    double ratio = 1; ///< Device pixels a point.
};

/// The monitors, the primary one first, clipped to the root window. The whole root window where the server
/// does not tell monitors apart; none when every output is off or the screen has no area.
std::vector<Monitor> monitorsOf(const XConnection& connection, const MonitorScales& scales);

/// The ratio of the monitor at that place, or of the nearest one.
double ratioAt(const std::vector<Monitor>& monitors, Point at);

} // namespace framora
