#pragma once

#include "editor/render/raster/BlurTaps.h"
#include "editor/render/raster/Compositor.h"
#include "editor/render/raster/GlassWindow.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace framora::raster {

/// What lies behind a card of glass, blurred: cells of some pixels a side, in blocks that exist only where
/// the glass may show them.
class GlassBackdrop : private TileTaker {
    /// Neighbouring blocks, whose cells lie in common rows.
    struct Run {
        int first = 0; ///< Of the columns of cells [first, end).
        int end = 0;
        int width = 0;            ///< Of a row in memory, in cells.
        std::ptrdiff_t start = 0; ///< Of its cells in the memory of all.

        bool holds(int from, int to) const { return from >= first && to <= end; }
        std::ptrdiff_t place(int column, int row) const {
            return start + std::ptrdiff_t(row) * width + (column - first);
        }
    };
    /// A row of blocks has two at most: left and right of what hides the glass.
    using Runs = std::array<Run, 2>;
    /// The one of them that a column may lie in.
    static const Run& runAt(const Runs& runs, int column) { return runs[column < runs[0].end ? 0 : 1]; }

public:
    /// The layers under a Gaussian blur of `deviation` pixels, where they may be seen through `window` when
    /// the glass reads up to `reach` pixels below what hides it. Null when memory is short for its cells.
    static std::shared_ptr<const GlassBackdrop> create(const GlassWindow& window, double deviation, int reach,
                                                       const std::vector<Layer>& layers);

    /// A place along one side of the output, in cells from the middle of the first one.
    struct Place {
        int cell;   ///< The one before it.
        float part; ///< Of the way to the next one, 0...1.
    };
    /// Outside the output its edge repeats. Not a number counts as 0.
    Place column(double pixels) const { return place(pixels, m_width - 1); }
    Place row(double pixels) const { return place(pixels, m_height - 1); }

    /// The colour, 0...1, at a place in output pixels: from the four cells around it. Where no block is, it
    /// is transparent.
    Float4 at(double x, double y) const {
        const Place across = column(x);
        const Place down = row(y);
        const Run& run = runAt(m_seen.rows[std::size_t(down.cell / side)], across.cell);
        if (!run.holds(across.cell, across.cell + 1))
            return splat(0);
        const MixPixel* cells = m_blurred.get() + run.place(across.cell, down.cell % side);
        const Float4 part = splat(across.part);
        const Float4 upper = toFloats(cells[0]) + (toFloats(cells[1]) - toFloats(cells[0])) * part;
        cells += run.width;
        const Float4 lower = toFloats(cells[0]) + (toFloats(cells[1]) - toFloats(cells[0])) * part;
        return (upper + (lower - upper) * splat(down.part)) * splat(1.0f / mixOne);
    }
    /// Reads the columns of cells [first, end) at a place along the other side: from the cells above and
    /// below it.
    void readRow(const Place& down, int first, int end, MixPixel* out) const;

private:
    struct Free {
        void operator()(MixPixel* cells) const { std::free(cells); }
    };
    using Cells = std::unique_ptr<MixPixel[], Free>;

    static constexpr int side = 8; ///< Of a block, in cells.

    GlassBackdrop(int outputWidth, int outputHeight, int cell);
    Place place(double pixels, int last) const {
        const float cells = float(pixels * m_scale - 0.5);
        const float inside = cells > 0 ? std::min(cells, float(last)) : 0;
        return {int(inside), inside - float(int(inside))};
    }
    static Float4 toFloats(const MixPixel& pixel) {
        using Short8 = std::int16_t __attribute__((vector_size(16)));
        using Int4 = std::int32_t __attribute__((vector_size(16)));
        using Long2 = std::int64_t __attribute__((vector_size(16)));
        std::int64_t all = 0;
        std::memcpy(&all, pixel.channel, sizeof all);
        const Short8 channels = reinterpret_cast<Short8>(Long2{all, 0});
        // Each in the upper half of a word, which the shift spreads its sign over.
        const Int4 upper =
            reinterpret_cast<Int4>(__builtin_shufflevector(Short8{}, channels, 0, 8, 1, 9, 2, 10, 3, 11));
        return __builtin_convertvector(upper >> 16, Float4);
    }
    static Cells allocated(std::size_t count);
    void fill(const std::vector<Layer>& layers);
    /// The runs of each row of blocks, and how many cells they have.
    struct Blocks {
        std::vector<Runs> rows;
        std::size_t cells = 0;
    };
    /// The blocks so near to the window, outwards and inwards in pixels. Right of and below each run `more`
    /// cells belong to it as well.
    Blocks findBlocks(const GlassWindow& window, int outwards, int inwards, int more) const;
    void findWanted(int top, int bottom, std::vector<Columns>& wanted) const override;
    bool takeSole(const TileRect& tile, std::size_t layer) override;
    /// The means of the layers' pixels in the cells of a tile.
    void take(const TileRect& tile, const MixPixel* pixels) override;
    /// The same of one row of cells, of which the tile has so many `rows` of pixels.
    template <int cellSize> void reduceRow(const TileRect& tile, const MixPixel* pixels, int row, int rows);
    void blur();
    void blurRun(int blockRow, const Run& run, const BlurTaps& gaussian);
    /// The known cells [first, first + count) of a row, of which the edge repeats beyond the output: where
    /// they lie, or put together in `copy` where they do not lie in a row.
    const MixPixel* knownCells(int row, int first, int count, MixPixel* copy) const;

    int m_outputWidth; ///< Pixels.
    int m_outputHeight;
    int m_cell;  ///< Pixels a side.
    int m_width; ///< Cells.
    int m_height;
    double m_scale;
    double m_remaining = 0; ///< The deviation in cells that they are to be blurred by.
    /// The layers' paints, each once for all the pixels of a cell where it can do that.
    std::vector<std::shared_ptr<const Paint>> m_coarse;
    Blocks m_known; ///< What lies behind is known there.
    Cells m_cells;  ///< Their cells, while it is filled.
    Blocks m_seen;  ///< And there also blurred, one cell more to the right and below included.
    Cells m_blurred;
};

} // namespace framora::raster
