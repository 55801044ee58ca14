#include "editor/render/raster/ProjectiveSampler.h"

#include "editor/render/raster/ResampleKernel.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace framora::raster {
namespace {

// The footprint's kernel: a round cubic of this radius in output pixels, softer than the interpolating one
// since a turned grid has no axis to hide its patterns on.
constexpr double footprintRadius = 2;
// The narrow side is widened to the long side over this.
constexpr double longestFootprint = 16;
// Between one source pixel an output pixel and this many, interpolation fades into filtering.
constexpr double fadeEnd = 1.25;

double footprintCurve(double r) {
    constexpr double b = 0.3782;
    constexpr double c = 0.3109;
    if (r < 1)
        return ((12 - 9 * b - 6 * c) * r * r * r + (-18 + 12 * b + 6 * c) * r * r + (6 - 2 * b)) / 6;
    if (r < 2)
        return ((-b - 6 * c) * r * r * r + (6 * b + 30 * c) * r * r + (-12 * b - 48 * c) * r +
                (8 * b + 24 * c)) /
               6;
    return 0;
}

/// The curve by the square of the distance.
struct FootprintTable {
    static constexpr int size = 4096;
    std::array<float, size + 1> weight{};
    FootprintTable() {
        for (int i = 0; i <= size; ++i)
            weight[std::size_t(i)] =
                float(footprintCurve(std::sqrt((i + 0.5) * footprintRadius * footprintRadius / size)));
    }
};
const FootprintTable footprintTable;

void cubicWeights(double fraction, float* weights) {
    for (int i = 0; i < 4; ++i)
        weights[i] = float(catmullRom(fraction + 1 - i));
}

double inside(double value, double size) {
    return value > -4 ? std::min(value, size + 4) : -4; // what is not a number goes to the edge
}

} // namespace

ProjectiveSampler::ProjectiveSampler(const PicturePyramid& pyramid, const Homography& toSource)
    : m_pyramid(pyramid), m_toSource(toSource) {}

Float4 ProjectiveSampler::interpolated(Vec2 source) const {
    const PixelView picture = m_pyramid.picture();
    const double left = std::floor(source.x - 0.5);
    const double top = std::floor(source.y - 0.5);
    float horizontal[4];
    float vertical[4];
    cubicWeights(source.x - 0.5 - left, horizontal);
    cubicWeights(source.y - 0.5 - top, vertical);
    const int x = int(left) - 1;
    const int y = int(top) - 1;
    const bool isInside = x >= 0 && x + 4 <= picture.width;
    Float4 sum = splat(0);
    for (int j = 0; j < 4; ++j) {
        const std::uint32_t* row = picture.row(std::clamp(y + j, 0, picture.height - 1));
        Float4 line = splat(0);
        for (int i = 0; i < 4; ++i) {
            const int column = isInside ? x + i : std::clamp(x + i, 0, picture.width - 1);
            line += unpack(row[column]) * splat(horizontal[i]);
        }
        sum += line * splat(vertical[j]);
    }
    return clampPremultiplied(sum, 255);
}

