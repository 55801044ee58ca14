#include "desktop/feedback/NotificationServerDouble.h"

#include <QUuid>
#include <algorithm>
#include <stdexcept>

namespace framora {

NotificationServerDouble::NotificationServerDouble(const QString& busAddress, bool takesActions)
    : m_name(QUuid::createUuid().toString()), m_bus(QDBusConnection::connectToBus(busAddress, m_name)),
      m_takesActions(takesActions) {
    if (!m_bus.registerObject(QStringLiteral("/org/freedesktop/Notifications"), this,
                              QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals) ||
        !m_bus.registerService(QStringLiteral("org.freedesktop.Notifications")))
        throw std::runtime_error("The notification server's double cannot get onto the bus");
}

NotificationServerDouble::~NotificationServerDouble() {
    QDBusConnection::disconnectFromBus(m_name);
}

QStringList NotificationServerDouble::GetCapabilities() {
    return m_takesActions ? QStringList{QStringLiteral("body"), QStringLiteral("actions")}
                          : QStringList{QStringLiteral("body")};
}

uint NotificationServerDouble::Notify(const QString& application, uint replaces, const QString& icon,
                                      const QString& summary, const QString& body, const QStringList& actions,
                                      const QVariantMap& hints, int timeout) {
    const uint id = replaces != 0 ? replaces : ++m_lastId;
    all.push_back({application, replaces, icon, summary, body, actions, hints, timeout, id});
    if (std::ranges::find(shown, id) == shown.end())
        shown.push_back(id);
    return id;
}

void NotificationServerDouble::CloseNotification(uint id) {
    closed.push_back(id);
    std::erase(shown, id);
    Q_EMIT NotificationClosed(id, 3);
}

void NotificationServerDouble::choose(uint id, const QString& action, const QString& token) {
    if (!token.isEmpty())
        Q_EMIT ActivationToken(id, token);
    Q_EMIT ActionInvoked(id, action);
    std::erase(shown, id);
    Q_EMIT NotificationClosed(id, 2);
}

void NotificationServerDouble::dismiss(uint id) {
    std::erase(shown, id);
    Q_EMIT NotificationClosed(id, 2);
}

} // namespace framora
