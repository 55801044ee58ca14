#pragma once

#include "editor/render/raster/Homography.h"
#include "editor/render/raster/Paint.h"

namespace framora::raster {

/// Alternating squares of two greys, the first with a corner at the origin of its own points. `toLocal`
/// scales and moves only; squares whose edge crosses a pixel share it by area.
class CheckerboardPaint : public Paint {
public:
    CheckerboardPaint(double squareSize, const Homography& toLocal, float firstGrey, float secondGrey)
        : m_squareSize(squareSize), m_toLocal(toLocal), m_firstGrey(firstGrey), m_secondGrey(secondGrey) {}

    void shade(int x, int y, int count, Float4* out) const override;
    void mix(const TileRect& tile, MixPixel* out) const override;
    bool isOpaque() const override { return true; }

private:
    /// How much more of the first grey than of the second one is in a column or a row of pixels, -1...1.
    double columnSign(int x) const;
    double rowSign(int y) const;
    /// The colour of the pixel where they meet.
    Float4 color(double columnSign, double rowSign) const;

    double m_squareSize;
    Homography m_toLocal;
    float m_firstGrey;
    float m_secondGrey;
};

} // namespace framora::raster
