#include "editor/render/raster/GlassPaint.h"

#include "editor/render/raster/BlurKernels.h"

#include <cmath>

namespace framora::raster {
namespace {

// Towards the light: the upper left, more from above.
constexpr Vec2 light{-0.6, -0.8};
constexpr double weaker = 0.4;

GlassPaint::Edge edgeOf(const RoundedRect& card, double extent, double exponent, Vec2 point) {
    const double side = card.width / 2 - std::abs(point.x);
    const double end = card.height / 2 - std::abs(point.y);
    const double signX = point.x < 0 ? -1 : 1;
    const double signY = point.y < 0 ? -1 : 1;
    const double u = 1 - side / extent;
    const double v = 1 - end / extent;
    if (!(extent > 0 && u > 0 && v > 0))
        return side < end ? GlassPaint::Edge{side, {signX, 0}} : GlassPaint::Edge{end, {0, signY}};
    // The corner is a level line of a function that grows evenly along every ray; to first order its
    // distance is what is missing to that level over the function's slope.
    const double powerU = std::pow(u, exponent);
    const double powerV = std::pow(v, exponent);
    const double sum = powerU + powerV;
    const double level = std::pow(sum, 1 / exponent);
    const double slopeU = powerU / u * level / sum;
    const double slopeV = powerV / v * level / sum;
    const double slope = std::hypot(slopeU, slopeV);
    return {extent * (1 - level) / slope, {signX * slopeU / slope, signY * slopeV / slope}};
}

} // namespace

GlassPaint::Edge GlassPaint::edge(const RoundedRect& card, Vec2 point) {
    return edgeOf(card, card.cornerExtent(), card.cornerExponent(), point);
}

GlassPaint::GlassPaint(std::shared_ptr<const GlassBackdrop> backdrop,
                       std::shared_ptr<const GlassWindow> window, const RoundedRect& card,
                       const Placement& placement, const Look& look)
    : m_backdrop(std::move(backdrop)), m_window(std::move(window)), m_card(card),
      m_cornerExtent(card.cornerExtent()), m_cornerExponent(card.cornerExponent()),
      m_toLocal(placement.toLocal()),
      m_toOutput(Homography::translation(placement.originX, placement.originY) * placement.toOutput),
      m_look(look) {}

Float4 GlassPaint::color(Vec2 pixel, Vec2 point) const {
    const Edge edge = edgeOf(m_card, m_cornerExtent, m_cornerExponent, point);
    if (!(edge.depth < m_look.rim)) {
        const Float4 behind = m_backdrop->at(pixel.x, pixel.y);
        return m_look.veil + behind * splat(1 - m_look.veil[3]);
    }
    // How steep the bevel is here, from 1 at the edge to 0 where the pane is flat.
    const double steep = 1 - std::max(edge.depth, 0.0) / m_look.rim;
    const double bend = m_look.bend * steep * steep;
    const Vec2 seen = m_toOutput.map({point.x - edge.outward.x * bend, point.y - edge.outward.y * bend});
    Float4 color = m_backdrop->at(seen.x, seen.y);
    color = m_look.veil + color * splat(1 - m_look.veil[3]);
    // The far side shows less of the light, the near side less of the dark; the dark lies further in.
    const double facing = edge.outward.x * light.x + edge.outward.y * light.y;
    const double toLight = facing > 0 ? facing : weaker * -facing;
    const double fromLight = facing < 0 ? -facing : weaker * facing;
    const auto dark = float(m_look.shade * fromLight * 4 * steep * (1 - steep));
    const auto bright = float(m_look.glow * toLight * steep * steep * steep);
    color = color * splat(1 - dark) + Float4{0, 0, 0, dark};
    return color * splat(1 - bright) + splat(bright);
}

void GlassPaint::shade(int x, int y, int count, Float4* out) const {
    const GlassWindow::Span& span = m_window->row(y);
    const double row = y + 0.5;
    for (int i = 0; i < count; ++i) {
        const int column = x + i;
        if (column < span.first || column >= span.end ||
            (column >= span.hiddenFirst && column < span.hiddenEnd)) {
            out[i] = splat(0);
            continue;
        }
        const Vec2 pixel{column + 0.5, row};
        out[i] = color(pixel, m_toLocal.map(pixel));
    }
}

void GlassPaint::mix(const TileRect& tile, MixPixel* out) const {
    Paint::mix(tile, out);
    for (int y = 0; y < tile.height; ++y, out += tile.width)
        ditherPixels(out, tile.x, tile.y + y, std::size_t(tile.width));
}

} // namespace framora::raster
