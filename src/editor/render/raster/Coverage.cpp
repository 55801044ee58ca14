#include "editor/render/raster/Coverage.h"

#include <algorithm>
#include <cmath>

namespace framora::raster {
namespace {

// A sum that comes this close to 0 or 1 is 0 or 1: only rounding keeps it away.
constexpr double rounding = 1e-7;

int toRow(double y) {
    return int(std::clamp(y, -1e9, 1e9));
}

/// Adds to `cells` what an edge piece inside one row does: cells[x] receives how much the area right of the
/// piece grows in pixel x, so that a running sum gives the coverage. `height` is signed; x0 and x1 are its
/// ends' columns.
void addPiece(double* cells, int width, double x0, double x1, double height) {
    double left = std::min(x0, x1);
    double right = std::max(x0, x1);
    if (left >= width)
        return;
    if (right <= 0) {
        cells[0] += height;
        return;
    }
    if (left < 0 || right > width) {
        // Only what lies inside needs its shape; the parts outside count at the border or not at all.
        const double slope = height / (right - left);
        if (left < 0) {
            cells[0] += slope * -left;
            height -= slope * -left;
            left = 0;
        }
        if (right > width) {
            height -= slope * (right - width);
            right = width;
        }
    }
    const int first = std::min(int(left), width - 1);
    const int last = std::min(int(right), width - 1);
    if (first == last) {
        const double middle = (left + right) / 2 - first;
        cells[first] += height * (1 - middle);
        cells[first + 1] += height * middle;
        return;
    }
    const double slope = height / (right - left);
    for (int x = first; x <= last; ++x) {
        const double from = std::max(left, double(x));
        const double to = std::min(right, double(x + 1));
        const double part = slope * (to - from);
        const double middle = (from + to) / 2 - x;
        cells[x] += part * (1 - middle);
        cells[x + 1] += part * middle;
    }
}

} // namespace

Coverage::Coverage(const std::vector<Vec2>& polygon) {
    if (polygon.size() < 3)
        return;
    double top = polygon[0].y;
    double bottom = top;
    double area = 0;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Vec2 a = polygon[i];
        const Vec2 b = polygon[(i + 1) % polygon.size()];
        // Relative to the first corner: far from the origin the plain products would cancel.
        const Vec2 o = polygon[0];
        area += (a.x - o.x) * (b.y - o.y) - (b.x - o.x) * (a.y - o.y);
        top = std::min(top, a.y);
        bottom = std::max(bottom, a.y);
        if (a.y < b.y)
            m_edges.push_back({a, b, 1});
        else if (b.y < a.y)
            m_edges.push_back({b, a, -1});
    }
    // Clockwise on the screen, the outline comes up on the left side.
    m_sign = area > 0 ? -1 : 1;
    std::sort(m_edges.begin(), m_edges.end(), [](const Edge& a, const Edge& b) { return a.top.y < b.top.y; });
    m_firstRow = toRow(std::floor(top));
    m_endRow = toRow(std::ceil(bottom));
}

void Coverage::index(int height) {
    const int first = std::max(m_firstRow, 0);
    const int end = std::min(m_endRow, height);
    const auto rows = [&](const Edge& edge) {
        return std::pair{std::max(toRow(std::floor(edge.top.y)), first),
                         std::min(toRow(std::ceil(edge.bottom.y)), end)};
    };
    m_rowStarts.assign(std::size_t(height) + 2, 0);
    // Counted two rows ahead: filling moves each start to its place.
    for (const Edge& edge : m_edges)
        for (auto [row, last] = rows(edge); row < last; ++row)
            ++m_rowStarts[std::size_t(row) + 2];
    for (std::size_t i = 2; i < m_rowStarts.size(); ++i)
        m_rowStarts[i] += m_rowStarts[i - 1];
    m_rowEdges.resize(std::size_t(m_rowStarts.back()));
    for (std::size_t i = 0; i < m_edges.size(); ++i)
        for (auto [row, last] = rows(m_edges[i]); row < last; ++row)
            m_rowEdges[std::size_t(m_rowStarts[std::size_t(row) + 1]++)] = int(i);
}

