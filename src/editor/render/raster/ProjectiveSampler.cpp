#include "editor/render/raster/ProjectiveSampler.h"

#include <algorithm>

namespace framora::raster {
namespace {

// Blocks on a grid from the layer's origin are read by one rule each.
constexpr int blockWidth = FootprintSampler::mostBlockWidth;
constexpr int blockHeight = FootprintSampler::mostBlockHeight;

// Nor smaller than this where they are quartered.
constexpr int leastBlockSide = 4;

int floorToMultiple(int value, int size) {
    return value >= 0 ? value / size * size : -((-value + size - 1) / size) * size;
}

} // namespace

ProjectiveSampler::ProjectiveSampler(const PicturePyramid& pyramid, const Homography& toSource)
    : m_footprints(pyramid, toSource) {}

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
    const int right = x + count;
    while (x < right) {
        const TileRect block = blockAround(x, y);
        const int end = std::min(right, block.x + block.width);
        m_footprints.read(block, x, y, end - x, out);
        out += end - x;
        x = end;
    }
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
