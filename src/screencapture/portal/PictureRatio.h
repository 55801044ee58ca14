#pragma once

#include "screencapture/wayland/Output.h"

#include <span>

namespace framora {

/// Device pixels a point of a picture whose place on the desktop is not told; 0 where that cannot be known.
/// With one scale on all outputs it is that one. Otherwise a picture of exactly one output's size has that
/// output's, and any other the largest, at which compositors take what lies on several.
double ratioOfPicture(int width, int height, std::span<const Output> outputs);

} // namespace framora
