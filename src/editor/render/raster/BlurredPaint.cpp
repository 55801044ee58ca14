#include "editor/render/raster/BlurredPaint.h"

#include "editor/render/raster/BlurKernels.h"

#include <algorithm>
#include <array>
#include <vector>

namespace framora::raster {

BlurredPaint::Side::Side(const BlurAxis& ofCanvas, double canvasStart, int outputLength, int pixels)
    : axis(ofCanvas), start(canvasStart), length(outputLength), step(pixels),
      taps(axis.restoring(start, (length + step - 1) / step, step)) {}

BlurredPaint::BlurredPaint(std::shared_ptr<const BlurGrid> blurred, const BlurAxis& columns,
                           const BlurAxis& rows, double left, double top, int outputWidth, int outputHeight,
                           bool isOpaque)
    : BlurredPaint(std::move(blurred), {columns, left, outputWidth, 1}, {rows, top, outputHeight, 1},
                   isOpaque) {}

BlurredPaint::BlurredPaint(std::shared_ptr<const BlurGrid> blurred, Side columns, Side rows, bool isOpaque)
    : m_grid(std::move(blurred)), m_columns(std::move(columns)), m_rows(std::move(rows)),
      m_isOpaque(isOpaque) {}

std::shared_ptr<const Paint> BlurredPaint::coarser(int cell) const {
    if (2 * cell > std::min(m_columns.cell(), m_rows.cell()))
        return nullptr;
    return std::shared_ptr<const Paint>(
        new BlurredPaint(m_grid, m_columns.coarser(cell), m_rows.coarser(cell), m_isOpaque));
}

double BlurredPaint::blurDeviation() const {
    // The cells of the grid are at most half as long.
    return 2 * std::min(m_columns.cell(), m_rows.cell());
}

void BlurredPaint::shade(int x, int y, int count, Float4* out) const {
    if (count <= 0)
        return;
    const auto toFloats = [](const MixPixel& cell) {
        return Float4{float(cell.channel[0]), float(cell.channel[1]), float(cell.channel[2]),
                      float(cell.channel[3])};
    };
    const BlurTaps::Taps down = m_rows.taps.taps(y);
    const int first = m_columns.taps.taps(x).first;
    const int end = m_columns.taps.taps(x + count - 1).first + m_columns.taps.taps(x + count - 1).count;
    thread_local std::vector<Float4> lowered;
    lowered.assign(std::size_t(end - first), splat(0));
    for (int tap = 0; tap < down.count; ++tap)
        for (int cell = first; cell < end; ++cell)
            lowered[std::size_t(cell - first)] +=
                toFloats(m_grid->row(down.first + tap)[cell]) * splat(float(down.weights[tap]));
    const float one = float(1 << m_columns.taps.shift()) * float(1 << m_rows.taps.shift()) * float(mixOne);
    for (int i = 0; i < count; ++i) {
        const BlurTaps::Taps across = m_columns.taps.taps(x + i);
        Float4 sum = splat(0);
        for (int tap = 0; tap < across.count; ++tap)
            sum += lowered[std::size_t(across.first - first + tap)] * splat(float(across.weights[tap]));
        out[i] = clampPremultiplied(sum * splat(1 / one), 1);
    }
}

void BlurredPaint::mix(const TileRect& tile, MixPixel* out) const {
    if (tile.area() == 0)
        return;
    // Across first: a row of cells serves many rows of pixels.
    const int first = m_rows.taps.taps(tile.y).first;
    const BlurTaps::Taps last = m_rows.taps.taps(tile.y + tile.height - 1);
    const int end = last.first + last.count;
    const auto width = std::size_t(tile.width);
    thread_local std::vector<MixPixel> widened;
    widened.resize(std::max(widened.size(), std::size_t(end - first) * width));
    for (int row = first; row < end; ++row)
        sumRuns(m_grid->row(row), m_columns.taps, tile.x, tile.width,
                widened.data() + std::size_t(row - first) * width);
    for (int y = tile.y; y < tile.y + tile.height; ++y, out += tile.width) {
        const BlurTaps::Taps taps = m_rows.taps.taps(y);
        std::array<const MixPixel*, 4> rows;
        for (std::size_t tap = 0; tap < rows.size(); ++tap)
            rows[tap] = widened.data() + std::size_t(taps.first + int(tap) - first) * width;
        sumRows(rows.data(), taps.weights, taps.count, m_rows.taps.shift(), width, out);
        if (m_rows.step == 1)
            ditherPixels(out, tile.x, y, width);
    }
}

} // namespace framora::raster
