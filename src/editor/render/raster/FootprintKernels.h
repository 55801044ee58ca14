#pragma once

#include "editor/render/raster/FootprintTaps.h"
#include "editor/render/raster/SourceBox.h"

#include <cstddef>
#include <cstdint>

namespace framora::raster {

/// Reading a picture that a projective map makes smaller. Each function has a plain twin in `plain`, which
/// gives the same bytes.

/// A row of output pixels on its way to a picture: pixel i lies at
/// ((x + i stepX) / (w + i stepW), (y + i stepY) / (w + i stepW)).
struct ProjectiveRow {
    float x;
    float y;
    float w;
    float stepX;
    float stepY;
    float stepW;
};

/// The same with what its pixels extend over.
struct FootprintRow {
    ProjectiveRow place; ///< To the picture's pixels, counted from the middle of one of them.
    float downX;         ///< What x, y and w grow by from row to row.
    float downY;
    float downW;
    float share; ///< Of the square of a pixel's extent that the widths answer for.
    int most;    ///< The largest index of a width.
    int phases;  ///< Steps of a place between two pixels.
};

/// Where one output pixel lies, in steps, and over how much.
struct Footprint {
    std::int32_t column;
    std::int32_t row;
    std::int32_t across; ///< Indices of widths.
    std::int32_t down;
    bool operator==(const Footprint&) const = default;
};

/// The footprints of a row, with room for a vector behind the last one.
struct FootprintPlaces {
    static constexpr std::size_t most = 64;
    alignas(64) std::int32_t columns[most + 16];
    alignas(64) std::int32_t rows[most + 16];
    alignas(64) std::int32_t across[most + 16];
    alignas(64) std::int32_t down[most + 16];

    Footprint at(std::size_t index) const {
        return {columns[index], rows[index], across[index], down[index]};
    }
};

/// Places beyond `farthest` pixels are there.
inline constexpr float farthestPlace = 1 << 20;

/// The footprints [first, end) of a row; `end` is FootprintPlaces::most at most. Others may be written as
/// well.
void projectFootprints(const FootprintRow& row, std::size_t first, std::size_t end, FootprintPlaces& out);

/// Some readings along a line instead of one.
struct FootprintLine {
    int count = 1;
    std::int32_t stepX = 0; ///< From one to the next, in steps like a footprint's place.
    std::int32_t stepY = 0;

    /// Readings as far apart on both sides of a footprint.
    Footprint reading(const Footprint& middle, int index) const {
        const int twice = 2 * index - (count - 1);
        return {middle.column + twice * stepX / 2, middle.row + twice * stepY / 2, middle.across,
                middle.down};
    }
    /// What each of them weighs, in 32768ths.
    std::int16_t weight() const { return std::int16_t(count == 1 ? 32767 : (32768 + count / 2) / count); }
};

/// The colours of the `count` footprints from `first` on, 0...mixOne, valid pixels. Places are in steps of
/// FootprintTaps::phases. Everything that they read lies in the box, and as many pixels as a vector holds are
/// readable behind its last one.
void readFootprints(const SourceBox& box, const FootprintPlaces& places, std::size_t first,
                    const FootprintLine& line, std::size_t count, MixPixel* out);
/// Readable pixels that it wants behind the box.
inline constexpr int footprintSlack = 8;

namespace plain {
void projectFootprints(const FootprintRow& row, std::size_t first, std::size_t end, FootprintPlaces& out);
void readFootprints(const SourceBox& box, const FootprintPlaces& places, std::size_t first,
                    const FootprintLine& line, std::size_t count, MixPixel* out);
} // namespace plain

} // namespace framora::raster
