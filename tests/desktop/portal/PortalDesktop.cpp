#include "desktop/portal/PortalDesktop.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QUrl>

namespace framora {

PortalDesktop::PortalDesktop(bool sessionBus) : DesktopSession(QStringLiteral("wayland")) {
    QDir().mkpath(picturesPath());
    if (sessionBus)
        startBus();
}

PortalDesktop::~PortalDesktop() {
    endEverything();
}

ChildProcess& PortalDesktop::launch(const QStringList& arguments) {
    return m_descriptors.launch(*this, QStringLiteral(FRAMORA_SCREENCAPTURE), arguments);
}

QString PortalDesktop::leaveFile(const QByteArray& contents, const QString& name) {
    const QString path = picturesPath() + QLatin1Char('/') + name;
    writeFile(path, contents);
    return QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded());
}

QString PortalDesktop::leavePicture(const QImage& image, const QString& name) {
    QByteArray png;
    QBuffer buffer(&png);
    image.save(&buffer, "PNG");
    return leaveFile(png, name);
}

QImage distinctPicture(const QSize& size, bool translucent) {
    QImage image(size, translucent ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(
                x, y, qRgba(x & 255, y & 255, (x * 7 + y * 13) & 255, translucent ? (x * 3 + y) & 255 : 255));
    return image;
}

} // namespace framora
