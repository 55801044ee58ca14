#include "platform/desktop/PortalSharing.h"

#include "platform/desktop/PortalRequest.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <QTimer>
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

/// Invalid where the file cannot be read.
QDBusUnixFileDescriptor openedForReading(const QString& path) {
    QDBusUnixFileDescriptor result;
    if (const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
        descriptor >= 0)
        result.giveFileDescriptor(descriptor);
    return result;
}

} // namespace

PortalSharing::PortalSharing(NamePortalWindow nameWindow, QDBusConnection bus)
    : m_nameWindow(std::move(nameWindow)), m_bus(std::move(bus)) {
    qDBusRegisterMetaType<QList<QDBusUnixFileDescriptor>>();
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
        auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), &m_context);
        QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &m_context,
                         [query, able = ability](QDBusPendingCallWatcher* finished) {
                             finished->deleteLater();
                             query->abilities.*able = !finished->isError();
                             if (--query->unanswered == 0)
                                 query->answer(query->abilities);
                         });
    }
}

void PortalSharing::hand(QDBusMessage call, QWindow* parent, const QVariantList& arguments,
                         const QVariantMap& options, Finished finished) {
    const PortalWindowName name = m_nameWindow(parent);
    call.setArguments(QVariantList{*name} + arguments);
    const auto responded = [finished = std::move(finished), name](uint response, const QVariantMap&) {
        finished(response == PortalRequest::done        ? Outcome::taken
                 : response == PortalRequest::cancelled ? Outcome::cancelled
                                                        : Outcome::failed);
    };
    auto* request = new PortalRequest(m_bus, call, options, responded, &m_context);
    auto* watcher =
        new QDBusServiceWatcher(service, m_bus, QDBusServiceWatcher::WatchForUnregistration, request);
    QObject::connect(watcher, &QDBusServiceWatcher::serviceUnregistered, request,
                     [request] { request->end(PortalRequest::unanswered); });
}

void PortalSharing::fail(Finished finished) {
    QTimer::singleShot(0, &m_context, [finished = std::move(finished)] { finished(Outcome::failed); });
}

void PortalSharing::openWith(const QString& path, QWindow* parent, Finished finished) {
    const auto file = openedForReading(path);
    if (!file.isValid()) {
        fail(std::move(finished));
        return;
    }
    hand(portalCall(openInterface, QStringLiteral("OpenFile")), parent, {QVariant::fromValue(file)},
         {{QStringLiteral("ask"), true}}, std::move(finished));
}

void PortalSharing::composeMail(const QString& path, const QString& subject, QWindow* parent,
                                Finished finished) {
    const auto file = openedForReading(path);
    if (!file.isValid()) {
        fail(std::move(finished));
        return;
    }
    hand(portalCall(mailInterface, QStringLiteral("ComposeEmail")), parent, {},
         {{QStringLiteral("subject"), subject},
          {QStringLiteral("attachment_fds"), QVariant::fromValue(QList<QDBusUnixFileDescriptor>{file})}},
         std::move(finished));
}

} // namespace framora
