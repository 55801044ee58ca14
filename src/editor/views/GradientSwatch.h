#pragma once

#include <QColor>
#include <QList>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace framora {

/// A rounded field of one or more colours, as a gradient when there are several. A translucent colour shows
/// its checkerboard.
class GradientSwatch : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QList<QColor> colors MEMBER m_colors NOTIFY changed)
    Q_PROPERTY(double angle MEMBER m_angle NOTIFY changed)
    Q_PROPERTY(double radius MEMBER m_radius NOTIFY changed)
    Q_PROPERTY(QColor outline MEMBER m_outline NOTIFY changed)
    /// What the colours go over into from top to bottom; invalid is nothing.
    Q_PROPERTY(QColor shade MEMBER m_shade NOTIFY changed)

public:
    explicit GradientSwatch(QQuickItem* parent = nullptr);
    void paint(QPainter* painter) override;

Q_SIGNALS:
    void changed();

private:
    QList<QColor> m_colors;
    double m_angle = 135; ///< Degrees, 0 points up, clockwise.
    double m_radius = 8;
    QColor m_outline;
    QColor m_shade;
};

} // namespace framora
