#pragma once

#include "editor/render/raster/Compositor.h"
#include "editor/render/raster/GlassWindow.h"

#include <cstdlib>
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
        const int slot = slotAt(column / side, row / side);
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
        return Float4{float(pixel.channel[0]), float(pixel.channel[1]), float(pixel.channel[2]),
                      float(pixel.channel[3])};
    }
    static Cells allocated(std::size_t count);
    int slotAt(int blockX, int blockY) const {
        return m_slots[std::size_t(blockY) * std::size_t(m_blocksAcross) + std::size_t(blockX)];
    }
    /// Gives every block near the window a slot: outwards and inwards in pixels.
    void findBlocks(const GlassWindow& window, int outwards, int inwards);
    bool hasBlock(const TileRect& pixels) const;
    /// The means of the layers' pixels in the cells of a tile.
    void reduce(const TileRect& tile, const MixPixel* pixels, MixPixel* cells) const;
    void blur(const MixPixel* cells, double deviation);

    int m_cell;  ///< Pixels a side.
    int m_width; ///< Cells.
    int m_height;
    int m_blocksAcross;
    int m_blocksDown;
    double m_scale;
    float m_lastX;
    float m_lastY;
    std::vector<int> m_slots; ///< Of each block; -1 for none.
    int m_slotCount = 0;
    Cells m_blurred;
};

} // namespace framora::raster
