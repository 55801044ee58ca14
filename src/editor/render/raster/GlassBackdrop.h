#pragma once

#include "editor/render/raster/Compositor.h"
#include "editor/render/raster/GlassWindow.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace framora::raster {

/// What lies behind a card of glass, blurred: cells of some pixels a side, in blocks that exist only where
/// the glass may show them.
class GlassBackdrop {
public:
    /// The `layers` under a Gaussian blur of `deviation` pixels, where they may be seen through `window` when
    /// the glass reads up to `reach` pixels below what hides it. Null when memory is short.
    static std::shared_ptr<const GlassBackdrop> make(const std::vector<Layer>& layers,
                                                     const GlassWindow& window, double deviation, int reach);

    /// A line of places in one row of the output, which share what is the same along it.
    struct Line {
        int row;      ///< The upper one of the two rows of cells.
        Float4 below; ///< The share of the lower one.
    };
    Line line(double y) const {
        const float top = place(y, m_lastY);
        const int row = int(top);
        return {row, splat(top - float(row))};
    }
    /// The colour, 0...1, at a place in output pixels: from the four cells around it. Outside the output its
    /// edge repeats; where no block is, it is transparent.
    Float4 at(double x, const Line& line) const {
        const float left = place(x, m_lastX);
        const int column = int(left);
        const Run& run =
            m_runs[std::size_t(line.row / side) * std::size_t(m_blocksAcross) + std::size_t(column / side)];
        if (run.width == 0)
            return splat(0);
        const MixPixel* cells =
            m_blurred.get() + run.start + std::ptrdiff_t(line.row % side) * run.width + column % side;
        const Float4 across = splat(left - float(column));
        const Float4 upper = toFloats(cells[0]) + (toFloats(cells[1]) - toFloats(cells[0])) * across;
        cells += run.width;
        const Float4 lower = toFloats(cells[0]) + (toFloats(cells[1]) - toFloats(cells[0])) * across;
        return (upper + (lower - upper) * line.below) * splat(1.0f / mixOne);
    }
    Float4 at(double x, double y) const { return at(x, line(y)); }

private:
    struct Free {
        void operator()(MixPixel* cells) const { std::free(cells); }
    };
    using Cells = std::unique_ptr<MixPixel[], Free>;

    static constexpr int side = 8; ///< Of a block, in cells.

    GlassBackdrop(int width, int height, int cell);
    /// Where a place lies, in cells from the middle of the first one.
    float place(double pixels, float last) const {
        const float cells = float(pixels * m_scale - 0.5);
        // Not a number counts as 0.
        return cells > 0 ? (cells < last ? cells : last) : 0;
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
    /// Some of the blocks: the place of each in their memory, -1 for the others.
    struct Blocks {
        std::vector<int> slots;
        int count = 0;
    };
    /// The blurred cells of neighbouring blocks of a row lie in common rows, of so many cells. They hold the
    /// first cells of what lies right of and below the blocks as well.
    struct Run {
        std::ptrdiff_t start = 0; ///< Of the block's own cells.
        int width = 0;            ///< 0 for no block.
    };
    static constexpr int runHeight = side + 1;
    int slotAt(const Blocks& blocks, int blockX, int blockY) const {
        return blocks.slots[std::size_t(blockY) * std::size_t(m_blocksAcross) + std::size_t(blockX)];
    }
    /// The blocks so near to the window, outwards and inwards in pixels.
    Blocks findBlocks(const GlassWindow& window, int outwards, int inwards) const;
    bool hasBlock(const TileRect& pixels) const;
    /// The means of the layers' pixels in the cells of a tile.
    void reduce(const TileRect& tile, const MixPixel* pixels, MixPixel* cells) const;
    /// The same of one row of cells, of which the tile has so many `rows` of pixels.
    template <int cellSize>
    void reduceRow(const TileRect& tile, const MixPixel* pixels, int row, int rows, MixPixel* cells) const;
    /// Finds the runs of the blocks that are read, and how many cells they have.
    std::size_t findRuns(const Blocks& blocks);
    void blur(const MixPixel* cells, double deviation);
    /// The cells [first, first + count) of a row, of which the edge repeats beyond the output.
    void copyCells(const MixPixel* cells, int row, int first, int count, MixPixel* out) const;

    int m_cell;  ///< Pixels a side.
    int m_width; ///< Cells.
    int m_height;
    int m_blocksAcross;
    int m_blocksDown;
    double m_scale;
    float m_lastX;
    float m_lastY;
    Blocks m_known;          ///< What lies behind is known there.
    std::vector<Run> m_runs; ///< And there also blurred: block by block.
    Cells m_blurred;
};

} // namespace framora::raster
