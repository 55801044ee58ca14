#include "editor/render/raster/ShadowPaint.h"

#include "editor/render/raster/Dither.h"
#include "editor/render/raster/MixKernels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace framora::raster {
namespace {

/// How much of a Gaussian around 0 lies below `x` deviations.
double gaussianBelow(double x) {
    return 0.5 * std::erfc(-x / std::numbers::sqrt2);
}

/// The dither of colours, elsewhere: where both meet they do not cancel.
std::int16_t offsetAt(int x, int y) {
    const std::int16_t offset = Dither::row(x + 5, y + 3)->channel[0];
    return std::int16_t(offset - (offset >> 2));
}

MixPixel black(float alpha) {
    return {{0, 0, 0, std::int16_t(alpha * float(mixOne) + 0.5f)}};
}

/// The offsets of the pixels from (x, y) on, for ditherAlphas().
std::array<MixPixel, std::size_t(Dither::period)> offsetsFrom(int x, int y) {
    std::array<MixPixel, std::size_t(Dither::period)> offsets;
    for (int i = 0; i < Dither::period; ++i)
        offsets[std::size_t(i)] = {{0, 0, 0, offsetAt(x + i, y)}};
    return offsets;
}

} // namespace

ShadowPaint::Place ShadowPaint::Axis::place(double distance) const {
    const double at = (distance - start) * perStep;
    // Not a number counts as the middle.
    const double inside = at > 0 ? std::min(at, double(count - 1)) : 0;
    const int index = std::min(int(inside), count - 2);
    return {index, float(inside - index)};
}

ShadowPaint::ShadowPaint(const RoundedRect& shape, double deviation, double opacity,
                         const Placement& placement)
    : m_toLocal(placement.toLocal()) {
    constexpr double finest = 0.25; // of a deviation: straight lines between are within a 500th of the curve
    constexpr double mostEntries = 192;
    const double extent = shape.cornerExtent();
    const double exponent = shape.cornerExponent();
    const auto axis = [&](double half) {
        Axis made;
        made.start = std::max(0.0, half - extent - reach * deviation);
        const double length = half + reach * deviation - made.start;
        const double steps = std::clamp(std::ceil(length / (finest * deviation)), 1.0, mostEntries);
        made.step = length / steps;
        made.perStep = 1 / made.step;
        made.count = int(steps) + 1;
        return made;
    };
    const double halfWidth = shape.width / 2;
    const double halfHeight = shape.height / 2;
    m_columns = axis(halfWidth);
    m_rows = axis(halfHeight);

    // The shape in strips, each as wide as in its middle: the high one between the corners, and thin ones
    // through them. Across a strip the blur is known exactly.
    struct Strip {
        double top; ///< Below the middle; there is another one as far above, but for the first.
        double bottom;
        double halfWidth;
    };
    std::vector<Strip> strips = {{-(halfHeight - extent), halfHeight - extent, halfWidth}};
    const int thin = int(std::clamp(std::ceil(extent / deviation * 8), 8.0, 64.0));
    for (int i = 0; i < thin && extent > 0; ++i) {
        const double v = (i + 0.5) / thin;
        strips.push_back({halfHeight - extent + extent * i / thin,
                          halfHeight - extent + extent * (i + 1) / thin,
                          halfWidth - extent + extent * std::pow(1 - std::pow(v, exponent), 1 / exponent)});
    }
    const auto share = [=](double from, double to, double at) {
        return gaussianBelow((to - at) / deviation) - gaussianBelow((from - at) / deviation);
    };
    const auto width = std::size_t(m_columns.count);
    std::vector<double> across; // strip by strip
    for (const Strip& strip : strips)
        for (int x = 0; x < m_columns.count; ++x)
            across.push_back(share(-strip.halfWidth, strip.halfWidth, m_columns.start + x * m_columns.step));
    std::vector<double> sums(width);
    for (int y = 0; y < m_rows.count; ++y) {
        const double at = m_rows.start + y * m_rows.step;
        std::fill(sums.begin(), sums.end(), 0.0);
        for (std::size_t i = 0; i < strips.size(); ++i) {
            double weight = share(strips[i].top, strips[i].bottom, at);
            if (i > 0)
                weight += share(-strips[i].bottom, -strips[i].top, at);
            for (std::size_t x = 0; x < width; ++x)
                sums[x] += weight * across[i * width + x];
        }
        for (const double sum : sums)
            m_table.push_back(float(std::clamp(sum * opacity, 0.0, 1.0)));
    }
}

float ShadowPaint::read(Place column, Place row) const {
    const float* upper =
        m_table.data() + std::size_t(row.index) * std::size_t(m_columns.count) + column.index;
    const float* lower = upper + m_columns.count;
    const float above = upper[0] + (upper[1] - upper[0]) * column.part;
    const float below = lower[0] + (lower[1] - lower[0]) * column.part;
    return above + (below - above) * row.part;
}

float ShadowPaint::alpha(Vec2 point) const {
    return read(m_columns.place(std::abs(point.x)), m_rows.place(std::abs(point.y)));
}

void ShadowPaint::shade(int x, int y, int count, Float4* out) const {
    for (int i = 0; i < count; ++i)
        out[i] = Float4{0, 0, 0, alpha(m_toLocal.map({x + i + 0.5, y + 0.5}))};
}

void ShadowPaint::mix(const TileRect& tile, MixPixel* out) const {
    thread_local std::vector<MixPixel> blacks; // of a row, without the dither
    blacks.resize(std::size_t(tile.width));
    const auto ditherRow = [&](int y) {
        ditherAlphas(blacks.data(), offsetsFrom(tile.x, y).data(), blacks.size(), out);
        out += tile.width;
    };
    const bool isUpright = m_toLocal.isAffine() && m_toLocal(0, 1) == 0 && m_toLocal(1, 0) == 0;
    if (!isUpright) {
        for (int y = tile.y; y < tile.y + tile.height; ++y) {
            for (int x = 0; x < tile.width; ++x)
                blacks[std::size_t(x)] = black(alpha(m_toLocal.map({tile.x + x + 0.5, y + 0.5})));
            ditherRow(y);
        }
        return;
    }
    const double w = m_toLocal(2, 2);
    const auto along = [w](double scale, double move, int pixel) {
        return std::abs((scale * (pixel + 0.5) + move) / w);
    };
    thread_local std::vector<Place> columns;
    columns.clear();
    for (int x = tile.x; x < tile.x + tile.width; ++x)
        columns.push_back(m_columns.place(along(m_toLocal(0, 0), m_toLocal(0, 2), x)));
    // Along the middle of a straight side, and in the middle of the card, the columns are alike.
    const auto isMiddle = [](Place place) { return place.index == 0 && place.part == 0; };
    const bool isAlike = std::ranges::all_of(columns, isMiddle);
    Place above{-1, 0};
    for (int y = tile.y; y < tile.y + tile.height; ++y) {
        const Place here = m_rows.place(along(m_toLocal(1, 1), m_toLocal(1, 2), y));
        // Else it is the same as in the row above.
        if (here.index != above.index || here.part != above.part) {
            if (isAlike)
                std::ranges::fill(blacks, black(read(columns.front(), here)));
            else
                std::ranges::transform(columns, blacks.begin(),
                                       [&](Place column) { return black(read(column, here)); });
        }
        above = here;
        ditherRow(y);
    }
}

} // namespace framora::raster
