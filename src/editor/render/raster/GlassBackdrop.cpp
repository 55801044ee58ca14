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

GlassWindow::GlassWindow(Coverage card, Coverage hidden, int width, int height)
    : m_width(width), m_rows(std::size_t(height)) {
    card.index(height);
    hidden.index(height);
    for (int y = 0; y < height; ++y) {
        const Coverage::Run shown = card.extent(y, width);
        const Coverage::Run covered = hidden.extent(y, width);
        m_rows[std::size_t(y)] = {shown.first, shown.end, covered.fullFirst, covered.fullEnd};
    }
}

bool GlassWindow::isNear(const TileRect& block, int reach) const {
    const int left = block.x - reach;
    const int right = block.x + block.width + reach;
    const int top = std::max(block.y - reach, 0);
    const int bottom = std::min(block.y + block.height + reach, height());
    for (int y = top; y < bottom; ++y) {
        const Span& span = m_rows[std::size_t(y)];
        const int first = std::max(left, span.first);
        const int end = std::min(right, span.end);
        if (first < end && !(span.hiddenFirst <= first && end <= span.hiddenEnd))
            return true;
    }
    return false;
}

GlassBackdrop::GlassBackdrop(int width, int height, int cell)
    : m_cell(cell), m_width((width + cell - 1) / cell), m_height((height + cell - 1) / cell),
      m_stride(m_width + 1), m_scale(1.0 / cell), m_lastX(float(m_width - 1)), m_lastY(float(m_height - 1)),
      m_cells(allocated(m_stride, m_height + 1)) {}

GlassBackdrop::Cells GlassBackdrop::allocated(int width, int height) {
    // Cleared pages cost nothing before they are used, and most never are.
    return Cells(
        static_cast<MixPixel*>(std::calloc(std::size_t(width) * std::size_t(height), sizeof(MixPixel))));
}

std::shared_ptr<const GlassBackdrop> GlassBackdrop::make(const std::vector<Layer>& layers,
                                                         const GlassWindow& window, double deviation,
                                                         int reach) {
    const int cell = cellSize(deviation);
    const std::shared_ptr<GlassBackdrop> backdrop(new GlassBackdrop(window.width(), window.height(), cell));
    if (!backdrop->m_cells)
        return nullptr;
    const int blurReach = (gaussianRadius(remainingDeviation(deviation, cell)) + 2) * cell;
    composeTiles(
        window.width(), window.height(), layers,
        [&](const TileRect& tile) { return window.isNear(tile, reach + blurReach); },
        [&](const TileRect& tile, const MixPixel* pixels) { backdrop->reduce(tile, pixels); });
    backdrop->blur(window, deviation, reach + 2 * cell);
    return backdrop->m_cells ? backdrop : nullptr;
}

void GlassBackdrop::reduce(const TileRect& tile, const MixPixel* pixels) {
    for (int y = 0; y < tile.height; y += m_cell) {
        MixPixel* out =
            m_cells.get() + std::size_t((tile.y + y) / m_cell) * std::size_t(m_stride) + tile.x / m_cell;
        const int rows = std::min(m_cell, tile.height - y);
        for (int x = 0; x < tile.width; x += m_cell, ++out) {
            const int columns = std::min(m_cell, tile.width - x);
            int sums[4] = {};
            for (int j = 0; j < rows; ++j) {
                const MixPixel* from = pixels + std::ptrdiff_t(y + j) * tile.width + x;
                for (int i = 0; i < columns; ++i)
                    for (int c = 0; c < 4; ++c)
                        sums[c] += from[i].channel[c];
            }
            const int area = rows * columns;
            for (int c = 0; c < 4; ++c)
                out->channel[c] = std::int16_t((sums[c] + area / 2) / area);
        }
    }
}

void GlassBackdrop::blur(const GlassWindow& window, double deviation, int reach) {
    const double cells = remainingDeviation(deviation, m_cell);
    const int radius = gaussianRadius(cells);
    const std::vector<double> half = gaussianHalf(cells, radius);
    std::vector<double> weights(std::size_t(2 * radius + 1));
    for (int i = -radius; i <= radius; ++i)
        weights[std::size_t(i + radius)] = half[std::size_t(std::abs(i))];
    const BlurTaps taps({0}, {weights}, BlurTaps::mixShift);
    const BlurTaps::Taps kernel = taps.taps(0);
    Cells blurred = allocated(m_stride, m_height + 1);
    if (!blurred) {
        m_cells = nullptr;
        return;
    }
    constexpr int blockWidth = 64;
    constexpr int blockHeight = 16;
    parallelFor((m_height + blockHeight - 1) / blockHeight, [&](int band) {
        thread_local std::vector<MixPixel> padded; // a row of a block with what lies beside it
        thread_local std::vector<MixPixel> lowered;
        thread_local std::vector<const MixPixel*> rows;
        const std::size_t width = std::size_t(blockWidth + 2 * radius) + 1;
        padded.resize(width * std::size_t(blockHeight + 2 * radius + 1));
        lowered.resize(width);
        const int top = band * blockHeight;
        const int height = std::min(blockHeight, m_height - top);
        for (int left = 0; left < m_width; left += blockWidth) {
            const int columns = std::min(blockWidth, m_width - left);
            if (!window.isNear({left * m_cell, top * m_cell, columns * m_cell, height * m_cell}, reach))
                continue;
            for (int y = -radius; y < height + radius; ++y) {
                const MixPixel* from =
                    m_cells.get() + std::size_t(std::clamp(top + y, 0, m_height - 1)) * std::size_t(m_stride);
                MixPixel* to = padded.data() + std::size_t(y + radius) * width;
                for (int x = -radius; x <= columns + radius; ++x)
                    *to++ = from[std::clamp(left + x, 0, m_width - 1)];
            }
            const auto across = std::size_t(columns + 2 * radius) + 1;
            for (int y = 0; y < height; ++y) {
                rows.clear();
                // There is an even number of taps; the last one may weigh nothing.
                for (int tap = 0; tap < kernel.count; ++tap)
                    rows.push_back(padded.data() + std::size_t(y + std::min(tap, 2 * radius)) * width);
                sumRows(rows.data(), kernel.weights, kernel.count, taps.shift(), across, lowered.data());
                rows.clear();
                for (int tap = 0; tap < kernel.count; ++tap)
                    rows.push_back(lowered.data() + tap);
                MixPixel* out =
                    blurred.get() + std::size_t(top + y) * std::size_t(m_stride) + std::size_t(left);
                sumRows(rows.data(), kernel.weights, kernel.count, taps.shift(), std::size_t(columns), out);
                if (left + columns == m_width)
                    out[columns] = out[columns - 1];
            }
        }
    });
    std::copy_n(blurred.get() + std::size_t(m_height - 1) * std::size_t(m_stride), m_stride,
                blurred.get() + std::size_t(m_height) * std::size_t(m_stride));
    m_cells = std::move(blurred);
}

} // namespace framora::raster
