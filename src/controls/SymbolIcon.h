#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace framora {

/// One symbol in a square of `size` points, in one colour.
class SymbolIcon : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString symbol MEMBER m_symbol NOTIFY symbolChanged REQUIRED)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY colorChanged)
    Q_PROPERTY(double size READ size WRITE setSize NOTIFY sizeChanged)

public:
    explicit SymbolIcon(QQuickItem* parent = nullptr);
    void paint(QPainter* painter) override;
    double size() const { return m_size; }
    void setSize(double size);

Q_SIGNALS:
    void symbolChanged();
    void colorChanged();
    void sizeChanged();

private:
    QString m_symbol;
    QColor m_color;
    double m_size = 18;
};

} // namespace framora
