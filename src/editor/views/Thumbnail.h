#pragma once

#include <QColor>
#include <QImage>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace framora {

/// A picture that fills a rounded field, cropped about its centre.
class Thumbnail : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QImage image MEMBER m_image NOTIFY changed)
    Q_PROPERTY(double radius MEMBER m_radius NOTIFY changed)
    Q_PROPERTY(QColor outline MEMBER m_outline NOTIFY changed)

public:
    explicit Thumbnail(QQuickItem* parent = nullptr);
    void paint(QPainter* painter) override;

Q_SIGNALS:
    void changed();

private:
    QImage m_image;
    double m_radius = 8;
    QColor m_outline;
};

} // namespace framora