Float4 ProjectiveSampler::filtered(Vec2 source, Footprint footprint) const {
    const PixelView picture = m_pyramid.picture();
    // The long and the narrow side, squared, and the long side's direction.
    const double mean = (footprint.xx + footprint.yy) / 2;
    const double spread = std::hypot((footprint.xx - footprint.yy) / 2, footprint.xy);
    const double largest = 4.0 * picture.width * picture.width + 4.0 * picture.height * picture.height + 1;
    const double longSide = std::clamp(mean + spread, 1.0, largest);
    const double narrowSide =
        std::clamp(mean - spread, std::max(1.0, longSide / (longestFootprint * longestFootprint)), longSide);
    double alongX = 0.5;
    double alongXY = 0;
    if (spread > 0) {
        alongX = 0.5 + (footprint.xx - footprint.yy) / (4 * spread);
        alongXY = footprint.xy / (2 * spread);
    }

    const PixelView level = m_pyramid.level(int(std::floor(std::log2(narrowSide) + 1e-9)));
    const double scaleX = double(level.width) / picture.width;
    const double scaleY = double(level.height) / picture.height;
    const double xx = (narrowSide + (longSide - narrowSide) * alongX) * scaleX * scaleX;
    const double xy = (longSide - narrowSide) * alongXY * scaleX * scaleY;
    const double yy = (narrowSide + (longSide - narrowSide) * (1 - alongX)) * scaleY * scaleY;
    const double determinant = xx * yy - xy * xy;
    // The reverse of the footprint, in steps of the table.
    const double unit = FootprintTable::size / (footprintRadius * footprintRadius) / determinant;
    const double a = yy * unit;
    const double b = -xy * unit;
    const double c = xx * unit;

    const double x = source.x * scaleX - 0.5;
    const double y = source.y * scaleY - 0.5;
    const double reach = footprintRadius * std::sqrt(yy);
    Float4 sum = splat(0);
    float weights = 0;
    for (int row = int(std::ceil(y - reach)); row <= int(std::floor(y + reach)); ++row) {
        const double dy = row - y;
        const double root = b * b * dy * dy - a * (c * dy * dy - FootprintTable::size);
        if (root <= 0)
            continue;
        const double half = std::sqrt(root) / a;
        const double middle = x - b * dy / a;
        const int from = int(std::ceil(middle - half));
        const int to = int(std::floor(middle + half));
        const std::uint32_t* pixels = level.row(std::clamp(row, 0, level.height - 1));
        const bool isInside = from >= 0 && to < level.width;
        for (int column = from; column <= to; ++column) {
            const double dx = column - x;
            const double distance = (a * dx + 2 * b * dy) * dx + c * dy * dy;
            const float weight =
                footprintTable.weight[std::size_t(std::clamp(int(distance), 0, FootprintTable::size))];
            const std::uint32_t pixel = pixels[isInside ? column : std::clamp(column, 0, level.width - 1)];
            sum += unpack(pixel) * splat(weight);
            weights += weight;
        }
    }
    if (!(weights > 0))
        return interpolated(source);
    return clampPremultiplied(sum / splat(weights), 255);
}

void ProjectiveSampler::read(int x, int y, int count, Float4* out) const {
    const Homography& g = m_toSource;
    const PixelView picture = m_pyramid.picture();
    for (int i = 0; i < count; ++i) {
        const Vec2 pixel{x + i + 0.5, y + 0.5};
        const double w = g.depth(pixel);
        const Vec2 exact = g.map(pixel);
        const Vec2 source{inside(exact.x, picture.width), inside(exact.y, picture.height)};
        const double dxx = (g(0, 0) - source.x * g(2, 0)) / w;
        const double dxy = (g(0, 1) - source.x * g(2, 1)) / w;
        const double dyx = (g(1, 0) - source.y * g(2, 0)) / w;
        const double dyy = (g(1, 1) - source.y * g(2, 1)) / w;
        Footprint footprint{dxx * dxx + dxy * dxy, dxx * dyx + dxy * dyy, dyx * dyx + dyy * dyy};
        if (!std::isfinite(footprint.xx) || !std::isfinite(footprint.xy) || !std::isfinite(footprint.yy))
            footprint = {1e12, 0, 1e12};
        const double spread = std::hypot((footprint.xx - footprint.yy) / 2, footprint.xy);
        const double longest = std::sqrt((footprint.xx + footprint.yy) / 2 + spread);
        if (longest <= 1 + 1e-9) {
            out[i] = interpolated(source);
        } else if (longest >= fadeEnd) {
            out[i] = filtered(source, footprint);
        } else {
            const float share = float((longest - 1) / (fadeEnd - 1));
            out[i] = interpolated(source) * splat(1 - share) + filtered(source, footprint) * splat(share);
        }
    }
}

} // namespace framora::raster
