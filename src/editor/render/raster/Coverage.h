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
    /// Writes the coverage, 0...1, of the columns [0, width) of row y to `out`, only inside the run it
    /// returns. `scratch` is resized as needed, and kept by the caller to be used again.
    Run row(int y, int width, float* out, std::vector<double>& scratch) const;

    /// The rows that are touched: [firstRow, endRow).
    int firstRow() const { return m_firstRow; }
    int endRow() const { return m_endRow; }

private:
    struct Edge {
        Vec2 top;
        Vec2 bottom;
        double direction; ///< 1 when the outline goes down here, -1 when it goes up.
    };
    std::vector<Edge> m_edges; ///< By ascending top.
    double m_sign = 1;
    int m_firstRow = 0;
    int m_endRow = 0;
};

} // namespace framora::raster
