#include "editor/render/raster/GlassBackdrop.h"

#include "editor/render/raster/BandCoverage.h"
#include "editor/render/raster/BlurKernels.h"
#include "editor/render/raster/GlassKernels.h"
#include "editor/render/raster/MixKernels.h"
#include "editor/render/raster/ParallelFor.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace framora::raster {
namespace {

/// The largest cell of which at least so many make up a deviation.
int cellSize(double deviation, double leastCells) {
    int cell = 1;
    while (cell < TileTaker::grain && deviation >= 2 * cell * leastCells)
        cell *= 2;
    return cell;
}

/// The blur that all has already that is seen within `margin` pixels of the window; 0 if any of it is sharp.
double blurBehind(const GlassWindow& window, int margin, const std::vector<Layer>& layers) {
    const auto isSharp = [](const Layer& layer) { return layer.paint->blurDeviation() == 0; };
    if (std::ranges::all_of(layers, isSharp))
        return 0;
    GlassWindow::Columns columns{window.width(), 0};
    GlassWindow::Columns rows{window.height(), 0};
    for (int y = 0; y < window.height(); ++y) {
        const GlassWindow::Span& span = window.row(y);
        if (span.first >= span.end)
            continue;
        columns = {std::min(columns.first, span.first), std::max(columns.end, span.end)};
        rows = {std::min(rows.first, y), y + 1};
    }
    columns = {std::max(columns.first - margin, 0), std::min(columns.end + margin, window.width())};
    rows = {std::max(rows.first - margin, 0), std::min(rows.end + margin, window.height())};
    for (std::size_t i = layers.size(); i-- > 0;) {
        Coverage shape(layers[i].shape.outline(layers[i].placement));
        shape.index(window.height());
        bool isTouching = false;
        bool isWhole = !layers[i].hole;
        for (int y = rows.first; y < rows.end; y = shape.extentEnd(y, rows.end)) {
            const Coverage::Run run = shape.extent(y, window.width());
            isTouching = isTouching || (run.first < columns.end && run.end > columns.first);
            isWhole = isWhole && run.fullFirst <= columns.first && run.fullEnd >= columns.end;
        }
        if (isTouching)
            return isWhole && hidesWhatLiesUnder(layers[i]) && !layers[i].noise
                       ? layers[i].paint->blurDeviation()
                       : 0;
    }
    return 0;
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

GlassBackdrop::GlassBackdrop(int outputWidth, int outputHeight, int cell)
    : m_outputWidth(outputWidth), m_outputHeight(outputHeight), m_cell(cell),
      m_width((outputWidth + cell - 1) / cell), m_height((outputHeight + cell - 1) / cell),
      m_scale(1.0 / cell) {}

GlassBackdrop::Cells GlassBackdrop::allocated(std::size_t count) {
    return Cells(static_cast<MixPixel*>(std::calloc(std::max<std::size_t>(count, 1), sizeof(MixPixel))));
}

std::shared_ptr<const GlassBackdrop> GlassBackdrop::create(const GlassWindow& window, double deviation,
                                                           int reach, const std::vector<Layer>& layers) {
    // Cells are so small that reading between them adds little to the blur; the rest of it is made up for.
    // What is soft already has no use for small ones.
    constexpr double leastCells = 1.5;
    constexpr double leastSoftCells = 4;
    const double behind = blurBehind(window, gaussianRadius(deviation) + 2 * TileTaker::grain, layers);
    const int cell = std::max(cellSize(deviation, leastCells), cellSize(behind, leastSoftCells));
    const std::shared_ptr<GlassBackdrop> made(new GlassBackdrop(window.width(), window.height(), cell));
    made->m_remaining = remainingDeviation(deviation, cell);
    const int around = (gaussianRadius(made->m_remaining) + 2) * cell;
    made->m_known = made->findBlocks(window, around, around + reach, 0);
    made->m_seen = made->findBlocks(window, cell, cell + reach, 1);
    made->m_cells = allocated(made->m_known.cells);
    made->m_blurred = allocated(made->m_seen.cells);
    if (!made->m_cells || !made->m_blurred)
        return nullptr;
    made->fill(layers);
    return made;
}

void GlassBackdrop::fill(const std::vector<Layer>& layers) {
    for (const Layer& layer : layers)
        m_coarse.push_back(m_cell > 1 ? layer.paint->coarser(m_cell) : nullptr);
    composeTiles(m_outputWidth, m_outputHeight, layers, *this);
    m_coarse.clear();
    blur();
    m_cells.reset();
}

GlassBackdrop::Blocks GlassBackdrop::findBlocks(const GlassWindow& window, int outwards, int inwards,
                                                int more) const {
    const int pixels = side * m_cell;
    const int across = (m_width + side - 1) / side;
    const auto before = [=](int column) { return std::clamp(column, 0, across * pixels) / pixels; };
    const auto behind = [=](int column) {
        return (std::clamp(column, 0, across * pixels) + pixels - 1) / pixels;
    };
    Blocks blocks;
    for (int top = 0; top < m_height; top += side) {
        const GlassWindow::Span strip = window.strip(top * m_cell, (top + side) * m_cell, outwards, inwards);
        // Those that are touched, without those that are hidden whole.
        const GlassWindow::Span touched{before(strip.first), behind(strip.end), behind(strip.hiddenFirst),
                                        before(strip.hiddenEnd)};
        Runs& runs = blocks.rows.emplace_back();
        for (std::size_t i = 0; i < runs.size(); ++i) {
            const GlassWindow::Columns seen = touched.seen()[i];
            if (seen.isEmpty())
                continue;
            const int width = (seen.end - seen.first) * side + more;
            runs[i] = {seen.first * side, seen.end * side, width, std::ptrdiff_t(blocks.cells)};
            blocks.cells += std::size_t(width) * std::size_t(side + more);
        }
    }
    return blocks;
}

void GlassBackdrop::findWanted(int top, int bottom, std::vector<Columns>& wanted) const {
    const int size = side * m_cell;
    Columns left{m_outputWidth, 0};
    Columns right{m_outputWidth, 0};
    for (int row = top / size; row <= (bottom - 1) / size; ++row) {
        const auto add = [&](const Run& run, Columns& all) {
            if (run.first < run.end)
                all = {std::min(all.first, run.first * m_cell),
                       std::max(all.end, std::min(run.end * m_cell, m_outputWidth))};
        };
        add(m_known.rows[std::size_t(row)][0], left);
        add(m_known.rows[std::size_t(row)][1], right);
    }
    if (right.first <= left.end) {
        left = {std::min(left.first, right.first), std::max(left.end, right.end)};
        right = {};
    }
    for (const Columns& piece : {left, right})
        if (piece.first < piece.end)
            wanted.push_back(piece);
}

bool GlassBackdrop::takeSole(const TileRect& tile, std::size_t layer) {
    const Paint* paint = m_coarse[layer].get();
    if (!paint)
        return false;
    const auto cells = [this](int pixels) { return (pixels + m_cell - 1) / m_cell; };
    const TileRect reduced{tile.x / m_cell, tile.y / m_cell, cells(tile.width), cells(tile.height)};
    thread_local std::vector<MixPixel> mixed;
    mixed.resize(reduced.area());
    paint->mix(reduced, mixed.data());
    const MixPixel* row = mixed.data();
    for (int y = reduced.y; y < reduced.y + reduced.height; ++y, row += reduced.width)
        for (const Run& run : m_known.rows[std::size_t(y / side)]) {
            const int first = std::max(run.first, reduced.x);
            const int end = std::min(run.end, reduced.x + reduced.width);
            if (first < end)
                std::copy(row + (first - reduced.x), row + (end - reduced.x),
                          m_cells.get() + run.place(first, y % side));
        }
    return true;
}

template <int cellSize>
void GlassBackdrop::reduceRow(const TileRect& tile, const MixPixel* pixels, int row, int rows) {
    const auto mean = [&](const MixPixel* from, int columns) {
        Float4 sum = splat(0); // of at most 16 x 16 times mixOne: exact
        for (int j = 0; j < rows; ++j, from += tile.width)
            for (int i = 0; i < columns; ++i)
                sum += toFloats(from[i]);
        const Float4 rounded = sum * splat(1.0f / float(rows * columns)) + splat(0.5f);
        return MixPixel{{std::int16_t(rounded[0]), std::int16_t(rounded[1]), std::int16_t(rounded[2]),
                         std::int16_t(rounded[3])}};
    };
    for (const Run& run : m_known.rows[std::size_t(row / side)]) {
        const int first = std::max(run.first, tile.x / cellSize);
        const int end = std::min(run.end, (tile.x + tile.width + cellSize - 1) / cellSize);
        if (first >= end)
            continue;
        const MixPixel* from = pixels + (first * cellSize - tile.x);
        MixPixel* out = m_cells.get() + run.place(first, row % side);
        int column = first;
        if (cellSize == 2 && rows == 2) {
            column = std::min(end, (tile.x + tile.width) / cellSize);
            meansOfFour(from, from + tile.width, std::size_t(column - first), out);
        }
        // The last one may be cut off by the output's edge.
        for (; column < end; ++column)
            out[column - first] = mean(from + (column - first) * cellSize,
                                       std::min(cellSize, tile.x + tile.width - column * cellSize));
    }
}

void GlassBackdrop::take(const TileRect& tile, const MixPixel* pixels) {
    const auto reduceAll = [&]<int cellSize>(std::integral_constant<int, cellSize>) {
        for (int y = 0; y < tile.height; y += cellSize)
            reduceRow<cellSize>(tile, pixels + std::ptrdiff_t(y) * tile.width, (tile.y + y) / cellSize,
                                std::min(cellSize, tile.height - y));
    };
    static_assert(TileTaker::grain == 16);
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
        return reduceAll(std::integral_constant<int, TileTaker::grain>());
    }
}

const MixPixel* GlassBackdrop::knownCells(int row, int first, int count, MixPixel* copy) const {
    const int inside = std::clamp(row, 0, m_height - 1);
    const Runs& runs = m_known.rows[std::size_t(inside / side)];
    const int end = first + count;
    if (const Run& run = runAt(runs, first); run.holds(first, end) && end <= m_width)
        return m_cells.get() + run.place(first, inside % side);
    for (int x = first; x < end;) {
        const int column = std::clamp(x, 0, m_width - 1);
        const Run& run = runAt(runs, column);
        const bool isKnown = run.holds(column, column + 1);
        // As far as the run goes, or one by one beside it and outside.
        const int length = isKnown && column == x ? std::min({run.end, m_width, end}) - x : 1;
        if (isKnown)
            std::copy_n(m_cells.get() + run.place(column, inside % side), length, copy + (x - first));
        else
            copy[x - first] = {};
        x += length;
    }
    return copy;
}

void GlassBackdrop::blurRun(int blockRow, const Run& run, const BlurTaps& gaussian) {
    thread_local std::vector<const MixPixel*> sources;
    thread_local std::vector<MixPixel> copies; // of those that do not lie in a row
    thread_local std::vector<MixPixel> lowered;
    const BlurTaps::Taps taps = gaussian.taps(0);
    // There is an even number of taps; the last one may weigh nothing.
    const int radius = (taps.count - 1) / 2;
    const int width = run.width + taps.count - 1;
    const int height = side + 1 + taps.count - 1;
    copies.resize(std::size_t(width) * std::size_t(height));
    lowered.resize(std::size_t(width));
    sources.clear();
    for (int y = 0; y < height; ++y)
        sources.push_back(knownCells(blockRow * side + y - radius, run.first - radius, width,
                                     copies.data() + std::ptrdiff_t(y) * width));
    std::vector<const MixPixel*> shifted;
    shifted.reserve(std::size_t(taps.count));
    for (int tap = 0; tap < taps.count; ++tap)
        shifted.push_back(lowered.data() + tap);
    for (int y = 0; y <= side; ++y) {
        sumRows(sources.data() + y, taps.weights, taps.count, gaussian.shift(), std::size_t(width),
                lowered.data());
        sumRows(shifted.data(), taps.weights, taps.count, gaussian.shift(), std::size_t(run.width),
                m_blurred.get() + run.place(run.first, y));
    }
}

void GlassBackdrop::blur() {
    const int radius = gaussianRadius(m_remaining);
    const std::vector<double> half = gaussianHalf(m_remaining, radius);
    std::vector<double> weights(std::size_t(2 * radius + 1));
    for (int i = -radius; i <= radius; ++i)
        weights[std::size_t(i + radius)] = half[std::size_t(std::abs(i))];
    const BlurTaps gaussian({0}, {weights}, BlurTaps::mixShift);
    parallelFor(int(m_seen.rows.size()), [&](int blockRow) {
        for (const Run& run : m_seen.rows[std::size_t(blockRow)])
            if (run.width > 0)
                blurRun(blockRow, run, gaussian);
    });
}

void GlassBackdrop::readRow(const Place& down, int first, int end, MixPixel* out) const {
    const Run& run = runAt(m_seen.rows[std::size_t(down.cell / side)], first);
    // One cell more than its blocks have belongs to it.
    const int from = std::clamp(run.first, first, end);
    const int to = std::clamp(run.first + run.width, from, end);
    std::fill(out, out + (from - first), MixPixel{});
    std::fill(out + (to - first), out + (end - first), MixPixel{});
    if (from == to)
        return;
    const MixPixel* upper = m_blurred.get() + run.place(from, down.cell % side);
    interpolate(upper, upper + run.width, replicated(down.part).channel[0], std::size_t(to - from),
                out + (from - first));
}

} // namespace framora::raster
