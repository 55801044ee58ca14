#include "editor/render/raster/BlurGrid.h"

#include "editor/render/raster/BlurKernels.h"
#include "editor/render/raster/HugePages.h"
#include "editor/render/raster/ParallelFor.h"

#include <algorithm>
#include <new>
#include <vector>

namespace framora::raster {
namespace {

/// Neighbouring rows share most of what they are made of: a thread makes some in a row.
int rowsPerBand(int rows) {
    return std::clamp(rows / 16, 1, 8);
}

/// The sources of the rows [from, to).
BlurTaps::Taps spanOf(const BlurTaps& taps, int from, int to, int sources) {
    int first = sources;
    int end = 0;
    for (int row = from; row < to; ++row) {
        const BlurTaps::Taps here = taps.taps(row);
        first = std::min(first, here.first);
        end = std::max(end, std::min(sources, here.first + here.count));
    }
    return {first, end - first, nullptr};
}

/// Makes the rows of a grid, band by band. `sourceRows(first, count, x, width)` gives the row pointer of the
/// first of the sources from column x on, and its distance to the next row, in pixels.
template <typename Source, typename SourceRows>
void reduce(const BlurTaps& columnTaps, const BlurTaps& rowTaps, int sourceWidth, int sourceHeight,
            int chunkWidth, MixPixel* out, const SourceRows& sourceRows) {
    const int height = rowTaps.count();
    const int band = rowsPerBand(height);
    parallelFor((height + band - 1) / band, [&](int index) {
        thread_local std::vector<MixPixel> lowered; // the band's rows, still as wide as the source
        thread_local std::vector<const Source*> rows;
        const int from = index * band;
        const int to = std::min(height, from + band);
        const std::size_t stride = std::size_t(sourceWidth) + 1;
        lowered.resize(std::max(lowered.size(), stride * std::size_t(to - from)));
        const BlurTaps::Taps span = spanOf(rowTaps, from, to, sourceHeight);
        for (int x = 0; x < sourceWidth; x += chunkWidth) {
            const int width = std::min(chunkWidth, sourceWidth - x);
            const auto [source, pitch] = sourceRows(span.first, span.count, x, width);
            for (int row = from; row < to; ++row) {
                const BlurTaps::Taps taps = rowTaps.taps(row);
                rows.clear();
                for (int tap = 0; tap < taps.count; ++tap)
                    rows.push_back(source + std::min(taps.first + tap - span.first, span.count - 1) * pitch);
                sumRows(rows.data(), taps.weights, taps.count, rowTaps.shift(), std::size_t(width),
                        lowered.data() + std::size_t(row - from) * stride + x);
            }
        }
        for (int row = from; row < to; ++row)
            sumRuns(lowered.data() + std::size_t(row - from) * stride, columnTaps, 0, columnTaps.count(),
                    out + std::size_t(row) * std::size_t(columnTaps.count()));
    });
}

/// A block of a paint. The edge of the canvas, which goes on without end, is taken as it is, not dithered.
void paintBlock(const Paint& paint, const TileRect& tile, int width, int height, MixPixel* out) {
    paint.mix(tile, out);
    std::vector<Float4> colors(std::size_t(tile.width));
    for (const int y : {0, height - 1}) {
        if (y < tile.y || y >= tile.y + tile.height)
            continue;
        paint.shade(tile.x, y, tile.width, colors.data());
        std::transform(colors.begin(), colors.end(), out + std::ptrdiff_t(y - tile.y) * tile.width, toMix);
    }
    for (const int x : {0, width - 1}) {
        if (x < tile.x || x >= tile.x + tile.width)
            continue;
        for (int y = 0; y < tile.height; ++y) {
            paint.shade(x, tile.y + y, 1, colors.data());
            out[std::ptrdiff_t(y) * tile.width + (x - tile.x)] = toMix(colors[0]);
        }
    }
}

} // namespace

BlurGrid::BlurGrid(int width, int height) : m_width(width), m_height(height) {
    const std::size_t size = std::size_t(width) * std::size_t(height) + 1;
    try {
        m_cells = std::make_unique_for_overwrite<MixPixel[]>(size);
        m_cells[size - 1] = {};
        adviseHugePages(m_cells.get(), size * sizeof(MixPixel));
    } catch (const std::bad_alloc&) {
        m_width = m_height = 0;
    }
}

BlurGrid BlurGrid::reduced(PixelView picture, const BlurAxis& columns, const BlurAxis& rows) {
    BlurGrid grid(columns.cells(), rows.cells());
    if (grid.isEmpty())
        return grid;
    const auto samples = [](int size, const BlurAxis& axis) {
        return ResampleKernel(double(size) / axis.samples(), 0, size, 0, axis.samples());
    };
    const ResampleKernel columnSamples = samples(picture.width, columns);
    const ResampleKernel rowSamples = samples(picture.height, rows);
    constexpr int chunkWidth = 256;
    reduce<std::uint32_t>(
        columns.reducing(&columnSamples, BlurTaps::mixShift), rows.reducing(&rowSamples, BlurTaps::byteShift),
        picture.width, picture.height, chunkWidth, grid.m_cells.get(), [&](int first, int, int x, int) {
            return std::pair(picture.row(first) + x, picture.stride / std::ptrdiff_t(sizeof(std::uint32_t)));
        });
    return grid;
}

BlurGrid BlurGrid::reduced(const Paint& paint, const BlurAxis& columns, const BlurAxis& rows) {
    BlurGrid grid(columns.cells(), rows.cells());
    if (grid.isEmpty())
        return grid;
    constexpr int chunkWidth = 128;
    reduce<MixPixel>(columns.reducing(nullptr, BlurTaps::mixShift),
                     rows.reducing(nullptr, BlurTaps::mixShift), columns.samples(), rows.samples(),
                     chunkWidth, grid.m_cells.get(), [&](int first, int count, int x, int width) {
                         thread_local std::vector<MixPixel> painted;
                         const TileRect tile{x, first, width, count};
                         painted.resize(std::max(painted.size(), tile.area()));
                         paintBlock(paint, tile, columns.samples(), rows.samples(), painted.data());
                         const MixPixel* start = painted.data();
                         return std::pair(start, std::ptrdiff_t(width));
                     });
    return grid;
}

BlurGrid BlurGrid::copy() const {
    BlurGrid grid(m_width, m_height);
    if (!grid.isEmpty())
        std::copy_n(m_cells.get(), std::size_t(m_width) * std::size_t(m_height) + 1, grid.m_cells.get());
    return grid;
}

void BlurGrid::blur(const BlurAxis& columns, const BlurAxis& rows, double deviation) {
    if (isEmpty())
        return;
    blurColumns(rows.blurring(deviation));
    blurRows(columns.blurring(deviation));
}

/// Strip by strip, from a copy of the strip.
void BlurGrid::blurColumns(const BlurTaps& taps) {
    constexpr int stripWidth = 32;
    parallelFor((m_width + stripWidth - 1) / stripWidth, [&](int strip) {
        thread_local std::vector<MixPixel> kept;
        thread_local std::vector<const MixPixel*> rows;
        const int x = strip * stripWidth;
        const int width = std::min(stripWidth, m_width - x);
        kept.resize(std::max(kept.size(), std::size_t(stripWidth) * std::size_t(m_height)));
        for (int y = 0; y < m_height; ++y)
            std::copy_n(row(y) + x, width, kept.data() + std::ptrdiff_t(y) * stripWidth);
        for (int y = 0; y < m_height; ++y) {
            const BlurTaps::Taps here = taps.taps(y);
            rows.clear();
            for (int tap = 0; tap < here.count; ++tap)
                rows.push_back(kept.data() +
                               std::ptrdiff_t(std::min(here.first + tap, m_height - 1)) * stripWidth);
            sumRows(rows.data(), here.weights, here.count, taps.shift(), std::size_t(width), row(y) + x);
        }
    });
}

void BlurGrid::blurRows(const BlurTaps& taps) {
    // Away from the ends every cell has the same weights: then neighbours are summed side by side.
    const BlurTaps::Taps middle = taps.taps(m_width / 2);
    const auto isInner = [&](int x) {
        const BlurTaps::Taps here = taps.taps(x);
        return here.first - x == middle.first - m_width / 2 && here.count == middle.count &&
               std::equal(here.weights, here.weights + here.count, middle.weights);
    };
    int first = m_width / 2;
    int end = first + 1;
    while (first > 0 && isInner(first - 1))
        --first;
    while (end < m_width && isInner(end))
        ++end;
    constexpr int rowsAtOnce = 8;
    parallelFor((m_height + rowsAtOnce - 1) / rowsAtOnce, [&](int band) {
        thread_local std::vector<MixPixel> kept;
        thread_local std::vector<const MixPixel*> rows;
        kept.resize(std::max(kept.size(), std::size_t(m_width) + 2));
        for (int y = band * rowsAtOnce; y < std::min(m_height, (band + 1) * rowsAtOnce); ++y) {
            MixPixel* out = row(y);
            std::copy_n(out, m_width, kept.data());
            sumRuns(kept.data(), taps, 0, first, out);
            rows.clear();
            const int start = taps.taps(first).first;
            for (int tap = 0; tap < middle.count; ++tap)
                rows.push_back(kept.data() + start + tap);
            sumRows(rows.data(), middle.weights, middle.count, taps.shift(), std::size_t(end - first),
                    out + first);
            sumRuns(kept.data(), taps, end, m_width - end, out + end);
        }
    });
}

} // namespace framora::raster
