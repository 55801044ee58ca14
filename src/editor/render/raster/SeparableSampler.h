#pragma once

#include "editor/render/raster/FixedTaps.h"
#include "editor/render/raster/Float4.h"
#include "editor/render/raster/PixelView.h"
#include "editor/render/raster/ResampleKernel.h"
#include "editor/render/raster/ResampleKernels.h"

namespace framora::raster {

/// Reads a picture scaled and moved, without rotation.
class SeparableSampler {
public:
    SeparableSampler() = default;
    /// Along one axis: the outputs [first, end), and where they lie as in a ResampleKernel.
    struct Axis {
        double step;
        double origin;
        int first;
        int end;
    };
    /// `picture` must live as long as this.
    SeparableSampler(PixelView picture, Alpha alpha, const Axis& columns, const Axis& rows);

    /// The premultiplied colours of `count` output pixels from (x, y), 0...255. They must lie inside the
    /// axes.
    void read(int x, int y, int count, Float4* out) const;
    /// The same for a block, fast and to within one step of 255. Positions beyond the axes get what the
    /// nearest inside gets.
    void mix(const TileRect& tile, MixPixel* out) const;
    /// What mix() gives of an opaque picture, as its pixels are written at once. False, and nothing is done,
    /// for one that is not, and for a block that is not all inside the axes.
    bool draw(const TileRect& tile, MutablePixelView out, Storing storing) const;

private:
    /// So many rows of what lies between the two kernels as the nearest cache holds: of a picture that is
    /// made much smaller a tile reads long rows.
    static int rowsAtOnce(const FixedTaps::Span& columns);
    /// The first half of a block: its columns are still to be made of the rows. Those `rows` of them that are
    /// inside the axis, from `row` on.
    MixBlock weighDown(const FixedTaps::Span& columns, int row, int rows) const;

    PixelView m_picture;
    Alpha m_alpha = Alpha::any;
    ResampleKernel m_columns;
    ResampleKernel m_rows;
    FixedTaps m_fixedColumns;
    FixedTaps m_fixedRows;
};

} // namespace framora::raster
