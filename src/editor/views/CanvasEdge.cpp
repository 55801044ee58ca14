#include "editor/views/CanvasEdge.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <algorithm>
#include <cmath>
#include <vector>

namespace framora {
namespace {

constexpr double deviation = 11; ///< Of the blur, in points.
constexpr double fall = 4;       ///< By which the shadow lies lower, in points.

/// One stretch of an axis: pixels `from` to `to` of the picture stand for those of the view.
struct Slice {
    int from, to;
    int viewFrom, viewTo;
};

/// A stretch of an axis in whole pixels that goes as far as the canvas.
struct Extent {
    int first, length;
    int underFirst, underLast; ///< Pixels at its ends that the canvas covers in part.
};

Extent extentOf(double from, double to) {
    // A pixel of which the canvas covers less is the hairline's, which would else look twice as thick.
    constexpr double least = 0.125;
    constexpr double nothing = 1e-3; // as rounding makes it
    const int first = int(std::floor(from + least));
    const int last = int(std::ceil(to - least));
    const bool hasRoom = last - first > 2;
    return {first, last - first, hasRoom && from - first > nothing, hasRoom && last - to > nothing};
}

/// Along one axis from outside of the canvas to its other outside: reach, end, middle, end, reach. What is
/// outside goes on under the pixels that are covered in part: they must not show the ground through.
std::array<Slice, 5> slicesOf(const Extent& extent, int reach) {
    const auto [first, length, underFirst, underLast] = extent;
    const int end = std::min(reach, (length - 1) / 2);
    const int hole = 2 * reach + 1;
    const int last = first + length;
    return {{{0, reach + underFirst, first - reach, first + underFirst},
             {reach + underFirst, reach + end, first + underFirst, first + end},
             {2 * reach, 2 * reach + 1, first + end, last - end},
             {reach + hole - end, reach + hole - underLast, last - end, last - underLast},
             {reach + hole - underLast, 2 * reach + hole, last - underLast, last + reach}}};
}

} // namespace

QImage CanvasEdge::picture(int reach, double ratio, bool dark) {
    const double strength = dark ? 0.55 : 0.26;
    const QColor hairline = dark ? QColor(255, 255, 255, 30) : QColor(0, 0, 0, 26);
    const int size = 4 * reach + 1;
    // A blurred rectangle is the product of two blurred steps down and up.
    const auto profile = [&](double shift) {
        std::vector<double> values;
        const double scale = 1 / (deviation * ratio * std::sqrt(2.0));
        for (int i = 0; i < size; ++i) {
            const double inside = i + 0.5 - reach - shift;
            values.push_back((std::erf(inside * scale) - std::erf((inside - 2 * reach - 1) * scale)) / 2);
        }
        return values;
    };
    const std::vector<double> across = profile(0);
    const std::vector<double> down = profile(fall * ratio);
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const double alpha = strength * across[std::size_t(x)] * down[std::size_t(y)];
            image.setPixel(x, y, qRgba(0, 0, 0, int(std::lround(alpha * 255))));
        }
    const int width = std::max(1, int(std::lround(ratio)));
    const QRect hole(reach, reach, 2 * reach + 1, 2 * reach + 1);
    const QRect ring = hole.adjusted(-width, -width, width, width);
    const QRect clear = hole.adjusted(1, 1, -1, -1);
    const double share = hairline.alphaF();
    for (int y = ring.top(); y <= ring.bottom(); ++y)
        for (int x = ring.left(); x <= ring.right(); ++x) {
            if (clear.contains(x, y))
                continue;
            const double under = qAlpha(image.pixel(x, y)) / 255.0;
            const int alpha = int(std::lround((share + under * (1 - share)) * 255));
            const int grey = int(std::lround(hairline.red() * share));
            image.setPixel(x, y, qRgba(grey, grey, grey, alpha));
        }
    return image;
}

void CanvasEdge::makeParts(QQuickWindow& window, int reach, double ratio, bool dark) {
    while (QSGNode* part = firstChild()) {
        removeChildNode(part);
        delete part;
    }
    QSGTexture* texture =
        window.createTextureFromImage(picture(reach, ratio, dark), QQuickWindow::TextureHasAlphaChannel);
    for (QSGImageNode*& part : m_parts) {
        part = window.createImageNode();
        part->setTexture(texture);
        part->setOwnsTexture(firstChild() == nullptr);
        part->setFiltering(QSGTexture::Nearest);
        part->setFlag(QSGNode::OwnedByParent);
        appendChildNode(part);
    }
}

void CanvasEdge::place(QQuickWindow& window, const QRectF& canvas, QSize view, double ratio, bool dark) {
    const int reachPixels = int(std::lround(farthest * ratio));
    if (ratio != m_ratio || dark != m_dark || !firstChild())
        makeParts(window, reachPixels, ratio, dark);
    else if (canvas == m_canvas && view == m_view)
        return;
    m_canvas = canvas;
    m_view = view;
    m_ratio = ratio;
    m_dark = dark;

    const Extent across = extentOf(canvas.left(), canvas.right());
    const Extent down = extentOf(canvas.top(), canvas.bottom());
    const auto columns = slicesOf(across, reachPixels);
    const auto rows = slicesOf(down, reachPixels);
    const QRect covered =
        QRect(across.first, down.first, across.length, down.length)
            .adjusted(across.underFirst, down.underFirst, -across.underLast, -down.underLast);
    const bool shown = !covered.isEmpty() && !covered.contains(QRect({0, 0}, view));
    std::size_t next = 0;
    const auto put = [&](const Slice& column, const Slice& row) {
        QSGImageNode& part = *m_parts[next++];
        part.setSourceRect(QRectF(QPointF(column.from, row.from), QPointF(column.to, row.to)));
        const QRectF place(QPointF(column.viewFrom, row.viewFrom) / ratio,
                           QPointF(column.viewTo, row.viewTo) / ratio);
        part.setRect(shown ? place : QRectF());
    };
    // Above and below from end to end, the sides between; a corner and the end of its side are one part.
    const auto joined = [](const Slice& a, const Slice& b) {
        return Slice{a.from, b.to, a.viewFrom, b.viewTo};
    };
    for (const Slice& row : {rows.front(), rows.back()}) {
        put(joined(columns[0], columns[1]), row);
        put(columns[2], row);
        put(joined(columns[3], columns[4]), row);
    }
    for (const Slice& column : {columns.front(), columns.back()})
        for (std::size_t i = 1; i < 4; ++i)
            put(column, rows[i]);
}

} // namespace framora
