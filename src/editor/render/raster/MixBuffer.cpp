#include "editor/render/raster/MixBuffer.h"

#include "editor/render/raster/BlurKernels.h"
#include "editor/render/raster/FixedPoint.h"
#include "editor/render/raster/MixKernels.h"
#include "editor/render/raster/ParallelFor.h"
#include "editor/render/raster/ResampleKernels.h"

#include <algorithm>
#include <cmath>

namespace framora::raster {

MixBuffer::MixBuffer(PixelView picture, int x, int y)
    : m_area{x, y, picture.width, picture.height}, m_pixels(m_area.area() + 1) {
    for (int i = 0; i < picture.height; ++i)
        widenRow(picture.row(i), std::size_t(picture.width), row(i));
}

void MixBuffer::fade(double opacity) {
    const auto factor = std::int16_t(std::lround(std::clamp(opacity, 0.0, 1.0) * coverageOne));
    for (MixPixel& pixel : m_pixels)
        for (std::int16_t& channel : pixel.channel)
            channel = mulFixed(channel, factor);
}

void MixBuffer::blur(double deviation) {
    if (!(deviation > 0) || m_area.area() == 0)
        return;
    const BlurTaps columns = gaussianTaps(deviation, m_area.width);
    const BlurTaps rows = gaussianTaps(deviation, m_area.height);
    const auto width = std::size_t(m_area.width);
    std::vector<MixPixel> across(m_pixels.size() + width); // the taps may name one row more
    parallelFor(m_area.height, [&](int y) {
        sumRuns(row(y), columns, 0, m_area.width, across.data() + std::size_t(y) * width);
    });
    parallelFor(m_area.height, [&](int y) {
        const BlurTaps::Taps taps = rows.taps(y);
        thread_local std::vector<const MixPixel*> sources;
        sources.resize(std::size_t(taps.count));
        for (int tap = 0; tap < taps.count; ++tap)
            sources[std::size_t(tap)] = across.data() + std::size_t(taps.first + tap) * width;
        sumRows(sources.data(), taps.weights, taps.count, rows.shift(), width, row(y));
    });
}

void MixBuffer::put(const MixBuffer& above) {
    blendOver(m_pixels.data(), above.m_pixels.data(), m_area.area());
}

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
