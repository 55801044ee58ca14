#pragma once

#include <cstdint>
#include <cstdlib>

namespace framora::raster {

/// Of the three neighbours the one that is nearest to left + up - upLeft; left before up before upLeft.
inline std::uint8_t paethPredictor(int left, int up, int upLeft) {
    const int estimate = left + up - upLeft;
    const int toLeft = std::abs(estimate - left);
    const int toUp = std::abs(estimate - up);
    const int toUpLeft = std::abs(estimate - upLeft);
    if (toLeft <= toUp && toLeft <= toUpLeft)
        return std::uint8_t(left);
    return std::uint8_t(toUp <= toUpLeft ? up : upLeft);
}

} // namespace framora::raster
