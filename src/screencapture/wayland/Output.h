#pragma once

#include "screencapture/Geometry.h"

#include <string>

struct wl_output;

namespace framora {

/// One screen of a Wayland session, as the user looks at it.
struct Output {
    wl_output* handle = nullptr; ///< the connection's
    std::string name;            ///< the compositor's, as "DP-1"; may be empty
    Rect logical;                ///< its place in the layout, in the compositor's logical pixels
    int pixelWidth = 0;          ///< device pixels, already turned
    int pixelHeight = 0;
    int transform = 0; ///< wl_output.transform: how the compositor turns its picture to the panel
    double scale = 1;  ///< device pixels a logical pixel, fractions included
};

} // namespace framora
