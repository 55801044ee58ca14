#include "editor/render/raster/BandCoverage.h"

#include "editor/render/raster/MixKernels.h"

#include <algorithm>

namespace framora::raster {
namespace {

/// A run cut to a block's columns.
Coverage::Run cut(const Coverage::Run& run, const TileRect& block) {
    const auto column = [&](int x) { return std::clamp(x, block.x, block.x + block.width); };
    return {column(run.first), column(run.end), column(run.fullFirst), column(run.fullEnd)};
}

} // namespace

MixPixel replicated(float coverage) {
    const auto value = std::int16_t(std::clamp(coverage, 0.0f, 1.0f) * coverageOne + 0.5f);
    return {{value, value, value, value}};
}

void BandCoverage::begin(const TileRect& band, const std::vector<LayerShape>& shapes) {
    m_shapes = &shapes;
    m_top = band.y;
    m_runs.resize(std::max(m_runs.size(), shapes.size()));
    for (std::size_t i = 0; i < shapes.size(); ++i)
        for (std::size_t part = 0; part < (shapes[i].hasHole ? 2 : 1); ++part) {
            const Coverage& coverage = part == 0 ? shapes[i].shape : shapes[i].hole;
            BandRuns& runs = m_runs[i][part];
            runs.rows.resize(std::size_t(band.height));
            runs.first = runs.fullEnd = band.width;
            runs.end = runs.fullFirst = 0;
            for (int y = 0; y < band.height;) {
                const Coverage::Run run = coverage.extent(band.y + y, band.width);
                const int end = coverage.extentEnd(band.y + y, band.y + band.height) - band.y;
                std::fill(runs.rows.begin() + y, runs.rows.begin() + end, run);
                y = end;
                if (!run.isEmpty()) {
                    runs.first = std::min(runs.first, run.first);
                    runs.end = std::max(runs.end, run.end);
                }
                runs.fullFirst = std::max(runs.fullFirst, run.fullFirst);
                runs.fullEnd = std::min(runs.fullEnd, run.fullEnd);
            }
        }
}

BandCoverage::Runs BandCoverage::runs(std::size_t layer, const TileRect& block, int y) const {
    const auto row = std::size_t(y - m_top);
    return {cut(m_runs[layer][0].rows[row], block),
            (*m_shapes)[layer].hasHole ? cut(m_runs[layer][1].rows[row], block) : Coverage::Run{}};
}

BandCoverage::Columns BandCoverage::wholeColumns(std::size_t layer) const {
    if ((*m_shapes)[layer].hasHole)
        return {};
    const BandRuns& shape = m_runs[layer][0];
    return {shape.fullFirst, shape.fullEnd};
}

Share BandCoverage::share(std::size_t layer, const TileRect& tile) const {
    // Most tiles are told from the band alone.
    const BandRuns& shape = m_runs[layer][0];
    const BandRuns* opening = (*m_shapes)[layer].hasHole ? &m_runs[layer][1] : nullptr;
    const auto isWithin = [&](int first, int end) { return tile.x >= first && tile.x + tile.width <= end; };
    const auto isOutside = [&](int first, int end) { return tile.x >= end || tile.x + tile.width <= first; };
    if (isOutside(shape.first, shape.end) || (opening && isWithin(opening->fullFirst, opening->fullEnd)))
        return {};
    if (opening && isOutside(opening->first, opening->end))
        opening = nullptr;
    if (!opening && isWithin(shape.fullFirst, shape.fullEnd))
        return {Share::whole, tile};

    int left = tile.x + tile.width;
    int right = tile.x;
    int top = tile.y + tile.height;
    int bottom = tile.y;
    bool isWhole = true;
    const Coverage::Run* shapeRuns = shape.rows.data() + (tile.y - m_top);
    const Coverage::Run* holeRuns = opening ? opening->rows.data() + (tile.y - m_top) : nullptr;
    for (int y = tile.y; y < tile.y + tile.height; ++y) {
        const Coverage::Run run = cut(shapeRuns[y - tile.y], tile);
        const Coverage::Run hole = holeRuns ? cut(holeRuns[y - tile.y], tile) : Coverage::Run{};
        if (run.isEmpty() || hole.fullEnd - hole.fullFirst == tile.width) {
            isWhole = false;
            continue;
        }
        isWhole = isWhole && run.fullEnd - run.fullFirst == tile.width && hole.isEmpty();
        const bool isOpen = hole.fullFirst < hole.fullEnd;
        left = std::min(left, isOpen && hole.fullFirst <= run.first ? hole.fullEnd : run.first);
        right = std::max(right, isOpen && hole.fullEnd >= run.end ? hole.fullFirst : run.end);
        top = std::min(top, y);
        bottom = y + 1;
    }
    if (left >= right)
        return {};
    return {isWhole ? Share::whole : Share::partly, {left, top, right - left, bottom - top}};
}

/// How much of a block's columns in row y a shape covers; `run` is what it touches of them.
void BandCoverage::coverRow(const Coverage& shape, int y, const TileRect& block, const Coverage::Run& run,
                            float* out) {
    std::fill_n(out, block.width, 0.0f);
    if (run.isEmpty())
        return;
    std::fill(out + (run.fullFirst - block.x), out + (run.fullEnd - block.x), 1.0f);
    if (run.first < run.fullFirst)
        shape.row(y, run.first, run.fullFirst, out + (run.first - block.x), m_sums);
    if (run.fullEnd < run.end)
        shape.row(y, run.fullEnd, run.end, out + (run.fullEnd - block.x), m_sums);
}

void BandCoverage::cover(std::size_t layer, float opacity, const TileRect& block, Extent wanted,
                         MixPixel* out) {
    const LayerShape& shape = (*m_shapes)[layer];
    m_covered.resize(std::size_t(block.width));
    m_hole.resize(std::size_t(block.width));
    const MixPixel whole = replicated(opacity);
    for (int y = block.y; y < block.y + block.height; ++y, out += block.width) {
        const auto [run, hole] = runs(layer, block, y);
        float* covered = m_covered.data();
        const bool isEdgeless = run.first == run.fullFirst && run.fullEnd == run.end && hole.isEmpty();
        if (wanted == Extent::edges && isEdgeless)
            continue;
        coverRow(shape.shape, y, block, run, covered);
        if (wanted == Extent::all)
            std::fill_n(out, block.width, MixPixel{});
        const auto fill = [&](int from, int to) {
            for (int x = from; x < to; ++x)
                out[x - block.x] = replicated(covered[x - block.x] * opacity);
        };
        if (hole.isEmpty()) {
            fill(run.first, run.fullFirst);
            if (wanted == Extent::all)
                std::fill(out + (run.fullFirst - block.x), out + (run.fullEnd - block.x), whole);
            fill(run.fullEnd, run.end);
            continue;
        }
        coverRow(shape.hole, y, block, hole, m_hole.data());
        for (int x = hole.first; x < hole.end; ++x)
            covered[x - block.x] -= m_hole[std::size_t(x - block.x)];
        fill(run.first, run.end);
    }
}

} // namespace framora::raster
