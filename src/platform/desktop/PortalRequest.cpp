#include "platform/desktop/PortalRequest.h"

#include <utility>

namespace framora {

PortalRequest::PortalRequest(QDBusConnection bus, const QString& path, Responded responded, QObject* parent)
    : QObject(parent), m_bus(std::move(bus)), m_path(path), m_responded(std::move(responded)) {
    subscribe(true);
}

void PortalRequest::subscribe(bool on) {
    const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
    const QString interface = QStringLiteral("org.freedesktop.portal.Request");
    const QString signal = QStringLiteral("Response");
    if (on)
        m_bus.connect(service, m_path, interface, signal, this, SLOT(onResponse(uint, QVariantMap)));
    else
        m_bus.disconnect(service, m_path, interface, signal, this, SLOT(onResponse(uint, QVariantMap)));
}

void PortalRequest::follow(const QString& path) {
    if (path == m_path)
        return;
    subscribe(false);
    m_path = path;
    subscribe(true);
}

void PortalRequest::end(uint response, const QVariantMap& results) {
    subscribe(false);
    deleteLater();
    if (const auto responded = std::exchange(m_responded, nullptr))
        responded(response, results);
}

void PortalRequest::onResponse(uint response, const QVariantMap& results) {
    end(response, results);
}

} // namespace framora
