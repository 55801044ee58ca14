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

// Blocks on a grid from the layer's origin are read by one rule each.
constexpr int blockWidth = 64;
constexpr int blockHeight = 32;

int floorToMultiple(int value, int size) {
    return value >= 0 ? value / size * size : -((-value + size - 1) / size) * size;
}

double inside(double value, double size) {
    return value > -4 ? std::min(value, size + 4) : -4; // what is not a number goes to the edge
}

} // namespace

ProjectiveSampler::ProjectiveSampler(const PicturePyramid& pyramid, const Homography& toSource)
    : m_pyramid(pyramid), m_toSource(toSource), m_footprints(pyramid, toSource) {}

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

void ProjectiveSampler::read(int x, int y, int count, Float4* out) const {
    const PixelView picture = m_pyramid.picture();
    const int right = x + count;
    while (x < right) {
        const TileRect block{floorToMultiple(x, blockWidth), floorToMultiple(y, blockHeight), blockWidth,
                             blockHeight};
        const int end = std::min(right, block.x + blockWidth);
        if (!magnifiedSource(block)) {
            m_footprints.read(block, x, y, end - x, out);
            out += end - x;
            x = end;
            continue;
        }
        for (; x < end; ++x) {
            const Vec2 exact = m_toSource.map({x + 0.5, y + 0.5});
            *out++ = interpolated({inside(exact.x, picture.width), inside(exact.y, picture.height)});
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
            if (!(FootprintSampler::ellipse(m_toSource, exact, depth).longest() <= 1 + 1e-9))
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
    widenBox(m_pyramid.picture(), read->x, read->y, box, pixels.data());
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
            const TileRect block{blockLeft, blockTop, blockWidth, blockHeight};
            if (mixMagnified(block, part, to, tile.width) || m_footprints.mix(block, part, to, tile.width))
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
