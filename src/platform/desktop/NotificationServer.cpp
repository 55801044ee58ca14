#include "platform/desktop/NotificationServer.h"

#include "platform/ApplicationId.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>

namespace framora {

/// (iiibiiay): a picture on the bus, RGB with or without straight alpha.
struct BusPicture {
    int width = 0;
    int height = 0;
    int stride = 0;
    bool hasAlpha = false;
    int bitsPerSample = 8;
    int channels = 3;
    QByteArray bytes;
};

QDBusArgument& operator<<(QDBusArgument& argument, const BusPicture& picture) {
    argument.beginStructure();
    argument << picture.width << picture.height << picture.stride << picture.hasAlpha << picture.bitsPerSample
             << picture.channels << picture.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, BusPicture& picture) {
    argument.beginStructure();
    argument >> picture.width >> picture.height >> picture.stride >> picture.hasAlpha >>
        picture.bitsPerSample >> picture.channels >> picture.bytes;
    argument.endStructure();
    return argument;
}

} // namespace framora

Q_DECLARE_METATYPE(framora::BusPicture)

namespace framora {
namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString objectPath = QStringLiteral("/org/freedesktop/Notifications");

QVariant onBus(const QImage& image) {
    const bool hasAlpha = image.hasAlphaChannel();
    const QImage pixels = image.convertToFormat(hasAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    const int channels = hasAlpha ? 4 : 3;
    const auto stride = pixels.bytesPerLine();
    // Some servers refuse a picture whose last line is filled up like the others.
    const qsizetype length = (pixels.height() - 1) * stride + qsizetype{pixels.width()} * channels;
    return QVariant::fromValue(
        BusPicture{pixels.width(), pixels.height(), int(stride), hasAlpha, 8, channels,
                   QByteArray(reinterpret_cast<const char*>(pixels.constBits()), length)});
}

QDBusMessage serverCall(const char* method) {
    return QDBusMessage::createMethodCall(service, objectPath, service, QLatin1String(method));
}

} // namespace

NotificationServer::NotificationServer(QDBusConnection bus)
    : m_bus(std::move(bus)), m_watcher(service, m_bus, QDBusServiceWatcher::WatchForOwnerChange) {
    qDBusRegisterMetaType<BusPicture>();
    m_bus.connect(service, objectPath, service, QStringLiteral("NotificationClosed"), this,
                  SLOT(onClosed(uint, uint)));
    m_bus.connect(service, objectPath, service, QStringLiteral("ActionInvoked"), this,
                  SLOT(onAction(uint, QString)));
    m_bus.connect(service, objectPath, service, QStringLiteral("ActivationToken"), this,
                  SLOT(onActivationToken(uint, QString)));
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString& before, const QString&) {
                // One that is only just starting, because it was called, has forgotten nothing.
                if (before.isEmpty())
                    return;
                m_abilities.reset();
                if (m_listener.gone)
                    m_listener.gone();
            });
}

void NotificationServer::notify(const Notification& notification, std::function<void(uint)> shown) {
    if (m_abilities) {
        send(notification, std::move(shown));
        return;
    }
    // Some servers make a dialog of a notification whose actions they have no buttons for.
    auto* asked = new QDBusPendingCallWatcher(m_bus.asyncCall(serverCall("GetCapabilities")), this);
    connect(asked, &QDBusPendingCallWatcher::finished, this,
            [this, notification, shown = std::move(shown)](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                if (finished->isError()) {
                    shown(0);
                    return;
                }
                m_abilities = finished->reply().arguments().value(0).toStringList();
                send(notification, shown);
            });
}

void NotificationServer::send(const Notification& notification, std::function<void(uint)> shown) {
    QVariantMap hints{
        {QStringLiteral("desktop-entry"), QString::fromLatin1(applicationId)},
        {QStringLiteral("transient"), true},
        {QStringLiteral("suppress-sound"), true},
        {QStringLiteral("urgency"), QVariant::fromValue(uchar{1})},
    };
    if (!notification.picture.isNull())
        hints.insert(QStringLiteral("image-data"), onBus(notification.picture));
    QStringList actions;
    if (!notification.action.isEmpty() && m_abilities->contains(QStringLiteral("actions")))
        actions << QStringLiteral("default") << notification.action << QStringLiteral("edit")
                << notification.action;
    const bool readsMarkup = m_abilities->contains(QStringLiteral("body-markup"));
    QDBusMessage call = serverCall("Notify");
    call << QStringLiteral("Framora") << notification.replaces << notification.icon << notification.summary
         << (readsMarkup ? notification.body.toHtmlEscaped() : notification.body) << actions << hints
         << notification.milliseconds;
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [shown = std::move(shown)](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                shown(finished->isError() ? 0 : finished->reply().arguments().value(0).toUInt());
            });
}

void NotificationServer::close(uint id) {
    QDBusMessage call = serverCall("CloseNotification");
    call << id;
    m_bus.asyncCall(call);
}

void NotificationServer::onClosed(uint id, uint) {
    if (m_listener.closed)
        m_listener.closed(id);
}

void NotificationServer::onAction(uint id, const QString&) {
    if (m_listener.chosen)
        m_listener.chosen(id);
}

void NotificationServer::onActivationToken(uint id, const QString& token) {
    if (m_listener.activationToken)
        m_listener.activationToken(id, token);
}

} // namespace framora
