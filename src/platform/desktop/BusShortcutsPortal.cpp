#include "platform/desktop/BusShortcutsPortal.h"

#include "platform/ApplicationId.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <utility>

namespace framora {

/// (sa{sv}): a shortcut on the bus.
struct BusShortcut {
    QString id;
    QVariantMap properties;
};

QDBusArgument& operator<<(QDBusArgument& argument, const BusShortcut& shortcut) {
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, BusShortcut& shortcut) {
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

} // namespace framora

Q_DECLARE_METATYPE(framora::BusShortcut)

namespace framora {
namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString objectPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
/// Always the same: a desktop that does not know the program otherwise knows its shortcuts again by it.
const QString sessionToken = QStringLiteral("framora");

QVariant onBus(const std::vector<ShortcutsPortal::Wish>& wishes) {
    QList<BusShortcut> all;
    for (const auto& wish : wishes) {
        QVariantMap properties{{QStringLiteral("description"), wish.description}};
        if (!wish.trigger.isEmpty())
            properties.insert(QStringLiteral("preferred_trigger"), wish.trigger);
        all.append({wish.id, properties});
    }
    return QVariant::fromValue(all);
}

std::vector<ShortcutsPortal::Binding> bindingsIn(const QVariant& value) {
    std::vector<ShortcutsPortal::Binding> all;
    for (const BusShortcut& shortcut : qdbus_cast<QList<BusShortcut>>(value))
        all.push_back(
            {shortcut.id, shortcut.properties.value(QStringLiteral("trigger_description")).toString()});
    return all;
}

std::vector<ShortcutsPortal::Binding> bindingsIn(const QVariantMap& results) {
    return bindingsIn(results.value(QStringLiteral("shortcuts")));
}

QDBusMessage portalCall(const QString& method) {
    return QDBusMessage::createMethodCall(service, objectPath, interface, method);
}

bool isAnswer(const QDBusMessage& reply) {
    return reply.type() == QDBusMessage::ReplyMessage;
}

QString freshName() {
    static int number = 0;
    return QStringLiteral("framora-shortcuts-%1").arg(++number);
}

} // namespace

BusShortcutsPortal::BusShortcutsPortal(const QString& busAddress)
    : m_name(freshName()),
      m_bus(busAddress.isEmpty() ? QDBusConnection::connectToBus(QDBusConnection::SessionBus, m_name)
                                 : QDBusConnection::connectToBus(busAddress, m_name)),
      m_watcher(service, m_bus, QDBusServiceWatcher::WatchForOwnerChange) {
    qDBusRegisterMetaType<BusShortcut>();
    qDBusRegisterMetaType<QList<BusShortcut>>();
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString& before, const QString& owner) {
                const auto requests = findChildren<PortalRequest*>();
                const auto& told = owner.isEmpty() ? m_listener.vanished : m_listener.appeared;
                if (told)
                    told();
                if (before.isEmpty())
                    return;
                // Nobody responds to them any more.
                for (PortalRequest* request : requests)
                    request->end(PortalRequest::unanswered);
            });
    m_bus.connect(service, objectPath, interface, QStringLiteral("Activated"), this,
                  SLOT(onActivated(QDBusMessage)));
    m_bus.connect(service, objectPath, interface, QStringLiteral("ShortcutsChanged"), this,
                  SLOT(onShortcutsChanged(QDBusMessage)));
    m_bus.connect(service, QString(), QStringLiteral("org.freedesktop.portal.Session"),
                  QStringLiteral("Closed"), this, SLOT(onClosed(QDBusMessage)));
}

BusShortcutsPortal::~BusShortcutsPortal() {
    QDBusConnection::disconnectFromBus(m_name);
}

void BusShortcutsPortal::listen(Listener listener) {
    m_listener = std::move(listener);
}

void BusShortcutsPortal::send(const QDBusMessage& call, Replied replied) {
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [replied = std::move(replied)](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                replied(finished->reply());
            });
}

