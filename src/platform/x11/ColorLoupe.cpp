#include "platform/x11/ColorLoupe.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace framora {
namespace {

// Points.
constexpr double pixelSide = 8;
constexpr double margin = 8;
constexpr double cornerRadius = 12;
constexpr double gap = 18; ///< From the pointer; wide enough that the card is in none of its own pictures.
constexpr double glassSide = ColorLoupe::pixelsAcross * pixelSide;
constexpr QRectF glass{margin, margin, glassSide, glassSide};
constexpr QColor cardColor{29, 30, 33};

void drawGlass(QPainter& painter, const QImage& pixels) {
    QPainterPath rounded;
    rounded.addRoundedRect(glass, cornerRadius - 5, cornerRadius - 5);
    painter.save();
    painter.setClipPath(rounded);
    for (int y = 0; y < pixels.height(); ++y)
        for (int x = 0; x < pixels.width(); ++x)
            painter.fillRect(
                QRectF(glass.x() + x * pixelSide, glass.y() + y * pixelSide, pixelSide, pixelSide),
                pixels.pixelColor(x, y));
    painter.setPen(QPen(QColor(128, 128, 128, 46), 1));
    for (int i = 1; i < ColorLoupe::pixelsAcross; ++i) {
        const double at = margin + i * pixelSide;
        painter.drawLine(QPointF(at, glass.top()), QPointF(at, glass.bottom()));
        painter.drawLine(QPointF(glass.left(), at), QPointF(glass.right(), at));
    }
    painter.restore();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(255, 255, 255, 40), 1));
    painter.drawPath(rounded);
    // The pixel that counts, to be seen on every colour.
    const QRectF middle(glass.x() + ColorLoupe::reach * pixelSide, glass.y() + ColorLoupe::reach * pixelSide,
                        pixelSide, pixelSide);
    painter.setPen(QPen(QColor(0, 0, 0, 150), 1));
    painter.drawRect(middle.adjusted(-2, -2, 2, 2));
    painter.setPen(QPen(Qt::white, 1.5));
    painter.drawRect(middle.adjusted(-0.75, -0.75, 0.75, 0.75));
}

/// The card in whole points, row by row.
QRegion roundedRegion() {
    const QSize size = ColorLoupe::cardSize;
    QRegion region;
    for (int y = 0; y < size.height(); ++y) {
        const double depth = cornerRadius - std::min(y, size.height() - 1 - y) - 0.5;
        const double inset =
            depth > 0 ? cornerRadius - std::sqrt(cornerRadius * cornerRadius - depth * depth) : 0;
        const int left = int(std::lround(inset));
        region += QRect(left, y, size.width() - 2 * left, 1);
    }
    return region;
}

void drawName(QPainter& painter, const QColor& color) {
    const QRectF row(margin, glass.bottom() + 8, glass.width(), 20);
    painter.setPen(QPen(QColor(255, 255, 255, 90), 1));
    painter.setBrush(color);
    painter.drawEllipse(QRectF(row.x() + 14, row.y() + 2, 16, 16));
    QFont font(QStringLiteral("JetBrains Mono"));
    font.setStyleHint(QFont::Monospace);
    font.setPixelSize(13);
    painter.setFont(font);
    painter.setPen(QColor(242, 243, 245));
    painter.drawText(row.adjusted(40, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft, color.name().toUpper());
}

} // namespace

ColorLoupe::ColorLoupe(bool isComposited) {
    // A window manager leaves it alone, and the pointer goes through.
    setFlags(Qt::ToolTip | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint | Qt::WindowStaysOnTopHint |
             Qt::WindowDoesNotAcceptFocus | Qt::WindowTransparentForInput);
    if (isComposited) {
        QSurfaceFormat wanted = format();
        wanted.setAlphaBufferSize(8);
        setFormat(wanted);
    } else {
        setMask(roundedRegion());
    }
    resize(cardSize);
}

QPointF ColorLoupe::placeBeside(QPointF pointer, const QRectF& screen) {
    const auto along = [](double at, double size, double begin, double end) {
        const double place = at + gap + size <= end ? at + gap : at - gap - size;
        return std::clamp(place, begin, std::max(begin, end - size));
    };
    return {along(pointer.x(), cardSize.width(), screen.left(), screen.right()),
            along(pointer.y(), cardSize.height(), screen.top(), screen.bottom())};
}

void ColorLoupe::show(const QImage& pixels, QPointF pointer, const QRectF& screen) {
    m_pixels = pixels;
    setPosition(placeBeside(pointer, screen).toPoint());
    if (!isVisible())
        QRasterWindow::show();
    update();
}

QImage ColorLoupe::card(const QImage& pixels, double ratio) {
    QImage image(
        QSize(int(std::lround(cardSize.width() * ratio)), int(std::lround(cardSize.height() * ratio))),
        QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(cardColor);
    painter.setPen(QPen(QColor(96, 99, 107), 1));
    painter.drawRoundedRect(QRectF({0, 0}, cardSize).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius,
                            cornerRadius);
    drawGlass(painter, pixels);
    drawName(painter, pixels.pixelColor(reach, reach));
    return image;
}

void ColorLoupe::paintEvent(QPaintEvent* event) {
    Q_UNUSED(event)
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    // The cut follows whole points: what it leaves outside of the rounding is the card's, too.
    painter.fillRect(QRect({0, 0}, cardSize), mask().isEmpty() ? QColor(Qt::transparent) : cardColor);
    if (!mask().isEmpty())
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.drawImage(QPointF(0, 0), card(m_pixels, devicePixelRatio()));
}

} // namespace framora
