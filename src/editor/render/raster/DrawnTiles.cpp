#include "editor/render/raster/DrawnTiles.h"

#include <algorithm>
#include <functional>

namespace framora::raster {
namespace {

bool areAlike(const MutablePixelView& a, const MutablePixelView& b) {
    return a.data == b.data && a.width == b.width && a.height == b.height && a.stride == b.stride;
}

/// Whether both draw the same where they cover pixels whole.
bool haveSameColors(const Layer& a, const Layer& b) {
    return a.paint == b.paint && a.adjustment == b.adjustment && a.noise == b.noise &&
           a.opacity == b.opacity && a.blend == b.blend;
}

} // namespace

void DrawnTiles::clear() {
    m_layers.clear();
    m_serials.clear();
    std::ranges::fill(m_contents, 0);
}

void DrawnTiles::begin(MutablePixelView picture, const TileGrid& grid, const std::vector<Layer>& layers) {
    if (!areAlike(picture, m_picture) || grid != m_grid) {
        m_picture = picture;
        m_grid = grid;
        m_contents.assign(std::size_t(grid.columns.count()) * std::size_t(grid.rows.count()), 0);
    }
    m_isChanged.assign(m_contents.size(), 0);
    std::vector<Serials> serials;
    for (const Layer& layer : layers) {
        Serials& own = serials.emplace_back();
        const auto serialOf = [&](auto isSame, std::uint64_t Serials::*which) {
            const auto known =
                std::ranges::find_if(m_layers, [&](const Layer& earlier) { return isSame(earlier, layer); });
            own.*which = known == m_layers.end() ? ++m_lastSerial
                                                 : m_serials[std::size_t(known - m_layers.begin())].*which;
        };
        serialOf(std::equal_to<Layer>(), &Serials::ofLayer);
        serialOf(haveSameColors, &Serials::ofColors);
    }
    m_serials = std::move(serials);
    m_layers = layers;
}

bool DrawnTiles::take(int x, int y, std::uint64_t content) {
    const std::size_t tile = index(m_grid.columns.indexOf(x), m_grid.rows.indexOf(y));
    if (m_contents[tile] == content)
        return false;
    m_contents[tile] = content;
    m_isChanged[tile] = 1;
    return true;
}

bool DrawnTiles::hasChanged(const TileRect& part) const {
    const int left = std::max(part.x, 0);
    const int top = std::max(part.y, 0);
    const int right = std::min(part.x + part.width, m_picture.width);
    const int bottom = std::min(part.y + part.height, m_picture.height);
    if (left >= right || top >= bottom)
        return false;
    const auto& [columns, rows] = m_grid;
    for (int row = rows.indexOf(top); row <= rows.indexOf(bottom - 1); ++row)
        for (int column = columns.indexOf(left); column <= columns.indexOf(right - 1); ++column)
            if (m_isChanged[index(column, row)])
                return true;
    return false;
}

TileRect DrawnTiles::unchanged() const {
    // For each row of tiles, how many above it did not change, column by column; the largest rectangle that
    // stands on the row is under one of them.
    TileRect best;
    const auto& [columns, rows] = m_grid;
    const int columnCount = columns.count();
    const int rowCount = rows.count();
    std::vector<int> heights(std::size_t(columnCount), 0);
    for (int row = 0; row < rowCount; ++row) {
        for (int column = 0; column < columnCount; ++column) {
            int& height = heights[std::size_t(column)];
            height = m_isChanged[index(column, row)] ? 0 : height + 1;
        }
        for (int first = 0; first < columnCount; ++first)
            for (int end = first + 1, height = rowCount; end <= columnCount; ++end) {
                height = std::min(height, heights[std::size_t(end - 1)]);
                if (height == 0)
                    break;
                const int left = columns.start(first);
                const int top = rows.start(row + 1 - height);
                const TileRect found{left, top, columns.start(end) - left, rows.start(row + 1) - top};
                if (found.area() > best.area())
                    best = found;
            }
    }
    return best;
}

} // namespace framora::raster
