#include "editor/render/raster/ProjectiveSampler.h"

#include "editor/render/raster/ProjectiveKernels.h"
#include "editor/render/raster/ResampleKernels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

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
    static constexpr int size = 1024; ///< 4 KB: it stays in the nearest cache.
    std::array<float, size + 1> weight{};
    FootprintTable() {
        for (int i = 0; i <= size; ++i)
            weight[std::size_t(i)] =
                float(footprintCurve(std::sqrt((i + 0.5) * footprintRadius * footprintRadius / size)));
    }
};
const FootprintTable footprintTable;

/// What the four neighbours of a point weigh that lies at `t`, 0...1, between the inner two.
void cubicWeights(float t, float* weights) {
    weights[0] = ((-0.5f * t + 1) * t - 0.5f) * t;
    weights[1] = (1.5f * t - 2.5f) * t * t + 1;
    weights[2] = ((-1.5f * t + 2) * t + 0.5f) * t;
    weights[3] = (0.5f * t - 0.5f) * t * t;
}

// The library's are calls; these stay inline. The values fit an int.
int floorToInt(double value) {
    const int whole = int(value);
    return whole - (value < whole);
}

int ceilToInt(double value) {
    const int whole = int(value);
    return whole + (value > whole);
}

// Blocks on a grid from the layer's origin are read by one rule each.
constexpr int blockWidth = 64;
constexpr int blockHeight = 32;

int floorToMultiple(int value, int size) {
    return value >= 0 ? value / size * size : -((-value + size - 1) / size) * size;
}

double inside(double value, double size) {
    return value > -4 ? std::min(value, size + 4) : -4; // what is not a number goes to the edge
}

/// The box's pixels, from (firstColumn, firstRow) on, as the kernels read them; beyond the picture its edge
/// repeats.
void copyWidened(PixelView picture, int firstColumn, int firstRow, const SourceBox& box, MixPixel* out) {
    const int left = std::clamp(-firstColumn, 0, box.width - 1);
    const int from = std::clamp(firstColumn + left, 0, picture.width - 1);
    const int count = std::clamp(picture.width - from, 1, box.width - left);
    for (int y = 0; y < box.height; ++y, out += box.width) {
        const std::uint32_t* row = picture.row(std::clamp(firstRow + y, 0, picture.height - 1)) + from;
        widenRow(row, std::size_t(count), out + left);
        std::fill_n(out, left, out[left]);
        std::fill(out + left + count, out + box.width, out[left + count - 1]);
    }
}

} // namespace

ProjectiveSampler::ProjectiveSampler(const PicturePyramid& pyramid, const Homography& toSource)
    : m_pyramid(pyramid), m_toSource(toSource) {}

double ProjectiveSampler::Footprint::longest() const {
    const double difference = (xx - yy) / 2;
    return std::sqrt((xx + yy) / 2 + std::sqrt(difference * difference + xy * xy));
}

ProjectiveSampler::Footprint ProjectiveSampler::footprint(Vec2 source, double depth) const {
    const Homography& g = m_toSource;
    const double scale = 1 / depth;
    const double dxx = (g(0, 0) - source.x * g(2, 0)) * scale;
    const double dxy = (g(0, 1) - source.x * g(2, 1)) * scale;
    const double dyx = (g(1, 0) - source.y * g(2, 0)) * scale;
    const double dyy = (g(1, 1) - source.y * g(2, 1)) * scale;
    const Footprint square{dxx * dxx + dxy * dxy, dxx * dyx + dxy * dyy, dyx * dyx + dyy * dyy};
    if (std::isfinite(square.xx) && std::isfinite(square.xy) && std::isfinite(square.yy))
        return square;
    return {1e12, 0, 1e12};
}

ProjectiveSampler::Filter ProjectiveSampler::filter(const Footprint& footprint) const {
    const PixelView picture = m_pyramid.picture();
    // The long and the narrow side, squared, and how far the long one points along x.
    const double difference = (footprint.xx - footprint.yy) / 2;
    const double mean = (footprint.xx + footprint.yy) / 2;
    const double spread = std::sqrt(difference * difference + footprint.xy * footprint.xy);
    const double largest = 4.0 * picture.width * picture.width + 4.0 * picture.height * picture.height + 1;
    const double longSide = std::clamp(mean + spread, 1.0, largest);
    const double narrowSide =
        std::clamp(mean - spread, std::max(1.0, longSide / (longestFootprint * longestFootprint)), longSide);
    const double alongX = spread > 0 ? 0.5 + difference / (2 * spread) : 0.5;
    const double alongXY = spread > 0 ? footprint.xy / (2 * spread) : 0;

    // A level halves the square of a side; the exponent of a double is the whole part of its logarithm.
    Filter filter;
    filter.level = m_pyramid.level(std::ilogb(narrowSide * (1 + 1e-9)));
    filter.scaleX = double(filter.level.width) / picture.width;
    filter.scaleY = double(filter.level.height) / picture.height;
    const double xx = (narrowSide + (longSide - narrowSide) * alongX) * filter.scaleX * filter.scaleX;
    const double xy = (longSide - narrowSide) * alongXY * filter.scaleX * filter.scaleY;
    const double yy = (narrowSide + (longSide - narrowSide) * (1 - alongX)) * filter.scaleY * filter.scaleY;
    const double unit = FootprintTable::size / (footprintRadius * footprintRadius) / (xx * yy - xy * xy);
    filter.a = yy * unit;
    filter.b = -xy * unit;
    filter.c = xx * unit;
    filter.reach = footprintRadius * std::sqrt(yy);
    return filter;
}

