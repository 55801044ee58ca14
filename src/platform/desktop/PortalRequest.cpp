#include "platform/desktop/PortalRequest.h"

#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <utility>

namespace framora {

PortalRequest::PortalRequest(QDBusConnection bus, QDBusMessage call, QVariantMap options, Responded responded,
                             QObject* parent)
    : QObject(parent), m_bus(std::move(bus)), m_responded(std::move(responded)) {
    static int made = 0;
    const QString token = QStringLiteral("framora%1").arg(++made);
    options.insert(QStringLiteral("handle_token"), token);
    call << options;
    // Heard from before the call goes out, or a quick answer would be missed.
    const QString sender = m_bus.baseService().mid(1).replace(u'.', u'_');
    m_path = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2").arg(sender, token);
    subscribe(true);
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* finished) {
        finished->deleteLater();
        onReply(finished->reply());
    });
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

void PortalRequest::onReply(const QDBusMessage& reply) {
    m_isReplied = true;
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        end(unanswered);
        return;
    }
    // Older portals choose another path than the one that was expected.
    const QString path = reply.arguments().first().value<QDBusObjectPath>().path();
    if (m_isClosing) {
        m_path = path;
        close();
        return;
    }
    if (path == m_path || !m_responded)
        return;
    subscribe(false);
    m_path = path;
    subscribe(true);
}

void PortalRequest::close() {
    m_responded = nullptr;
    if (!std::exchange(m_isClosing, true))
        subscribe(false);
    // Before the reply there may be nothing to close yet, or under another path.
    if (!m_isReplied)
        return;
    m_bus.send(QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.portal.Desktop"), m_path,
                                              QStringLiteral("org.freedesktop.portal.Request"),
                                              QStringLiteral("Close")));
    deleteLater();
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
