#include "platform/desktop/TrayStatusBar.h"

#include "platform/desktop/StatusNotifierItem.h"
#include "platform/desktop/TrayStatusItem.h"

#include <QDBusConnection>

namespace framora {

TrayStatusBar::TrayStatusBar(CommandGate& gate, const Appearance& appearance,
                             NotificationCenter& notifications,
                             std::function<void(const QString& token)> onToken)
    : m_gate(gate), m_appearance(appearance), m_notifications(notifications), m_onToken(std::move(onToken)) {}

std::unique_ptr<StatusItem> TrayStatusBar::makeStatusItem() {
    return std::make_unique<TrayStatusItem>(m_gate, m_appearance, m_notifications, m_onToken);
}

bool TrayStatusBar::hasHost() const {
    return StatusNotifierItem::hostRuns(QDBusConnection::sessionBus()) ||
           (TrayStatusItem::canBeEmbedded() && QSystemTrayIcon::isSystemTrayAvailable());
}

} // namespace framora
