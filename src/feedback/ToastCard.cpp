#include "feedback/ToastCard.h"

#include "feedback/ToastShadow.h"
#include "platform/Symbols.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace framora::ToastCard {
namespace {

/// The card's shadows: a wide soft one below it, and a narrow one that lifts its edge.
constexpr ToastShadow wideShadow{.sigma = 17, .offsetY = 10, .opacity = 1.0};
constexpr ToastShadow edgeShadow{.sigma = 3, .offsetY = 1.5, .opacity = 0.45};
constexpr double shadowReach = 48;

QFont font(double pixelSize, QFont::Weight weight) {
    // The desktop's own face where the program's is not installed.
    QFont result = QGuiApplication::font();
    result.setFamilies({QStringLiteral("Inter"), result.family()});
    result.setWeight(weight);
    result.setPixelSize(int(std::lround(pixelSize)));
    result.setHintingPreference(QFont::PreferNoHinting);
    return result;
}

} // namespace

QRectF placed(QSizeF card, QSizeF panel) {
    return {std::round((panel.width() - card.width()) / 2),
            std::round(panel.height() - bottomMargin - card.height()), card.width(), card.height()};
}

QRectF boundsWithShadow(const QRectF& card) {
    return card.adjusted(-shadowReach, -(shadowReach - wideShadow.offsetY), shadowReach,
                         shadowReach + wideShadow.offsetY);
}

QPainterPath outline(const QRectF& rect, double radius) {
    // Each corner is one cubic that starts before the circular arc would and follows it through the middle.
    const double reach = std::min({radius * 1.28, rect.width() / 2, rect.height() / 2});
    const double handle = reach * 0.295;
    const double l = rect.left();
    const double t = rect.top();
    const double r = rect.right();
    const double b = rect.bottom();
    QPainterPath path;
    path.moveTo(l + reach, t);
    path.lineTo(r - reach, t);
    path.cubicTo(r - handle, t, r, t + handle, r, t + reach);
    path.lineTo(r, b - reach);
    path.cubicTo(r, b - handle, r - handle, b, r - reach, b);
    path.lineTo(l + reach, b);
    path.cubicTo(l + handle, b, l, b - handle, l, b - reach);
    path.lineTo(l, t + reach);
    path.cubicTo(l, t + handle, l + handle, t, l + reach, t);
    path.closeSubpath();
    return path;
}

QImage backdrop(const QRectF& bounds, const QRectF& card, const QColor& color, const ToastPalette& palette,
                double pixelRatio) {
    const QSize pixels(int(std::lround(bounds.width() * pixelRatio)),
                       int(std::lround(bounds.height() * pixelRatio)));
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const auto pixelRect = [&](const QRectF& rect) {
        const QRectF moved = rect.translated(-bounds.topLeft());
        return QRectF(moved.topLeft() * pixelRatio, moved.size() * pixelRatio);
    };
    for (const ToastShadow& shadow : {wideShadow, edgeShadow})
        shadow.scaled(pixelRatio, palette.shadowOpacity)
            .drawUnder(image, pixelRect(card), cornerRadius * pixelRatio);
    image.setDevicePixelRatio(pixelRatio);

    QPainter painter(&image);
    prepare(painter, bounds);
    painter.fillPath(outline(card, cornerRadius), color);
    // A line of one device pixel at least, inside the card.
    const double line = std::max(1.0, std::floor(pixelRatio)) / pixelRatio;
    const QRectF inner = card.adjusted(line / 2, line / 2, -line / 2, -line / 2);
    painter.strokePath(outline(inner, cornerRadius - line / 2), QPen(palette.hairline, line));
    return image;
}

void prepare(QPainter& painter, const QRectF& bounds) {
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                           QPainter::SmoothPixmapTransform);
    painter.translate(-bounds.topLeft());
}

void drawRoundIcon(QPainter& painter, const QRectF& round, const QString& symbol, const QColor& glyph,
                   const QColor& ground) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawEllipse(round);
    constexpr double glyphShare = 0.58;
    const double side = round.width() * glyphShare;
    const QRectF box(round.center().x() - side / 2, round.center().y() - side / 2, side, side);
    painter.fillPath(symbolPath(symbol, box), glyph);
}

QFont messageFont() {
    return font(14, QFont::DemiBold);
}

QFont hintFont() {
    return font(12, QFont::Normal);
}

double textWidth(const QFont& textFont, const QString& text) {
    return std::ceil(QFontMetricsF(textFont).horizontalAdvance(text));
}

void drawLine(QPainter& painter, const QRectF& box, const QFont& textFont, const QColor& color,
              const QString& text) {
    const QFontMetricsF metrics(textFont);
    painter.setFont(textFont);
    painter.setPen(color);
    const QString line = metrics.elidedText(text.simplified(), Qt::ElideRight, box.width() + 0.5);
    painter.drawText(QPointF(box.left(), box.center().y() + metrics.capHeight() / 2), line);
}

} // namespace framora::ToastCard
