#include "platform/wayland/ScreenshotPermission.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QMap>
#include <QPointer>
#include <utility>

namespace framora {
namespace {

const QString storeService = QStringLiteral("org.freedesktop.impl.portal.PermissionStore");
const QString storePath = QStringLiteral("/org/freedesktop/impl/portal/PermissionStore");
/// Both the table and its one entry.
const QString screenshot = QStringLiteral("screenshot");

/// The store may have to be started first.
constexpr int storeMilliseconds = 3000;

ScreenshotPermission::State stateOf(const QStringList& permissions) {
    const QString answer = permissions.value(0);
    return answer == u"yes"  ? ScreenshotPermission::State::granted
           : answer == u"no" ? ScreenshotPermission::State::denied
                             : ScreenshotPermission::State::notAsked;
}

} // namespace

ScreenshotPermission::ScreenshotPermission(Services services) : m_services(std::move(services)) {}

ScreenshotPermission::State ScreenshotPermission::state() {
    if (!std::exchange(m_started, true))
        start();
    if (m_asksNobody || (m_gaveOne && m_state != State::denied))
        return State::granted;
    return m_state;
}

void ScreenshotPermission::start() {
    m_services.runTool({QStringLiteral("--check-route")}, {}, [self = QPointer(this)](int exitCode) {
        if (!self)
            return;
        self->m_asksNobody = exitCode == 0;
        if (self->m_asksNobody)
            return;
        self->m_services.bus.connect(storeService, storePath, storeService, QStringLiteral("Changed"), self,
                                     SLOT(onStoreChanged(QString, QString)));
        self->lookUp();
    });
}

void ScreenshotPermission::onStoreChanged(const QString& table, const QString& id) {
    if (table == screenshot && id == screenshot)
        lookUp();
}

void ScreenshotPermission::lookUp() {
    QDBusMessage call =
        QDBusMessage::createMethodCall(storeService, storePath, storeService, QStringLiteral("Lookup"));
    call << screenshot << screenshot;
    auto* watcher = new QDBusPendingCallWatcher(m_services.bus.asyncCall(call, storeMilliseconds), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* answer) {
        answer->deleteLater();
        understand(*answer);
    });
}

void ScreenshotPermission::understand(const QDBusPendingCallWatcher& answer) {
    // A store that has never heard of pictures answers with an error, as no store does.
    m_state = State::notAsked;
    if (answer.isError())
        return;
    const auto permissions =
        qdbus_cast<QMap<QString, QStringList>>(answer.reply().arguments().value(0).value<QDBusArgument>());
    m_state = stateOf(permissions.value(m_services.applicationId));
}

bool ScreenshotPermission::ask(const QString& parentWindow, const QString& activationToken,
                               std::function<void()> answered) {
    const State now = state();
    if (m_asking || now == State::granted || now == State::denied)
        return false;
    m_asking = true;
    QStringList arguments{QStringLiteral("--ask-permission")};
    if (!parentWindow.isEmpty())
        arguments << QStringLiteral("--parent") << parentWindow;
    m_services.runTool(arguments, activationToken,
                       [self = QPointer(this), answered = std::move(answered)](int exitCode) {
                           if (self) {
                               self->m_asking = false;
                               self->m_gaveOne = exitCode == 0;
                               self->lookUp();
                           }
                           answered();
                       });
    return true;
}

QString ScreenshotPermission::commandToForget() {
    if (state() != State::denied)
        return {};
    const QString id = m_services.applicationId.isEmpty() ? QStringLiteral("''") : m_services.applicationId;
    return QStringLiteral("busctl --user call %1 %2 %1 DeletePermission sss %3 %3 %4")
        .arg(storeService, storePath, screenshot, id);
}

} // namespace framora
