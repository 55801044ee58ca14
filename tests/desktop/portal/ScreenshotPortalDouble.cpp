#include "desktop/portal/ScreenshotPortalDouble.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QUuid>

#include <stdexcept>

namespace framora {

/// (ddd): a colour on the bus.
struct BusColor {
    QColor color;
};

QDBusArgument& operator<<(QDBusArgument& argument, const BusColor& color) {
    argument.beginStructure();
    argument << color.color.redF() << color.color.greenF() << color.color.blueF();
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, BusColor&) {
    return argument; // Nobody sends one here.
}

} // namespace framora

Q_DECLARE_METATYPE(framora::BusColor)

namespace framora {
namespace {

const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString screenshotInterface = QStringLiteral("org.freedesktop.portal.Screenshot");
const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

} // namespace

/// The portal's path and all requests below it.
class ScreenshotPortalDouble::Object final : public QDBusVirtualObject {
public:
    explicit Object(ScreenshotPortalDouble& portal) : m_portal(portal) {}

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.interface() == propertiesInterface)
            return properties(message, bus);
        if (message.interface() == screenshotInterface && m_portal.hasScreenshots &&
            (message.member() == u"Screenshot" || message.member() == u"PickColor"))
            return screenshot(message, bus);
        if (message.interface() == requestInterface && message.member() == u"Close")
            return close(message, bus);
        return false;
    }

private:
    bool properties(const QDBusMessage& message, const QDBusConnection& bus) {
        if (message.arguments().value(0) != screenshotInterface || !m_portal.hasScreenshots)
            return false;
        if (!m_portal.repliesToCalls) {
            message.setDelayedReply(true);
            return true;
        }
        QVariantMap values{{QStringLiteral("version"), m_portal.version}};
        if (m_portal.availableTargets)
            values.insert(QStringLiteral("AvailableTargets"), *m_portal.availableTargets);
        if (message.member() == u"GetAll")
            return bus.send(message.createReply(values));
        const QVariant value = values.value(message.arguments().value(1).toString());
        return value.isValid() && bus.send(message.createReply(QVariant::fromValue(QDBusVariant(value))));
    }

    bool screenshot(const QDBusMessage& message, const QDBusConnection& bus) {
        message.setDelayedReply(true);
        Call call;
        call.method = message.member();
        call.parentWindow = message.arguments().value(0).toString();
        call.options = qdbus_cast<QVariantMap>(message.arguments().value(1).value<QDBusArgument>());
        call.sender = message.service();
        QString sender = call.sender.mid(1);
        sender.replace(QLatin1Char('.'), QLatin1Char('_'));
        const QString token = call.options.value(QStringLiteral("handle_token")).toString();
        call.handle = m_portal.predictableHandles
                          ? QStringLiteral("%1/request/%2/%3").arg(portalPath, sender, token)
                          : QStringLiteral("%1/request/old/%2").arg(portalPath).arg(m_portal.calls.size());
        m_portal.calls.push_back(call);
        if (!m_portal.repliesToCalls)
            return true;
        if (m_portal.refusesTarget && call.options.contains(QStringLiteral("target")))
            return bus.send(message.createErrorReply(
                QStringLiteral("org.freedesktop.portal.Error.InvalidArgument"), QStringLiteral("no target")));
        // A quick portal's answer may be there before its reply is: that is why callers listen first.
        if (m_portal.immediate && m_portal.predictableHandles)
            m_portal.respond(*m_portal.immediate);
        bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(call.handle))));
        if (m_portal.immediate && !m_portal.predictableHandles)
            m_portal.respond(*m_portal.immediate);
        return true;
    }

    bool close(const QDBusMessage& message, const QDBusConnection& bus) {
        for (Call& call : m_portal.calls)
            if (call.handle == message.path())
                call.closed = true;
        return bus.send(message.createReply());
    }

    ScreenshotPortalDouble& m_portal;
};

ScreenshotPortalDouble::ScreenshotPortalDouble(const QString& busAddress)
    : m_name(QUuid::createUuid().toString()), m_bus(QDBusConnection::connectToBus(busAddress, m_name)),
      m_object(std::make_unique<Object>(*this)) {
    qDBusRegisterMetaType<BusColor>();
    if (!m_bus.registerVirtualObject(portalPath, m_object.get(), QDBusConnection::SubPath) ||
        !m_bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")))
        throw std::runtime_error("the portal's double cannot get onto the bus: " +
                                 m_bus.lastError().message().toStdString());
}

ScreenshotPortalDouble::~ScreenshotPortalDouble() {
    vanish();
}

void ScreenshotPortalDouble::respond(const Response& response) {
    const Call& call = calls.back();
    QDBusMessage signal = QDBusMessage::createTargetedSignal(call.sender, call.handle, requestInterface,
                                                             QStringLiteral("Response"));
    QVariantMap results;
    if (!response.uri.isEmpty())
        results.insert(QStringLiteral("uri"), response.uri);
    if (response.color)
        results.insert(QStringLiteral("color"), QVariant::fromValue(BusColor{*response.color}));
    signal << unsigned(response.code) << results;
    m_bus.send(signal);
}

void ScreenshotPortalDouble::vanish() {
    QDBusConnection::disconnectFromBus(m_name);
    // The last reference closes the connection.
    m_bus = QDBusConnection(QString());
}

} // namespace framora
