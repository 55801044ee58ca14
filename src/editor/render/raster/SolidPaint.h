#pragma once

#include "editor/render/raster/Paint.h"

#include <algorithm>

namespace framora::raster {

/// One colour everywhere.
class SolidPaint : public Paint {
public:
    explicit SolidPaint(Float4 color) : m_color(color) {}
    void shade(int, int, int count, Float4* out) const override { std::fill_n(out, count, m_color); }
    void mix(const TileRect& tile, MixPixel* out) const override {
        std::fill_n(out, tile.area(), toMix(m_color));
    }
    std::shared_ptr<const Paint> coarser(int) const override { return std::make_shared<SolidPaint>(*this); }
    bool isOpaque() const override { return m_color[3] == 1; }

private:
    Float4 m_color;
};

} // namespace framora::raster
