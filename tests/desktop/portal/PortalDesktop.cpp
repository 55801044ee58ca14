#include "desktop/portal/PortalDesktop.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QUrl>

#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>

namespace framora {

PortalDesktop::PortalDesktop(bool sessionBus) : DesktopSession(QStringLiteral("wayland")) {
    QDir().mkpath(picturesPath());
    if (sessionBus)
        startBus();
}

PortalDesktop::~PortalDesktop() {
    closeDescriptors();
    endEverything();
}

void PortalDesktop::closeDescriptors() {
    for (int* file : {&m_ready, &m_picture}) {
        if (*file >= 0)
            ::close(*file);
        *file = -1;
    }
}

ChildProcess& PortalDesktop::launch(const QStringList& arguments) {
    closeDescriptors();
    m_isReady = false;
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe for the capture tool");
    m_ready = ends[0];
    m_picture = ::memfd_create("picture", MFD_CLOEXEC);
    // Open in what is started next, and in nothing after it.
    for (const int file : {ends[1], m_picture})
        ::fcntl(file, F_SETFD, 0);
    setEnvironmentVariable(QStringLiteral("FRAMORA_READY_FD"), QString::number(ends[1]));
    setEnvironmentVariable(QStringLiteral("FRAMORA_PICTURE_FD"), QString::number(m_picture));
    ChildProcess& tool = start(QStringLiteral(FRAMORA_SCREENCAPTURE), arguments);
    ::close(ends[1]);
    ::fcntl(m_picture, F_SETFD, FD_CLOEXEC);
    return tool;
}

bool PortalDesktop::isReady() {
    pollfd waiting = {m_ready, POLLIN, 0};
    char byte = 0;
    if (!m_isReady && ::poll(&waiting, 1, 0) > 0)
        m_isReady = ::read(m_ready, &byte, 1) == 1;
    return m_isReady;
}

QByteArray PortalDesktop::handedPicture() const {
    QByteArray bytes(qsizetype(::lseek(m_picture, 0, SEEK_END)), '\0');
    if (::pread(m_picture, bytes.data(), size_t(bytes.size()), 0) != bytes.size())
        throw std::runtime_error("the handed picture cannot be read");
    return bytes;
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
