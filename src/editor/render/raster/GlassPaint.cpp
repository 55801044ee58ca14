#include "editor/render/raster/GlassPaint.h"

#include "editor/render/raster/BandCoverage.h"
#include "editor/render/raster/BlurKernels.h"
#include "editor/render/raster/GlassKernels.h"
#include "editor/render/raster/MixKernels.h"

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
      m_look(look), m_isTilted(!m_toLocal.isAffine()), m_isUpright(isUpright(m_toLocal)) {
    if (m_isUpright)
        makeColumns();
}

GlassPaint::Bevel GlassPaint::bevel(const Edge& edge) const {
    Bevel made;
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
    made.added = made.added * rest + Float4{0, 0, 0, dark * (1 - bright)} + splat(bright);
    return made;
}

void GlassPaint::View::add(const GlassBackdrop::Place& place) {
    cells.push_back(place.cell);
    parts.push_back(replicated(place.part));
}

void GlassPaint::makeColumns() {
    m_columns = {m_window->width(), 0};
    for (int y = 0; y < m_window->height(); ++y) {
        const GlassWindow::Span& span = m_window->row(y);
        if (span.first < span.end)
            m_columns = {std::min(m_columns.first, span.first), std::max(m_columns.end, span.end)};
    }
    for (int x = m_columns.first; x < m_columns.end; ++x) {
        const double across = m_toLocal.map({x + 0.5, 0.5}).x;
        const Bevel here = bevel({m_card.width / 2 - std::abs(across), {across < 0 ? -1.0 : 1.0, 0}});
        m_straight.add(m_backdrop->column(x + 0.5));
        m_bent.add(m_backdrop->column(x + 0.5 + here.bendPixels.x));
        m_added.push_back(toMix(here.added));
    }
}

GlassWindow::Columns GlassPaint::columnsBelow(double depth) const {
    const double scale = m_toLocal(0, 0) / m_toLocal(2, 2);
    const double first = m_toLocal.map({0.5, 0.5}).x;
    const double reach = m_card.width / 2 - depth;
    const auto column = [&](double x) {
        return int(std::clamp(x, double(m_columns.first), double(m_columns.end)));
    };
    const int from = column(std::ceil((-reach - first) / scale));
    return {from, std::max(from, column(std::floor((reach - first) / scale) + 1))};
}

void GlassPaint::shade(int x, int y, int count, Float4* out) const {
    std::fill_n(out, count, splat(0));
    for (const auto& [first, end] : m_window->row(y).seen()) {
        const int from = std::max(first, x);
        shadeRun(from, std::min(end, x + count), y, out + (from - x));
    }
}

void GlassPaint::shadeRun(int from, int to, int y, Float4* out) const {
    for (int x = from; x < to; ++x) {
        const Vec2 pixel{x + 0.5, y + 0.5};
        const Vec2 point = m_toLocal.map(pixel);
        const Bevel here = bevel(edgeOf(m_card, m_cornerExtent, m_cornerExponent, point));
        const Vec2 seen = m_isTilted && (here.bend.x != 0 || here.bend.y != 0)
                              ? m_toOutput.map({point.x + here.bend.x, point.y + here.bend.y})
                              : Vec2{pixel.x + here.bendPixels.x, pixel.y + here.bendPixels.y};
        *out++ = m_backdrop->at(seen.x, seen.y) * splat(1 - here.added[3]) + here.added;
    }
}

void GlassPaint::look(const View& view, const GlassBackdrop::Place& down, int from, int to,
                      MixPixel* out) const {
    thread_local std::vector<MixPixel> row;
    thread_local std::vector<MixPixel> next;
    const int* cells = view.cells.data() + (from - m_columns.first);
    const MixPixel* parts = view.parts.data() + (from - m_columns.first);
    const auto count = std::size_t(to - from);
    int first = cells[0];
    int last = cells[0];
    for (std::size_t i = 1; i < count; ++i) {
        first = std::min(first, cells[i]);
        last = std::max(last, cells[i]);
    }
    row.resize(std::size_t(last - first) + 2);
    m_backdrop->readRow(down, first, last + 2, row.data());
    next.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        const MixPixel* here = row.data() + (cells[i] - first);
        out[i] = here[0];
        next[i] = here[1];
    }
    interpolate(out, next.data(), parts, count, out);
}

void GlassPaint::mixUpright(int from, int to, int y, MixPixel* out) const {
    const double down = m_toLocal.map({0.5, y + 0.5}).y;
    const double depth = m_card.height / 2 - std::abs(down);
    const GlassWindow::Columns sides = depth < m_cornerExtent ? columnsBelow(m_cornerExtent) : m_columns;
    // The bevels of the sides and of this end of the card meet where both lie equally deep.
    GlassWindow::Columns end = depth < m_look.rim ? columnsBelow(depth) : GlassWindow::Columns{};
    end = {std::clamp(end.first, sides.first, sides.end), std::clamp(end.end, sides.first, sides.end)};
    const auto forRun = [&](int first, int last, const auto& draw) {
        first = std::max(first, from);
        last = std::min(last, to);
        if (first < last)
            draw(first, last, out + (first - from));
    };
    const auto corner = [&](int first, int last, MixPixel* run) {
        thread_local std::vector<Float4> colors;
        colors.resize(std::size_t(last - first));
        shadeRun(first, last, y, colors.data());
        std::ranges::transform(colors, run, toMix);
    };
    const auto side = [&](int first, int last, MixPixel* run) {
        look(m_bent, m_backdrop->row(y + 0.5), first, last, run);
        blendOver(run, m_added.data() + (first - m_columns.first), std::size_t(last - first));
    };
    forRun(from, sides.first, corner);
    forRun(sides.first, end.first, side);
    forRun(end.first, end.end, [&](int first, int last, MixPixel* run) {
        thread_local std::vector<MixPixel> added;
        const Bevel here = bevel({depth, {0, down < 0 ? -1.0 : 1.0}});
        added.assign(std::size_t(last - first), toMix(here.added));
        look(m_straight, m_backdrop->row(y + 0.5 + here.bendPixels.y), first, last, run);
        blendOver(run, added.data(), added.size());
    });
    forRun(end.end, sides.end, side);
    forRun(sides.end, to, corner);
}

void GlassPaint::mix(const TileRect& tile, MixPixel* out) const {
    thread_local std::vector<Float4> colors;
    for (int y = tile.y; y < tile.y + tile.height; ++y, out += tile.width) {
        std::fill_n(out, tile.width, MixPixel{});
        for (const auto& [first, end] : m_window->row(y).seen()) {
            const int from = std::max(first, tile.x);
            const int to = std::min(end, tile.x + tile.width);
            if (from >= to)
                continue;
            MixPixel* run = out + (from - tile.x);
            if (m_isUpright) {
                mixUpright(from, to, y, run);
            } else {
                colors.resize(std::size_t(to - from));
                shadeRun(from, to, y, colors.data());
                std::ranges::transform(colors, run, toMix);
            }
            ditherPixels(run, from, y, std::size_t(to - from));
        }
    }
}

} // namespace framora::raster
