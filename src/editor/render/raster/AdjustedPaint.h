#pragma once

#include "editor/render/raster/Compositor.h"
#include "editor/render/raster/Paint.h"
#include "editor/render/raster/PixelEffects.h"

#include <memory>

namespace framora::raster {

/// A paint with its colours adjusted, for what comes between the two and the layer.
class AdjustedPaint : public Paint {
public:
    AdjustedPaint(std::shared_ptr<const Paint> paint, const Layer::Adjustment& adjustment)
        : m_paint(std::move(paint)), m_adjustment(adjustment) {}
    void shade(int x, int y, int count, Float4* out) const override {
        m_paint->shade(x, y, count, out);
        adjustColors(out, count, m_adjustment.saturation, m_adjustment.brightness);
    }
    void mix(const TileRect& tile, MixPixel* out) const override {
        if (!m_adjustment.isUsual()) {
            Paint::mix(tile, out);
            return;
        }
        m_paint->mix(tile, out);
        adjustPixels(out, tile.area(), m_adjustment.saturation, m_adjustment.brightness);
    }
    bool isOpaque() const override { return m_paint->isOpaque(); }

private:
    std::shared_ptr<const Paint> m_paint;
    Layer::Adjustment m_adjustment;
};

} // namespace framora::raster
