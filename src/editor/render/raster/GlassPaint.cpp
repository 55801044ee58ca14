#include "editor/render/raster/GlassPaint.h"

#include "editor/render/raster/BlurKernels.h"

#include <algorithm>
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

/// Neither tilted nor turned nor mirrored.
bool isUpright(const Homography& map) {
    const double w = map(2, 2);
    return map.isAffine() && map(0, 1) == 0 && map(1, 0) == 0 && map(0, 0) / w > 0 && map(1, 1) / w > 0;
}

/// Calls visit(from, to) for the one or two runs of columns that are seen.
template <typename Visit> void forEachSeen(const GlassWindow::Span& span, const Visit& visit) {
    if (span.hiddenFirst >= span.hiddenEnd)
        return visit(span.first, span.end);
    visit(span.first, std::min(span.hiddenFirst, span.end));
    visit(std::max(span.hiddenEnd, span.first), span.end);
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
      m_look(look), m_isTilted(!m_toLocal.isAffine()), m_isUpright(isUpright(m_toLocal)),
      m_flat(bevel({look.rim, {}})) {
    if (m_isUpright)
        makeColumns();
}

GlassPaint::Bevel GlassPaint::bevel(const Edge& edge) const {
    Bevel made;
    made.through = splat(1 - m_look.veil[3]);
    made.added = m_look.veil;
    if (!(m_look.rim > 0 && edge.depth < m_look.rim))
        return made;
    // How steep the bevel is here, from 1 at the edge to 0 where the pane is flat.
    const double steep = 1 - std::max(edge.depth, 0.0) / m_look.rim;
    const double bend = m_look.bend * steep * steep;
    made.bend = {-edge.outward.x * bend, -edge.outward.y * bend};
    const double w = m_toOutput(2, 2);
    made.bendPixels = {(m_toOutput(0, 0) * made.bend.x + m_toOutput(0, 1) * made.bend.y) / w,
                       (m_toOutput(1, 0) * made.bend.x + m_toOutput(1, 1) * made.bend.y) / w};
    // The far side shows less of the light, the near side less of the dark; the dark lies further in.
    const double facing = edge.outward.x * light.x + edge.outward.y * light.y;
    const double toLight = facing > 0 ? facing : weaker * -facing;
    const double fromLight = facing < 0 ? -facing : weaker * facing;
    const auto dark = float(m_look.shade * fromLight * 4 * steep * (1 - steep));
    const auto bright = float(m_look.glow * toLight * steep * steep * steep);
    const Float4 rest = splat((1 - dark) * (1 - bright));
    made.through *= rest;
    made.added = made.added * rest + Float4{0, 0, 0, dark * (1 - bright)} + splat(bright);
    return made;
}

void GlassPaint::makeColumns() {
    const auto depth = [this](int x) { return m_card.width / 2 - std::abs(m_toLocal.map({x + 0.5, 0.5}).x); };
    const auto isLeft = [this](int x) { return m_toLocal.map({x + 0.5, 0.5}).x < 0; };
    int first = m_window->width();
    int end = 0;
    for (int y = 0; y < m_window->height(); ++y) {
        const GlassWindow::Span& span = m_window->row(y);
        if (span.first < span.end) {
            first = std::min(first, span.first);
            end = std::max(end, span.end);
        }
    }
    m_left = first;
    m_right = end;
    for (int x = first; x < end && isLeft(x) && depth(x) < m_look.rim; ++x)
        m_leftColumns.push_back(bevel({depth(x), {-1, 0}}));
    for (int x = end - 1; x >= first && !isLeft(x) && depth(x) < m_look.rim; --x)
        m_rightColumns.push_back(bevel({depth(x), {1, 0}}));
    std::ranges::reverse(m_rightColumns);
}

void GlassPaint::shade(int x, int y, int count, Float4* out) const {
    std::fill_n(out, count, splat(0));
    const GlassWindow::Span& span = m_window->row(y);
    const auto shadeRun = [&](int from, int to) {
        from = std::max(from, x);
        to = std::min(to, x + count);
        if (from < to)
            (this->*(m_isUpright ? &GlassPaint::shadeUpright : &GlassPaint::shadeAny))(from, to, y,
                                                                                       out + (from - x));
    };
    forEachSeen(span, shadeRun);
}

void GlassPaint::shadeAny(int from, int to, int y, Float4* out) const {
    for (int x = from; x < to; ++x) {
        const Vec2 pixel{x + 0.5, y + 0.5};
        const Vec2 point = m_toLocal.map(pixel);
        const Bevel here = bevel(edgeOf(m_card, m_cornerExtent, m_cornerExponent, point));
        const Vec2 seen = m_isTilted && (here.bend.x != 0 || here.bend.y != 0)
                              ? m_toOutput.map({point.x + here.bend.x, point.y + here.bend.y})
                              : Vec2{pixel.x + here.bendPixels.x, pixel.y + here.bendPixels.y};
        *out++ = m_backdrop->at(seen.x, seen.y) * here.through + here.added;
    }
}

void GlassPaint::shadeUpright(int from, int to, int y, Float4* out) const {
    const double scale = m_toLocal(0, 0) / m_toLocal(2, 2);
    const Vec2 first = m_toLocal.map({0.5, y + 0.5});
    const double end = m_card.height / 2 - std::abs(first.y);
    const bool isCornerRow = end < m_cornerExtent;
    const Bevel ofRow = bevel({end, {0, first.y < 0 ? -1.0 : 1.0}});
    const int flatFirst = m_left + int(m_leftColumns.size());
    const int flatEnd = m_right - int(m_rightColumns.size());
    const auto lineOf = [&](const Bevel& bevel) { return m_backdrop->line(y + 0.5 + bevel.bendPixels.y); };
    const auto through = [&](int x, const Bevel& bevel, const GlassBackdrop::Line& line) {
        return m_backdrop->at(x + 0.5 + bevel.bendPixels.x, line) * bevel.through + bevel.added;
    };
    const GlassBackdrop::Line rowLine = lineOf(ofRow);
    const GlassBackdrop::Line straight = lineOf(m_flat); // the columns bend along the row
    for (int x = from; x < to; ++x) {
        const double side = m_card.width / 2 - std::abs(first.x + scale * x);
        if (isCornerRow && side < m_cornerExtent) {
            const Bevel here =
                bevel(edgeOf(m_card, m_cornerExtent, m_cornerExponent, {first.x + scale * x, first.y}));
            *out++ = through(x, here, lineOf(here));
        } else if (!(side < end))
            *out++ = through(x, ofRow, rowLine);
        else if (x < flatFirst)
            *out++ = through(x, m_leftColumns[std::size_t(x - m_left)], straight);
        else if (x >= flatEnd)
            *out++ = through(x, m_rightColumns[std::size_t(x - flatEnd)], straight);
        else
            *out++ = through(x, m_flat, straight);
    }
}

void GlassPaint::mix(const TileRect& tile, MixPixel* out) const {
    // Where nothing is seen nothing is to be converted.
    thread_local std::vector<Float4> colors;
    colors.resize(std::size_t(tile.width));
    for (int y = tile.y; y < tile.y + tile.height; ++y, out += tile.width) {
        std::fill_n(out, tile.width, MixPixel{});
        const GlassWindow::Span& span = m_window->row(y);
        const auto mixRun = [&](int from, int to) {
            from = std::max(from, tile.x);
            const int count = std::min(to, tile.x + tile.width) - from;
            if (count <= 0)
                return;
            MixPixel* run = out + (from - tile.x);
            shade(from, y, count, colors.data());
            std::transform(colors.begin(), colors.begin() + count, run, toMix);
            ditherPixels(run, from, y, std::size_t(count));
        };
        forEachSeen(span, mixRun);
    }
}

} // namespace framora::raster
