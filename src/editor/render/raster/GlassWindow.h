#pragma once

#include "editor/render/raster/Coverage.h"

#include <algorithm>
#include <array>
#include <vector>

namespace framora::raster {

/// The part of a card that is seen: row by row the columns it touches, and those of them that something
/// opaque hides.
class GlassWindow {
public:
    /// The columns [first, end).
    struct Columns {
        int first = 0;
        int end = 0;
        bool isEmpty() const { return first >= end; }
    };
    struct Span {
        int first = 0;
        int end = 0;
        int hiddenFirst = 0;
        int hiddenEnd = 0;
        /// What is seen left and right of what is hidden; either may be empty.
        std::array<Columns, 2> seen() const {
            if (hiddenFirst >= hiddenEnd)
                return {Columns{first, end}, {}};
            return {Columns{first, std::min(hiddenFirst, end)}, Columns{std::max(hiddenEnd, first), end}};
        }
    };

    /// `hidden` lies in `card`; both are in the pixels of an output of `width` x `height`.
    GlassWindow(Coverage card, Coverage hidden, int width, int height);

    int width() const { return m_width; }
    int height() const { return int(m_rows.size()); }
    const Span& row(int y) const { return m_rows[std::size_t(y)]; }
    /// The rows [top, bottom) together and what lies up to `outwards` pixels beside the card or up to
    /// `inwards` pixels below what hides it. It may say that more is seen than is, and reach beyond the
    /// output.
    Span strip(int top, int bottom, int outwards, int inwards) const;

private:
    int m_width;
    std::vector<Span> m_rows;
};

} // namespace framora::raster
