#include "editor/render/raster/SeparableSampler.h"

#include "editor/render/raster/ParallelFor.h"

#include <algorithm>
#include <vector>

namespace framora::raster {

SeparableSampler::SeparableSampler(PixelView picture, Alpha alpha, const Axis& columns, const Axis& rows)
    : m_picture(picture), m_alpha(alpha) {
    const auto make = [](const Axis& axis, int size, ResampleKernel& kernel, FixedTaps& fixed) {
        kernel = ResampleKernel(axis.step, axis.origin, size, axis.first, axis.end);
        fixed = FixedTaps(kernel, kernel.firstOutput(), kernel.endOutput());
    };
    // Both at once: while a picture's scale changes, every frame waits for them.
    parallelFor(2, [&](int axis) {
        if (axis == 1)
            return make(rows, picture.height, m_rows, m_fixedRows);
        make(columns, picture.width, m_columns, m_fixedColumns);
        m_fixedColumns.spreadWeights();
    });
}

void SeparableSampler::mix(const TileRect& tile, MixPixel* out) const {
    const FixedTaps& columns = m_fixedColumns;
    const FixedTaps& rows = m_fixedRows;
    // What lies beyond the kernels' ends is shaded too, though no layer shows it.
    const int first = std::clamp(tile.x - columns.firstOutput(), 0, columns.count() - 1);
    const int end = std::clamp(tile.x + tile.width - columns.firstOutput(), first + 1, columns.count());
    const int left = std::clamp(columns.firstOutput() - tile.x, 0, tile.width - 1);
    const int count = std::min(end - first, tile.width - left);
    const FixedTaps::Span span = columns.span(first, count);
    // Padding taps of weight zero may reach beyond the picture: they read what follows in the buffer.
    const auto readable = std::size_t(std::min(span.end, m_picture.width) - span.first);
    const std::size_t needed = std::size_t(span.end - span.first + columns.paddedTaps()) + filterSlack;
    thread_local std::vector<MixPixel> mixed;
    thread_local std::vector<const std::uint32_t*> sources;
    if (mixed.size() < needed)
        mixed.resize(needed);
    sources.resize(std::size_t(rows.taps()));
    for (int y = 0; y < tile.height; ++y, out += tile.width) {
        const int row = std::clamp(tile.y + y - rows.firstOutput(), 0, rows.count() - 1);
        for (int tap = 0; tap < rows.taps(); ++tap)
            sources[std::size_t(tap)] =
                m_picture.row(std::min(rows.start(row) + tap, m_picture.height - 1)) + span.first;
        weighRows(sources.data(), rows.weights(row), rows.taps(), readable, mixed.data());
        weighColumns(mixed.data(), columns, first, count, m_alpha, out + left);
        std::fill_n(out, left, out[left]);
        std::fill(out + left + count, out + tile.width, out[left + count - 1]);
    }
}

void SeparableSampler::read(int x, int y, int count, Float4* out) const {
    if (count <= 0)
        return;
    const ResampleKernel::Taps rows = m_rows.taps(y);
    int firstColumn = m_picture.width;
    int endColumn = 0;
    for (int i = 0; i < count; ++i) {
        const ResampleKernel::Taps taps = m_columns.taps(x + i);
        firstColumn = std::min(firstColumn, taps.first);
        endColumn = std::max(endColumn, taps.first + taps.count);
    }
    const std::size_t columns = std::size_t(endColumn - firstColumn);

    // Down first: one row of mixed source pixels, all channels alike.
    thread_local std::vector<Float4> mixed;
    if (mixed.size() < columns)
        mixed.resize(columns);
    float* sums = reinterpret_cast<float*>(mixed.data());
    for (int tap = 0; tap < rows.count; ++tap) {
        const auto* source =
            reinterpret_cast<const std::uint8_t*>(m_picture.row(rows.first + tap) + firstColumn);
        const float weight = rows.weights[tap];
        if (tap == 0)
            for (std::size_t i = 0; i < columns * 4; ++i)
                sums[i] = weight * float(source[i]);
        else
            for (std::size_t i = 0; i < columns * 4; ++i)
                sums[i] += weight * float(source[i]);
    }
    for (int i = 0; i < count; ++i) {
        const ResampleKernel::Taps taps = m_columns.taps(x + i);
        const Float4* source = mixed.data() + (taps.first - firstColumn);
        Float4 sum = source[0] * splat(taps.weights[0]);
        for (int tap = 1; tap < taps.count; ++tap)
            sum += source[tap] * splat(taps.weights[tap]);
        out[i] = clampPremultiplied(sum, 255);
    }
}

} // namespace framora::raster
