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
    /// Dithered: a blurred picture has steps of less than one of 255.
    void mix(const TileRect& tile, MixPixel* out) const override;
    bool isOpaque() const override { return m_isOpaque; }

private:
    std::shared_ptr<const BlurGrid> m_grid;
    BlurTaps m_columns;
    BlurTaps m_rows;
    bool m_isOpaque;
};

} // namespace framora::raster
