#pragma once

#include <QColor>
#include <QImage>
#include <QPointF>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace framora {

/// A filled rectangle with round corners and an outline inside of its edge, for the small things that
/// controls are made of. Its edges lie on whole device pixels wherever it stands, so that it is as crisp at a
/// scale of 1.25 as at 1 or 2.
class RoundedBox : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY changed)
    Q_PROPERTY(double radius MEMBER m_radius NOTIFY changed)
    Q_PROPERTY(QColor outline MEMBER m_outline NOTIFY changed)
    Q_PROPERTY(double outlineWidth MEMBER m_outlineWidth NOTIFY changed)

public:
    explicit RoundedBox(QQuickItem* parent = nullptr);

    /// The box in device pixels: what does not fit into `size` of the radius or the outline is cut down.
    static QImage picture(QSize size, double radius, const QColor& color, int outlineWidth,
                          const QColor& outline);

Q_SIGNALS:
    void changed();

protected:
    void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) override;

private:
    void followPosition();

    QColor m_color = Qt::white;
    double m_radius = 0; ///< Points, as all lengths here.
    QColor m_outline = Qt::transparent;
    double m_outlineWidth = 1;
    QPointF m_scenePosition;
    QMetaObject::Connection m_eachFrame;
};

} // namespace framora
