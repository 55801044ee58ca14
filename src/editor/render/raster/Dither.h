#pragma once

#include "editor/render/raster/MixTile.h"

#include <array>
#include <cstdint>

namespace framora::raster {

/// An ordered pattern of 8 x 8 pixels, under half a step of 255 up and down. Added to a colour that changes
/// slowly, it turns bands into a fine grid; whole steps, and alpha, stay what they are.
class Dither {
public:
    static constexpr int period = 8;

    /// The pattern of row y from column x on: at least `period` entries.
    static const MixPixel* row(int x, int y) {
        return table[std::size_t(y & (period - 1))].data() + (x & (period - 1));
    }

private:
    using Table = std::array<std::array<MixPixel, std::size_t(2 * period)>, std::size_t(period)>;

    /// The threshold of a pixel, 0...63: the bits of x ^ y and of y in turn, the lowest ones first.
    static constexpr int threshold(int x, int y) {
        int value = 0;
        for (int bit = 0; bit < 3; ++bit)
            value = value << 2 | ((x ^ y) >> bit & 1) << 1 | (y >> bit & 1);
        return value;
    }
    static constexpr Table makeTable() {
        Table made{};
        for (int y = 0; y < period; ++y)
            for (int x = 0; x < 2 * period; ++x) {
                const auto offset = std::int16_t(2 * threshold(x & (period - 1), y) - 63);
                made[std::size_t(y)][std::size_t(x)] = {{offset, offset, offset, 0}};
            }
        return made;
    }
    static const Table table;
};

inline constexpr Dither::Table Dither::table = Dither::makeTable();

} // namespace framora::raster
