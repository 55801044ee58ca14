#include "editor/views/GradientSwatch.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <cmath>
#include <numbers>

namespace framora {
namespace {

/// The line that a gradient of `angle` runs along: it reaches just into the two corners that it points from
/// and to.
QLinearGradient lineThrough(const QRectF& rect, double angle) {
    const double radians = angle * std::numbers::pi / 180.0;
    const QPointF direction(std::sin(radians), -std::cos(radians));
    const double half =
        (std::abs(direction.x()) * rect.width() + std::abs(direction.y()) * rect.height()) / 2.0;
    return {rect.center() - direction * half, rect.center() + direction * half};
}

void paintCheckerboard(QPainter* painter, const QRectF& rect) {
    constexpr double square = 5.0;
    painter->fillRect(rect, Qt::white);
    for (int row = 0; row * square < rect.height(); ++row)
        for (int column = row % 2; column * square < rect.width(); column += 2)
            painter->fillRect(QRectF(rect.x() + column * square, rect.y() + row * square, square, square),
                              QColor(0xd4, 0xd6, 0xdc));
}

} // namespace

GradientSwatch::GradientSwatch(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    connect(this, &GradientSwatch::changed, this, [this] { update(); });
}

void GradientSwatch::paint(QPainter* painter) {
    const QRectF rect = boundingRect();
    QPainterPath shape;
    shape.addRoundedRect(rect, m_radius, m_radius);
    painter->setRenderHint(QPainter::Antialiasing);

    bool translucent = m_colors.isEmpty();
    for (const QColor& color : m_colors)
        translucent = translucent || color.alpha() < 255;
    if (translucent) {
        painter->save();
        painter->setClipPath(shape);
        paintCheckerboard(painter, rect);
        painter->restore();
    }
    if (m_colors.size() == 1) {
        painter->fillPath(shape, m_colors.first());
    } else if (m_colors.size() > 1) {
        QLinearGradient gradient = lineThrough(rect, m_angle);
        for (qsizetype i = 0; i < m_colors.size(); ++i)
            gradient.setColorAt(double(i) / double(m_colors.size() - 1), m_colors[i]);
        painter->fillPath(shape, gradient);
    }
    if (m_shade.isValid()) {
        QLinearGradient gradient(rect.topLeft(), rect.bottomLeft());
        QColor clear = m_shade;
        clear.setAlpha(0);
        gradient.setColorAt(0, clear);
        gradient.setColorAt(1, m_shade);
        // Only where the colours are: a second soft edge would let them show around it.
        painter->setCompositionMode(QPainter::CompositionMode_SourceAtop);
        painter->fillRect(rect, gradient);
        painter->setCompositionMode(QPainter::CompositionMode_SourceOver);
    }
    if (m_outline.isValid()) {
        painter->setPen(QPen(m_outline, 1));
        painter->drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), m_radius - 0.5, m_radius - 0.5);
    }
}

} // namespace framora
