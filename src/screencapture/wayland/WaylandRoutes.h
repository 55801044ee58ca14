#pragma once

#include "screencapture/Arguments.h"
#include "screencapture/CaptureRoute.h"

namespace framora {

class WaylandConnection;

/// Takes a picture in a Wayland session by the first route that this desktop offers: our own overlay over
/// frozen outputs, KWin's own choice of a window, the Screenshot portal.
CaptureResult captureOnWayland(WaylandConnection& connection, const Arguments& arguments);

/// Whether one of them asks nobody for the permission.
bool routeWithoutAsking(WaylandConnection& connection);

} // namespace framora
