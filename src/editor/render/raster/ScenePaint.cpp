#include "editor/render/raster/ScenePaint.h"

#include "editor/render/raster/MixKernels.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace framora::raster {
namespace {

constexpr double pitch = 40;
// Along x; a stripe is 20 points across.
constexpr double halfWidth = 20 * std::numbers::sqrt2 / 2;

/// The part of a pixel about the origin where x - y is below `limit`, in pixels.
double areaBelow(double limit) {
    const double d = std::clamp(limit, -1.0, 1.0);
    return d < 0 ? (1 + d) * (1 + d) / 2 : 1 - (1 - d) * (1 - d) / 2;
}

} // namespace

ScenePaint::ScenePaint(std::shared_ptr<const Paint> under, double width, double height,
                       const Homography& toCanvas, int outputWidth, int outputHeight)
    : m_under(std::move(under)), m_pixel(toCanvas(0, 0) / toCanvas(2, 2)),
      m_start((toCanvas(0, 2) - toCanvas(1, 2)) / toCanvas(2, 2) + (width - height) / 2 + height),
      m_firstDiagonal(1 - outputHeight) {
    m_stripes.reserve(std::size_t(outputWidth) + std::size_t(outputHeight));
    for (int diagonal = m_firstDiagonal; diagonal < outputWidth; ++diagonal)
        m_stripes.push_back(toMix(splat(float(coverage(diagonal)))));
}

double ScenePaint::coverage(int diagonal) const {
    const double middle = m_start + diagonal * m_pixel;
    const double reach = halfWidth + m_pixel;
    double covered = 0;
    const double last = std::floor((middle + reach) / pitch);
    for (double stripe = std::max(0.0, std::ceil((middle - reach) / pitch)); stripe <= last; ++stripe) {
        const double distance = stripe * pitch - middle;
        covered += areaBelow((distance + halfWidth) / m_pixel) - areaBelow((distance - halfWidth) / m_pixel);
    }
    return covered;
}

void ScenePaint::shade(int x, int y, int count, Float4* out) const {
    if (m_under)
        m_under->shade(x, y, count, out);
    else
        std::fill_n(out, count, splat(0));
    for (int i = 0; i < count; ++i) {
        const auto white = float(coverage(x + i - y));
        out[i] = splat(white) + out[i] * splat(1 - white);
    }
}

void ScenePaint::mix(const TileRect& tile, MixPixel* out) const {
    if (m_under)
        m_under->mix(tile, out);
    else
        std::fill_n(out, tile.area(), MixPixel{});
    const auto width = std::size_t(tile.width);
    for (int y = tile.y; y < tile.y + tile.height; ++y, out += width)
        blendOver(out, m_stripes.data() + (tile.x - y - m_firstDiagonal), width);
}

} // namespace framora::raster
