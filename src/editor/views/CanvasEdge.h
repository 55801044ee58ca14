#pragma once

#include <QImage>
#include <QRectF>
#include <QSGNode>
#include <array>

class QQuickWindow;
class QSGImageNode;

namespace framora {

/// The quiet shadow and the hairline with which the canvas lies on its ground; nothing of it is where the
/// canvas covers a pixel wholly. What is drawn of it changes only when it is placed anew. A transform node
/// for the reason that CanvasFrame is one.
class CanvasEdge final : public QSGTransformNode {
public:
    /// How far the shadow reaches, in points.
    static constexpr int farthest = 32;

    /// `canvas`, which may end within a pixel, and `view` in device pixels of the item. Where the canvas
    /// covers all of the view there is no edge.
    void place(QQuickWindow& window, const QRectF& canvas, QSize view, double ratio, bool dark);

    /// The edge around a hole of 2 x reach + 1 pixels, with its middle row and column to be stretched;
    /// `reach` in pixels. The hairline is there one pixel inside the hole, too, and the shadow is everywhere.
    static QImage picture(int reach, double ratio, bool dark);

private:
    static constexpr std::size_t partCount = 12;

    void makeParts(QQuickWindow& window, int reach, double ratio, bool dark);

    std::array<QSGImageNode*, partCount> m_parts{};
    QRectF m_canvas;
    QSize m_view;
    double m_ratio = 0;
    bool m_dark = false;
};

} // namespace framora
