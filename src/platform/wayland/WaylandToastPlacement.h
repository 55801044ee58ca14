#pragma once

#include <QRect>
#include <QRectF>
#include <vector>

namespace framora {

/// The smallest rectangle around `bounds` whose edges are whole units of the compositor's space and whole
/// pixels at `pixelRatio`, so that no compositor has to scale what is shown there. At a ratio that allows
/// only for very few such rectangles, whole units have to do.
QRect wholePixelFrame(const QRectF& bounds, double pixelRatio);

/// Rectangles that cover a rounded one to the nearest unit, from top to bottom.
std::vector<QRect> roundedRegion(const QRectF& rect, double radius);

} // namespace framora
