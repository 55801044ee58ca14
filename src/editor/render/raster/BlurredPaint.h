#pragma once

#include "editor/render/raster/BlurGrid.h"
#include "editor/render/raster/Paint.h"

#include <memory>

namespace framora::raster {

/// A canvas under a wide Gaussian blur, from its blurred cells. Beyond the canvas its edge repeats.
class BlurredPaint : public Paint {
public:
    /// The canvas starts at (left, top) in output pixels, of which there are `outputWidth` x `outputHeight`.
    BlurredPaint(std::shared_ptr<const BlurGrid> blurred, const BlurAxis& columns, const BlurAxis& rows,
                 double left, double top, int outputWidth, int outputHeight, bool isOpaque);

    void shade(int x, int y, int count, Float4* out) const override;
    /// Dithered: a blurred picture has steps of less than one of 255. Not so a coarser one, which is to be
    /// mixed and not to be shown.
    void mix(const TileRect& tile, MixPixel* out) const override;
    std::shared_ptr<const Paint> coarser(int cell) const override;
    double blurDeviation() const override;
    bool isOpaque() const override { return m_isOpaque; }

private:
    /// One side of the output.
    struct Side {
        BlurAxis axis;
        double start; ///< Of the canvas, in pixels.
        int length;   ///< Of the output, in pixels.
        int step;     ///< Pixels.
        BlurTaps taps;

        double cell() const { return axis.cell() / step; }
        Side(const BlurAxis& axis, double start, int length, int step);
        /// The same in steps so many times as long.
        Side coarser(int cell) const { return {axis, start, length, step * cell}; }
    };
    BlurredPaint(std::shared_ptr<const BlurGrid> blurred, Side columns, Side rows, bool isOpaque);

    std::shared_ptr<const BlurGrid> m_grid;
    Side m_columns;
    Side m_rows;
    bool m_isOpaque;
};

} // namespace framora::raster
