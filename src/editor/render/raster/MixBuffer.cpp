#include "editor/render/raster/MixBuffer.h"

#include <algorithm>
#include <vector>

namespace framora::raster {

void MixBufferPaint::shade(int x, int y, int count, Float4* out) const {
    std::vector<MixPixel> pixels(std::size_t(std::max(count, 0)));
    mix({x, y, count, 1}, pixels.data());
    for (int i = 0; i < count; ++i)
        for (int c = 0; c < 4; ++c)
            out[i][c] = float(pixels[std::size_t(i)].channel[c]) / float(mixOne);
}

void MixBufferPaint::mix(const TileRect& tile, MixPixel* out) const {
    const TileRect& area = m_buffer->area();
    const int left = std::clamp(area.x - tile.x, 0, tile.width);
    const int right = std::clamp(area.x + area.width - tile.x, left, tile.width);
    for (int y = 0; y < tile.height; ++y, out += tile.width) {
        const int row = tile.y + y - area.y;
        const bool isInside = row >= 0 && row < area.height && left < right;
        std::fill_n(out, isInside ? left : tile.width, MixPixel{});
        if (!isInside)
            continue;
        std::copy_n(m_buffer->row(row) + (tile.x + left - area.x), right - left, out + left);
        std::fill(out + right, out + tile.width, MixPixel{});
    }
}

} // namespace framora::raster
