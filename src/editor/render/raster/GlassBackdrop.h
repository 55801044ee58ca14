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
    /// the glass reads up to `reach` pixels further inside than a pixel lies. Null when memory is short.
    static std::shared_ptr<const GlassBackdrop> make(const std::vector<Layer>& layers,
                                                     const GlassWindow& window, double deviation, int reach);

    /// The colour, 0...1, at a place in output pixels: from the four cells around it. Outside the output its
    /// edge repeats; where no block is, it is transparent.
    Float4 at(double x, double y) const {
        const float cellX = float(x * m_scale - 0.5);
        const float cellY = float(y * m_scale - 0.5);
        // Not a number counts as 0.
        const float left = cellX > 0 ? (cellX < m_lastX ? cellX : m_lastX) : 0;
        const float top = cellY > 0 ? (cellY < m_lastY ? cellY : m_lastY) : 0;
        const int column = int(left);
        const int row = int(top);
        const int slot = slotAt(m_read, column / side, row / side);
        if (slot < 0)
            return splat(0);
        const MixPixel* cells = m_blurred.get() + std::size_t(slot) * readSide * readSide +
                                std::size_t(row % side) * readSide + std::size_t(column % side);
        const Float4 across = splat(left - float(column));
        const Float4 down = splat(top - float(row));
        const Float4 upper = toFloats(cells[0]) + (toFloats(cells[1]) - toFloats(cells[0])) * across;
        cells += readSide;
        const Float4 lower = toFloats(cells[0]) + (toFloats(cells[1]) - toFloats(cells[0])) * across;
        return (upper + (lower - upper) * down) * splat(1.0f / mixOne);
    }

private:
    struct Free {
        void operator()(MixPixel* cells) const { std::free(cells); }
    };
    using Cells = std::unique_ptr<MixPixel[], Free>;

    static constexpr int side = 16; ///< Of a block, in cells.
    /// A block that is read holds its right and its lower neighbours' first cells as well.
    static constexpr std::size_t readSide = side + 1;

    GlassBackdrop(int width, int height, int cell);
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
    Blocks m_known; ///< What lies behind is known there.
    Blocks m_read;  ///< And there also blurred.
    Cells m_blurred;
};

} // namespace framora::raster
