#include "editor/views/Thumbnail.h"

#include <QPainter>
#include <QPainterPath>

namespace framora {

Thumbnail::Thumbnail(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    connect(this, &Thumbnail::changed, this, [this] { update(); });
}

void Thumbnail::paint(QPainter* painter) {
    const QRectF rect = boundingRect();
    QPainterPath shape;
    shape.addRoundedRect(rect, m_radius, m_radius);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    if (!m_image.isNull()) {
        const QSizeF cropped = rect.size().scaled(m_image.size(), Qt::KeepAspectRatio);
        QRectF source({0, 0}, cropped);
        source.moveCenter(QRectF(m_image.rect()).center());
        painter->save();
        painter->setClipPath(shape);
        // The painter looks at four pixels of the picture for one of its own, however many lie between.
        const QSize drawn = (rect.size() * painter->device()->devicePixelRatioF()).toSize();
        painter->drawImage(rect, m_image.copy(source.toAlignedRect())
                                     .scaled(drawn, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        painter->restore();
    }
    if (m_outline.isValid()) {
        painter->setPen(QPen(m_outline, 1));
        painter->drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), m_radius - 0.5, m_radius - 0.5);
    }
}

} // namespace framora
