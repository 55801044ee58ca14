#include "editor/render/raster/GlassBackdrop.h"

#include "editor/render/raster/BlurKernels.h"
#include "editor/render/raster/ParallelFor.h"

#include <algorithm>
#include <cmath>

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
    backdrop->findBlocks(window, around, around + reach);
    const Cells cells = allocated(std::size_t(backdrop->m_slotCount) * side * side);
    backdrop->m_blurred = allocated(std::size_t(backdrop->m_slotCount) * readSide * readSide);
    if (!cells || !backdrop->m_blurred)
        return nullptr;
    composeTiles(
        window.width(), window.height(), layers,
        [&](const TileRect& tile) { return backdrop->hasBlock(tile); },
        [&](const TileRect& tile, const MixPixel* pixels) { backdrop->reduce(tile, pixels, cells.get()); });
    backdrop->blur(cells.get(), remaining);
    return backdrop;
}

void GlassBackdrop::findBlocks(const GlassWindow& window, int outwards, int inwards) {
    const int pixels = side * m_cell;
    m_slots.reserve(std::size_t(m_blocksAcross) * std::size_t(m_blocksDown));
    for (int y = 0; y < m_blocksDown; ++y) {
        const GlassWindow::Strip strip = window.strip(y * pixels, (y + 1) * pixels, outwards, inwards);
        for (int x = 0; x < m_blocksAcross; ++x)
            m_slots.push_back(strip.shows(x * pixels, (x + 1) * pixels) ? m_slotCount++ : -1);
    }
}

bool GlassBackdrop::hasBlock(const TileRect& pixels) const {
    const int block = side * m_cell;
    for (int y = pixels.y / block; y <= (pixels.y + pixels.height - 1) / block; ++y)
        for (int x = pixels.x / block; x <= (pixels.x + pixels.width - 1) / block; ++x)
            if (slotAt(x, y) >= 0)
                return true;
    return false;
}

void GlassBackdrop::reduce(const TileRect& tile, const MixPixel* pixels, MixPixel* cells) const {
    for (int y = 0; y < tile.height; y += m_cell) {
        const int row = (tile.y + y) / m_cell;
        const int rows = std::min(m_cell, tile.height - y);
        for (int x = 0; x < tile.width; x += m_cell) {
            const int column = (tile.x + x) / m_cell;
            const int slot = slotAt(column / side, row / side);
            if (slot < 0)
                continue;
            const int columns = std::min(m_cell, tile.width - x);
            int sums[4] = {};
            for (int j = 0; j < rows; ++j) {
                const MixPixel* from = pixels + std::ptrdiff_t(y + j) * tile.width + x;
                for (int i = 0; i < columns; ++i)
                    for (int c = 0; c < 4; ++c)
                        sums[c] += from[i].channel[c];
            }
            MixPixel& out =
                cells[std::size_t(slot) * side * side + std::size_t(row % side * side + column % side)];
            const int area = rows * columns;
            for (int c = 0; c < 4; ++c)
                out.channel[c] = std::int16_t((sums[c] + area / 2) / area);
        }
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
    const std::size_t width = readSide + std::size_t(2 * radius) + 1;
    parallelFor(m_blocksDown, [&](int blockY) {
        thread_local std::vector<MixPixel> padded; // a block with what lies around it
        thread_local std::vector<MixPixel> lowered;
        thread_local std::vector<const MixPixel*> rows;
        padded.resize(width * (readSide + std::size_t(2 * radius)));
        lowered.resize(width);
        for (int blockX = 0; blockX < m_blocksAcross; ++blockX) {
            const int slot = slotAt(blockX, blockY);
            if (slot < 0)
                continue;
            MixPixel* to = padded.data();
            for (int y = -radius; y < int(readSide) + radius; ++y) {
                const int row = std::clamp(blockY * side + y, 0, m_height - 1);
                for (int x = -radius; x <= int(readSide) + radius; ++x) {
                    const int column = std::clamp(blockX * side + x, 0, m_width - 1);
                    const int from = slotAt(column / side, row / side);
                    *to++ = from < 0 ? MixPixel{}
                                     : cells[std::size_t(from) * side * side +
                                             std::size_t(row % side * side + column % side)];
                }
            }
            MixPixel* out = m_blurred.get() + std::size_t(slot) * readSide * readSide;
            for (std::size_t y = 0; y < readSide; ++y, out += readSide) {
                rows.clear();
                // There is an even number of taps; the last one may weigh nothing.
                for (int tap = 0; tap < kernel.count; ++tap)
                    rows.push_back(padded.data() + (y + std::size_t(std::min(tap, 2 * radius))) * width);
                sumRows(rows.data(), kernel.weights, kernel.count, taps.shift(), width, lowered.data());
                rows.clear();
                for (int tap = 0; tap < kernel.count; ++tap)
                    rows.push_back(lowered.data() + tap);
                sumRows(rows.data(), kernel.weights, kernel.count, taps.shift(), readSide, out);
            }
        }
    });
}

} // namespace framora::raster