Float4 ProjectiveSampler::interpolated(Vec2 source) const {
    const PixelView picture = m_pyramid.picture();
    const int left = floorToInt(source.x - 0.5);
    const int top = floorToInt(source.y - 0.5);
    float horizontal[4];
    float vertical[4];
    cubicWeights(float(source.x - 0.5 - left), horizontal);
    cubicWeights(float(source.y - 0.5 - top), vertical);
    const int x = left - 1;
    const int y = top - 1;
    Float4 sum = splat(0);
    if (x >= 0 && x + 4 <= picture.width) {
        for (int j = 0; j < 4; ++j) {
            const std::uint32_t* row = picture.row(std::clamp(y + j, 0, picture.height - 1)) + x;
            const Float4 line = unpack(row[0]) * splat(horizontal[0]) +
                                unpack(row[1]) * splat(horizontal[1]) +
                                unpack(row[2]) * splat(horizontal[2]) + unpack(row[3]) * splat(horizontal[3]);
            sum += line * splat(vertical[j]);
        }
    } else {
        for (int j = 0; j < 4; ++j) {
            const std::uint32_t* row = picture.row(std::clamp(y + j, 0, picture.height - 1));
            Float4 line = splat(0);
            for (int i = 0; i < 4; ++i)
                line += unpack(row[std::clamp(x + i, 0, picture.width - 1)]) * splat(horizontal[i]);
            sum += line * splat(vertical[j]);
        }
    }
    return clampPremultiplied(sum, 255);
}

