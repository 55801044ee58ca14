#include "QPainterSide.h"

#include <QImageReader>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <memory>

namespace framora::comparison {
namespace {

QColor qtColor(const Color& color) {
    return QColor::fromRgbF(float(color.red), float(color.green), float(color.blue), float(color.alpha));
}

void drawGradient(QPainter& painter, const ScreenshotStyleConfig& style) {
    const QLineF line = gradientLine(style);
    QLinearGradient gradient(line.p1(), line.p2());
    gradient.setColorAt(0, qtColor(style.gradientConfig.color1));
    gradient.setColorAt(0.5, qtColor(style.gradientConfig.color2));
    gradient.setColorAt(1, qtColor(style.gradientConfig.color3));
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(QRect(QPoint(), outputSize), gradient);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

/// Clipped and drawn as an image: quicker than a rounded rectangle filled with the picture.
void drawPicture(QPainter& painter, const QImage& picture, const QTransform& map, double radius) {
    painter.setRenderHints(QPainter::SmoothPixmapTransform | QPainter::Antialiasing);
    painter.setTransform(map);
    QPainterPath shape;
    shape.addRoundedRect(picture.rect(), radius, radius);
    painter.setClipPath(shape);
    painter.drawImage(0, 0, picture);
}

} // namespace

Contender painterExport(Workload workload, const Inputs& inputs) {
    const auto target = std::make_shared<QImage>(outputSize, QImage::Format_ARGB32_Premultiplied);
    target->fill(Qt::black);
    const ScreenshotStyleConfig style = comparison::style(workload, inputs);
    const QTransform map = screenshotToOutput(workload, inputs);
    // Said to be opaque, which is quicker.
    const QImage screenshot = inputs.screenshot.convertToFormat(QImage::Format_RGB32);
    return {
        .name = QStringLiteral("QPainter"),
        .run =
            [=] {
                QPainter painter(target.get());
                drawGradient(painter, style);
                drawPicture(painter, screenshot, map, style.borderRadius);
            },
        .picture = [target] { return *target; },
    };
}

Contender painterDecode(const Inputs& inputs) {
    const auto decoded = std::make_shared<QImage>();
    const QString path = inputs.photographPath;
    return {
        .name = QStringLiteral("Qt's reader"),
        .run =
            [=] {
                *decoded = QImageReader(path).read().convertToFormat(QImage::Format_ARGB32_Premultiplied);
            },
        .picture = [decoded] { return *decoded; },
        .note = {},
        .prepare = [decoded] { *decoded = QImage(); },
    };
}

QImage gradientTarget(const Inputs& inputs) {
    QImage target(outputSize, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&target);
    drawGradient(painter, style(Workload::gradient, inputs));
    return target;
}

} // namespace framora::comparison
