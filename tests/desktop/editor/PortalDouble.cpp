#include "desktop/editor/PortalDouble.h"

#include <QDBusAbstractAdaptor>
#include <QDBusArgument>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <QFileInfo>
#include <QTimer>
#include <stdexcept>
#include <sys/stat.h>

namespace framora {
namespace {

/// The exported object; the adaptors answer in its name.
class PortalObject final : public QObject, protected QDBusContext {
    Q_OBJECT

public:
    explicit PortalObject(PortalDouble& portal) : m_portal(portal) {}

    QDBusObjectPath take(const QString& method, const QString& parent, const QVariantMap& options,
                         const QDBusUnixFileDescriptor& descriptor) {
        PortalDouble::Call call{method, parent, options, {}, {}, 0};
        call.options.remove(QStringLiteral("attachment_fds")); // It would hold the descriptors.
        const QString token = call.options.take(QStringLiteral("handle_token")).toString();
        call.path =
            QFileInfo(QStringLiteral("/proc/self/fd/%1").arg(descriptor.fileDescriptor())).symLinkTarget();
        struct stat status {};
        if (stat(QFile::encodeName(QFileInfo(call.path).path()).constData(), &status) == 0)
            call.folderMode = status.st_mode & 0777U;
        QFile file;
        if (file.open(descriptor.fileDescriptor(), QIODevice::ReadOnly))
            call.bytes = file.readAll();
        m_portal.calls.push_back(call);
        if (m_portal.refuses)
            sendErrorReply(QStringLiteral("org.freedesktop.portal.Error.Failed"), QStringLiteral("refused"));
        const QString path = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
                                 .arg(message().service().mid(1).replace(u'.', u'_'), token);
        if (!m_portal.refuses && m_portal.response)
            respond(path, *m_portal.response);
        return QDBusObjectPath(path);
    }

private:
    /// After the call has been answered.
    void respond(const QString& path, unsigned response) {
        QDBusMessage signal = QDBusMessage::createSignal(
            path, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
        signal << response << QVariantMap();
        QTimer::singleShot(0, this, [bus = connection(), signal] { bus.send(signal); });
    }

    PortalDouble& m_portal;
};

class OpenUri final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.OpenURI")
    Q_PROPERTY(uint version READ version CONSTANT)

public:
    explicit OpenUri(PortalObject& portal) : QDBusAbstractAdaptor(&portal), m_portal(portal) {}
    uint version() const { return 4; }

public Q_SLOTS:
    QDBusObjectPath OpenFile(const QString& parent, const QDBusUnixFileDescriptor& file,
                             const QVariantMap& options) {
        return m_portal.take(QStringLiteral("OpenFile"), parent, options, file);
    }

private:
    PortalObject& m_portal;
};

class Email final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Email")
    Q_PROPERTY(uint version READ version CONSTANT)

public:
    explicit Email(PortalObject& portal) : QDBusAbstractAdaptor(&portal), m_portal(portal) {}
    uint version() const { return 3; }

public Q_SLOTS:
    QDBusObjectPath ComposeEmail(const QString& parent, const QVariantMap& options) {
        const auto files = qdbus_cast<QList<QDBusUnixFileDescriptor>>(
            options.value(QStringLiteral("attachment_fds")).value<QDBusArgument>());
        return m_portal.take(QStringLiteral("ComposeEmail"), parent, options,
                             files.isEmpty() ? QDBusUnixFileDescriptor() : files.first());
    }

private:
    PortalObject& m_portal;
};

} // namespace

PortalDouble::PortalDouble(const QString& busAddress, Interfaces interfaces)
    : m_name(QStringLiteral("portal-double")), m_bus(QDBusConnection::connectToBus(busAddress, m_name)) {
    qDBusRegisterMetaType<QList<QDBusUnixFileDescriptor>>();
    auto object = std::make_unique<PortalObject>(*this);
    // Owned by the object.
    if (interfaces.openUri)
        new OpenUri(*object);
    if (interfaces.email)
        new Email(*object);
    m_object = std::move(object);
    if (!m_bus.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), m_object.get()) ||
        !m_bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")))
        throw std::runtime_error("The portal's double cannot get onto the bus");
}

PortalDouble::~PortalDouble() {
    QDBusConnection::disconnectFromBus(m_name);
}

} // namespace framora

#include "PortalDouble.moc"