void BusShortcutsPortal::begin(std::function<void(std::optional<unsigned>)> answer) {
    // Nothing comes of it where there is no such registry, and nothing has to.
    QDBusMessage introduction = QDBusMessage::createMethodCall(
        service, objectPath, QStringLiteral("org.freedesktop.host.portal.Registry"),
        QStringLiteral("Register"));
    introduction << QString::fromLatin1(applicationId) << QVariantMap();
    send(introduction, [this, answer = std::move(answer)](const QDBusMessage& introduced) {
        // One that fell over at that would be started again by another question.
        if (introduced.errorName() == QDBusError::errorString(QDBusError::NoReply)) {
            answer(std::nullopt);
            return;
        }
        QDBusMessage question = QDBusMessage::createMethodCall(
            service, objectPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
        question << interface << QStringLiteral("version");
        send(question, [answer](const QDBusMessage& reply) {
            if (!isAnswer(reply) || reply.arguments().isEmpty())
                answer(std::nullopt);
            else
                answer(reply.arguments().first().value<QDBusVariant>().variant().toUInt());
        });
    });
}

void BusShortcutsPortal::request(const QDBusMessage& call, const QVariantMap& options,
                                 PortalRequest::Responded responded) {
    new PortalRequest(m_bus, call, options, std::move(responded), this);
}

void BusShortcutsPortal::createSession(const std::vector<Wish>& wishes,
                                       std::function<void(std::optional<QString>)> answer) {
    // Some desktops take the shortcuts from here and not from the binding.
    request(portalCall(QStringLiteral("CreateSession")),
            {{QStringLiteral("session_handle_token"), sessionToken},
             {QStringLiteral("shortcuts"), onBus(wishes)}},
            [answer = std::move(answer)](uint response, const QVariantMap& results) {
                // Portals disagree on whether it is a path or a text.
                const QVariant handle = results.value(QStringLiteral("session_handle"));
                const QString session = handle.canConvert<QDBusObjectPath>()
                                            ? handle.value<QDBusObjectPath>().path()
                                            : handle.toString();
                answer(response == PortalRequest::done && !session.isEmpty() ? std::optional(session)
                                                                             : std::nullopt);
            });
}

void BusShortcutsPortal::bind(const QString& session, const std::vector<Wish>& wishes,
                              std::function<void(Outcome, std::vector<Binding>)> answer) {
    QDBusMessage call = portalCall(QStringLiteral("BindShortcuts"));
    call << QVariant::fromValue(QDBusObjectPath(session)) << onBus(wishes) << QString();
    request(call, {}, [answer = std::move(answer)](uint response, const QVariantMap& results) {
        const auto outcome = response == PortalRequest::done        ? Outcome::done
                             : response == PortalRequest::cancelled ? Outcome::refused
                                                                    : Outcome::failed;
        answer(outcome, bindingsIn(results));
    });
}

void BusShortcutsPortal::list(const QString& session, std::function<void(std::vector<Binding>)> answer) {
    QDBusMessage call = portalCall(QStringLiteral("ListShortcuts"));
    call << QVariant::fromValue(QDBusObjectPath(session));
    request(call, {},
            [answer = std::move(answer)](uint, const QVariantMap& results) { answer(bindingsIn(results)); });
}

void BusShortcutsPortal::close(const QString& session, std::function<void()> done) {
    send(QDBusMessage::createMethodCall(service, session, QStringLiteral("org.freedesktop.portal.Session"),
                                        QStringLiteral("Close")),
         [done = std::move(done)](const QDBusMessage&) { done(); });
}

void BusShortcutsPortal::configure(const QString& session) {
    QDBusMessage call = portalCall(QStringLiteral("ConfigureShortcuts"));
    call << QVariant::fromValue(QDBusObjectPath(session)) << QString() << QVariantMap();
    send(call, [](const QDBusMessage&) {});
}

void BusShortcutsPortal::onActivated(const QDBusMessage& message) {
    // Session, shortcut, time, options.
    const auto arguments = message.arguments();
    if (arguments.size() < 4 || !m_listener.activated)
        return;
    const auto options = qdbus_cast<QVariantMap>(arguments[3]);
    m_listener.activated(arguments[0].value<QDBusObjectPath>().path(), arguments[1].toString(),
                         options.value(QStringLiteral("activation_token")).toString());
}

void BusShortcutsPortal::onShortcutsChanged(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    if (arguments.size() >= 2 && m_listener.changed)
        m_listener.changed(arguments[0].value<QDBusObjectPath>().path(), bindingsIn(arguments[1]));
}

void BusShortcutsPortal::onClosed(const QDBusMessage& message) {
    if (m_listener.closed)
        m_listener.closed(message.path());
}

} // namespace framora