template <typename Visit> void Coverage::forEachPiece(int y, const Visit& visit) const {
    const auto visitEdge = [&](const Edge& edge) {
        if (edge.bottom.y <= y)
            return;
        const double from = std::max(edge.top.y, double(y));
        const double to = std::min(edge.bottom.y, double(y + 1));
        const double slope = (edge.bottom.x - edge.top.x) / (edge.bottom.y - edge.top.y);
        const double least = std::min(edge.top.x, edge.bottom.x);
        const double most = std::max(edge.top.x, edge.bottom.x);
        visit(Piece{std::clamp(edge.top.x + (from - edge.top.y) * slope, least, most),
                    std::clamp(edge.top.x + (to - edge.top.y) * slope, least, most),
                    m_sign * edge.direction * (to - from)});
    };
    if (y >= 0 && std::size_t(y) + 2 < m_rowStarts.size()) {
        for (int i = m_rowStarts[std::size_t(y)]; i < m_rowStarts[std::size_t(y) + 1]; ++i)
            visitEdge(m_edges[std::size_t(m_rowEdges[std::size_t(i)])]);
        return;
    }
    for (const Edge& edge : m_edges) {
        if (edge.top.y >= y + 1)
            break;
        visitEdge(edge);
    }
}

Coverage::Run Coverage::extent(int y, int width) const {
    if (y < m_firstRow || y >= m_endRow || width <= 0)
        return {};
    double first = width;
    double end = 0;
    double fullFirst = 0;
    double fullEnd = width;
    double height = 0; // of the left side's pieces
    forEachPiece(y, [&](const Piece& piece) {
        const double left = std::min(piece.x0, piece.x1);
        const double right = std::max(piece.x0, piece.x1);
        first = std::min(first, left);
        end = std::max(end, right);
        if (piece.height > 0) {
            height += piece.height;
            fullFirst = std::max(fullFirst, right);
        } else {
            fullEnd = std::min(fullEnd, left);
        }
    });
    const auto column = [&](double x) { return int(std::clamp(x, 0.0, double(width))); };
    Run run{column(std::floor(first)), column(std::ceil(end)), column(std::ceil(fullFirst)),
            column(std::floor(fullEnd))};
    if (run.isEmpty())
        return {};
    if (height < 1 - rounding || run.fullFirst >= run.fullEnd)
        run.fullFirst = run.fullEnd = run.end;
    return run;
}

int Coverage::extentEnd(int y, int end) const {
    if (y < 0 || std::size_t(y) + 2 >= m_rowStarts.size())
        return y + 1;
    const auto count = [this](int row) {
        return m_rowStarts[std::size_t(row) + 1] - m_rowStarts[std::size_t(row)];
    };
    // As long as the same upright edges go through.
    double bottom = std::min(end, int(m_rowStarts.size()) - 2);
    for (int i = m_rowStarts[std::size_t(y)]; i < m_rowStarts[std::size_t(y) + 1]; ++i) {
        const Edge& edge = m_edges[std::size_t(m_rowEdges[std::size_t(i)])];
        if (edge.top.x != edge.bottom.x || edge.top.y > y)
            return y + 1;
        bottom = std::min(bottom, edge.bottom.y);
    }
    int next = y + 1;
    while (next + 1 <= bottom && count(next) == count(y))
        ++next;
    return next;
}

Coverage::Run Coverage::row(int y, int from, int to, float* out, std::vector<double>& scratch) const {
    const int width = to - from;
    if (y < m_firstRow || y >= m_endRow || width <= 0)
        return {};
    scratch.assign(std::size_t(width) + 2, 0.0);
    int first = width;
    int changed = 0; // behind the last column where the sum changes
    forEachPiece(y, [&](const Piece& piece) {
        const double x0 = piece.x0 - from;
        const double x1 = piece.x1 - from;
        addPiece(scratch.data(), width, x0, x1, piece.height);
        first = std::min(first, int(std::clamp(std::min(x0, x1), 0.0, double(width))));
        changed = std::max(changed, int(std::clamp(std::max(x0, x1) + 2, 0.0, double(width))));
    });
    Run run{first, first, width, width};
    double sum = 0;
    bool fullEnded = false;
    for (int x = first; x < width; ++x) {
        sum += scratch[std::size_t(x)];
        const double covered = sum < rounding ? 0 : sum > 1 - rounding ? 1 : sum;
        if (x >= changed && covered == 0)
            break;
        out[x] = float(covered);
        if (covered > 0)
            run.end = x + 1;
        if (covered == 1 && !fullEnded) {
            run.fullFirst = std::min(run.fullFirst, x);
            run.fullEnd = x + 1;
        } else if (run.fullFirst < width) {
            fullEnded = true;
        }
    }
    if (run.fullFirst >= run.end)
        run.fullFirst = run.fullEnd = run.end;
    return {run.first + from, run.end + from, run.fullFirst + from, run.fullEnd + from};
}

} // namespace framora::raster
