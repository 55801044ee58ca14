#include "platform/wayland/WaylandToastPlacement.h"

#include <algorithm>
#include <cmath>

namespace framora {

namespace {

/// So many units are a whole number of pixels; 1 where only a large number would be.
int unitsOfWholePixels(double pixelRatio) {
    constexpr int most = 20;
    for (int units = 1; units <= most; ++units) {
        const double pixels = units * pixelRatio;
        if (std::abs(pixels - std::round(pixels)) < 1e-6)
            return units;
    }
    return 1;
}

int stepBelow(double value, int step) {
    return int(std::floor(value / step)) * step;
}

int stepAbove(double value, int step) {
    return int(std::ceil(value / step)) * step;
}

} // namespace

QRect wholePixelFrame(const QRectF& bounds, double pixelRatio) {
    const int step = unitsOfWholePixels(pixelRatio);
    const QPoint start(stepBelow(bounds.left(), step), stepBelow(bounds.top(), step));
    const QPoint end(stepAbove(bounds.right(), step), stepAbove(bounds.bottom(), step));
    return {start, QSize(std::max(step, end.x() - start.x()), std::max(step, end.y() - start.y()))};
}

std::vector<QRect> roundedRegion(const QRectF& rect, double radius) {
    const QRect whole = rect.toRect();
    const double corner = std::min({radius, whole.width() / 2.0, whole.height() / 2.0});
    std::vector<QRect> rows;
    for (int y = 0; y < whole.height(); ++y) {
        // From the row's middle to the line on which the corners' circles have their centres.
        const double fromEdge = std::min(y + 0.5, whole.height() - y - 0.5);
        const double rise = std::max(0.0, corner - fromEdge);
        const int inset = int(std::lround(corner - std::sqrt(corner * corner - rise * rise)));
        const QRect row(whole.left() + inset, whole.top() + y, whole.width() - 2 * inset, 1);
        if (row.isEmpty())
            continue;
        // The straight part between the corners is one rectangle.
        if (!rows.empty() && rows.back().left() == row.left() && rows.back().width() == row.width())
            rows.back().setBottom(row.bottom());
        else
            rows.push_back(row);
    }
    return rows;
}

} // namespace framora
