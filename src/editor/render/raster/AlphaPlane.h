#pragma once

#include "editor/render/raster/Homography.h"
#include "editor/render/raster/MixTile.h"

#include <vector>

namespace framora::raster {

/// How opaque the pixels of a block are: one number each, 0...mixOne. Beyond the block they are transparent.
class AlphaPlane {
public:
    /// Transparent.
    AlphaPlane(int width, int height);

    int width() const { return m_width; }
    int height() const { return m_height; }
    std::int16_t* row(int y) { return m_alphas.data() + std::size_t(y) * m_stride; }
    const std::int16_t* row(int y) const { return m_alphas.data() + std::size_t(y) * m_stride; }

    /// The same block under a Gaussian of `deviation` pixels, moved by `shift`. What reaches beyond the block
    /// is lost. Above a deviation of 16 the time does not grow any more.
    AlphaPlane blurred(double deviation, Vec2 shift = {}) const;

private:
    /// The means of cells of `cell` x `cell` pixels.
    AlphaPlane reduced(int cell) const;
    /// So many pixels from cells, evenly from the middle of one to the next.
    AlphaPlane expanded(int cell, int width, int height) const;
    AlphaPlane weighed(double deviation, Vec2 shift) const;

    int m_width;
    int m_height;
    std::size_t m_stride; ///< A whole number of MixPixels.
    std::vector<std::int16_t> m_alphas;
};

} // namespace framora::raster
