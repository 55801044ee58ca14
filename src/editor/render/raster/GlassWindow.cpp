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

GlassWindow::Strip GlassWindow::strip(int top, int bottom, int outwards, int inwards) const {
    Strip strip;
    strip.m_first = m_width;
    for (int y = std::max(top - outwards, 0); y < std::min(bottom + outwards, height()); ++y) {
        const Span& span = row(y);
        if (span.first >= span.end)
            continue;
        strip.m_first = std::min(strip.m_first, span.first);
        strip.m_end = std::max(strip.m_end, span.end);
    }
    if (strip.m_first >= strip.m_end)
        return {};
    strip.m_first -= outwards;
    strip.m_end += outwards;
    strip.m_hiddenEnd = m_width;
    for (int y = std::max(top - inwards, 0); y < std::min(bottom + inwards, height()); ++y) {
        strip.m_hiddenFirst = std::max(strip.m_hiddenFirst, row(y).hiddenFirst);
        strip.m_hiddenEnd = std::min(strip.m_hiddenEnd, row(y).hiddenEnd);
    }
    // Nobody reads beyond the output.
    strip.m_hiddenFirst = strip.m_hiddenFirst > 0 ? strip.m_hiddenFirst + inwards : 0;
    strip.m_hiddenEnd = strip.m_hiddenEnd < m_width ? strip.m_hiddenEnd - inwards : m_width;
    return strip;
}

} // namespace framora::raster
