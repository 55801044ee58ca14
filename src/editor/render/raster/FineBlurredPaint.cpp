#include "editor/render/raster/FineBlurredPaint.h"

#include "editor/render/raster/BlurKernels.h"

#include <algorithm>
#include <cmath>

namespace framora::raster {

FineBlurredPaint::FineBlurredPaint(std::shared_ptr<const Paint> paint, int margin, double deviation,
                                   const Canvas& canvas, ShadeCache* cache)
    : m_paint(std::move(paint)), m_cache(cache), m_margin(margin), m_canvas(canvas),
      m_radius(gaussianRadius(deviation)), m_half(gaussianHalf(deviation, m_radius)) {
    std::vector<double> row(std::size_t(2 * m_radius + 1));
    for (int i = -m_radius; i <= m_radius; ++i)
        row[std::size_t(i + m_radius)] = m_half[std::size_t(std::abs(i))];
    m_taps = BlurTaps({0}, {row}, BlurTaps::mixShift);
}

void FineBlurredPaint::shade(int x, int y, int count, Float4* out) const {
    const auto columnAt = [this](int column) {
        return std::clamp(column, m_canvas.left, m_canvas.right - 1);
    };
    const int first = columnAt(x - m_radius);
    const int width = columnAt(x + count - 1 + m_radius) + 1 - first;
    thread_local std::vector<Float4> read;
    thread_local std::vector<Float4> lowered;
    read.resize(std::max(read.size(), std::size_t(width)));
    lowered.assign(std::size_t(width), splat(0));
    for (int i = -m_radius; i <= m_radius; ++i) {
        const int row = std::clamp(y + i, m_canvas.top, m_canvas.bottom - 1);
        m_paint->shade(first + m_margin, row + m_margin, width, read.data());
        const Float4 weight = splat(float(m_half[std::size_t(std::abs(i))]));
        for (std::size_t column = 0; column < lowered.size(); ++column)
            lowered[column] += read[column] * weight;
    }
    for (int column = 0; column < count; ++column) {
        Float4 sum = splat(0);
        for (int i = -m_radius; i <= m_radius; ++i)
            sum += lowered[std::size_t(columnAt(x + column + i) - first)] *
                   splat(float(m_half[std::size_t(std::abs(i))]));
        out[column] = clampPremultiplied(sum, 1);
        // What is opaque is so to the last bit.
        if (isOpaque())
            out[column][3] = 1;
    }
}

void FineBlurredPaint::mix(const TileRect& tile, MixPixel* out) const {
    if (m_cache)
        m_cache->read(tile, out, [this](const TileRect& part, MixPixel* colors) { filter(part, colors); });
    else
        filter(tile, out);
}

void FineBlurredPaint::filter(const TileRect& tile, MixPixel* out) const {
    if (tile.area() == 0)
        return;
    const int left = std::clamp(tile.x - m_radius, m_canvas.left, m_canvas.right - 1);
    const int right = std::clamp(tile.x + tile.width + m_radius, left + 1, m_canvas.right);
    const int top = std::clamp(tile.y - m_radius, m_canvas.top, m_canvas.bottom - 1);
    const int bottom = std::clamp(tile.y + tile.height + m_radius, top + 1, m_canvas.bottom);
    const TileRect around{left + m_margin, top + m_margin, right - left, bottom - top};
    const auto width = std::size_t(around.width);
    const BlurTaps::Taps taps = m_taps.taps(0);
    thread_local std::vector<MixPixel> painted;
    thread_local std::vector<MixPixel> lowered;
    thread_local std::vector<const MixPixel*> rows;
    painted.resize(std::max(painted.size(), around.area()));
    m_paint->mix(around, painted.data());
    // A row with the canvas's edges repeated as far as the tile reaches.
    const int repeated = std::max(0, left - (tile.x - m_radius));
    const std::size_t padded = std::size_t(tile.width + 2 * m_radius) + 1;
    lowered.resize(std::max(lowered.size(), std::max(padded, std::size_t(repeated) + width)));
    for (int y = tile.y; y < tile.y + tile.height; ++y, out += tile.width) {
        rows.clear();
        for (int tap = 0; tap < taps.count; ++tap) {
            const int row = std::clamp(y - m_radius + tap, top, bottom - 1) - top;
            rows.push_back(painted.data() + std::size_t(row) * width);
        }
        sumRows(rows.data(), taps.weights, taps.count, m_taps.shift(), width, lowered.data() + repeated);
        std::fill_n(lowered.begin(), repeated, lowered[std::size_t(repeated)]);
        const auto end = lowered.begin() + repeated + around.width;
        if (repeated + around.width < int(padded))
            std::fill(end, lowered.begin() + std::ptrdiff_t(padded), end[-1]);
        rows.clear();
        for (int tap = 0; tap < taps.count; ++tap)
            rows.push_back(lowered.data() + tap);
        sumRows(rows.data(), taps.weights, taps.count, m_taps.shift(), std::size_t(tile.width), out);
        ditherPixels(out, tile.x, y, std::size_t(tile.width));
    }
}

} // namespace framora::raster
