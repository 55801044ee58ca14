#include "platform/desktop/PortalSharing.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <QGuiApplication>
#include <QTimer>
#include <QWindow>
#include <fcntl.h>
#include <memory>

namespace framora {
namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString objectPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString openInterface = QStringLiteral("org.freedesktop.portal.OpenURI");
const QString mailInterface = QStringLiteral("org.freedesktop.portal.Email");

QDBusMessage portalCall(const QString& interface, const QString& method) {
    return QDBusMessage::createMethodCall(service, objectPath, interface, method);
}

/// The window as portals name it; empty where they have no name for it.
QString handleOf(const QWindow* window) {
    if (!window || QGuiApplication::platformName() != u"xcb")
        return {};
    return QStringLiteral("x11:%1").arg(window->winId(), 0, 16);
}

int openedForReading(const QString& path) {
    return ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
}

/// Takes the descriptor over.
QDBusUnixFileDescriptor handedOver(int descriptor) {
    QDBusUnixFileDescriptor result;
    result.giveFileDescriptor(descriptor);
    return result;
}

} // namespace

PortalSharing::PortalSharing(QDBusConnection bus) : m_bus(std::move(bus)) {
    qDBusRegisterMetaType<QList<QDBusUnixFileDescriptor>>();
}

void PortalSharing::send(const QDBusMessage& call, std::function<void(bool, const QDBusMessage&)> done) {
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), &m_context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &m_context,
                     [done = std::move(done)](QDBusPendingCallWatcher* finished) {
                         finished->deleteLater();
                         done(!finished->isError(), finished->reply());
                     });
}

void PortalSharing::queryAbilities(std::function<void(Abilities)> answer) {
    // Asking for a version starts the portal where it can be started; one without the interface refuses.
    struct Query {
        Abilities abilities;
        int unanswered = 2;
        std::function<void(Abilities)> answer;
    };
    const auto query = std::make_shared<Query>();
    query->answer = std::move(answer);
    for (const auto& [interface, ability] :
         {std::pair(openInterface, &Abilities::openWith), std::pair(mailInterface, &Abilities::mail)}) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            service, objectPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
        call << interface << QStringLiteral("version");
        send(call, [query, able = ability](bool answered, const QDBusMessage&) {
            query->abilities.*able = answered;
            if (--query->unanswered == 0)
                query->answer(query->abilities);
        });
    }
}

void PortalSharing::hand(const QDBusMessage& call, int descriptor, Finished finished) {
    if (descriptor < 0) {
        QTimer::singleShot(0, &m_context, [finished = std::move(finished)] { finished(false); });
        return;
    }
    send(call, [finished = std::move(finished)](bool answered, const QDBusMessage&) { finished(answered); });
}

void PortalSharing::openWith(const QString& path, const QWindow* parent, Finished finished) {
    const int descriptor = openedForReading(path);
    QDBusMessage call = portalCall(openInterface, QStringLiteral("OpenFile"));
    call << handleOf(parent) << QVariant::fromValue(handedOver(descriptor))
         << QVariantMap{{QStringLiteral("ask"), true}};
    hand(call, descriptor, std::move(finished));
}

void PortalSharing::composeMail(const QString& path, const QString& subject, const QWindow* parent,
                                Finished finished) {
    const int descriptor = openedForReading(path);
    const QList<QDBusUnixFileDescriptor> attachments{handedOver(descriptor)};
    QDBusMessage call = portalCall(mailInterface, QStringLiteral("ComposeEmail"));
    call << handleOf(parent)
         << QVariantMap{{QStringLiteral("subject"), subject},
                        {QStringLiteral("attachment_fds"), QVariant::fromValue(attachments)}};
    hand(call, descriptor, std::move(finished));
}

} // namespace framora
