#pragma once

#include "editor/render/raster/GradientPaint.h"
#include "editor/render/raster/Homography.h"
#include "editor/render/raster/Paint.h"
#include "editor/render/raster/SceneKernels.h"

#include <optional>
#include <vector>

namespace framora::raster {

/// White diagonal stripes over a tint, as a window's light falls: 20 points wide and 40 points apart,
/// measured along x, from the top left to the bottom right. They start in the bottom left corner of the
/// canvas.
class ScenePaint : public Paint {
public:
    /// Its colours from the top left corner of the canvas to the bottom right one, premultiplied and evenly
    /// spaced, and its opacity, 0...1. Without colours there are the stripes alone.
    struct Look {
        std::vector<Float4> tint;
        double opacity = 1;
    };
    /// The canvas, `width` x `height` points, has its origin in the middle; `toCanvas` maps the output's
    /// pixels, of which there are `outputWidth` x `outputHeight`, to it by one scale and a movement.
    ScenePaint(Look look, double width, double height, const Homography& toCanvas, int outputWidth,
               int outputHeight);

    void shade(int x, int y, int count, Float4* out) const override;
    void mix(const TileRect& tile, MixPixel* out) const override;
    bool overlay(const TileRect& tile, MixPixel* under, std::ptrdiff_t stride) const override;
    bool drawOverlaid(const TileRect& tile, const MixRows& under, MutablePixelView out,
                      Storing storing) const override;
    bool isOpaque() const override { return false; }

private:
    /// What the stripes cover of the pixels on one falling diagonal: those with the same x - y.
    double coverage(int diagonal) const;
    void makeAlike();
    void makeDither(const std::vector<Float4>& colors);
    /// The tint in the output's first row, `x` pixels to the right of its first pixel, as in a SceneRow.
    MixPixel tintAt(double x) const;
    /// The rows of a tile, in memory of this thread's that the next call uses again.
    const std::vector<SceneRow>& rowsOf(const TileRect& tile) const;

    double m_opacity;
    std::int16_t m_white; ///< The same in 32767ths.
    Homography m_toCanvas;
    std::optional<GradientPaint> m_gradient; ///< The tint.
    double m_pixel;                          ///< In points.
    double
        m_start; ///< How far right of the bottom left corner's stripe the diagonal 0 runs, in points along x.
    int m_firstDiagonal;
    std::vector<std::int16_t> m_stripes; ///< By the diagonal.
    std::vector<std::uint8_t> m_alike;   ///< As in a SceneRow, by the diagonal of a strip's first pixel.
    /// A row is the one above, shifted by so many pixels.
    double m_shift;
    /// The output's first row, and all that is shifted into the others: once for each part of a pixel that is
    /// told apart. Empty where rows are told one by one.
    std::vector<MixPixel> m_tint;
    std::vector<int> m_rowStarts; ///< In m_tint.
    /// For each of Dither::period rows, twice as many columns.
    std::vector<MixPixel> m_dither;
};

} // namespace framora::raster