Float4 ProjectiveSampler::filtered(Vec2 source, const Filter& filter) const {
    const PixelView level = filter.level;
    const double x = source.x * filter.scaleX - 0.5;
    const double y = source.y * filter.scaleY - 0.5;
    const double a = filter.a;
    const double reverse = 1 / a;
    const int lastRow = floorToInt(y + filter.reach);
    Float4 sum = splat(0);
    float weights = 0;
    for (int row = ceilToInt(y - filter.reach); row <= lastRow; ++row) {
        const double dy = row - y;
        const double bend = filter.b * dy;
        const double fixed = filter.c * dy * dy;
        const double root = bend * bend - a * (fixed - FootprintTable::size);
        if (root <= 0)
            continue;
        const double half = double(std::sqrt(float(root))) * reverse;
        const double middle = x - bend * reverse;
        const int from = ceilToInt(middle - half);
        const int to = floorToInt(middle + half);
        const std::uint32_t* pixels = level.row(std::clamp(row, 0, level.height - 1));
        const bool isInside = from >= 0 && to < level.width;
        const double start = from - x;
        double distance = (a * start + 2 * bend) * start + fixed;
        double step = a * (2 * start + 1) + 2 * bend;
        for (int column = from; column <= to; ++column) {
            const int entry = std::clamp(int(distance), 0, FootprintTable::size);
            distance += step;
            step += 2 * a;
            const float weight = footprintTable.weight[std::size_t(entry)];
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
    const PixelView picture = m_pyramid.picture();
    const bool isAffine = m_toSource.isAffine();
    Footprint square = footprint({0, 0}, m_toSource.depth({0, 0}));
    double longest = square.longest();
    std::optional<Filter> mixing;
    for (int i = 0; i < count; ++i) {
        const Vec2 pixel{x + i + 0.5, y + 0.5};
        const Vec2 exact = m_toSource.map(pixel);
        const Vec2 source{inside(exact.x, picture.width), inside(exact.y, picture.height)};
        if (!isAffine) {
            square = footprint(source, m_toSource.depth(pixel));
            // Both sides' squares together are no less than the long one's.
            longest = square.xx + square.yy <= 1 ? 1 : square.longest();
        }
        if (longest <= 1 + 1e-9) {
            out[i] = interpolated(source);
            continue;
        }
        if (!isAffine || !mixing)
            mixing = filter(square);
        out[i] = filtered(source, *mixing);
        if (longest < fadeEnd) {
            const float share = float((longest - 1) / (fadeEnd - 1));
            out[i] = interpolated(source) * splat(1 - share) + out[i] * splat(share);
        }
    }
}

std::optional<TileRect> ProjectiveSampler::magnifiedSource(const TileRect& block) const {
    const PixelView picture = m_pyramid.picture();
    double left = picture.width + 4;
    double right = -4;
    double top = picture.height + 4;
    double bottom = -4;
    for (const int x : {block.x, block.x + block.width})
        for (const int y : {block.y, block.y + block.height}) {
            const Vec2 corner{double(x), double(y)};
            const double depth = m_toSource.depth(corner);
            if (!(depth > 0))
                return std::nullopt;
            const Vec2 exact = m_toSource.map(corner);
            if (!(footprint(exact, depth).longest() <= 1 + 1e-9))
                return std::nullopt;
            left = std::min(left, inside(exact.x, picture.width));
            right = std::max(right, inside(exact.x, picture.width));
            top = std::min(top, inside(exact.y, picture.height));
            bottom = std::max(bottom, inside(exact.y, picture.height));
        }
    // The neighbours of the pixels that lie between, and one more for rounding.
    const int firstColumn = int(std::floor(left)) - 3;
    const int firstRow = int(std::floor(top)) - 3;
    return TileRect{firstColumn, firstRow, int(std::ceil(right)) + 3 - firstColumn,
                    int(std::ceil(bottom)) + 3 - firstRow};
}

bool ProjectiveSampler::mixMagnified(const TileRect& block, const TileRect& part, MixPixel* out,
                                     int stride) const {
    const std::optional<TileRect> whole = magnifiedSource(block);
    const std::optional<TileRect> read = whole ? magnifiedSource(part) : std::nullopt;
    if (!read)
        return false;
    SourceBox box{nullptr, read->width, read->height};
    thread_local std::vector<MixPixel> pixels;
    pixels.resize(std::max(pixels.size(), std::size_t(box.width) * std::size_t(box.height)));
    copyWidened(m_pyramid.picture(), read->x, read->y, box, pixels.data());
    box.pixels = pixels.data();

    // From pixel centres to the first of the four by four neighbours. The places are told from the block's
    // corner in what the whole block reads, so that they come out alike for any part of it.
    const SourceBox wholeBox{nullptr, whole->width, whole->height};
    const Homography map = Homography::translation(-1.5 - whole->x, -1.5 - whole->y) * m_toSource *
                           Homography::translation(block.x + 0.5, block.y + 0.5);
    const int columnShift = (read->x - whole->x) << positionBits;
    const int rowShift = (read->y - whole->y) << positionBits;
    const int lastColumn = ((box.width - 3) << positionBits) - 1;
    const int lastRow = ((box.height - 3) << positionBits) - 1;
    std::array<std::int32_t, blockWidth> columns;
    std::array<std::int32_t, blockWidth> rows;
    const int skipped = part.x - block.x;
    const int end = skipped + part.width;
    const double scale = 1 / map(2, 2);
    for (int y = part.y - block.y; y < part.y - block.y + part.height; ++y, out += stride) {
        const auto at = [&](int row) { return float((map(row, 1) * y + map(row, 2)) * scale); };
        const auto step = [&](int row) { return float(map(row, 0) * scale); };
        projectRow({at(0), at(1), at(2), step(0), step(1), step(2)}, wholeBox, std::size_t(end),
                   columns.data(), rows.data());
        for (std::size_t i = std::size_t(skipped); i < std::size_t(end); ++i) {
            columns[i] = std::clamp(columns[i] - columnShift, 0, lastColumn);
            rows[i] = std::clamp(rows[i] - rowShift, 0, lastRow);
        }
        interpolateRow(box, columns.data() + skipped, rows.data() + skipped, std::size_t(part.width), out);
    }
    return true;
}

void ProjectiveSampler::mix(const TileRect& tile, MixPixel* out) const {
    thread_local std::vector<Float4> row;
    const int right = tile.x + tile.width;
    const int bottom = tile.y + tile.height;
    for (int top = tile.y; top < bottom;) {
        const int blockTop = floorToMultiple(top, blockHeight);
        const int height = std::min(bottom, blockTop + blockHeight) - top;
        for (int left = tile.x; left < right;) {
            const int blockLeft = floorToMultiple(left, blockWidth);
            const TileRect part{left, top, std::min(right, blockLeft + blockWidth) - left, height};
            MixPixel* to = out + std::ptrdiff_t(top - tile.y) * tile.width + (left - tile.x);
            left += part.width;
            if (mixMagnified({blockLeft, blockTop, blockWidth, blockHeight}, part, to, tile.width))
                continue;
            row.resize(std::max(row.size(), std::size_t(part.width)));
            for (int y = part.y; y < part.y + height; ++y, to += tile.width) {
                read(part.x, y, part.width, row.data());
                for (int x = 0; x < part.width; ++x)
                    to[x] = toMix(row[std::size_t(x)] * splat(1.0f / 255));
            }
        }
        top += height;
    }
}

} // namespace framora::raster
