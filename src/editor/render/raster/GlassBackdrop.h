#pragma once

#include "editor/render/raster/Compositor.h"
#include "editor/render/raster/Coverage.h"

#include <cstdlib>
#include <memory>
#include <vector>

namespace framora::raster {

/// The part of a card that is seen: row by row the columns it touches, and those of them that something
/// opaque hides.
class GlassWindow {
public:
    struct Span {
        int first = 0;
        int end = 0;
        int hiddenFirst = 0;
        int hiddenEnd = 0;
    };

    /// `hidden` lies in `card`; both are in the pixels of an output of `width` x `height`.
    GlassWindow(Coverage card, Coverage hidden, int width, int height);

    int width() const { return m_width; }
    int height() const { return int(m_rows.size()); }
    const Span& row(int y) const { return m_rows[std::size_t(y)]; }
    /// Whether a part of the card that is seen may lie within `reach` pixels of the block.
    bool isNear(const TileRect& block, int reach) const;

private:
    int m_width;
    std::vector<Span> m_rows;
};

/// What lies behind a card of glass, blurred: cells of some pixels a side, made only where the glass may show
/// them.
class GlassBackdrop {
public:
    /// The `layers` under a Gaussian blur of `deviation` pixels, where they may be seen through `window` when
    /// the glass reads up to `reach` pixels beside a pixel. Null when memory is short.
    static std::shared_ptr<const GlassBackdrop> make(const std::vector<Layer>& layers,
                                                     const GlassWindow& window, double deviation, int reach);

    /// The colour, 0...1, at a place in output pixels: from the four cells around it. Outside the output its
    /// edge repeats.
    Float4 at(double x, double y) const {
        const float cellX = float(x * m_scale - 0.5);
        const float cellY = float(y * m_scale - 0.5);
        // Not a number counts as 0.
        const float left = cellX > 0 ? (cellX < m_lastX ? cellX : m_lastX) : 0;
        const float top = cellY > 0 ? (cellY < m_lastY ? cellY : m_lastY) : 0;
        const int column = int(left);
        const int row = int(top);
        const MixPixel* cells = m_cells.get() + std::size_t(row) * std::size_t(m_stride) + column;
        const Float4 across = splat(left - float(column));
        const Float4 down = splat(top - float(row));
        const Float4 upper = toFloats(cells[0]) + (toFloats(cells[1]) - toFloats(cells[0])) * across;
        const Float4 lower =
            toFloats(cells[m_stride]) + (toFloats(cells[m_stride + 1]) - toFloats(cells[m_stride])) * across;
        return (upper + (lower - upper) * down) * splat(1.0f / mixOne);
    }

private:
    struct Free {
        void operator()(MixPixel* cells) const { std::free(cells); }
    };
    using Cells = std::unique_ptr<MixPixel[], Free>;

    GlassBackdrop(int width, int height, int cell);
    static Float4 toFloats(const MixPixel& pixel) {
        return Float4{float(pixel.channel[0]), float(pixel.channel[1]), float(pixel.channel[2]),
                      float(pixel.channel[3])};
    }
    static Cells allocated(int width, int height);
    /// The means of the layers' pixels in the cells of a tile, into m_cells.
    void reduce(const TileRect& tile, const MixPixel* pixels);
    void blur(const GlassWindow& window, double deviation, int reach);

    int m_cell;  ///< Pixels a side.
    int m_width; ///< Cells.
    int m_height;
    int m_stride; ///< One cell more than the width: the last one repeats, and so does the last row.
    double m_scale;
    float m_lastX;
    float m_lastY;
    Cells m_cells;
};

} // namespace framora::raster
