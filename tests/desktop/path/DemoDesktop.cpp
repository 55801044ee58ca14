#include "desktop/path/DemoDesktop.h"

#include <QPainter>
#include <QRadialGradient>

namespace framora {

QImage demoWallpaper(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient ground(0, 0, size.width(), size.height());
    ground.setColorAt(0, QColor("#123a63"));
    ground.setColorAt(0.55, QColor("#3c5f93"));
    ground.setColorAt(1, QColor("#e7a987"));
    painter.fillRect(image.rect(), ground);
    struct Cloud {
        double x, y, radius; // Fractions of the picture's width and height; the radius of its width.
        const char* color;
    };
    for (const Cloud& cloud : {Cloud{0.12, 0.95, 0.55, "#1c7c8c"}, Cloud{0.78, 0.12, 0.45, "#8f6bb8"},
                               Cloud{0.95, 0.85, 0.5, "#f3c98b"}, Cloud{0.35, 0.2, 0.35, "#2b62a8"}}) {
        const QPointF center(cloud.x * size.width(), cloud.y * size.height());
        QRadialGradient light(center, cloud.radius * size.width());
        QColor color(QLatin1String(cloud.color));
        for (int step = 0; step <= 8; ++step) {
            const double t = step / 8.0;
            color.setAlphaF(float(0.85 * (1 - t) * (1 - t) * (1 + 2 * t)));
            light.setColorAt(t, color);
        }
        painter.fillRect(image.rect(), light);
    }
    return image;
}

} // namespace framora
