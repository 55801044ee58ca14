#include "editor/render/raster/PicturePaint.h"

#include <algorithm>
#include <cmath>

namespace framora::raster {
namespace {

Homography fromSource(PixelView picture, double width, double height, const Homography& toOutput) {
    return toOutput * Homography::scaling(width / picture.width, height / picture.height) *
           Homography::translation(-picture.width / 2.0, -picture.height / 2.0);
}

/// The level to scale from: so much larger than what is wanted, by a root of two to two, that its own filter
/// shows little. The picture itself unless at least a half of it is as good.
int reduction(double scale) {
    constexpr int least = 2;
    const int level = scale < 1 ? std::ilogb(1 / (scale * scale)) - 1 : 0;
    return level < least ? 0 : std::min(level, PicturePyramid::levelCount - 1);
}

/// The kernel of one axis: source s lies at output s * scale + offset. It covers the picture's own pixels in
/// the `size` outputs from `start`.
SeparableSampler::Axis axisOf(double scale, double offset, int sourceSize, int start, int size) {
    const double end = double(start) + size;
    const int first = int(std::clamp(std::floor(offset) - 1, double(start), end));
    const int last = int(std::clamp(std::ceil(sourceSize * scale + offset) + 1, double(first), end));
    return {1 / scale, -offset / scale, first, last};
}

/// The rectangle that the picture takes, in pixels from the layer's origin; empty when it is much larger than
/// the output, of which little would be used.
ShadeCache::Key cacheKey(PixelView picture, const Homography& map, int outputWidth, int outputHeight) {
    ShadeCache::Key key;
    key.map = map;
    double left = 1e9, top = 1e9, right = -1e9, bottom = -1e9;
    for (const int x : {0, picture.width})
        for (const int y : {0, picture.height}) {
            const Vec2 source{double(x), double(y)};
            if (!(map.depth(source) > 0))
                return key;
            const Vec2 corner = map.map(source);
            left = std::min(left, corner.x);
            right = std::max(right, corner.x);
            top = std::min(top, corner.y);
            bottom = std::max(bottom, corner.y);
        }
    constexpr double largest = 2; // of the output's area
    if (!((right - left + 4) * (bottom - top + 4) <= largest * outputWidth * outputHeight))
        return key;
    if (!(std::abs(left) < 1e8 && std::abs(top) < 1e8))
        return key;
    key.left = int(std::floor(left)) - 1;
    key.top = int(std::floor(top)) - 1;
    key.width = int(std::ceil(right)) + 1 - key.left;
    key.height = int(std::ceil(bottom)) + 1 - key.top;
    return key;
}

} // namespace

PicturePaint::PicturePaint(std::shared_ptr<const PicturePyramid> picture, double width, double height,
                           const Placement& placement, int outputWidth, int outputHeight, ShadeCache* cache)
    : m_picture(std::move(picture)), m_originX(placement.originX), m_originY(placement.originY),
      m_projective(*m_picture,
                   fromSource(m_picture->picture(), width, height, placement.toOutput).inverse()) {
    const PixelView pixels = m_picture->picture();
    const Homography map = fromSource(pixels, width, height, placement.toOutput);
    const bool isUpright = map.isAffine() && map(0, 1) == 0 && map(1, 0) == 0 && map(2, 2) == 1;
    // The pixels that may be asked for: those of the output, or all that are kept.
    ShadeCache::Key region = cacheKey(pixels, map, outputWidth, outputHeight);
    if (cache && cache->begin(region)) {
        m_cache = cache;
    } else {
        region.left = -m_originX;
        region.top = -m_originY;
        region.width = outputWidth;
        region.height = outputHeight;
    }
    if (!isUpright || !(map(0, 0) > 0 && map(1, 1) > 0))
        return;
    if (m_cache && m_cache->sampler()) {
        m_separable = m_cache->sampler();
        return;
    }
    const PixelView level = m_picture->level(reduction(std::max(map(0, 0), map(1, 1))));
    const double scaleX = map(0, 0) * pixels.width / level.width;
    const double scaleY = map(1, 1) * pixels.height / level.height;
    m_separable = std::make_shared<const SeparableSampler>(
        level, m_picture->isOpaque() ? Alpha::opaque : Alpha::any,
        axisOf(scaleX, map(0, 2), level.width, region.left, region.width),
        axisOf(scaleY, map(1, 2), level.height, region.top, region.height));
    if (m_cache)
        m_cache->keepSampler(m_separable);
}

void PicturePaint::shade(int x, int y, int count, Float4* out) const {
    if (m_separable)
        m_separable->read(x - m_originX, y - m_originY, count, out);
    else
        m_projective.read(x - m_originX, y - m_originY, count, out);
    for (int i = 0; i < count; ++i)
        out[i] *= splat(1.0f / 255);
}

void PicturePaint::mix(const TileRect& tile, MixPixel* out) const {
    const TileRect local{tile.x - m_originX, tile.y - m_originY, tile.width, tile.height};
    if (m_cache)
        m_cache->read(local, out, [this](const TileRect& part, MixPixel* colors) { filter(part, colors); });
    else
        filter(local, out);
}

bool PicturePaint::draw(const TileRect& tile, MutablePixelView out, Storing storing) const {
    return m_separable && !m_cache &&
           m_separable->draw({tile.x - m_originX, tile.y - m_originY, tile.width, tile.height}, out, storing);
}

std::optional<Paint::BlockCorner> PicturePaint::blockCorner() const {
    // What is kept is only copied: its tiles stay where they are while it moves.
    if (m_separable || m_cache)
        return std::nullopt;
    return BlockCorner{m_originX, m_originY};
}

void PicturePaint::filter(const TileRect& tile, MixPixel* out) const {
    if (m_separable)
        m_separable->mix(tile, out);
    else
        m_projective.mix(tile, out);
}

} // namespace framora::raster
