#include "editor/render/raster/Paint.h"

#include <algorithm>
#include <array>

namespace framora::raster {

void Paint::mix(const TileRect& tile, MixPixel* out) const {
    std::array<Float4, 256> colors;
    for (int y = 0; y < tile.height; ++y)
        for (int x = 0; x < tile.width;) {
            const int count = std::min(int(colors.size()), tile.width - x);
            shade(tile.x + x, tile.y + y, count, colors.data());
            for (int i = 0; i < count; ++i)
                *out++ = toMix(colors[std::size_t(i)]);
            x += count;
        }
}

std::shared_ptr<const Paint> Paint::coarser(int) const {
    return nullptr;
}

bool Paint::overlay(const TileRect&, MixPixel*, std::ptrdiff_t) const {
    return false;
}

bool Paint::drawOverlaid(const TileRect&, const MixRows&, MutablePixelView, Storing) const {
    return false;
}

bool Paint::draw(const TileRect&, MutablePixelView, Storing) const {
    return false;
}

} // namespace framora::raster
