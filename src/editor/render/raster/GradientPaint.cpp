#include "editor/render/raster/GradientPaint.h"

#include "editor/render/raster/GradientKernels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace framora::raster {
namespace {

// A row is told piece by piece, each from its own first pixel. Powers of two.
constexpr int linePiece = 256;
constexpr int curvePiece = 64; // whose first pixels are told also where they are not wanted

} // namespace

GradientPaint::GradientPaint(Kind kind, double degrees, double width, double height,
                             std::vector<Float4> stops, const Homography& toLocal)
    : m_kind(kind), m_toLocal(toLocal), m_stops(std::move(stops)) {
    if (kind == Kind::angular)
        m_stops.push_back(m_stops.front());
    for (std::size_t i = 0; i < m_stops.size(); ++i) {
        m_isOpaque = m_isOpaque && m_stops[i][3] == 1;
        if (i + 1 < m_stops.size())
            m_steps.push_back(m_stops[i + 1] - m_stops[i]);
    }
    if (!std::isfinite(degrees))
        degrees = 0;
    const auto [s, c] = sinCos(degrees);
    const double length = std::abs(width * s) + std::abs(height * c);
    m_direction = {s / length, -c / length};
    m_radius = std::hypot(width, height) / 2;
    m_start = std::fmod(degrees, 360.0) / 360;
    if (kind == Kind::linear) {
        makeLines();
        return;
    }
    m_ramp.reserve(rampSize + 1);
    for (int i = 0; i <= rampSize; ++i)
        m_ramp.push_back(toMix(color(double(i) / rampSize)));
}

void GradientPaint::makeLines() {
    const auto append = [this](Float4 from, Float4 to) {
        Line& line = m_lines.emplace_back();
        for (int c = 0; c < 4; ++c) {
            const double first = std::clamp(double(from[c]), 0.0, 1.0);
            line.first[c] = (first * mixOne + 0.5) * ColorRun::one;
            line.slope[c] = (std::clamp(double(to[c]), 0.0, 1.0) - first) * mixOne * ColorRun::one;
        }
    };
    append(m_stops.front(), m_stops.front());
    for (std::size_t i = 0; i + 1 < m_stops.size(); ++i)
        append(m_stops[i], m_stops[i + 1]);
    append(m_stops.back(), m_stops.back());
}

double GradientPaint::position(Vec2 point) const {
    switch (m_kind) {
    case Kind::linear:
        return point.x * m_direction.x + point.y * m_direction.y + 0.5;
    case Kind::radial:
        return std::sqrt(point.x * point.x + point.y * point.y) / m_radius;
    case Kind::angular: {
        const double turns = std::atan2(point.x, -point.y) / (2 * std::numbers::pi) - m_start;
        return turns - std::floor(turns);
    }
    }
    return 0;
}

Float4 GradientPaint::color(double position) const {
    if (m_steps.empty() || !(position > 0))
        return m_stops.front();
    if (position >= 1)
        return m_stops.back();
    const float scaled = float(position) * float(m_steps.size());
    const std::size_t index = std::size_t(scaled) < m_steps.size() ? std::size_t(scaled) : m_steps.size() - 1;
    return m_stops[index] + m_steps[index] * splat(scaled - float(index));
}

void GradientPaint::shade(int x, int y, int count, Float4* out) const {
    if (m_kind == Kind::linear && m_toLocal.isAffine()) {
        // The position is affine in x.
        const double step =
            (m_toLocal(0, 0) * m_direction.x + m_toLocal(1, 0) * m_direction.y) / m_toLocal(2, 2);
        const double start = position(m_toLocal.map({0.5, y + 0.5}));
        for (int i = 0; i < count; ++i)
            out[i] = color(start + step * (x + i));
        return;
    }
    for (int i = 0; i < count; ++i)
        out[i] = color(position(m_toLocal.map({x + i + 0.5, y + 0.5})));
}

std::shared_ptr<const Paint> GradientPaint::coarser(int cell) const {
    // Where its turn ends an angular one has an edge.
    if (m_kind == Kind::angular)
        return nullptr;
    auto made = std::make_shared<GradientPaint>(*this);
    made->m_toLocal = m_toLocal * Homography::scaling(cell, cell);
    return made;
}

void GradientPaint::mixLine(double position, double step, int skipped, int x, int y, int count,
                            MixPixel* out) const {
    const int between = int(m_lines.size()) - 2;
    const bool isFinite = std::isfinite(position) && std::isfinite(step);
    const double start = isFinite ? position * between : 0;
    const double grow = isFinite ? step * between : 0;
    for (int i = 0; i < count;) {
        const double at = start + grow * i;
        // Before the first stop, between two of them, or behind the last one.
        const int interval = !(at > 0) ? -1 : at >= between ? between : int(at);
        double end = count;
        if (grow > 0 && interval < between)
            end = (interval + 1 - start) / grow;
        else if (grow < 0 && interval >= 0)
            end = (interval - start) / grow;
        // Where both sides are the same to within rounding it does not matter to which one a pixel belongs.
        const int next = end < count ? std::max(int(end), i) + 1 : count;
        const int stop = std::min(next, count);
        if (stop > skipped) {
            const Line& line = m_lines[std::size_t(interval + 1)];
            const double from = at - interval;
            const int wanted = std::max(i, skipped);
            ColorRun run;
            for (int c = 0; c < 4; ++c) {
                run.step[c] = std::int32_t(line.slope[c] * grow);
                run.first[c] =
                    std::int32_t(line.first[c] + line.slope[c] * from) + run.step[c] * (wanted - i);
            }
            paintRun(run, x + wanted, y, std::size_t(stop - wanted), out + (wanted - skipped));
        }
        i = stop;
    }
}

void GradientPaint::mix(const TileRect& tile, MixPixel* out) const {
    if (!m_toLocal.isAffine()) {
        Paint::mix(tile, out);
        return;
    }
    const Homography& map = m_toLocal;
    const double scale = 1 / map(2, 2);
    const Vec2 step{map(0, 0) * scale, map(1, 0) * scale};
    const int pieceWidth = m_kind == Kind::linear ? linePiece : curvePiece;
    thread_local std::array<std::int32_t, curvePiece> positions;
    for (int y = tile.y; y < tile.y + tile.height; ++y) {
        // So no pixel depends on the tile that it is in.
        for (int x = tile.x, end = 0; x < tile.x + tile.width; x = end) {
            const int skipped = x & (pieceWidth - 1);
            const int piece = x - skipped;
            end = std::min(piece + pieceWidth, tile.x + tile.width);
            const int count = end - piece;
            const Vec2 first = map.map({piece + 0.5, y + 0.5});
            switch (m_kind) {
            case Kind::linear:
                mixLine(position(first), step.x * m_direction.x + step.y * m_direction.y, skipped, piece, y,
                        count, out);
                break;
            case Kind::radial:
                radialPositions({float(first.x / m_radius), float(first.y / m_radius),
                                 float(step.x / m_radius), float(step.y / m_radius)},
                                std::size_t(count), positions.data());
                break;
            case Kind::angular:
                angularPositions({float(first.x), float(first.y), float(step.x), float(step.y)},
                                 float(m_start), std::size_t(count), positions.data());
                break;
            }
            if (m_kind != Kind::linear)
                paintRamp(m_ramp.data(), positions.data() + skipped, x, y, std::size_t(end - x), out);
            out += end - x;
        }
    }
}

} // namespace framora::raster
