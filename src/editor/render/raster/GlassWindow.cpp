#include "editor/render/raster/GlassWindow.h"

#include "editor/render/raster/ParallelFor.h"

#include <algorithm>

namespace framora::raster {

GlassWindow::GlassWindow(Coverage card, Coverage hidden, int width, int height)
    : m_width(width), m_rows(std::size_t(height)) {
    card.index(height);
    hidden.index(height);
    constexpr int rowsAtOnce = 128;
    parallelFor((height + rowsAtOnce - 1) / rowsAtOnce, [&](int band) {
        for (int y = band * rowsAtOnce; y < std::min(height, (band + 1) * rowsAtOnce); ++y) {
            const Coverage::Run shown = card.extent(y, width);
            const Coverage::Run covered = hidden.extent(y, width);
            m_rows[std::size_t(y)] = {shown.first, shown.end, covered.fullFirst, covered.fullEnd};
        }
    });
}

GlassWindow::Span GlassWindow::strip(int top, int bottom, int outwards, int inwards) const {
    Span strip;
    strip.first = m_width;
    for (int y = std::max(top - outwards, 0); y < std::min(bottom + outwards, height()); ++y) {
        const Span& span = row(y);
        if (span.first >= span.end)
            continue;
        strip.first = std::min(strip.first, span.first);
        strip.end = std::max(strip.end, span.end);
    }
    if (strip.first >= strip.end)
        return {};
    strip.first -= outwards;
    strip.end += outwards;
    strip.hiddenEnd = m_width;
    for (int y = std::max(top - inwards, 0); y < std::min(bottom + inwards, height()); ++y) {
        strip.hiddenFirst = std::max(strip.hiddenFirst, row(y).hiddenFirst);
        strip.hiddenEnd = std::min(strip.hiddenEnd, row(y).hiddenEnd);
    }
    // Nobody reads beyond the output.
    strip.hiddenFirst = strip.hiddenFirst > 0 ? strip.hiddenFirst + inwards : 0;
    strip.hiddenEnd = strip.hiddenEnd < m_width ? strip.hiddenEnd - inwards : m_width;
    return strip;
}

} // namespace framora::raster
