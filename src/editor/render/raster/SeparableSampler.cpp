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

MixBlock SeparableSampler::weighDown(const FixedTaps::Span& columns, int row, int rows) const {
    // Padding taps of weight zero may reach beyond the picture: they read what follows in the buffer.
    const int readable = std::min(columns.end, m_picture.width) - columns.first;
    const std::size_t stride =
        std::size_t(columns.end - columns.first + m_fixedColumns.paddedTaps()) + filterSlack;
    thread_local std::vector<MixPixel> mixed;
    if (mixed.size() < stride * std::size_t(rows))
        mixed.resize(stride * std::size_t(rows));
    const MixBlock block{mixed.data(), stride, readable, rows};
    weighRows(m_picture, columns.first, m_fixedRows, row, block);
    return block;
}

int SeparableSampler::rowsAtOnce(const FixedTaps::Span& columns) {
    constexpr int held = 24 << 10;
    return std::max(1, held / int(sizeof(MixPixel)) / std::max(1, columns.end - columns.first));
}

void SeparableSampler::mix(const TileRect& tile, MixPixel* out) const {
    // What lies beyond the kernels' ends is shaded too, though no layer shows it.
    struct Part {
        int first;  ///< Output of the taps.
        int before; ///< How many of the block come before it.
        int count;
    };
    const auto inside = [](const FixedTaps& taps, int start, int size) {
        const int first = std::clamp(start - taps.firstOutput(), 0, taps.count() - 1);
        const int end = std::clamp(start + size - taps.firstOutput(), first + 1, taps.count());
        const int before = std::clamp(taps.firstOutput() - start, 0, size - 1);
        return Part{first, before, std::min(end - first, size - before)};
    };
    const Part columns = inside(m_fixedColumns, tile.x, tile.width);
    const Part rows = inside(m_fixedRows, tile.y, tile.height);
    const auto width = std::size_t(tile.width);
    const MixBlock block{out + std::size_t(rows.before) * width + columns.before, width, columns.count,
                         rows.count};
    const FixedTaps::Span span = m_fixedColumns.span(columns.first, columns.count);
    for (int y = 0, most = rowsAtOnce(span); y < rows.count; y += most) {
        const int count = std::min(most, rows.count - y);
        weighColumns(weighDown(span, rows.first + y, count), m_fixedColumns, columns.first, m_alpha,
                     MixBlock{block.row(y), width, columns.count, count});
    }
    for (int y = 0; y < rows.count; ++y) {
        MixPixel* const row = block.row(y);
        std::fill_n(row - columns.before, columns.before, row[0]);
        std::fill(row + columns.count, row - columns.before + tile.width, row[columns.count - 1]);
    }
    const auto copyRow = [&](int from, int to) {
        std::copy_n(out + std::size_t(from) * width, width, out + std::size_t(to) * width);
    };
    for (int y = 0; y < rows.before; ++y)
        copyRow(rows.before, y);
    for (int y = rows.before + rows.count; y < tile.height; ++y)
        copyRow(rows.before + rows.count - 1, y);
}

bool SeparableSampler::draw(const TileRect& tile, MutablePixelView out, Storing storing) const {
    const int column = tile.x - m_fixedColumns.firstOutput();
    const int row = tile.y - m_fixedRows.firstOutput();
    if (m_alpha != Alpha::opaque || column < 0 || column + tile.width > m_fixedColumns.count() || row < 0 ||
        row + tile.height > m_fixedRows.count())
        return false;
    const FixedTaps::Span span = m_fixedColumns.span(column, tile.width);
    for (int y = 0, most = rowsAtOnce(span); y < tile.height; y += most) {
        const int count = std::min(most, tile.height - y);
        const MutablePixelView rows{out.data + y * out.stride, out.width, count, out.stride};
        packColumns(weighDown(span, row + y, count), m_fixedColumns, column, rows, storing);
    }
    return true;
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
