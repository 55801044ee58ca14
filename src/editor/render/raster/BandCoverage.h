#pragma once

#include "editor/render/raster/Coverage.h"
#include "editor/render/raster/MixTile.h"

#include <array>
#include <vector>

namespace framora::raster {

/// What a layer covers of the output, ready to be asked for its rows.
struct LayerShape {
    Coverage shape;
    Coverage hole;
    bool hasHole = false;
};

/// How much of a tile a layer takes.
struct Share {
    enum Kind { none, partly, whole } kind = none;
    TileRect touched; ///< All that the layer touches lies in here.
};

/// A share of a pixel, 0...1, for all its channels.
MixPixel replicated(float coverage);

/// What the layers cover of a band of rows, asked tile by tile. For one thread; its memory is used again for
/// the next band.
class BandCoverage {
public:
    /// The columns of a row that a layer's shape touches, and those that its hole does.
    using Runs = std::array<Coverage::Run, 2>;

    /// `shapes` are the layers'; they must live until the next band.
    void begin(const TileRect& band, const std::vector<LayerShape>& shapes);
    Share share(std::size_t layer, const TileRect& tile) const;
    /// The columns [first, end) that a layer covers whole in all rows of the band.
    struct Columns {
        int first = 0;
        int end = 0;
    };
    Columns wholeColumns(std::size_t layer) const;
    /// In row y of a block.
    Runs runs(std::size_t layer, const TileRect& block, int y) const;
    /// The coverage of a block's pixels, times the layer's opacity: of all of them, or of those alone that
    /// runs() gives as neither whole nor untouched; then nothing is written for the others.
    enum class Extent { all, edges };
    void cover(std::size_t layer, float opacity, const TileRect& block, Extent wanted, MixPixel* out);

private:
    /// The runs of a shape in the band's rows, and what they have in common.
    struct BandRuns {
        std::vector<Coverage::Run> rows;
        int first = 0; ///< What any of them touches lies in [first, end).
        int end = 0;
        int fullFirst = 0; ///< All of them cover [fullFirst, fullEnd) whole.
        int fullEnd = 0;
    };
    void coverRow(const Coverage& shape, int y, const TileRect& block, const Coverage::Run& run, float* out);

    const std::vector<LayerShape>* m_shapes = nullptr;
    /// For each layer its shape's, then its hole's.
    std::vector<std::array<BandRuns, 2>> m_runs;
    int m_top = 0; ///< The band's first row.
    std::vector<float> m_covered;
    std::vector<float> m_hole;
    std::vector<double> m_sums;
};

} // namespace framora::raster
