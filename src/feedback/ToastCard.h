#pragma once

#include "feedback/ToastPalette.h"

#include <QFont>
#include <QImage>
#include <QPainterPath>
#include <QRectF>
#include <QSizeF>

class QPainter;

namespace framora {

/// The look that all toasts share: a floating card at the bottom centre of the screen, its shadow, icons and
/// text. Lengths are points.
namespace ToastCard {

inline constexpr double cornerRadius = 18;
/// From the screen's bottom edge: clear of a task bar or dock, near enough to be seen as the desktop's own.
inline constexpr double bottomMargin = 80;
/// Left of and right of the card on a screen that is narrower than the card wants.
inline constexpr double sideMargin = 16;

/// Where a card of this size stands in the panel, on whole points.
QRectF placed(QSizeF card, QSizeF panel);
/// The card and its shadow.
QRectF boundsWithShadow(const QRectF& card);
/// A rounded rectangle whose curvature grows gradually into its corners.
QPainterPath outline(const QRectF& rect, double radius);

/// A picture of `bounds` with the shadow and the card of `color`, premultiplied at `pixelRatio`.
QImage backdrop(const QRectF& bounds, const QRectF& card, const QColor& color, const ToastPalette& palette,
                double pixelRatio);
/// Starts painting on a picture of `bounds` in the panel's coordinates.
void prepare(QPainter& painter, const QRectF& bounds);

/// A symbol in a round of `ground`.
void drawRoundIcon(QPainter& painter, const QRectF& round, const QString& symbol, const QColor& glyph,
                   const QColor& ground);

QFont messageFont();
QFont hintFont();
double textWidth(const QFont& font, const QString& text);
/// One line, vertically centred in `box` on its capitals, shortened with an ellipsis where it is too long.
void drawLine(QPainter& painter, const QRectF& box, const QFont& font, const QColor& color,
              const QString& text);

} // namespace ToastCard
} // namespace framora
