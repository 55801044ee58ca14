#include "controls/RoundedBox.h"

#include <QPainter>
#include <QPainterPath>
#include <QQuickWindow>
#include <QSGImageNode>
#include <QVarLengthArray>
#include <algorithm>
#include <cmath>

namespace framora {
namespace {

/// One stretch of an axis: pixels `from` to `to` of the source stand for those of the target.
struct Slice {
    int from, to;
    int targetFrom, targetTo;
};
using Slices = QVarLengthArray<Slice, 3>;

/// The ends as they are, and a middle pixel for all that lies between them.
Slices slicesOf(int source, int target) {
    if (source == target)
        return {{0, source, 0, target}};
    const int end = source / 2;
    return {{0, end, 0, end}, {end, end + 1, end, target - end}, {end + 1, source, target - end, target}};
}

} // namespace

RoundedBox::RoundedBox(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
    connect(this, &RoundedBox::changed, this, &QQuickItem::update);
}

QImage RoundedBox::picture(QSize size, double radius, const QColor& color, int outlineWidth,
                           const QColor& outline) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const double least = std::min(size.width(), size.height());
    radius = std::clamp(radius, 0.0, least / 2.0);
    QPainterPath outer;
    outer.addRoundedRect(QRectF({0, 0}, size), radius, radius);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(outer, color);
    if (outlineWidth > 0 && outline.alpha() > 0) {
        const double width = std::min<double>(outlineWidth, least / 2.0);
        const double inside = std::max(0.0, radius - width);
        QPainterPath ring = outer;
        ring.addRoundedRect(QRectF({0, 0}, size).adjusted(width, width, -width, -width), inside, inside);
        painter.fillPath(ring, outline);
    }
    return image;
}

void RoundedBox::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) {
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    update();
}

void RoundedBox::itemChange(ItemChange change, const ItemChangeData& data) {
    if (change == ItemSceneChange) {
        disconnect(m_eachFrame);
        // Nobody tells an item that what it stands in has moved.
        if (data.window)
            m_eachFrame =
                connect(data.window, &QQuickWindow::afterAnimating, this, &RoundedBox::followPosition);
    }
    if (change == ItemDevicePixelRatioHasChanged)
        update();
    QQuickItem::itemChange(change, data);
}

void RoundedBox::followPosition() {
    if (!isVisible() || !window())
        return;
    // By whole pixels it moves as it is.
    const QPointF moved = (mapToScene({0, 0}) - m_scenePosition) * window()->effectiveDevicePixelRatio();
    const auto isWhole = [](double pixels) { return std::abs(pixels - std::round(pixels)) < 1e-3; };
    if (!isWhole(moved.x()) || !isWhole(moved.y()))
        update();
}

QSGNode* RoundedBox::updatePaintNode(QSGNode* node, UpdatePaintNodeData*) {
    delete node;
    const double ratio = window()->effectiveDevicePixelRatio();
    m_scenePosition = mapToScene({0, 0});
    const QRectF place(m_scenePosition * ratio, QSizeF(width(), height()) * ratio);
    const QPoint topLeft(int(std::round(place.left())), int(std::round(place.top())));
    const QSize size(int(std::round(place.right())) - topLeft.x(),
                     int(std::round(place.bottom())) - topLeft.y());
    if (size.isEmpty())
        return nullptr;

    const int outlineWidth = m_outlineWidth > 0 ? std::max(1, int(std::round(m_outlineWidth * ratio))) : 0;
    const int corner = int(std::ceil(std::max<double>(m_radius * ratio, outlineWidth))) + 1;
    const QSize source(std::min(size.width(), 2 * corner + 1), std::min(size.height(), 2 * corner + 1));
    QSGTexture* texture =
        window()->createTextureFromImage(picture(source, m_radius * ratio, m_color, outlineWidth, m_outline),
                                         QQuickWindow::TextureHasAlphaChannel);
    auto* root = new QSGNode;
    for (const Slice& row : slicesOf(source.height(), size.height()))
        for (const Slice& column : slicesOf(source.width(), size.width())) {
            QSGImageNode* part = window()->createImageNode();
            part->setTexture(texture);
            part->setOwnsTexture(root->childCount() == 0);
            part->setFiltering(QSGTexture::Nearest);
            part->setSourceRect(QRectF(QPointF(column.from, row.from), QPointF(column.to, row.to)));
            const QPointF from = QPointF(topLeft + QPoint(column.targetFrom, row.targetFrom)) / ratio;
            const QPointF to = QPointF(topLeft + QPoint(column.targetTo, row.targetTo)) / ratio;
            part->setRect(QRectF(from - m_scenePosition, to - m_scenePosition));
            root->appendChildNode(part);
        }
    return root;
}

} // namespace framora
