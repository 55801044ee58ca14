#pragma once

#include "editor/render/raster/Homography.h"

#include <vector>

namespace framora::raster {

/// The exact area that a convex polygon covers of each pixel of a row.
class Coverage {
public:
    Coverage() = default;
    /// `polygon` is convex, closed, in pixels, either way round; empty covers nothing.
    explicit Coverage(const std::vector<Vec2>& polygon);

    /// A run of columns that are touched: [first, end), of which [fullFirst, fullEnd) are covered whole.
    struct Run {
        int first = 0;
        int end = 0;
        int fullFirst = 0;
        int fullEnd = 0;
        bool isEmpty() const { return first >= end; }
    };
    /// Writes the coverage, 0...1, of the columns [from, to) of row y, only inside the run it returns: `out`
    /// receives column `from` first. `scratch` is resized as needed, and kept by the caller to be used again.
    Run row(int y, int from, int to, float* out, std::vector<double>& scratch) const;
    /// What row() would return for the columns [0, width), to within a pixel on the safe side: the run may be
    /// a little longer, and what is covered whole a little shorter.
    Run extent(int y, int width) const;

    /// Behind row y, the first row up to `end` whose extent may be another one, or `end`; after index().
    int extentEnd(int y, int end) const;

    /// Prepares the rows [0, height), so that each finds its edges at once.
    void index(int height);

    /// The rows that are touched: [firstRow, endRow).
    int firstRow() const { return m_firstRow; }
    int endRow() const { return m_endRow; }

private:
    struct Edge {
        Vec2 top;
        Vec2 bottom;
        double direction; ///< 1 when the outline goes down here, -1 when it goes up.
    };
    /// The piece of an edge inside one row.
    struct Piece {
        double x0;
        double x1;
        double height; ///< Signed: positive where the polygon lies to the right.
    };
    template <typename Visit> void forEachPiece(int y, const Visit& visit) const;

    std::vector<Edge> m_edges;    ///< By ascending top.
    std::vector<int> m_rowStarts; ///< Where a row's edges start in m_rowEdges; empty before index().
    std::vector<int> m_rowEdges;
    double m_sign = 1;
    int m_firstRow = 0;
    int m_endRow = 0;
};

} // namespace framora::raster
