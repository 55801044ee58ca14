#pragma once

#include "editor/render/raster/BlurAxis.h"
#include "editor/render/raster/Paint.h"
#include "editor/render/raster/PixelView.h"

#include <memory>

namespace framora::raster {

/// A canvas on the cells of two BlurAxis. Its memory is that of the cells, 8 bytes each; at a deviation of s
/// pixels that are between 4 and 16 / (s * s) of the canvas's pixels.
class BlurGrid {
public:
    BlurGrid() = default;
    /// A picture stretched over the canvas, as PicturePaint draws it upright, but for one thing: what its
    /// filter swings beyond black and white is not cut off before the blur. Empty when memory is short.
    static BlurGrid reduced(PixelView picture, const BlurAxis& columns, const BlurAxis& rows);
    /// A paint whose pixels are the axes' samples. Empty when memory is short.
    static BlurGrid reduced(const Paint& paint, const BlurAxis& columns, const BlurAxis& rows);

    /// Empty when memory is short.
    BlurGrid copy() const;
    /// Blurs by `deviation` pixels in place. The axes are those that it was made with.
    void blur(const BlurAxis& columns, const BlurAxis& rows, double deviation);

    bool isEmpty() const { return !m_cells; }
    int width() const { return m_width; }
    int height() const { return m_height; }
    /// One more cell is readable behind each row.
    const MixPixel* row(int y) const { return m_cells.get() + std::size_t(y) * std::size_t(m_width); }

private:
    BlurGrid(int width, int height);
    MixPixel* row(int y) { return m_cells.get() + std::size_t(y) * std::size_t(m_width); }
    void blurColumns(const BlurTaps& taps);
    void blurRows(const BlurTaps& taps);

    int m_width = 0;
    int m_height = 0;
    std::unique_ptr<MixPixel[]> m_cells;
};

} // namespace framora::raster
