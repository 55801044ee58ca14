#pragma once

#include "editor/render/raster/BlurTaps.h"
#include "editor/render/raster/Paint.h"
#include "editor/render/raster/ShadeCache.h"

#include <memory>

namespace framora::raster {

/// A paint under a Gaussian blur of few pixels, pixel by pixel. The paint is cut to a canvas, whose edge
/// repeats.
class FineBlurredPaint : public Paint {
public:
    /// Below this deviation, in pixels, a neighbour has no weight that shows.
    static constexpr double leastDeviation = 0.3;

    /// The pixels of the canvas.
    struct Canvas {
        int left;
        int top;
        int right; ///< Behind the last one; there is at least one pixel.
        int bottom;
    };
    /// `paint` is asked for each pixel of the canvas within gaussianRadius(deviation) of the output's. Its
    /// pixel (margin, margin) is the output's (0, 0). A `cache`, if any, has begun a frame of the same blur
    /// and lives as long as this; then each row is shaded by one thread at a time.
    FineBlurredPaint(std::shared_ptr<const Paint> paint, int margin, double deviation, const Canvas& canvas,
                     ShadeCache* cache = nullptr);

    void shade(int x, int y, int count, Float4* out) const override;
    /// Dithered as a wide blur is.
    void mix(const TileRect& tile, MixPixel* out) const override;
    bool isOpaque() const override { return m_paint->isOpaque(); }
    bool prefersSquareTiles() const override { return true; }

private:
    void filter(const TileRect& tile, MixPixel* out) const;

    std::shared_ptr<const Paint> m_paint;
    ShadeCache* m_cache;
    int m_margin;
    Canvas m_canvas;
    int m_radius;
    std::vector<double> m_half; ///< The weights from the middle to the radius.
    BlurTaps m_taps;            ///< The same, from one end to the other: one output.
};

} // namespace framora::raster
