#pragma once

#include <cstdint>

namespace framora::raster {

/// The bytes of two MixPixels in the order that gives each channel its pixel's alpha.
alignas(16) inline constexpr std::uint8_t alphaBytes[16] = {6,  7,  6,  7,  6,  7,  6,  7,
                                                            14, 15, 14, 15, 14, 15, 14, 15};

} // namespace framora::raster
