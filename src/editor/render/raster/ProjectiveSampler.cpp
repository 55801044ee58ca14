#include "editor/render/raster/ProjectiveSampler.h"

#include <algorithm>
#include <cmath>

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
constexpr int blockWidth = FootprintSampler::mostBlockWidth;
constexpr int blockHeight = FootprintSampler::mostBlockHeight;

// Nor smaller than this where they are quartered.
constexpr int leastBlockSide = 4;

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

bool ProjectiveSampler::isQuartered(const TileRect& block) const {
    return std::min(block.width, block.height) > leastBlockSide && m_footprints.isUneven(block);
}

TileRect ProjectiveSampler::blockAround(int x, int y) const {
    TileRect block{floorToMultiple(x, blockWidth), floorToMultiple(y, blockHeight), blockWidth, blockHeight};
    while (isQuartered(block)) {
        block.width /= 2;
        block.height /= 2;
        block.x += x >= block.x + block.width ? block.width : 0;
        block.y += y >= block.y + block.height ? block.height : 0;
    }
    return block;
}

void ProjectiveSampler::read(int x, int y, int count, Float4* out) const {
    const PixelView picture = m_pyramid.picture();
    const int right = x + count;
    while (x < right) {
        const TileRect block = blockAround(x, y);
        const int end = std::min(right, block.x + block.width);
        if (!isMagnified(block)) {
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

bool ProjectiveSampler::isMagnified(const TileRect& block) const {
    for (const int x : {block.x, block.x + block.width})
        for (const int y : {block.y, block.y + block.height}) {
            const Vec2 corner{double(x), double(y)};
            const double depth = m_toSource.depth(corner);
            if (!(depth > 0))
                return false;
            if (!(FootprintSampler::ellipse(m_toSource, m_toSource.map(corner), depth).longest() <= 1 + 1e-9))
                return false;
        }
    return true;
}

void ProjectiveSampler::mixBlock(const TileRect& block, const TileRect& tile, MixPixel* out) const {
    const int left = std::max(block.x, tile.x);
    const int top = std::max(block.y, tile.y);
    const TileRect part{left, top, std::min(block.x + block.width, tile.x + tile.width) - left,
                        std::min(block.y + block.height, tile.y + tile.height) - top};
    if (part.width <= 0 || part.height <= 0)
        return;
    if (isQuartered(block)) {
        const int width = block.width / 2;
        const int height = block.height / 2;
        for (int i = 0; i < 4; ++i)
            mixBlock({block.x + i % 2 * width, block.y + i / 2 * height, width, height}, tile, out);
        return;
    }
    m_footprints.mix(block, part, out + std::ptrdiff_t(top - tile.y) * tile.width + (left - tile.x),
                     tile.width);
}

void ProjectiveSampler::mix(const TileRect& tile, MixPixel* out) const {
    for (int y = floorToMultiple(tile.y, blockHeight); y < tile.y + tile.height; y += blockHeight)
        for (int x = floorToMultiple(tile.x, blockWidth); x < tile.x + tile.width; x += blockWidth)
            mixBlock({x, y, blockWidth, blockHeight}, tile, out);
}

} // namespace framora::raster
