#pragma once

#include "editor/render/raster/PixelView.h"

namespace framora::raster {

/// Whether every pixel has an alpha of 255, looked at by this thread alone.
bool areRowsOpaque(PixelView rows);
/// The same on all threads.
bool isOpaque(PixelView picture);

} // namespace framora::raster
