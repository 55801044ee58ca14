#pragma once

#include "editor/render/raster/Coverage.h"

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
    /// Some rows together. It may say that more is seen than is.
    class Strip {
    public:
        /// Whether something between the columns [left, right) is seen, or as near to it as was asked for.
        bool shows(int left, int right) const {
            return left < m_end && right > m_first && !(left >= m_hiddenFirst && right <= m_hiddenEnd);
        }

    private:
        friend class GlassWindow;
        int m_first = 0;
        int m_end = 0;
        int m_hiddenFirst = 0;
        int m_hiddenEnd = 0;
    };

    /// `hidden` lies in `card`; both are in the pixels of an output of `width` x `height`.
    GlassWindow(Coverage card, Coverage hidden, int width, int height);

    int width() const { return m_width; }
    int height() const { return int(m_rows.size()); }
    const Span& row(int y) const { return m_rows[std::size_t(y)]; }
    /// The rows [top, bottom) and what lies up to `outwards` pixels beside the card or up to `inwards` pixels
    /// below what hides it.
    Strip strip(int top, int bottom, int outwards, int inwards) const;

private:
    int m_width;
    std::vector<Span> m_rows;
};

} // namespace framora::raster
