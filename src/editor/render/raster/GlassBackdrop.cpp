#include "editor/render/raster/GlassBackdrop.h"

#include "editor/render/raster/BlurKernels.h"
#include "editor/render/raster/ParallelFor.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <type_traits>

namespace framora::raster {
namespace {

// A cell is so small that reading between cells adds little to the blur; the rest of it is made up for.
constexpr double leastCells = 1.5; // of a deviation

int cellSize(double deviation) {
    int cell = 1;
    while (cell < tileGrain && deviation >= 2 * cell * leastCells)
        cell *= 2;
    return cell;
}

/// The deviation in cells that is left when a mean over a cell and a straight line between cells have done
/// their part.
double remainingDeviation(double deviation, int cell) {
    const double cells = deviation / cell;
    const double mean = (1 - 1.0 / (cell * cell)) / 12;
    const double line = 1.0 / 6;
    return std::sqrt(std::max(cells * cells - mean - line, 0.01));
}

} // namespace

GlassBackdrop::GlassBackdrop(int width, int height, int cell)
    : m_cell(cell), m_width((width + cell - 1) / cell), m_height((height + cell - 1) / cell),
      m_blocksAcross((m_width + side - 1) / side), m_blocksDown((m_height + side - 1) / side),
      m_scale(1.0 / cell), m_lastX(float(m_width - 1)), m_lastY(float(m_height - 1)) {}

GlassBackdrop::Cells GlassBackdrop::allocated(std::size_t count) {
    return Cells(static_cast<MixPixel*>(std::calloc(std::max<std::size_t>(count, 1), sizeof(MixPixel))));
}

std::shared_ptr<const GlassBackdrop> GlassBackdrop::make(const std::vector<Layer>& layers,
                                                         const GlassWindow& window, double deviation,
                                                         int reach) {
    const int cell = cellSize(deviation);
    const double remaining = remainingDeviation(deviation, cell);
    const std::shared_ptr<GlassBackdrop> backdrop(new GlassBackdrop(window.width(), window.height(), cell));
    const int around = (gaussianRadius(remaining) + 2) * cell;
    backdrop->m_known = backdrop->findBlocks(window, around, around + reach);
    const Cells cells = allocated(std::size_t(backdrop->m_known.count) * side * side);
    backdrop->m_blurred = allocated(backdrop->findRuns(backdrop->findBlocks(window, cell, cell + reach)));
    if (!cells || !backdrop->m_blurred)
        return nullptr;
    composeTiles(
        window.width(), window.height(), layers,
        [&](const TileRect& tile) { return backdrop->hasBlock(tile); },
        [&](const TileRect& tile, const MixPixel* pixels) { backdrop->reduce(tile, pixels, cells.get()); });
    backdrop->blur(cells.get(), remaining);
    return backdrop;
}

GlassBackdrop::Blocks GlassBackdrop::findBlocks(const GlassWindow& window, int outwards, int inwards) const {
    const int pixels = side * m_cell;
    Blocks blocks;
    blocks.slots.reserve(std::size_t(m_blocksAcross) * std::size_t(m_blocksDown));
    for (int y = 0; y < m_blocksDown; ++y) {
        const GlassWindow::Strip strip = window.strip(y * pixels, (y + 1) * pixels, outwards, inwards);
        for (int x = 0; x < m_blocksAcross; ++x)
            blocks.slots.push_back(strip.shows(x * pixels, (x + 1) * pixels) ? blocks.count++ : -1);
    }
    return blocks;
}

std::size_t GlassBackdrop::findRuns(const Blocks& blocks) {
    m_runs.assign(blocks.slots.size(), {});
    std::ptrdiff_t count = 0;
    for (int y = 0; y < m_blocksDown; ++y)
        for (int x = 0, end = 0; x < m_blocksAcross; x = end + 1) {
            for (end = x; end < m_blocksAcross && slotAt(blocks, end, y) >= 0;)
                ++end;
            const int width = (end - x) * side + 1;
            Run* runs = m_runs.data() + std::size_t(y) * std::size_t(m_blocksAcross);
            for (int block = x; block < end; ++block)
                runs[block] = {count + std::ptrdiff_t(block - x) * side, width};
            if (end > x)
                count += std::ptrdiff_t(width) * runHeight;
        }
    return std::size_t(count);
}

bool GlassBackdrop::hasBlock(const TileRect& pixels) const {
    const int shift = std::countr_zero(unsigned(side * m_cell));
    for (int y = pixels.y >> shift; y <= (pixels.y + pixels.height - 1) >> shift; ++y)
        for (int x = pixels.x >> shift; x <= (pixels.x + pixels.width - 1) >> shift; ++x)
            if (slotAt(m_known, x, y) >= 0)
                return true;
    return false;
}

namespace {

/// The mean of two by two pixels, as reduceRow() gives it.
MixPixel meanOfFour(const MixPixel* upper, const MixPixel* lower) {
    using Short8 = std::int16_t __attribute__((vector_size(16)));
    using Short4 = std::int16_t __attribute__((vector_size(8)));
    using Int4 = std::int32_t __attribute__((vector_size(16)));
    Short8 rows[2];
    std::memcpy(&rows[0], upper, sizeof rows[0]);
    std::memcpy(&rows[1], lower, sizeof rows[1]);
    Int4 sum = Int4{} + 2;
    for (const Short8 row : rows) {
        // Each in the upper half of a word, which the shift spreads its sign over.
        sum += reinterpret_cast<Int4>(__builtin_shufflevector(Short8{}, row, 0, 8, 1, 9, 2, 10, 3, 11)) >> 16;
        sum +=
            reinterpret_cast<Int4>(__builtin_shufflevector(Short8{}, row, 0, 12, 1, 13, 2, 14, 3, 15)) >> 16;
    }
    const Short4 mean = __builtin_convertvector(sum >> 2, Short4);
    MixPixel out;
    std::memcpy(out.channel, &mean, sizeof mean);
    return out;
}

} // namespace

template <int cellSize>
void GlassBackdrop::reduceRow(const TileRect& tile, const MixPixel* pixels, int row, int rows,
                              MixPixel* cells) const {
    const auto mean = [&](const MixPixel* from, int columns) {
        Float4 sum = splat(0); // of at most 16 x 16 times mixOne: exact
        for (int j = 0; j < rows; ++j, from += tile.width)
            for (int i = 0; i < columns; ++i)
                sum += toFloats(from[i]);
        const Float4 rounded = sum * splat(1.0f / float(rows * columns)) + splat(0.5f);
        return MixPixel{{std::int16_t(rounded[0]), std::int16_t(rounded[1]), std::int16_t(rounded[2]),
                         std::int16_t(rounded[3])}};
    };
    for (int x = 0; x < tile.width;) {
        // As far as the block goes.
        const int column = (tile.x + x) / cellSize;
        const int end = std::min(tile.width, (column / side + 1) * side * cellSize - tile.x);
        const int slot = slotAt(m_known, column / side, row / side);
        if (slot < 0) {
            x = end;
            continue;
        }
        MixPixel* out =
            cells + std::size_t(slot) * side * side + std::size_t(row % side * side + column % side);
        if (cellSize == 2 && rows == 2)
            for (; x + 2 <= end; x += 2)
                *out++ = meanOfFour(pixels + x, pixels + x + tile.width);
        else
            for (; x + cellSize <= end; x += cellSize)
                *out++ = mean(pixels + x, cellSize);
        if (x < end)
            *out = mean(pixels + x, end - x);
        x = end;
    }
}

void GlassBackdrop::reduce(const TileRect& tile, const MixPixel* pixels, MixPixel* cells) const {
    const auto reduceAll = [&]<int cellSize>(std::integral_constant<int, cellSize>) {
        for (int y = 0; y < tile.height; y += cellSize)
            reduceRow<cellSize>(tile, pixels + std::ptrdiff_t(y) * tile.width, (tile.y + y) / cellSize,
                                std::min(cellSize, tile.height - y), cells);
    };
    static_assert(tileGrain == 16);
    switch (m_cell) {
    case 1:
        return reduceAll(std::integral_constant<int, 1>());
    case 2:
        return reduceAll(std::integral_constant<int, 2>());
    case 4:
        return reduceAll(std::integral_constant<int, 4>());
    case 8:
        return reduceAll(std::integral_constant<int, 8>());
    default:
        return reduceAll(std::integral_constant<int, tileGrain>());
    }
}

void GlassBackdrop::copyCells(const MixPixel* cells, int row, int first, int count, MixPixel* out) const {
    for (int x = first; x < first + count;) {
        // As far as the block goes, or one by one outside.
        const bool isInside = x >= 0 && x < m_width;
        const int column = std::clamp(x, 0, m_width - 1);
        const int run = isInside ? std::min({side - column % side, first + count - x, m_width - x}) : 1;
        const int slot = slotAt(m_known, column / side, row / side);
        if (slot < 0)
            std::fill_n(out, run, MixPixel{});
        else
            std::copy_n(cells + std::size_t(slot) * side * side +
                            std::size_t(row % side * side + column % side),
                        run, out);
        x += run;
        out += run;
    }
}

void GlassBackdrop::blur(const MixPixel* cells, double deviation) {
    const int radius = gaussianRadius(deviation);
    const std::vector<double> half = gaussianHalf(deviation, radius);
    std::vector<double> weights(std::size_t(2 * radius + 1));
    for (int i = -radius; i <= radius; ++i)
        weights[std::size_t(i + radius)] = half[std::size_t(std::abs(i))];
    const BlurTaps taps({0}, {weights}, BlurTaps::mixShift);
    const BlurTaps::Taps kernel = taps.taps(0);
    parallelFor(m_blocksDown, [&](int blockY) {
        thread_local std::vector<MixPixel> padded; // a run with what lies around it
        thread_local std::vector<MixPixel> lowered;
        thread_local std::vector<const MixPixel*> rows;
        const Run* runs = m_runs.data() + std::size_t(blockY) * std::size_t(m_blocksAcross);
        for (int blockX = 0; blockX < m_blocksAcross; ++blockX) {
            const auto [start, runWidth] = runs[blockX];
            if (runWidth == 0)
                continue;
            const std::size_t width = std::size_t(runWidth) + std::size_t(2 * radius) + 1;
            padded.resize(width * std::size_t(runHeight + 2 * radius));
            lowered.resize(width);
            MixPixel* to = padded.data();
            for (int y = -radius; y < runHeight + radius; ++y, to += width)
                copyCells(cells, std::clamp(blockY * side + y, 0, m_height - 1), blockX * side - radius,
                          int(width), to);
            MixPixel* out = m_blurred.get() + start;
            for (std::size_t y = 0; y < runHeight; ++y, out += runWidth) {
                rows.clear();
                // There is an even number of taps; the last one may weigh nothing.
                for (int tap = 0; tap < kernel.count; ++tap)
                    rows.push_back(padded.data() + (y + std::size_t(std::min(tap, 2 * radius))) * width);
                sumRows(rows.data(), kernel.weights, kernel.count, taps.shift(), width, lowered.data());
                rows.clear();
                for (int tap = 0; tap < kernel.count; ++tap)
                    rows.push_back(lowered.data() + tap);
                sumRows(rows.data(), kernel.weights, kernel.count, taps.shift(), std::size_t(runWidth), out);
            }
            blockX += runWidth / side - 1;
        }
    });
}

} // namespace framora::raster
