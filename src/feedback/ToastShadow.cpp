#include "feedback/ToastShadow.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace framora {

void ToastShadow::drawUnder(QImage& image, const QRectF& rect, double radius) const {
    // The Gaussian of a large shape depends on the distance to its edge alone. A blurred corner is rounder
    // than the shape's, so that the radius grows with sigma.
    const double halfWidth = rect.width() / 2;
    const double halfHeight = rect.height() / 2;
    const double softRadius = std::min({radius + sigma * 1.1, halfWidth, halfHeight});
    const double centerX = rect.center().x();
    const double centerY = rect.center().y() + offsetY;

    // Opacity by distance in quarter pixels, negative inside.
    constexpr double stepsPerPixel = 4;
    const int reach = int(std::ceil(3.2 * sigma * stepsPerPixel));
    std::vector<float> falloff(std::size_t(2 * reach + 1));
    for (int i = -reach; i <= reach; ++i)
        falloff[std::size_t(i + reach)] =
            float(opacity * 0.5 * std::erfc(i / stepsPerPixel / (sigma * std::sqrt(2.0))));

    // What the shape itself will cover needs no shadow: its rows between the corners, less a rim.
    const double coveredLeft = rect.left() + 2;
    const double coveredRight = rect.right() - 2;
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        const double dy = std::abs(y + 0.5 - centerY) - (halfHeight - softRadius);
        const bool betweenCorners = y > rect.top() + radius * 1.5 && y + 1 < rect.bottom() - radius * 1.5;
        for (int x = 0; x < image.width(); ++x) {
            if (betweenCorners && x > coveredLeft && x < coveredRight) {
                x = int(coveredRight);
                continue;
            }
            const double dx = std::abs(x + 0.5 - centerX) - (halfWidth - softRadius);
            const double distance =
                (dx > 0 && dy > 0 ? std::sqrt(dx * dx + dy * dy) : std::max(dx, dy)) - softRadius;
            const int index = int(std::floor(distance * stepsPerPixel + 0.5));
            if (index > reach)
                continue;
            const float shade = falloff[std::size_t(std::max(index, -reach) + reach)];
            // Black over the pixel; the picture holds shadows only, so that just its alpha grows.
            const float below = float(qAlpha(row[x]));
            row[x] = qRgba(0, 0, 0, int(std::lround(255 * shade + below * (1 - shade))));
        }
    }
}

} // namespace framora
