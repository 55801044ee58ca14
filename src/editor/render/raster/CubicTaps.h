#pragma once

#include <cstdint>

namespace framora::raster {

/// The weights of four pixels for a place between the inner two. The first width interpolates; the others,
/// for a picture that becomes smaller by up to a root of two, are smoother curves that pass as much of the
/// output's finest detail as a stretched cubic does, as far as four pixels can.
class CubicTaps {
public:
    /// Steps of a place between two pixels.
    static constexpr int phaseBits = 9;
    static constexpr int phases = 1 << phaseBits;
    /// The widths are the first ones of FootprintTaps: their squares reach from 1 to 2.
    static constexpr int widthCount = 9;
    /// The last width that keeps what is too fine for the output as far down as a stretched cubic.
    static constexpr int lastThorough = 4;
    /// The sum of a place's weights.
    static constexpr int one = 1 << 14;

    /// All weights: four for each width and each place of it.
    static const std::int16_t* weights();
    static const std::int16_t* weights(int width, int phase) {
        return weights() + (width * phases + phase) * 4;
    }
};

} // namespace framora::raster
