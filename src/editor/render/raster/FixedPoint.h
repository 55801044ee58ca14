#pragma once

#include <algorithm>
#include <cstdint>

namespace framora::raster {

/// The arithmetic of the fast kernels, one number at a time: what the plain twins are written with.

/// a * b / 32768, to the nearest; halves go up.
inline std::int16_t mulFixed(std::int16_t a, std::int16_t b) {
    return std::int16_t((std::int32_t(a) * b + (1 << 14)) >> 15);
}

/// 0...mixOne to 0...32767, so that it scales with mulFixed().
inline std::int16_t toFactor(std::int16_t mix) {
    return std::int16_t(mix + (mix >> 8));
}

inline std::int16_t addSaturated(std::int16_t a, std::int16_t b) {
    return std::int16_t(std::clamp(std::int32_t(a) + b, -32768, 32767));
}

} // namespace framora::raster
