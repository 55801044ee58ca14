#include "desktop/support/KwinDesktop.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusReply>
#include <QDBusUnixFileDescriptor>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <unistd.h>

namespace framora {
namespace {

constexpr auto backendProgram = "/usr/lib/x86_64-linux-gnu/libexec/xdg-desktop-portal-kde";

/// Everything that comes through the pipe until its other end is closed; what came within the time limit.
QByteArray readAll(int descriptor, qsizetype expected) {
    QByteArray bytes;
    pollfd waiting = {descriptor, POLLIN, 0};
    char part[65536];
    while (bytes.size() < expected && ::poll(&waiting, 1, 5000) > 0) {
        const ssize_t count = ::read(descriptor, part, sizeof part);
        if (count <= 0)
            break;
        bytes.append(part, count);
    }
    return bytes;
}

} // namespace

KwinDesktop::KwinDesktop(const KwinOptions& options)
    : DesktopSession(QStringLiteral("wayland")), m_socket(QStringLiteral("wayland-kwin")) {
    setEnvironmentVariable(QStringLiteral("XDG_CURRENT_DESKTOP"), QStringLiteral("KDE"));
    setEnvironmentVariable(QStringLiteral("KDE_FULL_SESSION"), QStringLiteral("true"));
    setEnvironmentVariable(QStringLiteral("KDE_SESSION_VERSION"), QStringLiteral("5"));
    try {
        startBus();
        if (options.accessibility)
            startAccessibility();
        startCompositor(options);
        m_input = std::make_unique<KwinInput>(socketPath());
        if (options.portal) {
            startPortalBackends();
            startPortal();
        }
    } catch (...) {
        m_input.reset();
        endEverything();
        throw;
    }
}

KwinDesktop::~KwinDesktop() {
    m_input.reset();
    endEverything();
}

QString KwinDesktop::socketPath() const {
    return runtimePath() + QLatin1Char('/') + m_socket;
}

QString KwinDesktop::applicationsPath() const {
    return m_folder.filePath(QStringLiteral("data/applications"));
}

void KwinDesktop::startCompositor(const KwinOptions& options) {
    // A capability on the installed file keeps it from starting where the kernel withholds that capability; a
    // copy has none. It keeps its name, by which programs know the desktop.
    const QString program = m_folder.filePath(QStringLiteral("compositor/kwin_wayland"));
    QDir().mkpath(QFileInfo(program).path());
    if (!QFile::copy(QStringLiteral("/usr/bin/kwin_wayland"), program))
        throw std::runtime_error("kwin_wayland is not installed");
    QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

    // Input of our own making is always let in; that is no subject of any test.
    setEnvironmentVariable(QStringLiteral("KWIN_WAYLAND_NO_PERMISSION_CHECKS"), QStringLiteral("1"));
    if (options.everyoneMayCapture)
        setEnvironmentVariable(QStringLiteral("KWIN_SCREENSHOT_NO_PERMISSION_CHECKS"), QStringLiteral("1"));
    QStringList arguments = {QStringLiteral("--virtual"),
                             QStringLiteral("--no-lockscreen"),
                             QStringLiteral("--no-kactivities"),
                             QStringLiteral("--socket"),
                             m_socket,
                             QStringLiteral("--width"),
                             QString::number(options.size.width()),
                             QStringLiteral("--height"),
                             QString::number(options.size.height()),
                             QStringLiteral("--scale"),
                             QString::number(options.scale),
                             QStringLiteral("--output-count"),
                             QString::number(options.outputs)};
    if (options.xwayland)
        arguments << QStringLiteral("--xwayland");
    start(program, arguments);
    requireSoon("KWin", [&] {
        return QFile::exists(socketPath()) && serviceIsOnBus(QStringLiteral("org.kde.KWin")) &&
               serviceIsOnBus(QStringLiteral("org.kde.KWin.ScreenShot2")) &&
               serviceIsOnBus(QStringLiteral("org.kde.kglobalaccel"));
    });
    setEnvironmentVariable(QStringLiteral("WAYLAND_DISPLAY"), m_socket);
}

void KwinDesktop::startPortalBackends() {
    start(QStringLiteral("/usr/libexec/xdg-permission-store"));
    // Its dialogs stand on one part of the whole Plasma workspace, which we put in the place of.
    setEnvironmentVariable(QStringLiteral("QML2_IMPORT_PATH"), QStringLiteral(FRAMORA_PORTAL_QML));
    m_backend = &start(QString::fromLatin1(backendProgram));
    requireSoon("permission store", [&] {
        return serviceIsOnBus(QStringLiteral("org.freedesktop.impl.portal.PermissionStore"));
    });
    requireSoon("portal's backend",
                [&] { return serviceIsOnBus(QStringLiteral("org.freedesktop.impl.portal.desktop.kde")); });
}

ChildProcess& KwinDesktop::startPortal() {
    m_portal = &start(QStringLiteral("/usr/libexec/xdg-desktop-portal"));
    requireSoon("portal", [&] { return serviceIsOnBus(QStringLiteral("org.freedesktop.portal.Desktop")); });
    return *m_portal;
}

void KwinDesktop::installDesktopEntry(const QString& fileName, const QByteArray& contents) {
    writeFile(applicationsPath() + QLatin1Char('/') + fileName, contents);
    run(QStringLiteral("kbuildsycoca5"), {});
}

QImage KwinDesktop::screenshot() {
    int channel[2];
    if (::pipe2(channel, O_CLOEXEC) != 0)
        return {};
    const QString name = QUuid::createUuid().toString();
    QImage image;
    {
        auto bus = QDBusConnection::connectToBus(busAddress(), name);
        auto call = QDBusMessage::createMethodCall(
            QStringLiteral("org.kde.KWin.ScreenShot2"), QStringLiteral("/org/kde/KWin/ScreenShot2"),
            QStringLiteral("org.kde.KWin.ScreenShot2"), QStringLiteral("CaptureWorkspace"));
        call << QVariantMap{{QStringLiteral("native-resolution"), true}}
             << QVariant::fromValue(QDBusUnixFileDescriptor(channel[1]));
        ::close(channel[1]);
        const QDBusReply<QVariantMap> reply = bus.call(call, QDBus::Block, 10000);
        call = {}; // The last copy of the pipe's end for writing here.
        const QVariantMap result = reply.value();
        const int stride = result.value(QStringLiteral("stride")).toInt();
        const int height = result.value(QStringLiteral("height")).toInt();
        const QByteArray pixels =
            reply.isValid() ? readAll(channel[0], qsizetype(stride) * height) : QByteArray();
        if (height > 0 && pixels.size() == qsizetype(stride) * height)
            image = QImage(reinterpret_cast<const uchar*>(pixels.constData()),
                           result.value(QStringLiteral("width")).toInt(), height, stride,
                           QImage::Format(result.value(QStringLiteral("format")).toInt()))
                        .copy();
    }
    QDBusConnection::disconnectFromBus(name);
    ::close(channel[0]);
    return image;
}

} // namespace framora
