#pragma once

#include "editor/render/raster/PixelView.h"

#include <cstdint>
#include <vector>

namespace framora::raster {

/// A resolution in dots per inch as PNG stores it, in pixels per metre: 144 gives 5669.
std::uint32_t pixelsPerMetre(double dotsPerInch);

/// The picture as a whole PNG file, 8 bits a channel: RGB when every pixel is opaque, otherwise RGBA with the
/// colours divided by their alpha. `pixelsPerMetre` is written for both axes; 0 writes no resolution. The
/// same pixels give the same bytes whatever the number of threads. Empty when the view is empty or memory is
/// short.
std::vector<std::uint8_t> encodePng(PixelView picture, std::uint32_t pixelsPerMetre = 0);

} // namespace framora::raster
